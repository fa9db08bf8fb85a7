// What the page shows, as one plain object of texts as they were typed; and the address that carries it.
import { isUnclear } from "./numbers.ts";
import { texts } from "./texts.ts";

export interface Row {
  name: string;
  amount: string;
}
/** A plus fraction or a component of one's own in the words of the command line: "M=218, SG=0.8515". */
export interface Definition {
  kind: "fraction" | "component";
  name: string;
  words: string;
}
export interface Gas {
  basis: "mole" | "mass";
  rows: Row[];
  definitions: Definition[];
}
export interface State {
  /** One gas, or two that are compared. */
  gases: Gas[];
  /** The gas in the table. */
  chosen: number;
  set: "2022" | "original";
  /** Group interactions without a published value count as zero. */
  zero: boolean;
  /** "engineering", "si", "field" or "C,bar,kJ/kg". */
  units: string;
  T: string;
  P: string;
  /** Highest pressure of the picture; empty for one that suits. */
  top: string;
  /** Vapour fractions of quality lines, "0.9 0.5". */
  quality: string;
  hydrate: boolean;
  inhibitor: string;
  percent: string;
  water: boolean;
  /** ppm by mole; empty for the water of the mixture. */
  waterAmount: string;
  method: "eos" | "chart";
  /** Isotherm, isobar or none. */
  cut: "" | "T" | "P";
}

export const TEMPERATURES = ["C", "K", "F", "R"];
export const PRESSURES = ["bar", "barg", "psia", "psig", "kPa", "MPa", "Pa", "atm", "kg/cm2"];
export const ENERGIES = ["kJ/kg", "J/mol", "kJ/mol", "kJ/kmol", "J/kg", "cal/mol", "Btu/lb", "Btu/lbmol"];
const PRESETS: Record<string, [string, string, string]> = {
  engineering: ["C", "bar", "kJ/kg"],
  si: ["K", "Pa", "J/mol"],
  field: ["F", "psia", "Btu/lb"],
};
export const SYSTEMS = Object.keys(PRESETS);
export const MOST_ROWS = 200;
const LONGEST = 400;

/** Temperature, pressure and energy of a unit system. */
export const unitsOf = (name: string): [string, string, string] =>
  [...(PRESETS[name] ?? name.split(","))] as [string, string, string];

/** The name of the system of these units: a preset where one has them all. */
export const unitsNamed = (T: string, P: string, energy: string): string =>
  SYSTEMS.find((name) => PRESETS[name].join() === [T, P, energy].join()) ?? [T, P, energy].join();

const isUnits = (name: string): boolean => {
  const [T, P, energy, ...more] = unitsOf(name);
  return more.length === 0 && TEMPERATURES.includes(T) && PRESSURES.includes(P) && ENERGIES.includes(energy);
};

export const emptyGas = (): Gas => ({ basis: "mole", rows: [], definitions: [] });

export function firstState(): State {
  const rows = [
    ["methane", "85"],
    ["ethane", "9"],
    ["propane", "4"],
    ["n-butane", "2"],
  ];
  return {
    gases: [{ ...emptyGas(), rows: rows.map(([name, amount]) => ({ name, amount })) }],
    ...{ chosen: 0, set: "2022", zero: false, units: "engineering", T: "-60", P: "40", top: "", quality: "" },
    ...{ hydrate: false, inhibitor: "", percent: "", water: false, waterAmount: "", method: "eos", cut: "" },
  };
}

const LARGEST = 1e30; // more is a slip of the keyboard, and no axis has room for it

/** A number as people write it, with a decimal comma too; NaN for anything else, and for "1,000". */
export function numberOf(text: string): number {
  if (isUnclear(text)) return NaN;
  const plain = text
    .trim()
    .replace(/^([-+]?\d*),(\d+)/, "$1.$2")
    .replace("\u2212", "-");
  const value = /^[-+]?(\d+\.?\d*|\.\d+)(e[-+]?\d+)?$/i.test(plain) ? Number(plain) : NaN;
  return Math.abs(value) <= LARGEST ? value : NaN;
}

// In a list ";" parts the entries and ":" the parts of an entry; where they are meant as such they are "~" and two digits.
const escaped = (text: string, marks: RegExp) => text.replace(marks, (c) => `~${c.charCodeAt(0).toString(16)}`);
const plain = (text: string) => text.replace(/~(7e|3a|3b)/g, (_, code) => String.fromCharCode(parseInt(code, 16)));
const listOf = (text: string) => text.split(";").filter((entry) => entry !== "");

function gasWords(gas: Gas, letter: string): [string, string][] {
  const rows = gas.rows.map((r) => [r.name, r.amount].map((t) => escaped(t, /[~;:]/g)).join(":"));
  const words: [string, string][] = [[letter, rows.join(";")]];
  if (gas.basis === "mass") words.push([`${letter}basis`, "mass"]);
  for (const kind of ["fraction", "component"] as const) {
    const own = gas.definitions.filter((d) => d.kind === kind);
    const text = own.map((d) => `${escaped(d.name, /[~;:]/g)}:${escaped(d.words, /[~;]/g)}`);
    if (text.length > 0) words.push([`${letter}${kind}`, text.join(";")]);
  }
  return words;
}

/** Keys of the address that stand for a field as it is, and what they may be. */
const FIELDS: { key: string; field: keyof State; valid?: (text: string) => boolean; flag?: boolean }[] = [
  { key: "units", field: "units", valid: isUnits },
  { key: "T", field: "T" },
  { key: "P", field: "P" },
  { key: "top", field: "top" },
  { key: "set", field: "set", valid: (text) => text === "2022" || text === "original" },
  { key: "zero", field: "zero", flag: true },
  { key: "quality", field: "quality" },
  { key: "hydrate", field: "hydrate", flag: true },
  { key: "inhibitor", field: "inhibitor" },
  { key: "percent", field: "percent" },
  { key: "water", field: "water", flag: true },
  { key: "ppm", field: "waterAmount" },
  { key: "method", field: "method", valid: (text) => text === "eos" || text === "chart" },
  { key: "cut", field: "cut", valid: (text) => text === "T" || text === "P" },
];

/** "a=methane:85;ethane:15&units=field&T=20&P=40": what differs from the first state, and always gas and point. */
export function addressOf(state: State): string {
  const first = firstState();
  const words = state.gases.flatMap((gas, k) => gasWords(gas, "ab"[k]));
  for (const { key, field, flag } of FIELDS) {
    const value = state[field];
    if (field === "T" || field === "P" || value !== first[field]) words.push([key, flag ? "1" : String(value)]);
  }
  if (state.chosen > 0) words.push(["chosen", "b"]);
  // Half a character has no place in an address.
  const printed = (text: string) =>
    encodeURIComponent(text.replace(/\p{Surrogate}/gu, "\ufffd")).replace(/%(3A|3B|2C|2F|3D|20)/g, (c) =>
      c === "%20" ? "+" : decodeURIComponent(c),
    );
  return words.map(([key, value]) => `${key}=${printed(value)}`).join("&");
}

function readGas(words: Map<string, string>, letter: string): Gas {
  const cut = (text: string) => plain(text).slice(0, LONGEST);
  const rows = listOf(words.get(letter) ?? "").map((entry) => {
    const [name, amount = ""] = entry.split(":");
    return { name: cut(name), amount: cut(amount) };
  });
  const definitions = (["fraction", "component"] as const).flatMap((kind) =>
    listOf(words.get(letter + kind) ?? "").map((entry) => {
      const at = entry.indexOf(":");
      const [name, text] = at < 0 ? [entry, ""] : [entry.slice(0, at), entry.slice(at + 1)];
      return { kind, name: cut(name), words: cut(text) };
    }),
  );
  const basis = words.get(`${letter}basis`) === "mass" ? "mass" : "mole";
  return { basis, rows: rows.slice(0, MOST_ROWS), definitions: definitions.slice(0, MOST_ROWS) };
}

/** The state of an address, the first state for none; `strange` has the words that were not understood. */
export function stateOf(address: string): { state: State; strange: string[] } {
  const state = firstState();
  const text = address.replace(/^#/, "");
  if (text === "") return { state, strange: [] };
  const words = new Map(new URLSearchParams(text));
  const strange: string[] = [];
  const known = ["a", "b"].flatMap((l) => [l, `${l}basis`, `${l}fraction`, `${l}component`]);
  if (words.has("a")) state.gases = [readGas(words, "a")];
  if (words.has("b")) state.gases.push(readGas(words, "b"));
  if (words.get("chosen") === "b" && state.gases.length > 1) state.chosen = 1;
  for (const { key, field, valid, flag } of FIELDS) {
    const value = words.get(key);
    if (value === undefined) continue;
    const wrong = flag ? value !== "1" && value !== "0" : valid !== undefined && !valid(value);
    if (wrong) strange.push(`${key}=${value.slice(0, 40)}`);
    else Object.assign(state, { [field]: flag ? value === "1" : value.slice(0, LONGEST) });
  }
  const closed: [string, string[]][] = [
    ...["abasis", "bbasis"].map((key): [string, string[]] => [key, ["mole", "mass"]]),
    ["chosen", state.gases.length > 1 ? ["a", "b"] : ["a"]],
  ];
  for (const [key, may] of closed) {
    const value = words.get(key);
    if (value !== undefined && !may.includes(value)) strange.push(`${key}=${value.slice(0, 40)}`);
  }
  for (const key of known)
    if (listOf(words.get(key) ?? "").length > MOST_ROWS) strange.push(texts.rowsBeyond(key, MOST_ROWS));
  for (const key of words.keys())
    if (![...known, "chosen", ...FIELDS.map((f) => f.key)].includes(key)) strange.push(key.slice(0, 40));
  return { state, strange };
}
