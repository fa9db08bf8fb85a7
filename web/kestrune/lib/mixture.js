// Mixtures of the databank and their flashes.
import { column, commonLength, compositions, numberOf, numbersOf, optionsOf, shown, single, textOf } from "./arguments.js";
import * as calls from "./calls.js";
import { criticalPoint, Envelope, ENVELOPE_OPTIONS } from "./curves.js";
import { isGood, KestruneError } from "./errors.js";
import { GAS, LIQUID, Phase } from "./phase.js";
import { report } from "./report.js";
import { State } from "./state.js";
import { hydrate, hydrateRange, Water } from "./water.js";

const WATER = "7732-18-5"; // CAS number
const MOST_COMPONENTS = 400; // whose group data are 50 MB
const LONGEST_TEXT = 1 << 20;
/** What a flash can be given: its number in the module and the quantities of the two. */
const GIVEN = [
  ["T", "P", "temperature", "pressure"],
  ["H", "P", "enthalpy", "pressure"],
  ["S", "P", "entropy", "pressure"],
  ["beta", "P", "vapour fraction", "pressure"],
  ["beta", "T", "vapour fraction", "temperature"],
];
export const MIXTURE_OPTIONS = [
  ...["basis", "set", "name", "freeWater", "solubility", "settings", "allowMissingPairs", "units"],
];

/** A component with its constants: molar mass g/mol, Tc K, Pc Pa, Vc m3/mol, Tb K; null where not known. */
export const componentOf = ({ molar_mass, ...rest }) => Object.freeze({ ...rest, molarMass: molar_mass });

/** What the module reads for what a user wrote: a text, { methane: 0.9 }, pairs, or the JSON object of a mixture file. */
function sourceOf(given) {
  if (typeof given === "string") return given;
  if (given === null || typeof given !== "object")
    throw new TypeError(`a mixture is given as { methane: 0.9, ethane: 0.1 }, not ${shown(given)}`);
  if (!Array.isArray(given) && !(given instanceof Map) && Object.hasOwn(given, "components")) return json(given);
  const pairs = Array.isArray(given) || given instanceof Map ? [...given] : Object.entries(given);
  const amounts = {};
  for (const pair of pairs) {
    if (!Array.isArray(pair) || pair.length !== 2)
      throw new TypeError(`a mixture is given as pairs such as ["methane", 0.9], not ${shown(pair)}`);
    const [name, amount] = pair;
    if (typeof name !== "string") throw new TypeError(`a component is named by a text, not ${shown(name)}`);
    if (Object.hasOwn(amounts, name)) throw new RangeError(`${name} is given twice`);
    if (typeof amount !== "string" && !Number.isFinite(amount))
      throw new RangeError(`the amount of ${name} must be a finite number, not ${shown(amount)}`);
    Object.defineProperty(amounts, name, { value: amount, enumerable: true });
  }
  return json({ components: amounts });
}

function json(given) {
  try {
    return JSON.stringify(given, (key, value) => {
      if (typeof value === "number" && !Number.isFinite(value))
        throw new RangeError(`${key} must be a finite number, not ${value}`);
      return ArrayBuffer.isView(value) ? Array.from(value) : value;
    });
  } catch (error) {
    if (error instanceof RangeError && error.message.includes("finite")) throw error;
    throw new TypeError(`a mixture file has numbers, texts, lists and objects: ${error.message}`);
  }
}

function solubilityOf(solubility) {
  if (solubility === undefined) return "";
  const limits = numbersOf("solubility", solubility);
  if (limits.length !== 2) throw new RangeError(`solubility is two numbers [A, B], not ${shown(solubility)}`);
  return limits.join(",");
}

function settingsOf(settings) {
  if (settings === undefined) return "";
  if (settings === null || typeof settings !== "object" || Array.isArray(settings))
    throw new TypeError(`settings are given as { eps: 1e-8 }, not ${shown(settings)}`);
  return Object.entries(settings)
    .map(([key, value]) => `${key}=${numberOf(`the setting ${key}`, value)}`)
    .join(",");
}

/** A mixture of components with its model, PPR78. Made by `kestrune.mixture(...)`. */
export class Mixture {
  #kestrune;
  #recipe;
  #handle;
  #about;
  #water = null;

  constructor(kestrune, recipe) {
    this.#kestrune = kestrune;
    this.#recipe = recipe;
    const { module } = kestrune;
    const handle = module.call("ka_mixture", ...recipe.words);
    try {
      this.#about = JSON.parse(module.read("ka_describe", handle));
      if (this.#about.components.length > MOST_COMPONENTS)
        throw new RangeError(`a mixture has at most ${MOST_COMPONENTS} components here, not ${this.#about.components.length}`);
    } catch (error) {
      if (module.alive) module.raw("ka_free", handle);
      throw error;
    }
    this.#handle = handle;
    module.keep(this, handle);
    this.units = recipe.units;
    this.components = Object.freeze(this.#about.components.map(componentOf));
    this.names = Object.freeze(this.components.map((c) => c.name));
    this.molarMasses = Object.freeze(this.components.map((c) => c.molarMass));
    this.z = Object.freeze(this.#about.z);
    this.molarMass = this.#about.molar_mass;
    this.givenSum = this.#about.given_sum;
    this.notes = Object.freeze(this.#about.notes);
    const more = this.names.length > 3 ? `, ${this.names.length - 3} more` : "";
    this.title = recipe.name || this.#about.title || this.names.slice(0, 3).join(", ") + more;
    const water = this.components.findIndex((c) => c.cas === WATER);
    this.freeWaterIndex = recipe.freeWater && water >= 0 ? water : null;
    Object.freeze(this);
  }

  /** From what a user wrote. */
  static of(kestrune, given, options) {
    const o = optionsOf("a mixture", options, MIXTURE_OPTIONS);
    const { basis = "", set = "2022", name = "", freeWater = false, allowMissingPairs = false } = o;
    for (const [what, text] of Object.entries({ basis, set, name })) textOf(what, text);
    if (o.solubility !== undefined && !freeWater)
      throw new RangeError("a solubility has no effect without freeWater: true");
    const source = sourceOf(given);
    if (source.length > LONGEST_TEXT)
      throw new RangeError(`a mixture is a text of at most ${LONGEST_TEXT} characters, not ${source.length}`);
    const flags = [Number(Boolean(allowMissingPairs)), 0, Number(Boolean(freeWater))];
    const words = [source, basis, set, ...flags, solubilityOf(o.solubility), settingsOf(o.settings)];
    const units = kestrune.unitsOf(o.units);
    return new Mixture(kestrune, { words, name, freeWater: Boolean(freeWater), units });
  }

  /** For the package: module, address and number of components. */
  native() {
    if (this.#handle === null) throw new Error(`the mixture ${this.title} was disposed of`);
    return [this.#kestrune.module, this.#handle, this.names.length];
  }
  get alive() {
    return this.#handle !== null && this.#kestrune.module.alive;
  }
  statusText(status) {
    return this.#kestrune.statusText(status);
  }
  unitsOf(units) {
    return units === undefined ? this.units : this.#kestrune.unitsOf(units);
  }

  /** Frees its memory now, not when the garbage collector finds it. */
  dispose() {
    if (this.#handle === null) return;
    if (this.#water !== null) this.#water.mixture.dispose();
    this.#kestrune.module.free(this, this.#handle);
    this.#handle = null;
  }

  /** Phases at equilibrium: two of T, P, H, S and beta, numbers or arrays of one length. */
  flash(given) {
    const { z, phases = 3, units, ...rest } = optionsOf("flash", given, [
      ...["T", "P", "H", "S", "beta", "z", "phases", "units"],
    ]);
    const shownIn = this.unitsOf(units);
    const names = Object.keys(rest).filter((key) => rest[key] !== undefined);
    const kind = GIVEN.findIndex(([a, b]) => names.length === 2 && names.includes(a) && names.includes(b));
    if (kind < 0) {
      const pairs = GIVEN.map(([a, b]) => `${a} and ${b}`).join(", ");
      throw new RangeError(`a flash is given ${pairs}, not ${names.join(" and ") || "nothing"}`);
    }
    if (phases !== 2 && phases !== 3) throw new RangeError(`phases is 2 or 3, not ${shown(phases)}`);
    if (phases === 2 && this.freeWaterIndex !== null)
      throw new RangeError("free water is a liquid of its own: flash with phases: 3, or a mixture without freeWater");
    const feed = this.#feed("z", z);
    const [first, second] = GIVEN[kind].slice(0, 2).map((name) => numbersOf(name, rest[name]));
    const length = commonLength({ [GIVEN[kind][0]]: first, [GIVEN[kind][1]]: second, ...feed.counted });
    const count = length ?? 1;
    const mass = feed.masses ?? this.molarMass;
    const masses = typeof mass === "number" || mass.length === count ? mass : mass[0];
    const columns = [first, second].map((value, k) => shownIn.toSi(GIVEN[kind][2 + k], column(value, count), masses));
    // Beyond 0 and 1 there is no state; NaN is refused with its status.
    if (kind >= 3) columns[0] = columns[0].map((v) => (v >= 0 && v <= 1 ? v : NaN));
    const rows = feed.all(count);
    const found = calls.flash(...this.native(), { kind, phases, first: columns[0], second: columns[1], feed: rows });
    const [status] = found.status;
    if (length === null && !isGood(status)) {
      const [one, two] = [0, 1].map((k) => shownIn.label(GIVEN[kind][k], GIVEN[kind][2 + k], rest[GIVEN[kind][k]]));
      throw new KestruneError(status, this.statusText(status), `flash of ${this.title} at ${one} and ${two}`);
    }
    return new State(this, shownIn, phases, found, length, rows);
  }

  /** Feeds divided by their sums. A row with a NaN costs its own state only. */
  #feed(name, z) {
    if (z === undefined) return { counted: {}, all: () => null };
    const nc = this.names.length;
    const { rows, length } = compositions(name, z, nc);
    const masses = new Float64Array(rows.length / nc);
    for (let i = 0; i < masses.length; ++i) {
      const row = rows.subarray(i * nc, (i + 1) * nc);
      const sum = row.reduce((a, b) => a + b, 0);
      if (!(Number.isNaN(sum) && length !== null) && !(sum > 0 && sum < Infinity && row.every((v) => v >= 0)))
        throw new RangeError(`fractions of ${name} are finite, not negative, and not all zero`);
      row.forEach((v, j) => (row[j] = v / sum));
      masses[i] = row.reduce((a, v, j) => a + v * this.molarMasses[j], 0);
    }
    const repeated = (count) => {
      if (rows.length === count * nc) return rows;
      const all = new Float64Array(count * nc);
      for (let i = 0; i < count; ++i) all.set(rows, i * nc);
      return all;
    };
    return { counted: length === null ? {} : { [name]: masses }, masses, all: repeated };
  }

  /** Bubble point at a temperature or a pressure. */
  bubble(given) {
    return this.#atFraction("bubble", 0, given);
  }
  /** Dew point at a temperature or a pressure. */
  dew(given) {
    return this.#atFraction("dew", 1, given);
  }
  #atFraction(name, beta, given) {
    const options = optionsOf(name, given, ["T", "P", "z", "phases", "units"]);
    if ((options.T === undefined) === (options.P === undefined))
      throw new RangeError(`a ${name} point is given T or P, one of them`);
    return this.flash({ ...options, beta });
  }

  /** Properties of the mixture, or of a composition x, as one phase, stable or not: "gas" or "liquid". */
  properties(given) {
    const o = optionsOf("properties", given, ["T", "P", "phase", "x", "units"]);
    const { phase = "gas" } = o;
    if (phase !== "gas" && phase !== "vapour" && phase !== "liquid")
      throw new RangeError(`phase is "gas" or "liquid", not ${shown(phase)}`);
    const gas = phase !== "liquid";
    const units = this.unitsOf(o.units);
    const feed = this.#feed("x", o.x ?? Array.from(this.z));
    const [first, second] = ["T", "P"].map((name) => numbersOf(name, o[name]));
    const length = commonLength({ T: first, P: second, ...feed.counted });
    const count = length ?? 1;
    const T = units.toSi("temperature", column(first, count));
    const P = units.toSi("pressure", column(second, count));
    const x = feed.all(count);
    const usable = (v) => v > 0 && v < Infinity;
    const nc = this.names.length;
    const refused = Int32Array.from(T, (t, i) =>
      !usable(t) ? 9004 : !usable(P[i]) ? 9005 : Number.isNaN(x[i * nc]) ? 9006 : 0,
    );
    return new Phase(this, {
      ...{ name: gas ? "vapour" : "liquid", units, kind: gas ? GAS : LIQUID },
      ...{ T, P, x, length, refused, fractions: new Float64Array(count).fill(1) },
    });
  }

  /** Interaction parameters k_ij that the model predicts at a temperature, a row a component. */
  kij(given) {
    const { T, units } = optionsOf("kij", given, ["T", "units"]);
    const at = this.unitsOf(units).toSi("temperature", numberOf("T", T));
    if (!(at > 0 && at < Infinity)) throw new RangeError(`k_ij have one temperature, above absolute zero, not ${T}`);
    const [module, handle, nc] = this.native();
    return module.frame(() => {
      const out = module.doubles(nc * nc);
      module.call("ka_kij", handle, at, out);
      const all = module.copyOut(out, nc * nc);
      return this.names.map((_, i) => all.slice(i * nc, (i + 1) * nc));
    });
  }

  /** Bubble and dew curve, critical points, extremes and quality lines. */
  envelope(options) {
    const o = optionsOf("envelope", options, ENVELOPE_OPTIONS);
    return new Envelope(this, o, this.unitsOf(o.units));
  }

  /** Critical point of the mixture; KestruneError 145 where there is no stable one. */
  critical(options) {
    return criticalPoint(this, this.unitsOf(optionsOf("critical", options, ["units"]).units));
  }

  /** Water content and water dew points of the mixture as a gas. */
  get water() {
    this.native();
    if (this.#water === null) {
      const own = this.components.some((c) => c.cas === WATER);
      const words = [...this.#recipe.words];
      words[4] = 1; // water among the components
      const mixture = own ? this : new Mixture(this.#kestrune, { ...this.#recipe, words });
      this.#water = { mixture, water: new Water(mixture) };
      if (own) this.#water.mixture = { dispose() {} };
    }
    return this.#water.water;
  }

  /** Where hydrate forms of the mixture as a gas, with or without inhibitor. */
  hydrate(options) {
    return hydrate(this, options, (text) => this.#kestrune.components(text));
  }

  /** Temperatures and pressures of the data behind it, and what this gas and its inhibitor are outside of them. */
  hydrateRange(options) {
    return hydrateRange(this, options, (text) => this.#kestrune.components(text));
  }

  /** The state at a temperature and a pressure as the command line reports it: phases by name, and what is to be said of it. */
  report(given) {
    return report(this, given);
  }

  toString() {
    return `Mixture { ${this.names.map((name, i) => `${name}: ${Number(this.z[i].toPrecision(6))}`).join(", ")} }`;
  }
}
