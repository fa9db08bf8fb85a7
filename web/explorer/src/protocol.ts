// What the page and its worker say to each other. Plain data; numbers in the units of the state.
import type { PhaseReport } from "kestrune";
import type { Definition, Gas, State } from "./state.ts";

export type Numbers = Float64Array | number[];
export interface Place {
  T: number;
  P: number;
}

/** What was made of the gas that was typed, or what is wrong with it. */
export interface GasPart {
  part: "gas";
  gas: number;
  /** What is wrong with the gas as a whole; empty where it can be calculated. */
  error: string;
  /** What is wrong with, or to be said of, each row and each definition. */
  rowErrors: string[];
  rowHints: string[];
  definitionErrors: string[];
  ok: boolean;
  /** Mole fractions of the rows, whose sum is 1; null where a row has none. */
  shares: (number | null)[];
  /** Of the amounts as typed. */
  sum: number | null;
  molarMass: number | null;
  notes: string[];
}
export interface CurveData {
  /** Vapour fraction of a quality line, 1 for the outline. */
  fraction: number;
  lines: { kind: string; T: Numbers; P: Numbers }[];
  status: number;
  /** What the status means; empty for 0. */
  text: string;
  complete: boolean;
  cricondentherm: Place | null;
  cricondenbar: Place | null;
  critical: Place[];
}
export interface EnvelopePart {
  part: "envelope" | "quality";
  gas: number;
  /** A gas of one component has a vapour pressure line. */
  pure: boolean;
  curves: CurveData[];
  errors: string[];
}
export interface PointPart {
  part: "point";
  gas: number;
  T: number;
  P: number;
  error: string;
  names: readonly string[];
  z: readonly number[];
  phases: PhaseReport[];
  overall: PhaseReport | null;
  notes: string[];
}
/** Hydrate or water dew line. */
export interface LinePart {
  part: "hydrate" | "water";
  gas: number;
  T: Numbers;
  P: Numbers;
  error: string;
  /** Whether a point is one that the method was made for. */
  good: boolean[];
  /** Which field the error is about. */
  field: "" | "inhibitor" | "percent" | "waterAmount";
  /** "MEG 20 %", "60 ppm"; empty for none. */
  given: string;
  notes: string[];
}
export interface CutPart {
  part: "cut";
  gas: number;
  along: "T" | "P";
  /** The other one, which stays. */
  at: number;
  x: Numbers;
  beta: Numbers;
  density: Numbers;
  enthalpy: Numbers;
  missing: number;
  /** Of x, between neighbours of which one is dense: no boiling point. */
  gaps: number[];
}
export interface UnitsPart {
  part: "units";
  gas: 0;
  symbols: Record<string, string>;
  /** One bar, and no pressure at all, in these units. */
  bar: number;
  vacuum: number;
  /** Beside the fields of T and P. */
  fieldErrors: [string, string];
}
export interface Parts {
  gas: GasPart;
  envelope: EnvelopePart;
  quality: EnvelopePart;
  point: PointPart;
  hydrate: LinePart;
  water: LinePart;
  cut: CutPart;
  units: UnitsPart;
}
export type Part = Parts[keyof Parts];

export interface Found {
  name: string;
  formula: string;
  cas: string;
}
export interface Read {
  rows: { name: string; amount: string }[];
  basis: "mole" | "mass";
  definitions: Definition[];
  notes: string[];
}

export type Request =
  | { kind: "start"; module: string }
  | { kind: "calculate"; job: number; state: State }
  | { kind: "find"; job: number; text: string }
  | { kind: "read"; job: number; text: string; gas: Gas }
  | { kind: "convert"; job: number; from: string; to: string; T: number[]; P: number[] };
export type Answer =
  | { kind: "ready"; version: string }
  | { kind: "part"; job: number; part: Part }
  | { kind: "done"; job: number }
  | { kind: "found"; job: number; found: Found[] }
  | { kind: "read"; job: number; read: Read | null; error: string }
  | { kind: "converted"; job: number; T: number[]; P: number[] }
  | { kind: "failed"; job: number; message: string };
