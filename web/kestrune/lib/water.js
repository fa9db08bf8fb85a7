// Water in a gas and its hydrates.
import { column, commonLength, numberOf, numbersOf, optionsOf, shown, single } from "./arguments.js";
import * as calls from "./calls.js";
import { isGood, KestruneError } from "./errors.js";

const METHODS = { eos: 1, chart: 2 };

/** Throws for a single state without an answer; of many the value is NaN already. */
function raise(mixture, status, length, what) {
  if (length === null && !isGood(status[0])) throw new KestruneError(status[0], mixture.statusText(status[0]), what);
}

function methodNumber(method) {
  if (typeof method !== "string" || !Object.hasOwn(METHODS, method))
    throw new RangeError(`method is "eos" or "chart", not ${shown(method)}`);
  return METHODS[method];
}

/** Which of T and P is given, its quantity, and the one that is wanted. */
function oneOf(name, { T, P }) {
  if ((T === undefined) === (P === undefined)) throw new RangeError(`a ${name} point is given T or P, one of them`);
  return T === undefined
    ? { name: "P", quantity: "pressure", wanted: "temperature" }
    : { name: "T", quantity: "temperature", wanted: "pressure" };
}

/** T, P and status of points that are given in SI at one of T and P. */
function boundary(units, wanted, given, found, status, length) {
  const [T, P] = wanted === "temperature" ? [found, given] : [given, found];
  return {
    T: single(units.fromSi("temperature", T), length),
    P: single(units.fromSi("pressure", P), length),
    status: single(status, length),
  };
}

/** Water of a mixture as a gas; the mixture has water among its components, of amount 0 where there was none. */
export class Water {
  #mixture;
  #index;

  constructor(mixture) {
    this.#mixture = mixture;
    this.#index = mixture.components.findIndex((c) => c.cas === "7732-18-5");
  }

  /** Water of the gas at saturation: fraction, mol/mol, and content, kg in one normal m3, with the status. */
  content(options) {
    const { T, P, method = "eos", units } = optionsOf("content", options, ["T", "P", "method", "units"]);
    const shownIn = this.#mixture.unitsOf(units);
    const given = {
      T: shownIn.toSi("temperature", numbersOf("T", T)),
      P: shownIn.toSi("pressure", numbersOf("P", P)),
    };
    const length = commonLength(given);
    const found = calls.water(...this.#mixture.native(), {
      ...{ method: methodNumber(method), wanted: null },
      ...{ first: column(given.T, length ?? 1), second: column(given.P, length ?? 1) },
    });
    raise(this.#mixture, found.status, length, `water content of ${this.#mixture.title}`);
    const [fraction, content] = found.outputs.map((o) => single(o, length));
    return { fraction, content, status: single(found.status, length) };
  }

  /** Where liquid water or ice begins to form, at a temperature or a pressure: T, P and status. */
  dew(options) {
    const o = optionsOf("a water dew point", options, ["T", "P", "water", "method", "units"]);
    const { water, method = "eos" } = o;
    const { name, quantity, wanted } = oneOf("water dew", o);
    const shownIn = this.#mixture.unitsOf(o.units);
    const given = shownIn.toSi(quantity, numbersOf(name, o[name]));
    const amounts = water === undefined ? this.#mixture.z[this.#index] : numbersOf("water", water);
    const many = typeof amounts !== "number";
    if (![many ? [...amounts] : amounts].flat().every((v) => (v > 0 && v < 1) || (many && Number.isNaN(v))))
      throw new RangeError(
        "a dew point needs water in the gas, a mole fraction between 0 and 1: in the mixture, or as water: 60e-6",
      );
    const length = commonLength({ [name]: given, water: amounts });
    const count = length ?? 1;
    const first = column(given, count);
    const feed = this.#feed(column(amounts, count));
    const found = calls.water(...this.#mixture.native(), { method: methodNumber(method), wanted, first, feed });
    raise(this.#mixture, found.status, length, `water dew point of ${this.#mixture.title}`);
    return boundary(shownIn, wanted, first, found.outputs[0], found.status, length);
  }

  /** Feeds with so much water, the dry components in proportion. */
  #feed(amounts) {
    const dry = this.#mixture.z.map((v, i) => (i === this.#index ? 0 : v));
    const sum = dry.reduce((a, b) => a + b, 0);
    if (!(sum > 0)) throw new RangeError("there is nothing but water in the mixture");
    const feed = new Float64Array(amounts.length * dry.length);
    amounts.forEach((water, k) => {
      for (let i = 0; i < dry.length; ++i)
        feed[k * dry.length + i] = i === this.#index ? water : (1 - water) * (dry[i] / sum);
    });
    return feed;
  }
}

const SALTS = { methanol: 1, nacl: 2, kcl: 3, cacl2: 4 };
const GLYCOLS = { meg: "107-21-1", deg: "111-46-6", teg: "112-27-6" };
/** Where the command line has no answer either (docs/water.md): K, and Pa, without inhibitor. */
const COLDEST = 200;
const HOTTEST = 313.15;
const HIGHEST = 1000e5;

/**
 * Where hydrate forms of a mixture as a gas, by its gravity: T, P and status at temperatures or pressures.
 * find(text): components of the databank.
 */
export function hydrate(mixture, options, find) {
  const o = optionsOf("hydrate", options, ["T", "P", "inhibitor", "percent", "units"]);
  const { name, quantity, wanted } = oneOf("hydrate", o);
  const shownIn = mixture.unitsOf(o.units);
  const line = lineOf(mixture, ...inhibitorOf(o.inhibitor, find), percentOf(o));
  const shift = lineOf(mixture, 0, 0, 0).T0 - line.T0;
  const given = shownIn.toSi(quantity, numbersOf(name, o[name]));
  const length = commonLength({ [name]: given });
  const first = column(given, length ?? 1);
  const at = (v) => (name === "P" ? line.T0 + line.slope * Math.log(v) : Math.exp((v - line.T0) / line.slope));
  const found = first.map(at);
  const status = Int32Array.from(first, (v, i) => {
    if (!(v > 0 && v < Infinity)) return name === "P" ? 9005 : 9004; // what no pressure and no temperature is
    const [T, P] = name === "P" ? [found[i], v] : [v, found[i]];
    return T >= COLDEST && T + shift <= HOTTEST && P <= HIGHEST ? 0 : 151;
  });
  status.forEach((s, i) => s !== 0 && (found[i] = NaN));
  raise(mixture, status, length, `hydrate of ${mixture.title}`);
  return boundary(shownIn, wanted, first, found, status, length);
}

/** What the correlation was made from without inhibitor, and what the gas and its inhibitor are outside of it. */
export function hydrateRange(mixture, options, find) {
  const o = optionsOf("hydrateRange", options, ["inhibitor", "percent", "units"]);
  const shownIn = mixture.unitsOf(o.units);
  const [module, handle] = mixture.native();
  const [kind] = inhibitorOf(o.inhibitor, find);
  const { T, P, warnings } = JSON.parse(module.read("kw_hydrate_range", handle, kind, percentOf(o)));
  return { T: shownIn.fromSi("temperature", T), P: shownIn.fromSi("pressure", P), warnings };
}

/** Mass percent of the inhibitor, which comes with one. */
function percentOf({ inhibitor, percent }) {
  const none = inhibitor === undefined || inhibitor === null;
  if (percent === undefined) {
    if (!none) throw new RangeError(`the inhibitor ${shown(inhibitor)} needs percent, its mass percent in the aqueous solution`);
    return 0;
  }
  if (!(numberOf("percent", percent) >= 0 && percent <= 70))
    throw new RangeError(`the inhibitor is 0 to 70 % of the solution by mass, not ${percent}`);
  if (none && percent !== 0)
    throw new RangeError("a percentage needs an inhibitor: methanol, MEG, DEG, TEG, NaCl, KCl, CaCl2 or a molar mass");
  return percent;
}

/** The curve is a straight line of T over ln P: its first and last point say all of it. */
function lineOf(mixture, kind, molarMass, percent) {
  const [module, handle] = mixture.native();
  return module.frame(() => {
    const [T, P, status] = [module.doubles(2), module.doubles(2), module.integers(1)];
    module.call("ka_hydrate", handle, kind, molarMass, percent, 2, T, P, status);
    raise(mixture, module.integersOut(status, 1), null, "hydrate curve");
    const [T0, T1] = module.copyOut(T, 2);
    const [P0, P1] = module.copyOut(P, 2);
    const slope = (T1 - T0) / Math.log(P1 / P0);
    return { T0: T0 - slope * Math.log(P0), slope };
  });
}

/** Kind of the library and molar mass. */
function inhibitorOf(inhibitor, find) {
  if (inhibitor === undefined || inhibitor === null) return [0, 0];
  if (typeof inhibitor === "number") {
    if (inhibitor >= 30 && inhibitor <= 200) return [5, inhibitor];
    throw new RangeError(`${inhibitor} g/mol is no molar mass of a hydrate inhibitor: 30 to 200 g/mol`);
  }
  if (typeof inhibitor !== "string") throw new TypeError(`inhibitor is a name or a molar mass, not ${shown(inhibitor)}`);
  const key = inhibitor.trim().toLowerCase();
  if (Object.hasOwn(SALTS, key)) return [SALTS[key], 0];
  const found = find(Object.hasOwn(GLYCOLS, key) ? GLYCOLS[key] : inhibitor).filter((c) => c.name.endsWith("glycol"));
  const exact = found.filter((c) => c.name === key);
  const [one, ...more] = exact.length > 0 ? exact : found;
  if (one !== undefined && more.length === 0) return [5, one.molarMass];
  throw new RangeError(
    `${shown(inhibitor)} is no hydrate inhibitor: use methanol, MEG, DEG, TEG, NaCl, KCl, CaCl2 or a molar mass`,
  );
}
