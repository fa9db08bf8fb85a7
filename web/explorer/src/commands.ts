// Undo, exports and the link: buttons and keys.
import { button, h } from "./dom.ts";
import { curvesCsv, cutsCsv, pngOf, save, svgOf } from "./exports.ts";
import type { Known } from "./known.ts";
import { LIGHT } from "./palette.ts";
import type { Store } from "./store.ts";
import { texts } from "./texts.ts";
import { picturesOf } from "./view.ts";

type Kind = "svg" | "png" | "csv";

export class Commands {
  readonly element: HTMLElement;
  #undo: HTMLButtonElement;
  #redo: HTMLButtonElement;

  /** tell: says what was done; showAddress: puts the state into the address now. */
  constructor(
    private readonly store: Store,
    private readonly known: Known,
    private readonly tell: (text: string) => void,
    showAddress: () => void,
    more: HTMLElement,
  ) {
    this.#undo = button(texts.undo, () => store.undo());
    this.#redo = button(texts.redo, () => store.redo());
    const kinds = (["svg", "png", "csv"] as const).map((kind) =>
      button(texts[kind], () => this.#export(kind), { "aria-label": `${texts.exportAs} ${texts[kind]}` }),
    );
    const link = button(texts.copyLink, () => {
      showAddress();
      this.#copyLink();
    });
    this.element = h("div", { class: "row commands" }, this.#undo, this.#redo, ...kinds, link, more);
    addEventListener("keydown", (event) => this.#key(event));
  }

  /** There may be no clipboard, as for a page that came without encryption. */
  async #copyLink(): Promise<void> {
    try {
      await navigator.clipboard.writeText(location.href);
      this.tell(texts.linkCopied);
    } catch {
      this.tell(texts.linkIs);
    }
  }

  async #export(kind: Kind): Promise<void> {
    const name = `kestrune.${kind}`;
    try {
      if (kind === "csv") this.#saveCsv(name);
      else {
        const text = svgOf(picturesOf(this.known, this.store.state, LIGHT), this.store.state);
        save(name, kind === "svg" ? new Blob([text], { type: "image/svg+xml" }) : await pngOf(text));
      }
      this.tell(texts.exported(name));
    } catch (error) {
      this.tell(texts.notExported(name, error instanceof Error ? error.message : String(error)));
    }
  }

  #saveCsv(name: string): void {
    const type = { type: "text/csv;charset=utf-8" };
    const along = cutsCsv(this.known);
    save(name, new Blob([curvesCsv(this.known)], type));
    if (along !== "") save("kestrune-cut.csv", new Blob([along], type));
  }

  #key(event: KeyboardEvent): void {
    if (!(event.ctrlKey || event.metaKey) || event.altKey || event.target instanceof HTMLTextAreaElement) return;
    const key = event.key.toLowerCase();
    if (key !== "z" && key !== "y") return;
    event.preventDefault();
    if (key === "y" || event.shiftKey) this.store.redo();
    else this.store.undo();
  }

  update(): void {
    this.#undo.disabled = !this.store.canUndo;
    this.#redo.disabled = !this.store.canRedo;
  }
}
