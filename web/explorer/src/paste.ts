// A table or a mixture file that was pasted, read as the command line reads it, as rows and descriptions of a gas.
import type { Kestrune, Mixture } from "kestrune";
import { amountOf, definitionOf, fileOf, lumpsOf } from "./gas.ts";
import type { Read } from "./protocol.ts";
import { emptyGas, MOST_ROWS, type Definition, type Gas } from "./state.ts";
import { texts } from "./texts.ts";

/** What stands in headings, units or titles where a table says what its amounts are. */
const LABEL = /mol|vol|mass|weight|gew|wt|pp[mb]|"basis"|(^|[\t;,])\s*z\s*($|[\t;,])/im;
const KINDS = [
  ["fraction", "fractions"],
  ["component", "own_components"],
] as const;

interface Source {
  definitions: Definition[];
  /** The text with further descriptions, for the package. */
  withMore(more: Definition[]): string;
  /** First cells of its rows in lower case. */
  names: Set<string>;
}

/** "M=218, SG=0.85" of the object that a JSON file has for it. */
function wordsOf(name: string, keys: unknown): string {
  const all = Object.entries((keys ?? {}) as Record<string, unknown>);
  if (all.some(([, value]) => typeof value !== "string" && typeof value !== "number"))
    throw new RangeError(texts.pasteWords(name));
  return all.map(([key, value]) => `${key}=${value}`).join(", ");
}

function jsonSource(text: string): Source | null {
  let file: Record<string, unknown>;
  try {
    file = JSON.parse(text);
  } catch {
    return null; // the package says what is wrong with it
  }
  const own = (key: string) => Object.entries((file[key] ?? {}) as object);
  const definitions = KINDS.flatMap(([kind, key]) =>
    own(key).map(([name, keys]) => ({ kind, name, words: wordsOf(name, keys) })),
  );
  const listed = file.components ?? {};
  const names = Array.isArray(listed) ? listed.map((c) => String(c?.name)) : Object.keys(listed);
  const withMore = (more: Definition[]) => {
    const next = { ...file };
    for (const [kind, key] of KINDS) {
      const added = more.filter((d) => d.kind === kind).map((d) => [d.name.trim(), definitionOf(d.words)]);
      if (added.length > 0) next[key] = { ...(file[key] as object), ...Object.fromEntries(added) };
    }
    return more.length > 0 ? JSON.stringify(next) : text;
  };
  return { definitions, withMore, names: new Set(names.map((name) => name.toLowerCase())) };
}

/** Lines with sections such as [fraction C7+]. */
function textSource(text: string): Source {
  const definitions: Definition[] = [];
  const names = new Set<string>();
  let open: Definition | null = null;
  for (const raw of text.split("\n")) {
    const line = raw.replace(/#.*/, "").trim();
    const [, kind, name] = /^\[\s*(mixture|fraction|component)\b\s*(.*?)\s*\]$/i.exec(line) ?? [];
    if (kind !== undefined) {
      open = kind.toLowerCase() === "mixture" ? null : { kind: kind.toLowerCase() as "fraction", name, words: "" };
      if (open !== null) definitions.push(open);
    } else if (open !== null && line !== "") open.words += `${open.words && ", "}${line.replace(/\s*=\s*/, "=")}`;
    else if (open === null)
      for (const cell of [...line.split(/[\t;,=]/), line.replace(/[\s;,=]+[^\s;,=]+$/, "")])
        names.add(cell.trim().replace(/^"(.*)"$/, "$1").toLowerCase());
  }
  const withMore = (more: Definition[]) => {
    const oneLine = /^[^\n]*=[^\n]*\n$/.test(text);
    const lines = oneLine && more.length > 0 ? text.replaceAll(/,(?=[^,=]*=)/g, "\n").replaceAll("=", "\t") : text;
    const sections = more.map(
      ({ kind, name, words }) =>
        `[${kind} ${name.trim()}]\n${Object.entries(definitionOf(words))
          .map(([key, value]) => `${key} = ${value}\n`)
          .join("")}`,
    );
    // One line of "name=amount" has no end; a text that begins with "[" is taken for JSON.
    const all = oneLine && more.length === 0 ? lines.trim() : lines + sections.join("");
    return all.startsWith("[") ? `#\n${all}` : all;
  };
  return { definitions, withMore, names };
}

/** The mixture, and whether the amounts of the table are masses. */
function readAs(kestrune: Kestrune, source: string, wanted: Gas["basis"], labelled: boolean): [Mixture, Gas["basis"]] {
  const options = { allowMissingPairs: true };
  if (!labelled) return [kestrune.mixture(source, { ...options, basis: wanted }), wanted];
  const mixture = kestrune.mixture(source, options);
  try {
    kestrune.mixture(source, { ...options, basis: "mole" }).dispose();
    return [mixture, "mole"];
  } catch (error) {
    if (!kestrune.alive || !(error instanceof RangeError)) throw error;
    return [mixture, "mass"]; // the table says so itself
  }
}

/** Rows with the amounts as they stand where they are plain, else with shares of the mixture. */
function rowsOf(text: string, mixture: Mixture, basis: Gas["basis"], definitions: Definition[]): Gas["rows"] {
  const lumps = lumpsOf(definitions, mixture.names);
  const inBasis = mixture.z.map((z, k) => (basis === "mass" ? z * mixture.molarMasses[k] : z));
  const whole = inBasis.reduce((a, b) => a + b, 0);
  const shares = lumps.map(({ first, end }) => inBasis.slice(first, end).reduce((a, b) => a + b, 0) / whole);
  // A comma in a cell is a decimal comma, as the package has read it.
  const cells = text.split("\n").map((line) => line.split(/[\t;]/).map((cell) => cell.trim()));
  const typed = cells
    .filter((row) => row.length === 2)
    .map(([name, amount]) => [name, Number.isNaN(amountOf(amount)) ? amount.replace(",", ".") : amount])
    .filter(([, amount]) => !Number.isNaN(amountOf(amount)));
  const sum = typed.reduce((total, row) => total + amountOf(row[1]), 0);
  const same =
    typed.length === lumps.length && typed.every((row, k) => Math.abs(amountOf(row[1]) / sum - shares[k]) < 1e-9);
  return lumps.map(({ name }, k) =>
    same ? { name: typed[k][0], amount: typed[k][1] } : { name, amount: String(Number(shares[k].toPrecision(12))) },
  );
}

/** What the gas becomes: its basis stays where the table names none, its descriptions where the table has their names. */
export function tableOf(kestrune: Kestrune, pasted: string, gas: Gas = emptyGas()): Read {
  const text = `${pasted.replace(/\r\n?/g, "\n").trim()}\n`.replace(/^\[\s*mixture\s*\] *\n/i, "#\n");
  const source = (text.startsWith("{") && jsonSource(text)) || textSource(text);
  const has = (list: Definition[], d: Definition) =>
    list.some((other) => other.name.trim().toLowerCase() === d.name.trim().toLowerCase());
  const kept = gas.definitions.filter(
    (d) => source.names.has(d.name.trim().toLowerCase()) && !has(source.definitions, d),
  );
  const definitions = [...source.definitions, ...kept];
  const [mixture, basis] = readAs(kestrune, source.withMore(kept), gas.basis, LABEL.test(text));
  const rows = rowsOf(text, mixture, basis, definitions);
  const { z, notes } = mixture;
  mixture.dispose();
  if (rows.length > MOST_ROWS) throw new RangeError(texts.manyRows(rows.length, MOST_ROWS));
  // What the page makes of the rows is the mixture that was read, or they are not taken.
  const again = kestrune.mixture(fileOf({ basis, rows, definitions }), { allowMissingPairs: true });
  const differs = again.z.length !== z.length || again.z.some((v, k) => Math.abs(v - z[k]) > 1e-9);
  again.dispose();
  if (differs) throw new RangeError(texts.pasteDiffers);
  const said = [
    ...(basis !== gas.basis ? [texts.pasteBasis(texts.bases[basis])] : []),
    ...gas.definitions.filter((d) => !has(definitions, d)).map((d) => texts.pasteDropped(d.name)),
    ...kept.map((d) => texts.pasteKept(d.name)),
  ];
  return { rows, basis, definitions, notes: [...said, ...notes] };
}
