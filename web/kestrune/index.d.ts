/**
 * Kestrune in WebAssembly. Units are SI unless `units` says otherwise: K, Pa, J/mol, J/(mol K), kg/m3, m3/mol, m/s, Pa s,
 * W/(m K), K/Pa, 1/Pa, mole fractions; molar masses are always g/mol.
 *
 * What is given as a number has numbers in its result; arrays of one length have arrays of that length. A single state
 * without an answer throws KestruneError; one of many has its status and NaN. What is no input for a calculation throws
 * TypeError or RangeError before anything is calculated.
 */

/** A number, or numbers of which each is a state. */
export type Numbers = number | readonly number[] | Float64Array | Float32Array | Int32Array;
/** Mole fractions of a state, or a row of them for each. */
export type Fractions = readonly number[] | Float64Array | readonly (readonly number[] | Float64Array)[];
/** "si" (K, Pa, J/mol), "engineering" (C, bar, kJ/kg), "field" (F, psia, Btu/lb), or a pair or triple such as "C,bar,kJ/kmol". */
export type UnitSystem = Units | (string & {});
/** number where every argument was one, else Float64Array. */
type Like<G> = G extends number ? number : Float64Array;
type Rows<V> = V extends number ? Float64Array : Float64Array[];
type Flags<V> = V extends number ? boolean : boolean[];
/** number where all quantities that are given are numbers. */
type Shape<O> = Extract<
  { [K in keyof O]: K extends "T" | "P" | "H" | "S" | "beta" | "water" ? O[K] : K extends "z" | "x" ? RowsOf<O[K]> : never }[keyof O],
  object
> extends never
  ? number
  : Float64Array;
type RowsOf<Z> = Z extends readonly number[] | Float64Array | undefined ? never : Z;

/** A calculation that ended without an answer. */
export class KestruneError extends Error {
  constructor(status: number, text: string, what?: string);
  /** Status of the library, as in kestrune/status.h. */
  readonly status: number;
  /** What it means. */
  readonly text: string;
  /** What was calculated. */
  readonly what: string;
}

export interface LoadOptions {
  /** The module: a URL, its bytes, a Response, a compiled module, or a promise of one; default kestrune.wasm beside index.js. */
  wasm?: WasmSource | Promise<WasmSource>;
  /** Takes what the library prints, a line at a time; default console.error. */
  onMessage?: (line: string) => void;
}
export type WasmSource = URL | string | ArrayBuffer | ArrayBufferView | WebAssembly.Module | Response;

/** Loads the library; each call makes one with memory of its own, the compilation is done once. */
export function loadKestrune(options?: LoadOptions): Promise<Kestrune>;

export interface Kestrune {
  readonly version: string;
  /** False after a trap inside the module: every call throws KestruneError 9011, and loadKestrune makes a new one. */
  readonly alive: boolean;
  /** A mixture of components by name, alias, formula or CAS number; RangeError says what is wrong and what would be right. */
  mixture(components: MixtureSource, options?: MixtureOptions): Mixture;
  /** Components of the databank whose name, alias, formula or CAS number contains the text; all for none. */
  components(filter?: string): Component[];
  /** A component of the databank with its correlations. */
  pure(name: string): Pure;
  units(name?: string): Units;
  /** What a status means. */
  statusText(status: number): string;
}

/** { methane: 0.9, nC4: 0.1 } with any sum, pairs, a Map, the text of the command line, or the object of a mixture file. */
export type MixtureSource =
  | string
  | Readonly<Record<string, number | string>>
  | readonly (readonly [string, number | string])[]
  | ReadonlyMap<string, number | string>
  | MixtureFile;
/** The JSON object of a mixture file (docs/host.md), with components of one's own and plus fractions. */
export interface MixtureFile {
  components: unknown;
  [key: string]: unknown;
}
export interface MixtureOptions {
  /** What the amounts are; default mole, or what a mixture file itself says. */
  basis?: "mole" | "mass";
  /** Published group interactions. */
  set?: "2022" | "original";
  /** A title. */
  name?: string;
  /** Water may form a liquid phase of its own. */
  freeWater?: boolean;
  /** A and B of its solubility exp(A - B/T), T in K. */
  solubility?: readonly [number, number];
  /** Settings of the flash. */
  settings?: Partial<Record<"crit" | "clim" | "eps" | "itemax" | "new" | "relax", number>>;
  /** Group interactions without a published value count as zero, whatever the amounts. */
  allowMissingPairs?: boolean;
  /** Units of what goes in and comes out; every method has `units` for itself. */
  units?: UnitSystem;
}

/** Constants of a component: molar mass g/mol, Tc K, Pc Pa, Vc m3/mol, Tb K; null where not known. */
export interface Component {
  readonly name: string;
  readonly formula: string;
  readonly cas: string;
  readonly molarMass: number;
  readonly Tc: number;
  readonly Pc: number;
  readonly omega: number;
  readonly Vc: number | null;
  readonly Tb: number | null;
  readonly groups: string;
}

export interface Units {
  readonly name: string;
  readonly quantities: string[];
  /** Name of the unit of a quantity: "temperature", "pressure", "enthalpy", "density", ... */
  symbol(quantity: string): string;
  toSi<V extends number | Float64Array>(quantity: string, value: V, molarMass?: number): V;
  fromSi<V extends number | Float64Array>(quantity: string, value: V, molarMass?: number): V;
}

interface FlashOptions {
  /** Feeds in the order of `names`, any sum. */
  z?: Fractions;
  /** 3 (default): up to two liquids and a vapour; 2: liquid and vapour, two to three times as fast. */
  phases?: 2 | 3;
  units?: UnitSystem;
}
/** Two of these: temperature, pressure, molar enthalpy and entropy of the whole, vapour fraction by mole. */
export type FlashGiven = FlashOptions &
  (
    | { T: Numbers; P: Numbers; H?: undefined; S?: undefined; beta?: undefined }
    | { H: Numbers; P: Numbers; T?: undefined; S?: undefined; beta?: undefined }
    | { S: Numbers; P: Numbers; T?: undefined; H?: undefined; beta?: undefined }
    | { beta: Numbers; P: Numbers; T?: undefined; H?: undefined; S?: undefined }
    | { beta: Numbers; T: Numbers; P?: undefined; H?: undefined; S?: undefined }
  );
export type SaturationGiven = FlashOptions & ({ T: Numbers; P?: undefined } | { P: Numbers; T?: undefined });

export interface Mixture {
  readonly names: readonly string[];
  /** Mole fractions, whose sum is 1. */
  readonly z: readonly number[];
  /** Of the components, g/mol. */
  readonly molarMasses: readonly number[];
  /** Of the mixture, g/mol. */
  readonly molarMass: number;
  readonly components: readonly Component[];
  /** What is to be known of it: amounts that were normalised, interactions taken as zero. */
  readonly notes: readonly string[];
  /** Of the amounts as they were given. */
  readonly givenSum: number;
  readonly title: string;
  readonly units: Units;
  flash<const G extends FlashGiven>(given: G): State<Shape<G>>;
  /** Vapour fraction 0 at a temperature or a pressure. */
  bubble<const G extends SaturationGiven>(given: G): State<Shape<G>>;
  /** Vapour fraction 1 at a temperature or a pressure. */
  dew<const G extends SaturationGiven>(given: G): State<Shape<G>>;
  /** The mixture, or a composition x, as one phase, stable or not. */
  properties<const G extends { T: Numbers; P: Numbers; phase?: "gas" | "liquid"; x?: Fractions; units?: UnitSystem }>(
    given: G,
  ): Phase<Shape<G>>;
  envelope(options?: EnvelopeOptions): Envelope;
  /** The critical point of highest temperature; KestruneError 145 where there is no stable one. */
  critical(options?: { units?: UnitSystem }): { T: number; P: number; V: number; Z: number };
  /** k_ij of the model at a temperature, a row a component. */
  kij(given: { T: number; units?: UnitSystem }): Float64Array[];
  readonly water: Water;
  /** Where hydrate forms, by the gravity of the gas, 200 to 313.15 K without inhibitor and up to 1000 bar. */
  hydrate<const G extends Inhibited & OneOfTP>(given: G): Boundary<Shape<G>>;
  /** Temperatures (without inhibitor) and pressures of the data behind it; warnings: what gas and inhibitor are outside of them. */
  hydrateRange(given?: Inhibited): { T: Float64Array; P: Float64Array; warnings: string[] };
  /** The state at T and P as the command line reports it; KestruneError where there is no answer. */
  report(given: { T: number; P: number; units?: UnitSystem }): Report;
  /** Frees its memory now, not when the garbage collector finds it. */
  dispose(): void;
}

/** States at equilibrium; V is number for a single one. */
export interface State<V extends number | Float64Array = number | Float64Array> extends Iterable<Phase<V>> {
  readonly mixture: Mixture;
  readonly units: Units;
  readonly phases: 2 | 3;
  /** Number of states; null for a single one. */
  readonly length: number | null;
  readonly T: V;
  readonly P: V;
  /** Vapour fraction by mole. */
  readonly beta: V;
  readonly status: V extends number ? number : Int32Array;
  readonly ok: Flags<V>;
  /** Of two liquids `liquid` is the lighter one. A phase that is absent has the fraction 0 and NaN for the rest. */
  readonly vapour: Phase<V>;
  readonly liquid: Phase<V>;
  readonly liquid2: Phase<V>;
  /** y/x of the vapour and the (lighter) liquid. */
  readonly K: Rows<V>;
  readonly molarMass: V;
  /** Of all phases together; NaN with free water for the volumes. */
  readonly enthalpy: V;
  readonly entropy: V;
  readonly freeEnthalpy: V;
  readonly molarVolume: V;
  readonly density: V;
  /** Moles of the aqueous liquid in one mole, or of the other liquids. */
  liquidFraction(aqueous?: boolean): V;
  /** What the statuses mean, a line for each with its number of states. */
  statusText(): string;
  /** One of many states. */
  at(index: number): State<number>;
  /** Plain data for a message between threads: T, P, beta, status and the phases that are there, with these properties. */
  toObject(properties?: readonly Property[]): PlainState<V>;
}
export interface PlainState<V extends number | Float64Array = number | Float64Array> {
  T: V;
  P: V;
  beta: V;
  status: V extends number ? number : Int32Array;
  phases: ({ name: string; fraction: V; x: Rows<V>; aqueous: Flags<V> } & Partial<Record<Property, V | null>>)[];
}

/** Phases by the names of the command line ("vapour", "dense", "hydrocarbon liquid", ...), plain data. */
export interface Report {
  T: number;
  P: number;
  phases: PhaseReport[];
  /** All phases together. */
  overall: PhaseReport;
  /** Limits of the model and remarks on this state. */
  notes: string[];
}
/** A phase with its properties, null where it has none of the kind. */
export type PhaseReport = { name: string; fraction: number; x: Float64Array; molarMass: number } & Record<Property, number | null>;

export type Property =
  | ("Z" | "density" | "molarVolume" | "enthalpy" | "entropy" | "freeEnthalpy" | "Cp" | "Cv" | "speedOfSound")
  | ("jouleThomson" | "compressibility" | "viscosity" | "thermalConductivity" | "normalDensity" | "normalVolume")
  | ("standardDensity" | "standardVolume" | "standardCubicFeet");

/**
 * A phase, whose properties are calculated when they are first read. Of a liquid viscosity, thermal conductivity and
 * normal and standard states are NaN; free water has enthalpy, entropy and free enthalpy alone.
 */
export type Phase<V extends number | Float64Array = number | Float64Array> = PhaseOf<V> & { readonly [P in Property]: V };
interface PhaseOf<V extends number | Float64Array> {
  readonly name: "vapour" | "liquid" | "liquid2";
  readonly units: Units;
  /** Moles of the phase in one mole of the whole. */
  readonly fraction: V;
  /** Mole fractions. */
  readonly x: Rows<V>;
  readonly molarMass: V;
  /** More than half water, alcohols, glycols and ammonia, and at least 1 % water. */
  readonly aqueous: Flags<V>;
  /** ln of the fugacity coefficients. */
  lnPhi(): Rows<V>;
  property(name: Property): V;
  /** Status of a property, 0 where it has a value or the phase has none of the kind. */
  propertyStatus(name: Property): V extends number ? number : Int32Array;
  /** A property in SI, an array also for a single state. */
  inSi(name: Property): Float64Array;
}

export interface EnvelopeOptions {
  /** Vapour fractions of quality lines, between 0 and 1. */
  quality?: Numbers;
  /** Points per curve, evenly spaced; 0: as traced. */
  points?: number;
  /** Limits; default 1 atm, 2000 atm and 50 K. */
  firstP?: number;
  highestP?: number;
  lowestT?: number;
  units?: UnitSystem;
}
export interface Place {
  T: number;
  P: number;
}
export type CurveKind = "dew" | "bubble" | "two liquids" | "quality" | "critical" | (string & {});
export interface Curve {
  /** 1: bubble and dew curve, else the vapour fraction of the line. */
  readonly fraction: number;
  readonly T: Float64Array;
  readonly P: Float64Array;
  /** "... (not stable)" where another phase splits off before. */
  readonly kind: CurveKind[];
  /** 0, or why the curve is not closed. */
  readonly status: number;
  /** Whether the curve is good for what it shows. */
  readonly complete: boolean;
  readonly cricondentherm: Place | null;
  readonly cricondenbar: Place | null;
  /** Critical points on it, the hottest first. */
  readonly critical: Place[];
  /** Stretches that are drawn as one line; neighbours share a point. */
  readonly lines: { kind: CurveKind; T: Float64Array; P: Float64Array }[];
}
/** The bubble and dew curve, as `curve` or directly, and quality lines by their vapour fraction. */
export interface Envelope extends Omit<Curve, "lines" | "fraction"> {
  readonly mixture: Mixture;
  readonly units: Units;
  readonly curve: Curve;
  readonly quality: ReadonlyMap<number, Curve>;
}

/** "eos": balance of fugacities, 150 to 640 K; "chart": chart correlation with acid-gas correction, 233.15 to 510.93 K. */
export type WaterMethod = "eos" | "chart";
/** Water of a mixture as a gas; `water` is its mole fraction, default that of the mixture. */
export interface Water {
  /** At saturation: mole fraction, and kg of water in one normal m3 (0 C, 1 atm). */
  content<const G extends { T: Numbers; P: Numbers; method?: WaterMethod; units?: UnitSystem }>(
    given: G,
  ): { fraction: Shape<G>; content: Shape<G>; status: Shape<G> extends number ? number : Int32Array };
  /** Where liquid water or ice begins to form. */
  dew<const G extends OneOfTP & { water?: Numbers; method?: WaterMethod; units?: UnitSystem }>(given: G): Boundary<Shape<G>>;
}
type OneOfTP = { T: Numbers; P?: undefined } | { P: Numbers; T?: undefined };
/** Points at which a phase begins to form. */
export interface Boundary<V extends number | Float64Array = number | Float64Array> {
  readonly T: V;
  readonly P: V;
  readonly status: V extends number ? number : Int32Array;
}

export type Inhibitor = "methanol" | "MEG" | "DEG" | "TEG" | "NaCl" | "KCl" | "CaCl2" | (string & {}) | number | null;
interface Inhibited {
  /** A name or a molar mass, g/mol. */
  inhibitor?: Inhibitor;
  /** Its mass percent in the aqueous solution, 0 to 70; needed with an inhibitor. */
  percent?: number;
  units?: UnitSystem;
}
export type PureProperty =
  | ("vapourPressure" | "vaporisationEnthalpy" | "liquidDensity" | "liquidCp" | "liquidViscosity")
  | ("liquidThermalConductivity" | "surfaceTension" | "idealGasCp" | "gasViscosity" | "gasThermalConductivity")
  | "secondVirial";
export interface Pure {
  readonly name: string;
  readonly formula: string;
  readonly cas: string;
  readonly molarMass: number;
  readonly Tc: number;
  readonly Pc: number;
  readonly aliases: string[];
  /** What there is of the component, with range (K) and source. */
  readonly properties: { name: PureProperty; title: string; quantity: string; Tmin: number; Tmax: number; source: string }[];
  /** Values, NaN where there is none; outside: continued beyond the range. Surface tension N/m in all units. */
  at<const G extends { T: Numbers; units?: UnitSystem }>(
    property: PureProperty,
    given: G,
  ): { value: Shape<G>; outside: Flags<Shape<G>> };
  boilingTemperature<const G extends { P: Numbers; units?: UnitSystem }>(given: G): Shape<G>;
}
