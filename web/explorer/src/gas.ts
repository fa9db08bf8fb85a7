// A mixture of what was typed, and which row is wrong where there is none.
import type { Kestrune, Mixture } from "kestrune";
import type { GasPart, Read } from "./protocol.ts";
import { MOST_ROWS, numberOf, type Gas, type State } from "./state.ts";
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
const amountOf = (text: string) => numberOf(text.trim().replace(/%$/, ""));

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
function fileOf(gas: Gas) {
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

/** Mole fractions of the rows; a plus fraction has those of its pieces together. */
function sharesOf(gas: Gas, mixture: Mixture): (number | null)[] {
  let at = 0;
  return gas.rows.map(({ name, amount }) => {
    if (name.trim() === "" || amount.trim() === "") return null;
    const pieces = gas.definitions.some((d) => d.kind === "fraction" && d.name.trim() === name.trim());
    let share = 0;
    do share += mixture.z[at] ?? NaN;
    while (++at < mixture.names.length && pieces && mixture.names[at].startsWith(`${name.trim()} `));
    return share;
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

/** A table that was pasted, read as the command line reads a file; amounts as they stand where they are plain. */
export function tableOf(kestrune: Kestrune, text: string): Read {
  const mixture = kestrune.mixture(`${text.replace(/\r\n?/g, "\n").trim()}\n`.replace(/^([^\n]*=[^\n]*)\n$/, "$1"), {
    allowMissingPairs: true,
  });
  if (mixture.names.length > MOST_ROWS) throw new RangeError(texts.manyRows(mixture.names.length, MOST_ROWS));
  const cells = text.split(/\r\n?|\n/).map((line) => line.split(/[\t;]/).map((cell) => cell.trim()));
  const typed = cells.filter((row) => row.length === 2 && !Number.isNaN(amountOf(row[1])));
  const sum = typed.reduce((total, row) => total + amountOf(row[1]), 0);
  const same =
    typed.length === mixture.names.length &&
    typed.every((row, k) => Math.abs(amountOf(row[1]) / sum - mixture.z[k]) < 1e-9);
  const rows = mixture.names.map((name, k) =>
    same ? { name: typed[k][0], amount: typed[k][1] } : { name, amount: String(Number(mixture.z[k].toPrecision(12))) },
  );
  const read: Read = { rows, basis: "mole", notes: [...mixture.notes] };
  mixture.dispose();
  return read;
}
