// Units of what goes in and comes out. Inside everything is in K, Pa, J/mol, kg/m3 and mole fractions.
import { shown } from "./arguments.js";

/** A unit system by name; value in SI = (value + offset) * factor, per mass times the molar mass in kg/mol. */
export class Units {
  #table;

  constructor(module, name) {
    if (typeof name !== "string")
      throw new TypeError(`units is a name such as "si", "engineering", "field" or "C,bar", not ${shown(name)}`);
    this.name = name;
    this.#table = JSON.parse(module.read("ka_units", name));
    Object.freeze(this);
  }

  /** Name of the unit of a quantity. */
  symbol(quantity) {
    return this.#unit(quantity).name;
  }

  /** A number with its unit, as messages show it. */
  label(name, quantity, value) {
    return `${name} = ${Number(value.toPrecision(6))} ${this.symbol(quantity)}`.trimEnd();
  }

  /** Names of all quantities. */
  get quantities() {
    return Object.keys(this.#table);
  }

  /** A number or an array in SI. molarMass, g/mol, is read by units per mass only. */
  toSi(quantity, value, molarMass = 0) {
    const { factor, offset, per_mass } = this.#unit(quantity);
    return each(value, molarMass, (v, mass) => (v + offset) * (per_mass ? (factor * mass) / 1000 : factor));
  }

  /** A number or an array of SI in these units. */
  fromSi(quantity, value, molarMass = 0) {
    const { factor, offset, per_mass } = this.#unit(quantity);
    return each(value, molarMass, (v, mass) => v / (per_mass ? (factor * mass) / 1000 : factor) - offset);
  }

  #unit(quantity) {
    if (!Object.hasOwn(this.#table, quantity))
      throw new RangeError(`no quantity ${shown(quantity)}: use ${this.quantities.join(", ")}`);
    return this.#table[quantity];
  }
}

function each(value, molarMass, convert) {
  if (typeof value === "number") return convert(value, typeof molarMass === "number" ? molarMass : molarMass[0]);
  return Float64Array.from(value, (v, i) => convert(v, typeof molarMass === "number" ? molarMass : molarMass[i]));
}
