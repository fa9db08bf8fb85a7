// The gas: which of two, its basis, its table, what is pasted, what is said of it.
import { Definitions } from "./definitions.ts";
import { button, choice, h, say } from "./dom.ts";
import type { Known } from "./known.ts";
import type { Link } from "./link.ts";
import { shown } from "./numbers.ts";
import type { Store } from "./store.ts";
import { Table } from "./table.ts";
import { texts } from "./texts.ts";

export class Composition {
  readonly element: HTMLElement;
  #table: Table;
  #definitions: Definitions;
  #tabs = h("div", { class: "row", role: "group", "aria-label": texts.composition });
  #basis;
  #whole = h("p", { class: "wrong", id: "whole" });
  #sum = h("p", { class: "hint", id: "sum" });
  #stale = h("p", { class: "hint", id: "stale" });

  /** tell: says something at once; spoken: is read out only; model: fields that stand with the gas. */
  constructor(
    private readonly store: Store,
    private readonly link: Link,
    private readonly tell: (text: string) => void,
    spoken: HTMLElement,
    model: HTMLElement,
  ) {
    const find = async (text: string) => (await link.ask({ kind: "find", text }, "found")).found;
    this.#table = new Table(store, spoken, find, (text) => this.#paste(text));
    this.#definitions = new Definitions(store);
    this.#basis = choice(texts.basis, Object.entries(texts.bases), (value) =>
      store.changeGas({ basis: value as "mole" }, ""),
    );
    const head = [h("h2", {}, texts.composition), this.#tabs, this.#basis.box, this.#table.element];
    const said = [this.#whole, this.#sum, this.#stale];
    const rest = [this.#pasteBox(), this.#definitions.element, model];
    this.element = h("section", { class: "gas", "aria-label": texts.composition }, ...head, ...said, ...rest);
  }

  async #paste(text: string): Promise<void> {
    if (text.trim() === "") return this.tell(texts.pasteEmpty);
    const asked = this.store.state;
    const { read, error } = await this.link
      .ask({ kind: "read", text, gas: this.store.gas }, "read")
      .catch((e: Error) => ({ read: null, error: e.message }));
    if (read === null) return this.tell(texts.pasteFailed(error));
    if (this.store.state !== asked) return this.tell(texts.pasteLate);
    const { rows, basis, definitions } = read;
    this.store.changeGas({ rows, basis, definitions }, "");
    this.tell([texts.pasteTaken(read.rows.length), ...read.notes].join(" "));
  }

  #pasteBox(): HTMLElement {
    const area = h("textarea", { rows: 5, "aria-label": texts.paste, spellcheck: "false" });
    const hint = h("p", { class: "hint" }, texts.pasteHint);
    const apply = button(texts.pasteApply, () => this.#paste(area.value));
    return h("details", {}, h("summary", {}, texts.paste), hint, area, apply);
  }

  #showTabs(): void {
    const { store } = this;
    const { gases, chosen } = store.state;
    const key = `${gases.length} ${chosen}`;
    if (this.#tabs.dataset.key === key) return;
    this.#tabs.dataset.key = key;
    const focused = this.#tabs.contains(document.activeElement);
    const tab = (k: number) =>
      button(texts.gasName(k), () => store.change({ chosen: k }, ""), { "aria-pressed": String(k === chosen) });
    const first = () => store.state.gases[0];
    const compare = button(texts.compare, () => store.change({ gases: [first(), first()], chosen: 1 }, ""));
    const remove = button(texts.removeGas, () => store.change({ gases: [first()], chosen: 0 }, ""));
    this.#tabs.replaceChildren(...(gases.length > 1 ? [tab(0), tab(1), remove] : [compare]));
    if (focused) (this.#tabs.children[gases.length > 1 ? chosen : 0] as HTMLElement).focus();
  }

  /** The texts of the state. */
  update(): void {
    this.#showTabs();
    this.#table.update();
    this.#definitions.update();
    this.#basis.input.value = this.store.gas.basis;
  }

  /** What was made of the gas. */
  show(known: Known): void {
    const part = known.of("gas", this.store.state.chosen);
    if (part === undefined) return;
    this.#table.show(part);
    this.#definitions.show(part);
    say(this.#whole, part.error);
    const broken = known.all("gas").filter((g) => !g.ok && g.gas < this.store.state.gases.length);
    const said = broken.map(({ gas }) => {
      const old = known.of("envelope", gas) === undefined ? "" : texts.stale;
      return gas === part.gas ? old : `${texts.cannot(gas, known.whyNot(gas))} ${old}`;
    });
    say(this.#stale, said.join(" ").trim());
    const off = part.notes.some((text) => text.includes("normalised"));
    const sum = `${texts.sum(shown(part.sum), off)}; ${texts.molarMass(shown(part.molarMass))}`;
    say(this.#sum, part.sum === null ? "" : sum);
  }
}
