// Tables beside the picture: phases at the point, cardinal points, notes.
import { h, say } from "./dom.ts";
import type { Known } from "./known.ts";
import { shown, unitSymbol, withUnit } from "./numbers.ts";
import { placesOf } from "./picture.ts";
import type { CurveData, PointPart } from "./protocol.ts";
import { texts } from "./texts.ts";

const cells = (tag: "th" | "td", list: string[], more = {}) => list.map((text) => h(tag, more, text));
const headed = (name: string, values: string[], unit?: string) =>
  h(
    "tr",
    {},
    h("th", { scope: "row" }, name),
    ...(unit === undefined ? [] : [h("td", { class: "unit" }, unitSymbol(unit))]),
    ...cells("td", values, { class: "number" }),
  );
const tableOf = (label: string, heads: string[], rows: HTMLElement[]) => {
  const table = h(
    "table",
    { "aria-label": label },
    h(
      "thead",
      {},
      h(
        "tr",
        {},
        ...heads.map((text) => h("th", text === texts.unit ? { scope: "col", class: "left" } : { scope: "col" }, text)),
      ),
    ),
    h("tbody", {}, ...rows),
  );
  // Wide tables scroll by themselves, with the keyboard too.
  return h("div", { class: "scroll", tabindex: 0, role: "region", "aria-label": label }, table);
};

const titleOf = (known: Known, gas: number, title: string) => known.named(gas, title);

function phaseTable(known: Known, part: PointPart): HTMLElement {
  const several = part.phases.length > 1 && part.overall !== null;
  const columns = several ? [...part.phases, part.overall!] : part.phases;
  const heads = [texts.phase, texts.unit, ...columns.map((c) => (c === part.overall ? texts.overall : c.name))];
  const rows = [
    headed(
      texts.fractionOf,
      columns.map((c) => shown(c.fraction)),
      "mol/mol",
    ),
  ];
  for (const [key, [title, quantity]] of Object.entries(texts.properties)) {
    const values = columns.map((c) => c[key as "Z"]);
    if (values.every((v) => v === null)) continue;
    const unit = known.symbols[quantity] ?? quantity;
    rows.push(
      headed(
        title,
        values.map((v) => shown(v)),
        unit,
      ),
    );
  }
  return tableOf(titleOf(known, part.gas, texts.report), heads, rows);
}

function compositionTable(known: Known, part: PointPart, open: boolean): HTMLElement {
  const heads = [texts.component, texts.feed, ...part.phases.map((c) => c.name)];
  const rows = part.names.map((name, k) => headed(name, [shown(part.z[k]), ...part.phases.map((c) => shown(c.x[k]))]));
  const title = titleOf(known, part.gas, texts.compositions);
  return h("details", { open }, h("summary", {}, title), tableOf(title, heads, rows));
}

/** "At -60 C and 40 bar: vapour 78.3 mol %, liquid 21.7 mol %" */
export function spokenOf(known: Known): string {
  const { temperature, pressure } = known.symbols;
  const points = known.all("point");
  const broken = known.all("gas").filter((part) => part.gas < known.gases && !part.ok);
  const cannot = broken.map(({ gas }) => texts.cannot(gas, known.whyNot(gas)));
  if (points.length === 0) return known.gases > 1 && broken.length > 0 ? cannot.join(" ") : texts.noPhases;
  return [
    ...points.map((part) => {
      const phases = part.phases.map((c) => texts.phaseSpoken(c.name, shown(100 * c.fraction, 4)));
      const text = phases.length > 0 ? phases.join(", ") : part.error || texts.noPhases;
      return titleOf(known, part.gas, texts.spoken(withUnit(part.T, temperature), withUnit(part.P, pressure), text));
    }),
    ...cannot,
  ].join(". ");
}

/** What is to be said, each once: of the gas, of curves that are not complete, of lines, of the state. */
export function notesOf(known: Known): string[] {
  const said: string[] = [];
  const add = (gas: number, text: string) => text !== "" && said.push(titleOf(known, gas, text));
  const curve = (gas: number, name: string, { text, complete }: CurveData) =>
    text !== "" && add(gas, texts.curveNote(name, text, complete));
  const parts = [...known.parts.values()].sort((a, b) => a.gas - b.gas);
  for (const part of parts) {
    const { gas } = part;
    if (part.part === "gas") part.notes.forEach((text) => add(gas, text));
    if (part.part === "envelope" || part.part === "quality") {
      const outline = part.part === "envelope";
      for (const c of part.curves) curve(gas, outline ? texts.outline : texts.qualityLine(c.fraction), c);
      for (const text of part.errors) add(gas, outline ? texts.curveNote(texts.outline, text, true) : text);
    }
    if (part.part === "hydrate" || part.part === "water") {
      const name = part.part === "hydrate" ? texts.hydrate : texts.water;
      for (const text of [part.error, ...part.notes]) if (text !== "") add(gas, texts.curveNote(name, text, true));
    }
    if (part.part === "point") [part.error, ...part.notes].forEach((text) => add(gas, text));
    if (part.part === "cut" && part.missing > 0)
      add(
        gas,
        texts.curveNote(
          texts.cuts[part.along === "P" ? "T" : "P"],
          texts.missingPoints(part.missing, part.x.length),
          true,
        ),
      );
  }
  return [...new Set(said)];
}

export class Report {
  readonly element: HTMLElement;
  #phases = h("div");
  #places = h("div");
  #notes = h("ul", { class: "notes" });
  #summary = h("p", { class: "summary" });

  constructor() {
    const section = (title: string, ...content: HTMLElement[]) => h("section", {}, h("h2", {}, title), ...content);
    this.element = h(
      "div",
      { class: "report" },
      section(texts.report, this.#summary, this.#phases),
      h("div", {}, section(texts.places, this.#places), section(texts.notes, this.#notes)),
    );
  }

  show(known: Known): void {
    say(this.#summary, spokenOf(known));
    const points = known.all("point").filter((part) => part.phases.length > 0);
    const open = [...this.#phases.querySelectorAll("details")].map((d) => d.open);
    // Three phases need the whole width.
    this.#phases.parentElement!.classList.toggle(
      "many",
      points.some((part) => part.phases.length > 2),
    );
    this.#phases.replaceChildren(
      ...points.flatMap((part, k) => [
        ...(known.gases > 1 ? [h("h3", {}, texts.gasName(part.gas))] : []),
        phaseTable(known, part),
        compositionTable(known, part, open[k] ?? false),
      ]),
    );
    const { temperature, pressure } = known.symbols;
    const rows = known
      .all("envelope")
      .flatMap((part) =>
        placesOf(part).map(({ name, place }) =>
          headed(titleOf(known, part.gas, name), [shown(place.T), shown(place.P)]),
        ),
      );
    const heads = [
      texts.place,
      texts.withUnit("T", unitSymbol(temperature ?? "")),
      texts.withUnit("P", pressure ?? ""),
    ];
    this.#places.replaceChildren(rows.length > 0 ? tableOf(texts.places, heads, rows) : texts.noPlaces);
    const notes = notesOf(known);
    const shownNow = notes.length > 0 ? notes : [texts.noNotes];
    if (shownNow.join("\n") !== [...this.#notes.children].map((li) => li.textContent).join("\n"))
      this.#notes.replaceChildren(...shownNow.map((text) => h("li", {}, text)));
  }
}
