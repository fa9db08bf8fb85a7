// The calls of reference.py through WebAssembly: every number is that of the native library to 1e-9.
//
//     node numbers.mjs FILE
import { readFileSync } from "node:fs";
import { KestruneError, loadKestrune } from "kestrune";

const LIMIT = 1e-9;
const { mixtures, calls } = JSON.parse(readFileSync(process.argv[2], "utf8"));
const kestrune = await loadKestrune();
const gases = mixtures.map((m) => kestrune.mixture(m, { allowMissingPairs: true }));
const worst = new Map();
let wrong = 0;

function complain(call, path, wanted, found) {
  if (++wrong <= 20) console.error(`${call.method} ${JSON.stringify(call.given)} of ${call.mixture}: ${path}: ${found}, not ${wanted}`);
}

/** Follows what is wanted into what was found: names, places in arrays, "name()" for a method. */
function compare(call, path, wanted, found) {
  if (wanted === undefined) return; // an answer where there should be a status
  if (wanted === "NaN" || wanted === null) {
    if (!(wanted === "NaN" ? Number.isNaN(found) : found === null)) complain(call, path, wanted, found);
  } else if (typeof wanted === "number") {
    const off = Math.abs(Number(found) - wanted) / Math.max(Math.abs(wanted), Number.MIN_VALUE);
    const error = Number(found) === wanted ? 0 : off;
    worst.set(call.method, Math.max(worst.get(call.method) ?? 0, error));
    if (!(error <= LIMIT)) complain(call, path, wanted, found);
  } else if (typeof wanted === "object") {
    for (const key of Object.keys(wanted)) compare(call, `${path}.${key}`, wanted[key], valueOf(found, key));
    if (Array.isArray(wanted) && wanted.length !== (found.length ?? found.size)) complain(call, `${path}.length`, wanted.length, found.length);
  } else if (wanted !== found) complain(call, path, wanted, found);
}

/**
 * The points of a curve lie where its steps end, which magnify rounding: each may slide by 1e-6 along the curve, and lies on
 * it to the limit. The direction is that of its neighbours, in ln T and ln P.
 */
function compareCurve(call, wanted, found) {
  const n = wanted.T.length;
  if (found.T.length !== n) return complain(call, "points", n, found.T.length);
  for (let i = 0; i < n; ++i) {
    const [a, b] = [Math.max(i - 1, 0), Math.min(i + 1, n - 1)];
    const [alongT, alongP] = [Math.log(wanted.T[b] / wanted.T[a]), Math.log(wanted.P[b] / wanted.P[a])];
    const [offT, offP] = [Math.log(found.T[i] / wanted.T[i]), Math.log(found.P[i] / wanted.P[i])];
    const across = Math.abs(offT * alongP - offP * alongT) / (Math.hypot(alongT, alongP) || 1);
    worst.set("across the curve", Math.max(worst.get("across the curve") ?? 0, across));
    if (!(across <= LIMIT && Math.hypot(offT, offP) <= 1e-6)) complain(call, `point ${i}`, [wanted.T[i], wanted.P[i]], [found.T[i], found.P[i]]);
  }
}

function valueOf(found, key) {
  try {
    if (key.endsWith("()")) return found[key.slice(0, -2)]();
    return found instanceof Map ? [...found.values()][key].T : found[key];
  } catch (error) {
    if (error instanceof KestruneError) return `status ${error.status}`;
    throw error;
  }
}

for (const call of calls) {
  const path = call.method.split(".");
  const last = path.pop();
  const owner = path.reduce((object, name) => object[name], gases[call.mixture]);
  let status;
  try {
    const found = owner[last](call.given);
    const { T, P, ...rest } = call.numbers ?? {};
    if (T !== undefined && call.method === "envelope") compareCurve(call, { T, P }, found);
    compare(call, "", call.method === "envelope" ? rest : call.numbers, found);
  } catch (error) {
    if (!(error instanceof KestruneError)) throw error;
    status = error.status;
  }
  if (status !== call.status) complain(call, "status", call.status, status);
}
for (const [method, error] of worst) console.log(`${method.padEnd(22)} worst relative difference ${error.toExponential(1)}`);
console.log(`${calls.length} calls, ${wrong} numbers beyond ${LIMIT}`);
process.exit(wrong === 0 && calls.length > 0 ? 0 : 1);
