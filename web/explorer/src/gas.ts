// A mixture of what was typed, and which row is wrong where there is none.
import type { Kestrune, Mixture } from "kestrune";
import type { GasPart } from "./protocol.ts";
import { numberOf, type Definition, type Gas, type State } from "./state.ts";
import { texts } from "./texts.ts";

export interface Made {
  mixture: Mixture | null;
  part: GasPart;
}

/** Messages of the library in the words of a page. */
export const inWords = (error: unknown): string =>
  (error instanceof Error ? error.message : String(error))
    .replace(/;? ?'kestrune components' lists all \d+/, "")
    .replace("allowMissingPairs: true takes them as zero", texts.tickMissing);

const WATER = "7732-18-5"; // CAS number

/** Mole fraction of water. */
export const waterIn = (mixture: Mixture) => mixture.z[mixture.components.findIndex((c) => c.cas === WATER)] ?? 0;

const canonical = new Map<string, string | Error>();

/** The name of the databank for what was typed; an Error where there is none. */
function canonicalName(kestrune: Kestrune, name: string): string | Error {
  const known = canonical.get(name);
  if (known !== undefined) return known;
  let found: string | Error;
  try {
    found = kestrune.pure(name).name;
  } catch (error) {
    found = new Error(inWords(error));
  }
  if (canonical.size > 2000) canonical.clear();
  canonical.set(name, found);
  return found;
}

const isShare = (text: string) => text.trim().endsWith("%");
export const amountOf = (text: string) => numberOf(text.trim().replace(/%$/, ""));

/** The amount as the library reads it: with a decimal point. */
const passed = (text: string) => (Number.isNaN(amountOf(text)) ? text : amountOf(text) + (isShare(text) ? "%" : ""));

/** "M=218, SG=0.8515" as the object of a mixture file. The commas of "kij=methane:0.04, CO2:0.1" part no keys. */
export function definitionOf(words: string): Record<string, string> {
  const all: Record<string, string> = {};
  let last = "";
  for (const piece of words.split(",").map((p) => p.trim())) {
    const [, key, value] = /^([^=]*)=(.*)$/s.exec(piece) ?? [];
    if (key === undefined) {
      if (last !== "") all[last] += `, ${piece}`;
      else if (piece !== "") throw new Error(texts.noKey(piece));
    } else {
      last = key.trim();
      if (Object.hasOwn(all, last)) throw new Error(texts.keyTwice(last));
      Object.defineProperty(all, last, { value: value.trim(), enumerable: true, writable: true });
    }
  }
  return all;
}

/** The JSON object of a mixture file. */
export function fileOf(gas: Gas) {
  const own = (kind: string) =>
    Object.fromEntries(
      gas.definitions
        .filter((d) => d.kind === kind && d.name.trim() !== "")
        .map((d) => [d.name.trim(), definitionOf(d.words)]),
    );
  const rows = gas.rows.filter((r) => r.name.trim() !== "" && r.amount.trim() !== "");
  const components = rows.map((r) => ({ name: r.name.trim(), amount: passed(r.amount) }));
  return { basis: gas.basis, own_components: own("component"), fractions: own("fraction"), components };
}

/** What is wrong with each row by itself; "" for what is good. */
function rowErrors(kestrune: Kestrune, gas: Gas): string[] {
  const own = gas.definitions.map((d) => d.name.trim().toLowerCase());
  const seen = new Set<string>();
  return gas.rows.map(({ name, amount }) => {
    if (name.trim() === "") return amount.trim() === "" ? "" : texts.noName;
    if (amount.trim() === "") return "";
    const mine = own.includes(name.trim().toLowerCase());
    const found = mine ? name.trim().toLowerCase() : canonicalName(kestrune, name.trim());
    if (found instanceof Error) return found.message;
    if (seen.has(found)) return texts.twice(found);
    seen.add(found);
    const value = amountOf(amount);
    if (Number.isNaN(value)) return texts.noAmount(amount);
    if (value !== 0 && Math.abs(value) < 1e-300) return texts.tiny(amount);
    return value < 0 ? texts.negative(amount) : "";
  });
}

function definitionErrors(gas: Gas, message: string): string[] {
  const names = gas.definitions.map((d) => d.name.trim());
  return gas.definitions.map((d, k) => {
    if (names[k] === "") return texts.noDefinitionName;
    if (names.indexOf(names[k]) !== k) return texts.twice(names[k]);
    try {
      definitionOf(d.words);
    } catch (error) {
      return inWords(error);
    }
    const begins = [`${d.kind} ${names[k]}:`, `${names[k]}:`].some((start) => message.startsWith(start));
    return begins ? message : "";
  });
}

/** What of the mixture belongs to each component given: one of its components, or the pieces of a plus fraction, "C7+ 1" on. */
export function lumpsOf(definitions: Definition[], names: readonly string[]): { name: string; first: number; end: number }[] {
  const fractions = definitions.filter((d) => d.kind === "fraction").map((d) => d.name.trim());
  const lumps: { name: string; first: number; end: number }[] = [];
  for (let first = 0; first < names.length; first = lumps.at(-1)!.end) {
    const whole = fractions.find((name) => names[first].toLowerCase() === `${name} 1`.toLowerCase());
    let end = first + 1;
    while (whole !== undefined && names[end]?.toLowerCase() === `${whole} ${end - first + 1}`.toLowerCase()) ++end;
    lumps.push({ name: whole ?? names[first], first, end });
  }
  return lumps;
}

/** Mole fractions of the rows; a plus fraction has those of its pieces together. */
function sharesOf(gas: Gas, mixture: Mixture): (number | null)[] {
  const lumps = lumpsOf(gas.definitions, mixture.names).values();
  return gas.rows.map(({ name, amount }) => {
    if (name.trim() === "" || amount.trim() === "") return null;
    const lump = lumps.next().value;
    return lump === undefined ? null : mixture.z.slice(lump.first, lump.end).reduce((a, b) => a + b, 0);
  });
}

/** The mixture of a gas of the page. */
export function madeOf(kestrune: Kestrune, state: State, index: number): Made {
  const gas = state.gases[index];
  const none = gas.rows.map(() => "");
  const rowHints = gas.rows.map((r) => (r.name.trim() !== "" && r.amount.trim() === "" ? texts.leftOut : ""));
  const part: GasPart = {
    ...{ part: "gas", gas: index, ok: false, error: "", rowErrors: none, rowHints },
    ...{ definitionErrors: gas.definitions.map(() => ""), shares: gas.rows.map(() => null) },
    ...{ sum: null, molarMass: null, notes: [] },
  };
  try {
    const { set, zero, units } = state;
    const mixture = kestrune.mixture(fileOf(gas), { set, units, allowMissingPairs: zero });
    const { givenSum: sum, molarMass, notes } = mixture;
    return { mixture, part: { ...part, ok: true, shares: sharesOf(gas, mixture), sum, molarMass, notes: [...notes] } };
  } catch (error) {
    if (!kestrune.alive) throw error;
    const message = inWords(error);
    part.rowErrors = rowErrors(kestrune, gas);
    part.definitionErrors = definitionErrors(gas, message);
    const beside = [...part.rowErrors, ...part.definitionErrors].filter((text) => text !== "");
    part.error =
      beside.length === 0 ? (gas.rows.every((r) => r.amount.trim() === "") ? texts.noComponent : message) : "";
    return { mixture: null, part };
  }
}

/** What a calculation makes of the mixture of a gas without its water. */
export function withoutWater<V>(kestrune: Kestrune, state: State, index: number, calculate: (dry: Mixture) => V): V {
  const gas = state.gases[index];
  const rows = gas.rows.filter(({ name }) => canonicalName(kestrune, name.trim()) !== "water");
  const { set, zero, units } = state;
  const dry = kestrune.mixture(fileOf({ ...gas, rows }), { set, units, allowMissingPairs: zero });
  try {
    return calculate(dry);
  } finally {
    dry.dispose();
  }
}
