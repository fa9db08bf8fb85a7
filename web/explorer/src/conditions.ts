// The fields beside the composition: point, units, curves and model.
import { choice, fill, h, textField, tick } from "./dom.ts";
import { unitSymbol } from "./numbers.ts";
import type { Known } from "./known.ts";
import { ENERGIES, numberOf, PRESSURES, SYSTEMS, TEMPERATURES, unitsNamed, unitsOf, type State } from "./state.ts";
import type { Store } from "./store.ts";
import { texts } from "./texts.ts";

const plain = (names: string[]) => names.map((name): [string, string] => [name, unitSymbol(name)]);
const wide = (box: HTMLElement) => (box.classList.add("wide"), box);
const group = (title: string, ...fields: (HTMLElement | string)[]) =>
  h("fieldset", {}, h("legend", {}, title), h("div", { class: "fields" }, ...fields));

export class Conditions {
  readonly element: HTMLElement;
  readonly model: HTMLElement;
  readonly #fields;

  /** changeUnits brings the point along. */
  constructor(
    private readonly store: Store,
    changeUnits: (units: string) => void,
  ) {
    const set = (key: keyof State) => (value: string | boolean) =>
      store.change({ [key]: value } as Partial<State>, `field ${key}`);
    const pick = (k: number) => (value: string) => {
      const units = unitsOf(store.state.units);
      units[k] = value;
      changeUnits(unitsNamed(...units));
    };
    const systems = [...SYSTEMS, "own"].map((name): [string, string] => [name, texts.systems[name as "own"]]);
    const inhibitors = ["", "methanol", "MEG", "DEG", "TEG", "NaCl", "KCl", "CaCl2"];
    const f = (this.#fields = {
      T: textField(texts.T, set("T"), "decimal"),
      P: textField(texts.P, set("P"), "decimal"),
      top: textField(texts.top, set("top"), "decimal"),
      system: choice(texts.units, systems, (name) => (name === "own" ? this.update() : changeUnits(name))),
      units: [
        choice(texts.T, plain(TEMPERATURES), pick(0)),
        choice(texts.P, plain(PRESSURES), pick(1)),
        choice(texts.energy, plain(ENERGIES), pick(2)),
      ],
      quality: textField(texts.quality, set("quality")),
      hydrate: tick(texts.hydrate, set("hydrate")),
      inhibitor: choice(
        texts.inhibitor,
        inhibitors.map((name) => [name, name || texts.noInhibitor]),
        set("inhibitor"),
      ),
      percent: textField(texts.percent, set("percent"), "decimal"),
      water: tick(texts.water, set("water")),
      waterAmount: textField(texts.waterAmount, set("waterAmount"), "decimal"),
      method: choice(texts.method, Object.entries(texts.methods), set("method")),
      cut: choice(texts.cut, Object.entries(texts.cuts), set("cut")),
      set: choice(texts.set, Object.entries(texts.sets), set("set")),
      zero: tick(texts.zero, set("zero")),
    });
    this.element = h(
      "div",
      {},
      group(texts.point, f.T.box, f.P.box, f.cut.box, f.top.box),
      group(texts.units, f.system.box, ...f.units.map((u) => u.box)),
      group(
        texts.curves,
        wide(f.quality.box),
        f.hydrate.box,
        f.inhibitor.box,
        f.percent.box,
        f.water.box,
        f.waterAmount.box,
        f.method.box,
      ),
    );
    f.top.input.placeholder = texts.topHint;
    this.model = group(texts.model, f.set.box, f.zero.box);
  }

  update(): void {
    const { state } = this.store;
    const f = this.#fields;
    const units = unitsOf(state.units);
    for (const key of [
      "T",
      "P",
      "top",
      "quality",
      "percent",
      "waterAmount",
      "inhibitor",
      "method",
      "cut",
      "set",
    ] as const)
      fill(f[key].input, state[key]);
    fill(f.system.input, SYSTEMS.includes(state.units) ? state.units : "own");
    units.forEach((unit, k) => fill(f.units[k].input, unit));
    f.T.label.textContent = texts.withUnit(texts.T, unitSymbol(units[0]));
    f.P.label.textContent = texts.withUnit(texts.P, units[1]);
    for (const key of ["hydrate", "water", "zero"] as const) f[key].input.checked = state[key];
    for (const field of [f.inhibitor, f.percent]) field.box.hidden = !state.hydrate;
    for (const field of [f.waterAmount, f.method]) field.box.hidden = !state.water;
    f.percent.box.hidden ||= state.inhibitor === "";
    const top = numberOf(state.top);
    const below = top < numberOf(state.P) ? texts.topBelow : "";
    f.top.wrong(state.top.trim() === "" || top > 0 ? below : texts.noTop(state.top));
  }

  /** What the parts say of the fields. */
  show(known: Known): void {
    const f = this.#fields;
    [f.T, f.P].forEach((field, k) => field.wrong(known.fieldErrors[k]));
    const [quality] = known.all("quality");
    f.quality.wrong(quality !== undefined && quality.curves.length === 0 ? (quality.errors[0] ?? "") : "");
    const [hydrate] = known.all("hydrate");
    f.inhibitor.wrong(hydrate?.field === "inhibitor" ? hydrate.error : "");
    f.percent.wrong(hydrate?.field === "percent" ? hydrate.error : "");
    const [water] = known.all("water");
    f.waterAmount.wrong(water?.field === "waterAmount" ? water.error : "");
  }
}
