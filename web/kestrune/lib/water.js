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
    raise(this.#mixture, found.status, length, "water content");
    const [fraction, content] = found.outputs.map((o) => single(o, length));
    return { fraction, content, status: single(found.status, length) };
  }

  /** Temperature at which liquid water or ice begins to form at a pressure. */
  dewTemperature(options) {
    const { P, ...rest } = optionsOf("dewTemperature", options, ["P", "water", "method", "units"]);
    return this.#dew("pressure", "P", P, "temperature", rest);
  }

  /** Pressure at which liquid water or ice begins to form at a temperature. */
  dewPressure(options) {
    const { T, ...rest } = optionsOf("dewPressure", options, ["T", "water", "method", "units"]);
    return this.#dew("temperature", "T", T, "pressure", rest);
  }

  #dew(quantity, name, given, wanted, { water, method = "eos", units }) {
    const shownIn = this.#mixture.unitsOf(units);
    const first = shownIn.toSi(quantity, numbersOf(name, given));
    const amounts = water === undefined ? this.#mixture.z[this.#index] : numbersOf("water", water);
    if (![amounts].flatMap((a) => (typeof a === "number" ? [a] : [...a])).every((a) => a > 0 && a < 1))
      throw new RangeError(
        "a dew point needs water in the gas, a mole fraction between 0 and 1: in the mixture, or as water: 60e-6",
      );
    const length = commonLength({ [name]: first, water: amounts });
    const count = length ?? 1;
    const { outputs, status } = calls.water(...this.#mixture.native(), {
      ...{ method: methodNumber(method), wanted, first: column(first, count) },
      feed: this.#feed(column(amounts, count)),
    });
    raise(this.#mixture, status, length, `water dew ${wanted}`);
    return single(shownIn.fromSi(wanted, outputs[0]), length);
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

/** Hydrate curve of a mixture as a gas, by its gravity, with inhibitors. */
export class Hydrate {
  #mixture;
  #find;

  /** find(text): components of the databank. */
  constructor(mixture, find) {
    this.#mixture = mixture;
    this.#find = find;
  }

  /** Temperature below which hydrate forms at a pressure. */
  temperature(options) {
    const { P, ...rest } = optionsOf("temperature", options, ["P", "inhibitor", "percent", "units"]);
    return this.#at("pressure", numbersOf("P", P), "temperature", rest, (line, p) => [line.T0 + line.slope * Math.log(p), p]);
  }

  /** Pressure above which hydrate forms at a temperature. */
  pressure(options) {
    const { T, ...rest } = optionsOf("pressure", options, ["T", "inhibitor", "percent", "units"]);
    return this.#at("temperature", numbersOf("T", T), "pressure", rest, (line, t) => [t, Math.exp((t - line.T0) / line.slope)]);
  }

  #at(quantity, given, wanted, { inhibitor, percent = 0, units }, place) {
    const shownIn = this.#mixture.unitsOf(units);
    if (!(numberOf("percent", percent) >= 0 && percent <= 70))
      throw new RangeError(`the inhibitor is 0 to 70 % of the solution by mass, not ${percent}`);
    if ((inhibitor === undefined || inhibitor === null) && percent !== 0)
      throw new RangeError("a percentage needs an inhibitor: methanol, MEG, DEG, TEG, NaCl, KCl, CaCl2 or a molar mass");
    const line = this.#line(...this.#inhibitorOf(inhibitor), percent);
    const shift = this.#line(0, 0, 0).T0 - line.T0;
    const length = commonLength({ given });
    const si = column(shownIn.toSi(quantity, given), length ?? 1);
    const found = Float64Array.from(si, (v) => {
      const [T, P] = place(line, v);
      const good = T >= COLDEST && T + shift <= HOTTEST && P > 0 && P <= HIGHEST;
      return good ? (wanted === "pressure" ? P : T) : NaN;
    });
    raise(this.#mixture, [Number.isNaN(found[0]) ? 151 : 0], length, "hydrate");
    return single(shownIn.fromSi(wanted, found), length);
  }

  /** The curve is a straight line of T over ln P: its first and last point say all of it. */
  #line(kind, molarMass, percent) {
    const [module, handle] = this.#mixture.native();
    return module.frame(() => {
      const [T, P, status] = [module.doubles(2), module.doubles(2), module.integers(1)];
      module.call("ka_hydrate", handle, kind, molarMass, percent, 2, T, P, status);
      raise(this.#mixture, module.integersOut(status, 1), null, "hydrate curve");
      const [T0, T1] = module.copyOut(T, 2);
      const [P0, P1] = module.copyOut(P, 2);
      const slope = (T1 - T0) / Math.log(P1 / P0);
      return { T0: T0 - slope * Math.log(P0), slope };
    });
  }

  /** Kind of the library and molar mass. */
  #inhibitorOf(inhibitor) {
    if (inhibitor === undefined || inhibitor === null) return [0, 0];
    if (typeof inhibitor === "number") {
      if (inhibitor >= 30 && inhibitor <= 200) return [5, inhibitor];
      throw new RangeError(`${inhibitor} g/mol is no molar mass of a hydrate inhibitor: 30 to 200 g/mol`);
    }
    if (typeof inhibitor !== "string") throw new TypeError(`inhibitor is a name or a molar mass, not ${shown(inhibitor)}`);
    const key = inhibitor.trim().toLowerCase();
    if (Object.hasOwn(SALTS, key)) return [SALTS[key], 0];
    const found = this.#find(Object.hasOwn(GLYCOLS, key) ? GLYCOLS[key] : inhibitor).filter((c) => c.name.endsWith("glycol"));
    const exact = found.filter((c) => c.name === key);
    const [one, ...more] = exact.length > 0 ? exact : found;
    if (one !== undefined && more.length === 0) return [5, one.molarMass];
    throw new RangeError(
      `${shown(inhibitor)} is no hydrate inhibitor: use methanol, MEG, DEG, TEG, NaCl, KCl, CaCl2 or a molar mass`,
    );
  }
}
