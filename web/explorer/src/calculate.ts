// What a state shows, part by part. Every number is one of the package's; nothing is calculated here.
import type { Curve, Kestrune, Mixture, Units } from "kestrune";
import { answerOf } from "./answers.ts";
import { cutOf, rangeOfCut } from "./cut.ts";
import { madeOf, waterIn, type Made } from "./gas.ts";
import { highestOf, hydrateOf, waterOf } from "./lines.ts";
import type * as p from "./protocol.ts";
import { numberOf, type State } from "./state.ts";
import { texts } from "./texts.ts";

/** Quantities of the units that the page shows. */
const QUANTITIES = [
  ...["temperature", "pressure", "enthalpy", "entropy", "density", "molar volume", "speed", "viscosity"],
  ...["thermal conductivity", "Joule-Thomson coefficient", "compressibility"],
];
const CURVE_POINTS = 600;
const REMEMBERED = 40;

/** The module and what it has calculated before, by what it was calculated from. */
export class Session {
  #values = new Map<string, unknown>();
  constructor(readonly kestrune: Kestrune) {}

  remember<V>(key: string, make: () => V): V {
    const known = this.#values.get(key);
    if (known !== undefined) {
      this.#values.delete(key);
      this.#values.set(key, known);
      return known as V;
    }
    const made = make();
    this.#values.set(key, made);
    if (this.#values.size > REMEMBERED) this.#forget(this.#values.keys().next().value!);
    return made;
  }

  /** The oldest; no job of now has it. */
  #forget(key: string) {
    (this.#values.get(key) as Partial<Made>).mixture?.dispose();
    this.#values.delete(key);
  }
}

/** Points without those that were found twice. */
const apart = (places: p.Place[]) => {
  const near = (a: number, b: number) => Math.abs(a - b) <= 1e-6 * Math.max(1, Math.abs(a));
  return places.filter((place, k) => !places.slice(0, k).some((o) => near(o.T, place.T) && near(o.P, place.P)));
};

function curveData(kestrune: Kestrune, curve: Curve): p.CurveData {
  const { fraction, lines, status, complete, cricondentherm, cricondenbar, critical } = curve;
  const text = status === 0 ? "" : kestrune.statusText(status);
  return { fraction, lines, status, text, complete, cricondentherm, cricondenbar, critical: apart(critical) };
}

const pureOf = (mixture: Mixture) => mixture.z.filter((v) => v > 0).length === 1;

/** Why a curve has no critical point. */
function noCritical(kestrune: Kestrune, mixture: Mixture, { critical }: p.CurveData): string[] {
  const found = critical.length > 0 || pureOf(mixture) ? "" : answerOf(kestrune, () => mixture.critical());
  return typeof found === "string" && found !== "" ? [found] : [];
}

function outlineOf(kestrune: Kestrune, mixture: Mixture, gas: number): p.EnvelopePart {
  const found = answerOf(kestrune, () => curveData(kestrune, mixture.envelope({ points: CURVE_POINTS }).curve));
  const part = { part: "envelope" as const, gas, pure: pureOf(mixture) };
  const water = waterIn(mixture) > 0;
  const errors = water && !part.pure ? [texts.waterInCurve] : [];
  return typeof found === "string"
    ? { ...part, curves: [], errors: [found, ...errors] }
    : { ...part, curves: [found], errors: [...errors, ...noCritical(kestrune, mixture, found)] };
}

/** Vapour fractions of "0.9, 0.5" or "0,9; 0,5"; a message for anything else. */
export function fractionsOf(text: string): number[] | string {
  const words = text
    .replace(/(^|[\s;,])0,(?=\d)/g, "$10.")
    .split(/[\s,;]+/).filter((word) => word !== "");
  const wrong = words.find((word) => !(numberOf(word) > 0 && numberOf(word) < 1));
  if (wrong !== undefined) return texts.noFraction(wrong);
  if (words.length > 9) return texts.manyFractions;
  return [...new Set(words.map(numberOf))];
}

const qualityCurve = (mixture: Mixture, fraction: number) =>
  mixture.envelope({ quality: fraction, points: CURVE_POINTS }).quality.get(fraction)!;

function qualityOf(kestrune: Kestrune, mixture: Mixture, gas: number, text: string): p.EnvelopePart {
  const fractions = fractionsOf(text);
  const part: p.EnvelopePart = { part: "quality", gas, pure: pureOf(mixture), curves: [], errors: [] };
  if (typeof fractions === "string") return { ...part, errors: [fractions] };
  for (const fraction of part.pure ? [] : fractions) {
    const found = answerOf(kestrune, () => curveData(kestrune, qualityCurve(mixture, fraction)));
    if (typeof found === "string") part.errors.push(`${texts.qualityLine(fraction)}: ${found}`);
    else part.curves.push(found);
  }
  return part;
}

/** What is wrong with T and P. */
function fieldErrors(units: Units, { T, P }: State): [string, string] {
  const above = (quantity: string, text: string) => units.toSi(quantity, numberOf(text)) > 0;
  const wrong = (quantity: string, text: string, message: string) =>
    Number.isNaN(numberOf(text)) ? texts.noNumber(text) : above(quantity, text) ? "" : message;
  return [
    wrong("temperature", T, texts.belowZero(units.symbol("temperature"))),
    wrong("pressure", P, texts.noPressure),
  ];
}

/** A note without what it says of options of the command line, which the page has not: "...: --phases 3". */
const withoutOptions = (note: string) => note.replace(/( \(docs\/[a-z.]*\))?[;:] --[a-z].*$/, "");

function pointOf(kestrune: Kestrune, mixture: Mixture, gas: number, state: State): p.PointPart {
  const [T, P] = [numberOf(state.T), numberOf(state.P)];
  const empty = { names: mixture.names, z: mixture.z, phases: [], overall: null, notes: [] };
  const part: p.PointPart = { part: "point", gas, T, P, error: "", ...empty };
  const found = answerOf(kestrune, () => mixture.report({ T, P }));
  if (typeof found === "string") return { ...part, error: found };
  return { ...part, ...found, part: "point", notes: found.notes.map(withoutOptions) };
}

/** All parts of a state, what one looks at first before the rest. Between two of them the worker may drop the rest. */
export function* partsOf(session: Session, state: State): Generator<p.Part> {
  const { kestrune } = session;
  const units = kestrune.units(state.units);
  const [vacuum, onebar] = [0, 1e5].map((pascal) => units.fromSi("pressure", pascal));
  const symbols = Object.fromEntries(QUANTITIES.map((q) => [q, units.symbol(q)]));
  const wrong = fieldErrors(units, state);
  yield { part: "units", gas: 0, symbols, bar: onebar - vacuum, vacuum, fieldErrors: wrong };
  const pointIsGood = wrong.every((text) => text === "");
  const good: { gas: number; mixture: Mixture; key: string; outline: p.EnvelopePart }[] = [];
  for (const index of state.gases.keys()) {
    const key = JSON.stringify([state.gases[index], state.set, state.zero, state.units, index]);
    const { mixture, part }: Made = session.remember(`gas ${key}`, () => madeOf(kestrune, state, index));
    yield part;
    if (mixture === null) continue;
    const outline = session.remember(`envelope ${key}`, () => outlineOf(kestrune, mixture, index));
    yield outline;
    good.push({ gas: index, mixture, key, outline });
  }
  if (pointIsGood) for (const { gas, mixture } of good) yield pointOf(kestrune, mixture, gas, state);
  for (const { gas, mixture, key, outline } of good) {
    const highest = highestOf(mixture, outline, state.top);
    if (state.quality.trim() !== "")
      yield session.remember(`quality ${state.quality} ${key}`, () => qualityOf(kestrune, mixture, gas, state.quality));
    if (state.hydrate)
      yield session.remember(`hydrate ${highest} ${state.inhibitor} ${state.percent} ${key}`, () =>
        hydrateOf(kestrune, mixture, gas, state, highest),
      );
    if (state.water)
      yield session.remember(`water ${highest} ${state.waterAmount} ${state.method} ${key}`, () =>
        waterOf(kestrune, mixture, gas, state, highest),
      );
  }
  if (state.cut === "" || !pointIsGood || good.length === 0) return;
  const highest = Math.max(...good.map(({ mixture, outline }) => highestOf(mixture, outline, state.top)));
  const range = rangeOfCut(
    units,
    good.map(({ outline }) => outline),
    state,
    highest,
  );
  for (const { gas, mixture } of good) yield* cutOf(mixture, gas, state, range);
}
