// Lines over the envelope: hydrate curve and water dew line, with the points that the methods were not made for.
import { KestruneError, type Kestrune, type Mixture } from "kestrune";
import { answerOf } from "./answers.ts";
import { waterIn, withoutWater } from "./gas.ts";
import { short, withUnit } from "./numbers.ts";
import type * as p from "./protocol.ts";
import { numberOf, type State } from "./state.ts";
import { texts } from "./texts.ts";

const GASES = ["vapour", "dense"]; // names of phases
const TRAPPED = 9011; // status of a module that stopped
const LINE_POINTS = 41;
export const LOWEST = 1.01325e5; // Pa, where lines begin
/** Pa, where they end: at least, of an outline without a cricondenbar, at most. */
const [LEAST_TOP, OPEN_TOP, MOST_TOP] = [100e5, 400e5, 900e5];

/** Pressures of a line, evenly spaced in their logarithm, in the units of the mixture. */
function pressuresOf(mixture: Mixture, lowest: number, highest: number): Float64Array {
  const step = Math.log(highest / lowest) / (LINE_POINTS - 1);
  const pascal = Float64Array.from({ length: LINE_POINTS }, (_, k) => lowest * Math.exp(k * step));
  return mixture.units.fromSi("pressure", pascal);
}

/** Pa: how far up the lines beside an envelope go. */
export function highestOf(mixture: Mixture, outline: p.EnvelopePart, chosen: string): number {
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

export function hydrateOf(
  kestrune: Kestrune,
  mixture: Mixture,
  gas: number,
  state: State,
  highest: number,
): p.LinePart {
  const none: p.LinePart = { part: "hydrate", gas, T: [], P: [], good: [], error: "", field: "", given: "", notes: [] };
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
  const given = inhibitor === "" ? "" : `${inhibitor} ${percent} %`;
  return { ...none, ...found, given, error: found.T.length === 0 ? texts.noLine : "" };
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

export function waterOf(kestrune: Kestrune, mixture: Mixture, gas: number, state: State, highest: number): p.LinePart {
  const none: p.LinePart = { part: "water", gas, T: [], P: [], good: [], error: "", field: "", given: "", notes: [] };
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
  const label = typed === "" ? "" : `${numberOf(typed)} ppm`;
  return { ...none, ...found, given: label, error: found.T.length === 0 ? texts.noLine : "" };
}
