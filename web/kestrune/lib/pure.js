// Pure components: correlations with their ranges and sources.
import { column, commonLength, numbersOf, optionsOf, shown, single } from "./arguments.js";

/** Properties by the index of the module. */
const NAMES = [
  ...["vapourPressure", "vaporisationEnthalpy", "liquidDensity", "liquidCp", "liquidViscosity"],
  ...["liquidThermalConductivity", "surfaceTension", "idealGasCp", "gasViscosity", "gasThermalConductivity"],
  "secondVirial",
];

/** A component of the databank; `properties` says what there is of it, with range and source. */
export class Pure {
  #module;
  #byName;
  #unitsOf;

  constructor(module, name, unitsOf) {
    const { properties, molar_mass, ...rest } = JSON.parse(module.read("kw_pure", name));
    this.#module = module;
    this.#unitsOf = unitsOf;
    Object.assign(this, rest, { molarMass: molar_mass });
    this.#byName = new Map(properties.map((p) => [NAMES[p.index], p]));
    this.properties = properties.map(({ index, title, quantity, T_min, T_max, source }) => ({
      ...{ name: NAMES[index], title, quantity, Tmin: T_min, Tmax: T_max, source },
    }));
  }

  /** Values of a property: value, NaN where there is none, and outside, true where it is continued beyond its range. */
  at(property, options) {
    const { T, units } = optionsOf("at", options, ["T", "units"]);
    const known = this.#byName.get(property);
    if (known === undefined)
      throw new RangeError(`${this.name} has no ${shown(property)}: it has ${[...this.#byName.keys()].join(", ")}`);
    const shownIn = this.#unitsOf(units);
    const given = shownIn.toSi("temperature", numbersOf("T", T));
    const length = commonLength({ T: given });
    const at = column(given, length ?? 1);
    const [values, outside] = this.#module.frame(() => {
      const [first, out, flags] = [this.#module.copyIn(at), this.#module.doubles(at.length), this.#module.take(at.length)];
      this.#module.call("kw_pure_values", this.cas, known.index, at.length, first, out, flags);
      return [this.#module.copyOut(out, at.length), Array.from(this.#module.bytesOut(flags, at.length), (f) => f !== 0)];
    });
    const value = shownIn.fromSi(known.quantity, values, this.molarMass);
    return { value: single(value, length), outside: single(outside, length) };
  }

  /** Temperature at which it boils under a pressure; NaN outside the range of its vapour pressure. */
  boilingTemperature(options) {
    const { P, units } = optionsOf("boilingTemperature", options, ["P", "units"]);
    const shownIn = this.#unitsOf(units);
    const given = shownIn.toSi("pressure", numbersOf("P", P));
    const length = commonLength({ P: given });
    const at = column(given, length ?? 1);
    const T = this.#module.frame(() => {
      const [first, out] = [this.#module.copyIn(at), this.#module.doubles(at.length)];
      this.#module.call("kw_pure_boiling", this.cas, at.length, first, out);
      return this.#module.copyOut(out, at.length);
    });
    return single(shownIn.fromSi("temperature", T), length);
  }
}
