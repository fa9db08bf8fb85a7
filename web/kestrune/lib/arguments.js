// What callers pass, checked before anything of it reaches the module.

/** A text for a message of what somebody passed. */
export function shown(value) {
  if (typeof value === "string") return JSON.stringify(value.length > 60 ? `${value.slice(0, 60)}...` : value);
  if (Array.isArray(value)) return `[${value.slice(0, 4).map(shown).join(", ")}${value.length > 4 ? ", ..." : ""}]`;
  if (value === null || typeof value !== "object") return typeof value === "symbol" ? "a symbol" : String(value);
  return `an object (${Object.prototype.toString.call(value).slice(8, -1)})`;
}

const isNumeric = (value) =>
  ArrayBuffer.isView(value) && !(value instanceof DataView) && typeof value[0] !== "bigint";

/** A number, or a Float64Array of its own of an array of numbers; TypeError for anything else. */
export function numbersOf(name, value) {
  if (typeof value === "number") return value;
  if (isNumeric(value)) return Float64Array.from(value);
  if (Array.isArray(value)) {
    const wrong = value.findIndex((v) => typeof v !== "number");
    if (wrong < 0) return Float64Array.from(value);
    throw new TypeError(`${name}[${wrong}] is a number, not ${shown(value[wrong])}`);
  }
  throw new TypeError(`${name} is a number or an array of numbers, not ${shown(value)}`);
}

/** A number; TypeError for anything else. */
export function numberOf(name, value) {
  if (typeof value !== "number") throw new TypeError(`${name} is a number, not ${shown(value)}`);
  return value;
}

export function textOf(name, value) {
  if (typeof value !== "string") throw new TypeError(`${name} is a text, not ${shown(value)}`);
  return value;
}

/** Options by name; TypeError for what is no object, RangeError for a name that does nothing. */
export function optionsOf(what, value, known) {
  if (value === undefined) return {};
  if (value === null || typeof value !== "object" || Array.isArray(value))
    throw new TypeError(`${what}: an object such as { ${known[0]}: ... } is needed, not ${shown(value)}`);
  for (const key of Object.keys(value))
    if (!known.includes(key)) throw new RangeError(`${what}: no option ${shown(key)}: use ${known.join(", ")}`);
  return value;
}

/**
 * The number of states of some quantities: null where all are numbers, else the length of the arrays, which is one.
 * RangeError with their lengths where it is not.
 */
export function commonLength(quantities) {
  let length = null;
  for (const value of Object.values(quantities)) {
    if (typeof value === "number") continue;
    if (length !== null && value.length !== length) {
      const lengths = Object.entries(quantities).filter(([, v]) => typeof v !== "number");
      throw new RangeError(`arrays of one length are needed: ${lengths.map(([k, v]) => `${k} has ${v.length}`).join(", ")}`);
    }
    length = value.length;
  }
  return length;
}

/** So many numbers of a number or an array. */
export function column(value, length) {
  return typeof value === "number" ? new Float64Array(length).fill(value) : value;
}

/** The single number of an array of one, or the array. */
export const single = (array, length) => (length === null ? array[0] : array);

/** Compositions in rows of count numbers, [count] or [n][count] or a flat array of n * count; their number, null for one. */
export function compositions(name, value, count) {
  if (Array.isArray(value) && value.some((row) => typeof row !== "number")) {
    const flat = new Float64Array(value.length * count);
    value.forEach((row, i) => {
      const numbers = numbersOf(`${name}[${i}]`, row);
      if (numbers.length !== count) throw new RangeError(`${name}[${i}]: ${count} fractions are needed, not ${numbers.length ?? 1}`);
      flat.set(numbers, i * count);
    });
    return { rows: flat, length: value.length };
  }
  const rows = numbersOf(name, value);
  if (typeof rows === "number" || rows.length === 0 || rows.length % count !== 0)
    throw new RangeError(`${name}: ${count} fractions a state are needed, not ${typeof rows === "number" ? rows : rows.length}`);
  return { rows, length: rows.length === count ? null : rows.length / count };
}
