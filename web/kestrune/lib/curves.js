// Phase envelopes, quality lines and critical points.
import { numberOf, numbersOf, optionsOf, shown } from "./arguments.js";
import { KestruneError } from "./errors.js";

/** Statuses of a curve that is good for what it shows: closed, open at the default limits, with a line of two liquids. */
const GOOD_CURVES = [0, 140, 141, 146];
const TRACED = 2000; // room for a curve whose number of points was not asked for
/** Neighbours further apart than this in ln P, or 10 times ln T, belong to different parts of the outline. */
const JUMP = 1.5;

/** Points in words, by the numbers of PhaseEnvelope: 2 more where another phase splits off, 4 two liquids. */
function kindInWords(kind, critical, fraction) {
  if (critical) return "critical";
  const stable = kind < 2 || kind === 4;
  const plain = stable ? kind : kind - 2;
  const word = fraction < 1 ? "quality" : plain === 4 ? "two liquids" : plain === 1 ? "dew" : "bubble";
  return stable ? word : `${word} (not stable)`;
}

/** A curve of an envelope, its arrays in the units of the call. */
export class Curve {
  constructor(mixture, fraction, limits, points, units) {
    const found = traced(mixture, fraction, limits, points);
    const what = `curve of ${mixture.title} at vapour fraction ${fraction}`;
    if (found.T.length === 0) throw new KestruneError(found.status, mixture.statusText(found.status), what);
    const last = found.T.length - 1;
    const critical = Array.from(found.kind, (k, i) => k === 0.5 && (fraction !== 0.5 || i === last));
    const place = (T, P) => (T > 0 ? { T: units.fromSi("temperature", T), P: units.fromSi("pressure", P) } : null);
    this.fraction = fraction;
    this.status = found.status;
    this.complete = GOOD_CURVES.includes(found.status);
    this.T = units.fromSi("temperature", found.T);
    this.P = units.fromSi("pressure", found.P);
    this.kind = Array.from(found.kind, (k, i) => kindInWords(k, critical[i], fraction));
    this.cricondentherm = place(found.extremes[0], found.extremes[1]);
    this.cricondenbar = place(found.extremes[2], found.extremes[3]);
    this.critical = Array.from(found.T.keys())
      .filter((i) => critical[i])
      .sort((a, b) => found.T[b] - found.T[a])
      .map((i) => place(found.T[i], found.P[i]));
    this.lines = pieces(found.T, found.P, this.kind).map(({ kind, first, end }) => ({
      kind,
      T: this.T.slice(first, end),
      P: this.P.slice(first, end),
    }));
  }
}

/** Bubble and dew curve with quality lines, by their vapour fractions in `quality`, a Map. */
export class Envelope {
  constructor(mixture, options, units) {
    const { quality = [], points = 0, firstP, highestP, lowestT } = options;
    const fractions = [numbersOf("quality", quality)].flatMap((q) => (typeof q === "number" ? [q] : [...q]));
    const wrong = fractions.find((q) => !(q > 0 && q < 1));
    if (wrong !== undefined) throw new RangeError(`quality lines have vapour fractions between 0 and 1, not ${wrong}`);
    if (fractions.length > 100) throw new RangeError(`at most 100 quality lines, not ${fractions.length}`);
    if (!Number.isInteger(points) || points < 0 || points > 100000)
      throw new RangeError(`points is a whole number from 0 to 100000, not ${shown(points)}`);
    const limit = (name, quantity, value) => {
      if (value === undefined) return 0;
      const si = units.toSi(quantity, numberOf(name, value));
      if (!(si > 0 && si < Infinity)) throw new RangeError(`${name} is a ${quantity} above zero, not ${shown(value)}`);
      return si;
    };
    const limits = [limit("firstP", "pressure", firstP), limit("highestP", "pressure", highestP)];
    if (limits[1] > 0 && limits[0] >= limits[1])
      throw new RangeError(`firstP is below highestP, not ${firstP} and ${highestP}`);
    limits.push(limit("lowestT", "temperature", lowestT));
    const curve = (fraction) => new Curve(mixture, fraction, limits, points, units);
    this.mixture = mixture;
    this.units = units;
    this.curve = curve(1);
    this.quality = new Map(fractions.map((q) => [q, curve(q)]));
  }

  get T() {
    return this.curve.T;
  }
  get P() {
    return this.curve.P;
  }
  get kind() {
    return this.curve.kind;
  }
  get status() {
    return this.curve.status;
  }
  get complete() {
    return this.curve.complete;
  }
  get critical() {
    return this.curve.critical;
  }
  get cricondentherm() {
    return this.curve.cricondentherm;
  }
  get cricondenbar() {
    return this.curve.cricondenbar;
  }
}

export const ENVELOPE_OPTIONS = ["quality", "points", "firstP", "highestP", "lowestT", "units"];

function traced(mixture, fraction, limits, points) {
  const [module, handle] = mixture.native();
  const capacity = Math.max(points, TRACED);
  return module.frame(() => {
    const arrays = [0, 1, 2].map(() => module.doubles(capacity));
    const [found, extremes, status] = [module.integers(1), module.doubles(4), module.integers(1)];
    const range = module.copyIn(Float64Array.from(limits));
    module.call("ka_envelope", handle, fraction, range, points, capacity, ...arrays, found, extremes, status);
    const [code] = module.integersOut(status, 1);
    if (code >= 9000) throw new KestruneError(code, mixture.statusText(code), `curve of ${mixture.title}`);
    const n = Math.min(module.integersOut(found, 1)[0], capacity);
    const [T, P, kind] = arrays.map((at) => module.copyOut(at, n));
    return { T, P, kind, extremes: module.copyOut(extremes, 4), status: code };
  });
}

/** Kind, first and end of the stretches that are drawn as one line; neighbours share a point. */
function pieces(T, P, kind) {
  const all = [];
  for (let k = 0; k < T.length; ++k) {
    const apart = k > 0 && Math.hypot(10 * Math.log(T[k] / T[k - 1]), Math.log(P[k] / P[k - 1])) > JUMP;
    const last = all.at(-1);
    const word = last && kind[k] === "critical" ? last.kind : kind[k];
    if (!last || apart || word !== last.kind) all.push({ kind: word, first: apart || k === 0 ? k : k - 1, end: k + 1 });
    else last.end = k + 1;
  }
  return all;
}

/** The critical point of highest temperature: T, P, molar volume V, compressibility factor Z. */
export function criticalPoint(mixture, units) {
  const [module, handle] = mixture.native();
  return module.frame(() => {
    const [values, status] = [module.doubles(4), module.integers(1)];
    module.call("ka_critical", handle, values, status);
    const [code] = module.integersOut(status, 1);
    if (code !== 0) throw new KestruneError(code, mixture.statusText(code), `critical point of ${mixture.title}`);
    const [T, P, V, Z] = module.copyOut(values, 4);
    const shownIn = (quantity, value) => units.fromSi(quantity, value);
    return { T: shownIn("temperature", T), P: shownIn("pressure", P), V: shownIn("molar volume", V), Z };
  });
}
