// States of a mixture: the phases of a flash and their properties together.
import { isGood, KestruneError } from "./errors.js";
import { LIGHT, LIQUID, Phase, PROPERTIES } from "./phase.js";

export class State {
  #found;
  #feed;
  #made = [];

  /** found: what calls.flash returns; length null for a single state; feed null or rows of nc. */
  constructor(mixture, units, phases, found, length, feed) {
    this.mixture = mixture;
    this.units = units;
    this.phases = phases;
    this.length = length;
    this.#found = found;
    this.#feed = feed;
  }

  get vapour() {
    return this.#phase(0, "vapour", LIGHT);
  }
  get liquid() {
    return this.#phase(1, "liquid", LIQUID);
  }
  get liquid2() {
    return this.#phase(2, "liquid2", LIQUID);
  }

  /** Made when it is first asked for; absent where it was not looked for. */
  #phase(p, name, kind) {
    const { T, P, fractions, x } = this.#found;
    return (this.#made[p] ??= new Phase(this.mixture, {
      ...{ name, units: this.units, kind, T, P, length: this.length },
      fractions: fractions[p] ?? fractions[0].map((v) => (Number.isNaN(v) ? NaN : 0)),
      x: x[p] ?? new Float64Array(x[0].length).fill(NaN),
    }));
  }

  #shown(array) {
    return this.length === null ? array[0] : array.slice();
  }

  get T() {
    return this.#shown(this.units.fromSi("temperature", this.#found.T));
  }
  get P() {
    return this.#shown(this.units.fromSi("pressure", this.#found.P));
  }
  get status() {
    return this.#shown(this.#found.status);
  }
  get ok() {
    const good = Array.from(this.#found.status, isGood);
    return this.length === null ? good[0] : good;
  }
  get beta() {
    return this.#shown(this.#found.fractions[0]);
  }
  get K() {
    const nc = this.mixture.names.length;
    const [y, x] = this.#found.x;
    const all = y.map((v, i) => v / x[i]);
    if (this.length === null) return all;
    return Array.from({ length: this.length }, (_, i) => all.slice(i * nc, (i + 1) * nc));
  }

  /** What the statuses mean, each that occurs on a line of its own with its number of states. */
  statusText() {
    const counts = new Map();
    for (const s of this.#found.status) counts.set(s, (counts.get(s) ?? 0) + 1);
    return [...counts].map(([s, n]) => `${n} x ${s}: ${this.mixture.statusText(s)}`).join("\n");
  }

  *[Symbol.iterator]() {
    yield* [this.vapour, this.liquid, this.liquid2].slice(0, this.phases);
  }

  /** Moles of the aqueous liquid in one mole, or of the other liquids. */
  liquidFraction(aqueous = false) {
    const total = this.#found.T.map((_, i) => (Number.isNaN(this.#found.fractions[0][i]) ? NaN : 0));
    for (const [p, phase] of [this.liquid, this.liquid2].entries()) {
      const fractions = this.#found.fractions[p + 1];
      if (fractions === undefined) continue;
      const flags = [phase.aqueous].flat();
      for (let i = 0; i < total.length; ++i) if (flags[i] === aqueous) total[i] += fractions[i];
    }
    return this.#shown(total);
  }

  #masses() {
    const { molarMasses, molarMass } = this.mixture;
    const nc = molarMasses.length;
    return this.#found.T.map((_, i) =>
      this.#feed === null ? molarMass : molarMasses.reduce((sum, m, j) => sum + m * this.#feed[i * nc + j], 0),
    );
  }

  get molarMass() {
    return this.#shown(this.#masses());
  }

  /** Sum over the phases in SI. */
  #whole(name) {
    const total = this.#found.T.map((_, i) => (Number.isNaN(this.#found.fractions[0][i]) ? NaN : 0));
    [...this].forEach((phase, p) => {
      const fractions = this.#found.fractions[p];
      if (!fractions.some((v) => v > 0)) return;
      const value = phase.inSi(name);
      for (let i = 0; i < total.length; ++i) if (fractions[i] > 0) total[i] += fractions[i] * value[i];
    });
    if (this.length === null && Number.isNaN(total[0]))
      for (const phase of this) if (phase.fraction > 0) phase.property(name); // throws for what failed
    return total;
  }

  #inUnits(name) {
    return this.#shown(this.units.fromSi(PROPERTIES[name][1], this.#whole(name), this.#masses()));
  }

  get enthalpy() {
    return this.#inUnits("enthalpy");
  }
  get entropy() {
    return this.#inUnits("entropy");
  }
  get freeEnthalpy() {
    return this.#inUnits("freeEnthalpy");
  }
  get molarVolume() {
    return this.#inUnits("molarVolume");
  }
  get density() {
    const masses = this.#masses();
    const value = this.#whole("molarVolume").map((v, i) => (1e-3 * masses[i]) / v);
    return this.#shown(this.units.fromSi("density", value, masses));
  }

  /** One of many states. */
  at(index) {
    if (this.length === null) throw new RangeError("a single state has no parts");
    const i = Number.isInteger(index) && index < 0 ? index + this.length : index;
    if (!Number.isInteger(i) || i < 0 || i >= this.length)
      throw new RangeError(`state ${String(index)} of ${this.length}: a whole number from 0 to ${this.length - 1} is needed`);
    const nc = this.mixture.names.length;
    const one = (array) => array.slice(i, i + 1);
    const row = (array) => array.slice(i * nc, (i + 1) * nc);
    const { T, P, status, fractions, x } = this.#found;
    const found = { T: one(T), P: one(P), status: one(status), fractions: fractions.map(one), x: x.map(row) };
    return new State(this.mixture, this.units, this.phases, found, null, this.#feed && row(this.#feed));
  }

  /**
   * Plain data, for a message between threads: T, P, status, and of each phase that is there name, fraction, x, aqueous
   * and the properties asked for; null where one has no value.
   */
  toObject(properties = []) {
    const read = (phase, name) => {
      try {
        const value = phase.property(name);
        return Number.isNaN(value) ? null : value;
      } catch (error) {
        if (error instanceof KestruneError && this.mixture.alive) return null;
        throw error;
      }
    };
    const present = (phase) => this.length !== null || phase.fraction > 0 || phase.x.some((v) => v > 0);
    const phases = [...this].filter(present).map((phase) => {
      const { name, fraction, x, aqueous } = phase;
      return { name, fraction, x, aqueous, ...Object.fromEntries(properties.map((p) => [p, read(phase, p)])) };
    });
    return { T: this.T, P: this.P, beta: this.beta, status: this.status, phases };
  }
}
