// What a state shows, part by part. Every number is one of the package's; nothing is calculated here.
import { KestruneError, type Curve, type Kestrune, type Mixture, type Units } from "kestrune";
import { inWords, madeOf, withoutWater, type Made } from "./gas.ts";
import { short, withUnit } from "./numbers.ts";
import type * as p from "./protocol.ts";
import { numberOf, type State } from "./state.ts";
import { texts } from "./texts.ts";

/** Quantities of the units that the page shows. */
const QUANTITIES = [
  ...["temperature", "pressure", "enthalpy", "entropy", "density", "molar volume", "speed", "viscosity"],
  ...["thermal conductivity", "Joule-Thomson coefficient", "compressibility"],
];
const WATER = "7732-18-5"; // CAS number
const GASES = ["vapour", "dense"]; // names of phases
const TRAPPED = 9011; // status of a module that stopped
const CURVE_POINTS = 240;
const CUT_POINTS = 97;
const CUT_CHUNK = 16;
const CORNER_POINTS = 10;
const LINE_POINTS = 41;
const LOWEST = 1.01325e5; // Pa, where lines begin
/** Pa, where they end: at least, of an outline without a cricondenbar, at most. */
const [LEAST_TOP, OPEN_TOP, MOST_TOP] = [100e5, 400e5, 900e5];
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

function curveData(kestrune: Kestrune, curve: Curve): p.CurveData {
  const { fraction, lines, status, complete, cricondentherm, cricondenbar, critical } = curve;
  const text = status === 0 ? "" : kestrune.statusText(status);
  return { fraction, lines, status, text, complete, cricondentherm, cricondenbar, critical };
}

/** What a calculation gives, or what to say instead; a trap goes on to the worker. */
function answerOf<V>(kestrune: Kestrune, make: () => V): V | string {
  try {
    return make();
  } catch (error) {
    if (!kestrune.alive) throw error;
    return error instanceof KestruneError ? texts.statusOf(error.text, error.status) : inWords(error);
  }
}

const pureOf = (mixture: Mixture) => mixture.z.filter((v) => v > 0).length === 1;

const waterIn = (mixture: Mixture) => mixture.z[mixture.components.findIndex((c) => c.cas === WATER)] ?? 0;

function outlineOf(kestrune: Kestrune, mixture: Mixture, gas: number): p.EnvelopePart {
  const found = answerOf(kestrune, () => curveData(kestrune, mixture.envelope({ points: CURVE_POINTS }).curve));
  const part = { part: "envelope" as const, gas, pure: pureOf(mixture) };
  const water = waterIn(mixture) > 0;
  const errors = water && !part.pure ? [texts.waterInCurve] : [];
  return typeof found === "string"
    ? { ...part, curves: [], errors: [found, ...errors] }
    : { ...part, curves: [found], errors };
}

/** Vapour fractions of "0.9, 0.5"; a message for anything else. */
export function fractionsOf(text: string): number[] | string {
  const words = text.split(/[\s,;]+/).filter((word) => word !== "");
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

/** Pressures of a line, evenly spaced in their logarithm, in the units of the mixture. */
function pressuresOf(mixture: Mixture, lowest: number, highest: number): Float64Array {
  const step = Math.log(highest / lowest) / (LINE_POINTS - 1);
  const pascal = Float64Array.from({ length: LINE_POINTS }, (_, k) => lowest * Math.exp(k * step));
  return mixture.units.fromSi("pressure", pascal);
}

/** Pa: how far up the lines beside an envelope go. */
function highestOf(mixture: Mixture, outline: p.EnvelopePart, chosen: string): number {
  const place = outline.curves[0]?.cricondenbar;
  const inPascal = (P: number) => mixture.units.toSi("pressure", P);
  const suits = place ? Math.max(1.15 * inPascal(place.P), LEAST_TOP) : OPEN_TOP;
  const pascal = numberOf(chosen) > 0 ? inPascal(numberOf(chosen)) : suits;
  return Math.min(Math.max(pascal, 2 * LOWEST), MOST_TOP);
}

interface Line {
  T: number[];
  P: number[];
  notes: string[];
}

/** The points with an answer. */
function lineOf(found: { T: Float64Array; P: Float64Array }): Line {
  const answered = Array.from(found.T.keys()).filter((k) => Number.isFinite(found.T[k]));
  const [T, P] = [found.T, found.P].map((all) => answered.map((k) => all[k]));
  const missing = found.T.length - answered.length;
  return { T, P, notes: missing > 0 ? [texts.missingPoints(missing, found.T.length)] : [] };
}

function hydrateOf(kestrune: Kestrune, mixture: Mixture, gas: number, state: State, highest: number): p.LinePart {
  const none: p.LinePart = { part: "hydrate", gas, T: [], P: [], good: [], error: "", field: "", notes: [] };
  const inhibitor = state.inhibitor.trim();
  const percent = numberOf(state.percent);
  if (inhibitor !== "" && !(percent >= 0 && percent <= 70))
    return { ...none, error: texts.noPercent, field: "percent" };
  const asked = Number.isNaN(numberOf(inhibitor)) ? inhibitor : numberOf(inhibitor);
  const withInhibitor = inhibitor === "" ? {} : { inhibitor: asked, percent };
  const found = answerOf(kestrune, () => {
    const line = lineOf(mixture.hydrate({ P: pressuresOf(mixture, LOWEST, highest), ...withInhibitor }));
    const { T, P, warnings } = mixture.hydrateRange(withInhibitor);
    // The range of temperatures is that of the gas without inhibitor.
    const bare = mixture.hydrate({ P: line.P }).T;
    const within = (v: number, range: Float64Array) => v >= range[0] && v <= range[1];
    const good = line.P.map((at, k) => within(bare[k], T) && within(at, P));
    const ends = (range: Float64Array, quantity: string) =>
      texts.fromTo(short(range[0], 4), withUnit(range[1], mixture.units.symbol(quantity), 4));
    const range = texts.hydrateRange(ends(T, "temperature"), ends(P, "pressure"));
    return { ...line, good, notes: [...line.notes, ...warnings, range] };
  });
  if (typeof found === "string") return { ...none, error: found, field: inhibitor === "" ? "" : "inhibitor" };
  return { ...none, ...found, error: found.T.length === 0 ? texts.noLine : "" };
}

/** Whether the gas without its water is one gas at each point: the methods take it for one. */
const singleGas = (dry: Mixture, { T, P }: Line): boolean[] =>
  T.map((t, k) => {
    try {
      const { phases } = dry.report({ T: t, P: P[k] });
      return phases.length === 1 && GASES.includes(phases[0].name);
    } catch (error) {
      if (error instanceof KestruneError && error.status !== TRAPPED) return true; // nothing is known against it
      throw error;
    }
  });

function waterOf(kestrune: Kestrune, mixture: Mixture, gas: number, state: State, highest: number): p.LinePart {
  const none: p.LinePart = { part: "water", gas, T: [], P: [], good: [], error: "", field: "", notes: [] };
  const typed = state.waterAmount.trim();
  const water = numberOf(typed) / 1e6;
  if (typed !== "" && !(water > 0 && water < 1)) return { ...none, error: texts.noPpm, field: "waterAmount" };
  const own = waterIn(mixture);
  if (own === 1) return { ...none, error: texts.onlyWater };
  if (typed === "" && own === 0) return { ...none, error: texts.noWater, field: "waterAmount" };
  const given = { P: pressuresOf(mixture, LOWEST, highest), method: state.method };
  const found = answerOf(kestrune, () => {
    const line = lineOf(mixture.water.dew(typed === "" ? given : { ...given, water }));
    const good = withoutWater(kestrune, state, gas, (dry) => singleGas(dry, line));
    const wrong = good.filter((v) => !v).length;
    return { ...line, good, notes: wrong > 0 ? [...line.notes, texts.noGas(wrong, good.length)] : line.notes };
  });
  if (typeof found === "string") return { ...none, error: found };
  return { ...none, ...found, error: found.T.length === 0 ? texts.noLine : "" };
}

/** Ends of a cut: of an isotherm from 1 atm up, of an isobar across the envelopes. */
function rangeOfCut(units: Units, outlines: p.EnvelopePart[], state: State, highest: number): [number, number] {
  if (state.cut === "T") {
    const ends = [LOWEST, Math.max(highest, 1.1 * units.toSi("pressure", numberOf(state.P)))];
    return ends.map((v) => units.fromSi("pressure", v)) as [number, number];
  }
  const curves = outlines.flatMap((outline) => outline.curves);
  const all = curves.flatMap((c) =>
    c.lines.filter((l) => l.kind === "dew" || l.kind === "bubble").flatMap((l) => [...l.T]),
  );
  const kelvin = [...all, numberOf(state.T)].map((v) => units.toSi("temperature", v));
  const [low, high] = [kelvin.reduce((a, b) => Math.min(a, b)), kelvin.reduce((a, b) => Math.max(a, b))];
  return [Math.max(low - 10, 60), high + 20].map((v) => units.fromSi("temperature", v)) as [number, number];
}

const evenly = (from: number, to: number, count: number) =>
  Array.from({ length: count }, (_, k) => from + ((to - from) * k) / (count - 1));

type CutRow = { x: number; beta: number; density: number; enthalpy: number };

/** Points between two neighbours of which one has one phase and the other two: there the curves have a corner. */
function betweenPhases(rows: CutRow[]): number[] {
  const kind = ({ beta }: CutRow) => (beta > 0 && beta < 1 ? "two" : beta);
  const apart = rows.slice(1).flatMap((row, k) => (kind(row) === kind(rows[k]) ? [] : [[rows[k].x, row.x]]));
  return apart.slice(0, 8).flatMap(([from, to]) => evenly(from, to, CORNER_POINTS + 2).slice(1, -1));
}

/** The rows as they come, some at a time, then more of them at corners. */
function* cutOf(mixture: Mixture, gas: number, state: State, range: [number, number]): Generator<p.CutPart> {
  const along = state.cut === "T" ? "P" : "T";
  const at = numberOf(state.cut === "T" ? state.T : state.P);
  let rows: CutRow[] = [];
  const part = (): p.CutPart => {
    const [x, beta, density, enthalpy] = (["x", "beta", "density", "enthalpy"] as const).map((key) =>
      rows.map((row) => row[key]),
    );
    return { part: "cut", gas, along, at, x, beta, density, enthalpy, missing: beta.filter(Number.isNaN).length };
  };
  for (const points of [() => evenly(...range, CUT_POINTS), () => betweenPhases(rows)])
    for (let rest = points(); rest.length > 0; rest = rest.slice(CUT_CHUNK)) {
      const some = rest.slice(0, CUT_CHUNK);
      const here = some.map(() => at);
      const { beta, density, enthalpy } = mixture.flash(along === "P" ? { T: here, P: some } : { T: some, P: here });
      rows = [...rows, ...some.map((x, k) => ({ x, beta: beta[k], density: density[k], enthalpy: enthalpy[k] }))];
      rows.sort((a, b) => a.x - b.x);
      yield part();
    }
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
