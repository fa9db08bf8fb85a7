// One phase of one or many states and its properties, each calculated when it is first read.
import { shown } from "./arguments.js";
import * as calls from "./calls.js";
import { isGood, KestruneError } from "./errors.js";

/** Phases as the module numbers them. */
export const GAS = 1;
export const LIQUID = 2;
export const LIGHT = 3;
/** More water than this is free water to the library, as kWaterRich of the command line. */
const WATER_RICH = 0.9999;

const VOLUMES = 0b10000000111;
const HEATS = 0b1111000000;
/** Properties by name: row in the module, quantity, and the rows that are calculated together with it. */
export const PROPERTIES = {
  Z: [0, "ratio", VOLUMES],
  density: [1, "density", VOLUMES],
  molarVolume: [2, "molar volume", VOLUMES],
  enthalpy: [3, "enthalpy", 1 << 3],
  entropy: [4, "entropy", 1 << 4],
  freeEnthalpy: [5, "enthalpy", 1 << 5],
  Cp: [6, "entropy", HEATS],
  Cv: [7, "entropy", HEATS],
  speedOfSound: [8, "speed", HEATS],
  jouleThomson: [9, "Joule-Thomson coefficient", HEATS],
  compressibility: [10, "compressibility", VOLUMES],
  viscosity: [11, "viscosity", 1 << 11],
  thermalConductivity: [12, "thermal conductivity", 1 << 12],
  normalDensity: [13, "density", 0b11 << 13],
  normalVolume: [14, "ratio", 0b11 << 13],
  standardDensity: [15, "density", 0b111 << 15],
  standardVolume: [16, "ratio", 0b111 << 15],
  standardCubicFeet: [17, "ratio", 0b111 << 15],
};
const OF_FREE_WATER = ["enthalpy", "entropy", "freeEnthalpy"];

export class Phase {
  #mixture;
  #kind;
  #T;
  #P;
  #fractions;
  #x;
  #length;
  #refused;
  #known = new Map();

  /** fractions [count] and x, rows of nc; length null for a single state; refused: statuses of states without properties. */
  constructor(mixture, { name, units, kind, T, P, fractions, x, length, refused = null }) {
    this.#mixture = mixture;
    this.name = name;
    this.units = units;
    this.#kind = kind;
    this.#T = T;
    this.#P = P;
    this.#fractions = fractions;
    this.#x = x;
    this.#length = length;
    this.#refused = refused;
  }

  #shown(array) {
    return this.#length === null ? array[0] : array.slice();
  }

  #rows(flat) {
    const nc = this.#mixture.names.length;
    if (this.#length === null) return flat.slice();
    return Array.from({ length: this.#length }, (_, i) => flat.slice(i * nc, (i + 1) * nc));
  }

  get fraction() {
    return this.#shown(this.#fractions);
  }
  get x() {
    return this.#rows(this.#x);
  }
  get molarMass() {
    return this.#shown(this.#masses());
  }
  get aqueous() {
    const flags = Array.from(calls.aqueous(...this.#mixture.native(), this.#x), (flag) => flag !== 0);
    return this.#length === null ? flags[0] : flags;
  }

  #masses() {
    const masses = this.#mixture.molarMasses;
    const nc = masses.length;
    return this.#fractions.map((_, i) => masses.reduce((sum, mass, j) => sum + mass * this.#x[i * nc + j], 0));
  }

  /** ln of the fugacity coefficients. */
  lnPhi() {
    const { values, status } = calls.lnPhi(...this.#mixture.native(), {
      kind: this.#kind,
      T: this.#T,
      P: this.#P,
      x: this.#x,
    });
    this.#raise(this.#refused?.[0] || status[0], "fugacity coefficients");
    return this.#rows(values);
  }

  #raise(status, what) {
    if (this.#length !== null || isGood(status)) return;
    throw new KestruneError(status, this.#mixture.statusText(status), what);
  }

  /** Status of a property, 0 where it has a value or the phase has none of the kind. */
  propertyStatus(name) {
    return this.#shown(this.#found(name).status);
  }

  /** A property in SI, an array; NaN where it has no value. */
  inSi(name) {
    return this.#found(name).value;
  }

  /** A property in the units of the phase. */
  property(name) {
    const { value, status } = this.#found(name);
    if (Number.isNaN(value[0])) this.#raise(status[0], `${name} of the ${this.name}`);
    return this.#shown(this.units.fromSi(PROPERTIES[name][1], value, this.#masses()));
  }

  #found(name) {
    if (typeof name !== "string" || !Object.hasOwn(PROPERTIES, name))
      throw new RangeError(`no property ${shown(name)}: use ${Object.keys(PROPERTIES).join(", ")}`);
    if (!this.#known.has(name)) this.#calculate(PROPERTIES[name][2]);
    return this.#known.get(name);
  }

  #calculate(wanted) {
    const state = { kind: this.#kind, T: this.#T, P: this.#P, x: this.#x, wanted };
    const { values, status } = calls.properties(...this.#mixture.native(), state);
    const refused = (i) => this.#refused?.[i] ?? 0;
    const statuses = status.map((s, i) => refused(i) || s);
    for (const [name, [row]] of Object.entries(PROPERTIES)) {
      if (!((wanted >> row) & 1)) continue;
      const partial = !OF_FREE_WATER.includes(name);
      const value = values[row].map((v, i) => (refused(i) || (partial && this.#isFreeWater(i)) ? NaN : v));
      this.#known.set(name, { value, status: statuses });
    }
  }

  /** A liquid of water by its solubility does not follow the equation of state. */
  #isFreeWater(i) {
    const index = this.#mixture.freeWaterIndex;
    return index !== null && this.name !== "vapour" && this.#x[i * this.#mixture.names.length + index] > WATER_RICH;
  }
}

for (const name of Object.keys(PROPERTIES))
  Object.defineProperty(Phase.prototype, name, {
    get() {
      return this.property(name);
    },
  });
