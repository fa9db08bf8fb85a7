// The composition: a row a component, with what is wrong or to be said beside it.
import { suggest } from "./combobox.ts";
import { button, fill, h, newId, say } from "./dom.ts";
import { shown } from "./numbers.ts";
import type { Found, GasPart } from "./protocol.ts";
import { MOST_ROWS } from "./state.ts";
import type { Store } from "./store.ts";
import { texts } from "./texts.ts";

interface Line {
  tr: HTMLTableRowElement;
  below: HTMLTableRowElement;
  name: HTMLInputElement;
  amount: HTMLInputElement;
  share: HTMLElement;
  said: HTMLElement;
  remove: HTMLButtonElement;
}

export class Table {
  readonly element: HTMLElement;
  #lines: Line[] = [];
  #body = h("tbody");

  constructor(
    private readonly store: Store,
    private readonly spoken: HTMLElement,
    private readonly find: (text: string) => Promise<Found[]>,
    pasted: (text: string) => void,
  ) {
    const heads = [texts.component, texts.amount, texts.share].map((text) => h("th", { scope: "col" }, text));
    const table = h("table", { class: "composition" }, h("thead", {}, h("tr", {}, ...heads, h("td"))), this.#body);
    table.setAttribute("aria-label", texts.composition);
    table.addEventListener("paste", (event) => {
      const text = event.clipboardData?.getData("text/plain") ?? "";
      if (!/[\n\t;=]/.test(text.trim())) return;
      event.preventDefault();
      pasted(text);
    });
    const add = button(texts.addRow, () => this.add(), { class: "add" });
    const clear = button(texts.clear, () => store.changeGas({ rows: [], definitions: [] }, ""));
    this.element = h("div", {}, table, h("div", { class: "row" }, add, clear));
  }

  /** An empty row with the focus on its name. */
  add(): void {
    const { rows } = this.store.gas;
    if (rows.length < MOST_ROWS && rows.at(-1)?.name !== "")
      this.store.changeGas({ rows: [...rows, { name: "", amount: "" }] }, "");
    this.#lines.at(-1)?.name.focus();
  }

  #edit(k: number, key: "name" | "amount", value: string): void {
    const rows = this.store.gas.rows.map((row, i) => (i === k ? { ...row, [key]: value } : row));
    this.store.changeGas({ rows }, `${key} ${k}`);
  }

  #line(k: number): Line {
    const said = h("span", { class: "wrong", id: newId("row") });
    const field = (label: string, key: "name" | "amount") => {
      const input = h("input", {
        type: "text",
        autocomplete: "off",
        spellcheck: "false",
        maxlength: 400,
        "aria-label": label,
      });
      input.setAttribute("aria-describedby", said.id);
      input.oninput = () => this.#edit(k, key, input.value);
      return input;
    };
    const [name, amount] = [field(texts.nameOf(k + 1), "name"), field(texts.amountOf(k + 1), "amount")];
    amount.inputMode = "decimal";
    amount.onkeydown = (event) => {
      if (event.key === "Enter" && k + 1 === this.store.gas.rows.length) this.add();
    };
    const taken = (text: string) => {
      name.value = text;
      this.#edit(k, "name", text);
      amount.focus();
    };
    const list = suggest(name, this.spoken, this.find, taken, texts.found);
    const remove = button("\u00d7", () => this.#remove(k), { class: "plain" });
    const share = h("td", { class: "number" });
    const tr = h("tr", {}, h("td", { class: "name" }, name, list), h("td", {}, amount), share, h("td", {}, remove));
    const below = h("tr", { hidden: true }, h("td", { colspan: 4 }, said));
    return { tr, below, name, amount, share, said, remove };
  }

  #remove(k: number): void {
    this.store.changeGas({ rows: this.store.gas.rows.filter((_, i) => i !== k) }, "");
    (
      this.#lines[Math.min(k, this.#lines.length - 1)]?.name ?? this.element.querySelector<HTMLElement>(".add")!
    ).focus();
  }

  /** As many rows as the state has, with its texts. */
  update(): void {
    const { rows } = this.store.gas;
    while (this.#lines.length > rows.length) {
      const { tr, below } = this.#lines.pop()!;
      tr.remove();
      below.remove();
    }
    while (this.#lines.length < rows.length) {
      const line = this.#line(this.#lines.length);
      this.#lines.push(line);
      this.#body.append(line.tr, line.below);
    }
    rows.forEach((row, k) => {
      const { name, amount, remove } = this.#lines[k];
      fill(name, row.name);
      fill(amount, row.amount);
      remove.setAttribute("aria-label", texts.remove(row.name));
    });
  }

  /** What was made of the rows. */
  show(part: GasPart): void {
    this.#lines.forEach(({ below, name, amount, share, said }, k) => {
      const wrong = part.rowErrors[k] ?? "";
      say(said, wrong || (part.rowHints[k] ?? ""));
      below.hidden = said.textContent === "";
      said.className = wrong === "" ? "hint" : "wrong";
      for (const input of [name, amount]) input.setAttribute("aria-invalid", String(wrong !== ""));
      const fraction = part.shares[k] ?? null;
      say(share, fraction === null ? "" : shown(100 * fraction, 5));
    });
  }
}
