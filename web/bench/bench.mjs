// Times of the WebAssembly module, microseconds of processor time by the lowest of some passes; bench.py has those of the native library.
import { loadKestrune } from "kestrune";

const kestrune = await loadKestrune();
const rich = kestrune.mixture({
  ...{ methane: 0.7, ethane: 0.09, propane: 0.06, isobutane: 0.015, "n-butane": 0.025, isopentane: 0.01 },
  ...{ "n-pentane": 0.01, "n-hexane": 0.01, nitrogen: 0.03, "carbon dioxide": 0.05 },
});
// The grid of bench/: 101 temperatures times 150 pressures.
const T = Float64Array.from({ length: 15150 }, (_, k) => 150 + 2 * Math.floor(k / 150));
const P = Float64Array.from({ length: 15150 }, (_, k) => 1e5 * ((k % 150) + 1));

function time(what, passes, states, body) {
  let best = Infinity;
  for (let pass = 0; pass < passes; ++pass) {
    const begin = process.cpuUsage();
    body();
    best = Math.min(best, process.cpuUsage(begin).user);
  }
  console.log(`wasm    ${what.padEnd(34)} ${(best / states).toFixed(2).padStart(9)} us`);
}

const begin = performance.now();
await loadKestrune();
console.log(`wasm    a further module made in ${(performance.now() - begin).toFixed(1)} ms`);
time("flash of the rich gas, 2 phases", 9, T.length, () => rich.flash({ T, P, phases: 2 }));
time("flash of the rich gas, 3 phases", 3, T.length, () => rich.flash({ T, P }));
time("the same, one state a call", 5, 1000, () => {
  for (let k = 0; k < 15000; k += 15) rich.flash({ T: T[k], P: P[k], phases: 2 });
});
time("envelope of the rich gas, as traced", 5, 20, () => {
  for (let k = 0; k < 20; ++k) rich.envelope();
});
