// Plus fractions and components of one's own, in the words of the command line.
import { button, fill, h, textField, type Field } from "./dom.ts";
import type { GasPart } from "./protocol.ts";
import { MOST_ROWS, type Definition } from "./state.ts";
import type { Store } from "./store.ts";
import { texts } from "./texts.ts";

interface Line {
  kind: Definition["kind"];
  box: HTMLElement;
  name: Field;
  words: Field;
}

export class Definitions {
  readonly element: HTMLElement;
  #lines: Line[] = [];
  #body = h("div");

  constructor(private readonly store: Store) {
    const add = (kind: Definition["kind"], label: string) => button(label, () => this.#add(kind));
    const buttons = h(
      "div",
      { class: "row" },
      add("fraction", texts.addFraction),
      add("component", texts.addComponent),
    );
    this.element = h("details", {}, h("summary", {}, texts.definitions), this.#body, buttons);
  }

  /** A definition with a row of the composition. */
  #add(kind: Definition["kind"]): void {
    const { definitions, rows } = this.store.gas;
    if (definitions.length >= MOST_ROWS || rows.length >= MOST_ROWS) return;
    const stem = kind === "fraction" ? "C7+" : "cut";
    const free = [stem, ...Array.from({ length: MOST_ROWS }, (_, k) => `${stem} ${k + 2}`)];
    const name = free.find((text) => !definitions.some((d) => d.name === text))!;
    const words = kind === "fraction" ? texts.firstFraction : texts.firstComponent;
    this.store.changeGas(
      { definitions: [...definitions, { kind, name, words }], rows: [...rows, { name, amount: "" }] },
      "",
    );
    this.#lines.at(-1)?.name.input.focus();
  }

  #edit(k: number, key: "name" | "words", value: string): void {
    const { definitions, rows } = this.store.gas;
    const old = definitions[k].name;
    const next = definitions.map((d, i) => (i === k ? { ...d, [key]: value } : d));
    // The row of the composition goes by the same name.
    const renamed = key === "name" && old !== "" ? rows.map((r) => (r.name === old ? { ...r, name: value } : r)) : rows;
    this.store.changeGas({ definitions: next, rows: renamed }, `${key} of definition ${k}`);
  }

  #line(k: number, kind: Definition["kind"]): Line {
    const what = kind === "fraction" ? texts.fraction : texts.ownComponent;
    const name = textField(texts.definitionName(what, k + 1), (text) => this.#edit(k, "name", text));
    const words = textField(texts.definitionWords(what, k + 1), (text) => this.#edit(k, "words", text));
    const remove = button("\u00d7", () => this.#remove(k), {
      class: "plain",
      "aria-label": texts.remove(`${what} ${k + 1}`),
    });
    const hint = h("p", { class: "hint" }, kind === "fraction" ? texts.fractionHint : texts.componentHint);
    const box = h("div", { class: "definition" }, h("div", { class: "row" }, name.box, remove), words.box, hint);
    return { kind, box, name, words };
  }

  /** The row of the composition goes with it. */
  #remove(k: number): void {
    const { definitions, rows } = this.store.gas;
    const { name } = definitions[k];
    this.store.changeGas(
      { definitions: definitions.filter((_, i) => i !== k), rows: rows.filter((r) => r.name !== name) },
      "",
    );
    this.element.querySelector("summary")!.focus();
  }

  update(): void {
    const { definitions } = this.store.gas;
    if (this.#lines.length !== definitions.length || this.#lines.some((l, k) => l.kind !== definitions[k].kind)) {
      this.#lines = definitions.map((d, k) => this.#line(k, d.kind));
      this.#body.replaceChildren(...this.#lines.map((l) => l.box));
      if (definitions.length > 0) (this.element as HTMLDetailsElement).open = true;
    }
    definitions.forEach((d, k) => {
      fill(this.#lines[k].name.input, d.name);
      fill(this.#lines[k].words.input, d.words);
    });
  }

  show(part: GasPart): void {
    this.#lines.forEach((line, k) => line.words.wrong(part.definitionErrors[k] ?? ""));
  }
}
