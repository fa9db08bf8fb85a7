// States along an isotherm or an isobar.
import type { Mixture, Units } from "kestrune";
import { LOWEST } from "./lines.ts";
import type * as p from "./protocol.ts";
import { numberOf, type State } from "./state.ts";

const CUT_POINTS = 97;
const CUT_CHUNK = 16;
const CORNER_POINTS = 10;
const MOST_CORNERS = 8;
const HALVINGS = 16; // then a corner is known to 2e-7 of the range

/** Ends of a cut: of an isotherm from 1 atm up, of an isobar across the envelopes. */
export function rangeOfCut(units: Units, outlines: p.EnvelopePart[], state: State, highest: number): [number, number] {
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

/** Neighbours of which one has one phase and the other two, or another one: there the curves have a corner or a step. */
function corners(rows: CutRow[]): [CutRow, CutRow][] {
  const kind = ({ beta }: CutRow) => (beta > 0 && beta < 1 ? "two" : beta);
  const pairs = rows.slice(1).map((row, k): [CutRow, CutRow] => [rows[k], row]);
  const answered = pairs.filter((pair) => pair.every((row) => !Number.isNaN(row.beta)));
  return answered.filter(([a, b]) => kind(a) !== kind(b)).slice(0, MOST_CORNERS);
}

const between = (rows: CutRow[]) =>
  corners(rows).flatMap(([a, b]) => evenly(a.x, b.x, CORNER_POINTS + 2).slice(1, -1));
const halves = (rows: CutRow[]) => corners(rows).map(([a, b]) => (a.x + b.x) / 2);

/** Where a phase goes by another name because it is dense: the vapour fraction has a step that is no boiling point. */
function denseSteps(mixture: Mixture, rows: CutRow[], stateAt: (x: number) => { T: number; P: number }): number[] {
  const isDense = ({ x }: CutRow) => mixture.report(stateAt(x)).phases[0]?.name === "dense";
  const steps = corners(rows).filter(([a, b]) => Math.abs(a.beta - b.beta) > 0.01);
  return steps.filter(([a, b]) => isDense(a) || isDense(b)).map(([a, b]) => (a.x + b.x) / 2);
}

/** The rows as they come, some at a time, then more of them at corners. */
export function* cutOf(mixture: Mixture, gas: number, state: State, range: [number, number]): Generator<p.CutPart> {
  const along = state.cut === "T" ? "P" : "T";
  const at = numberOf(state.cut === "T" ? state.T : state.P);
  const stateAt = (x: number) => (along === "P" ? { T: at, P: x } : { T: x, P: at });
  let rows: CutRow[] = [];
  let gaps: number[] = [];
  const part = (): p.CutPart => {
    const [x, beta, density, enthalpy] = (["x", "beta", "density", "enthalpy"] as const).map((key) =>
      rows.map((row) => row[key]),
    );
    const missing = beta.filter(Number.isNaN).length;
    return { part: "cut", gas, along, at, x, beta, density, enthalpy, missing, gaps };
  };
  const rounds = [() => evenly(...range, CUT_POINTS), () => between(rows)];
  for (let k = 0; k < HALVINGS; ++k) rounds.push(() => halves(rows));
  for (const points of rounds)
    for (let rest = points(); rest.length > 0; rest = rest.slice(CUT_CHUNK)) {
      const some = rest.slice(0, CUT_CHUNK);
      const here = some.map(() => at);
      const { beta, density, enthalpy } = mixture.flash(along === "P" ? { T: here, P: some } : { T: some, P: here });
      rows = [...rows, ...some.map((x, k) => ({ x, beta: beta[k], density: density[k], enthalpy: enthalpy[k] }))];
      rows.sort((a, b) => a.x - b.x);
      yield part();
    }
  gaps = denseSteps(mixture, rows, stateAt);
  yield part();
}
