// The package as a user has it: inputs of every kind, its errors, its end after a trap, its memory.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { KestruneError, loadKestrune } from "kestrune";
import { bareExports, MixtureRecord } from "kestrune/exports";

const kestrune = await loadKestrune();
const gas = kestrune.mixture({ methane: 0.85, ethane: 0.09, propane: 0.04, nC4: 0.02 });
const near = (found, wanted) => assert.ok(Math.abs(found / wanted - 1) < 1e-9, `${found}, not ${wanted}`);
const refused = (kind, text, call) => assert.throws(call, (e) => e instanceof kind && e.message.includes(text) || assert.fail(`${e?.name}: ${e?.message}, not ${kind.name}: ${text}`));

function arraysAreStates() {
  const T = [200, 220, 240];
  const many = gas.flash({ T, P: 40e5 });
  assert.equal(many.length, 3);
  T.forEach((t, i) => {
    const one = gas.flash({ T: t, P: 40e5 });
    assert.equal(many.beta[i], one.beta);
    assert.equal(many.at(i).enthalpy, one.enthalpy);
    assert.deepEqual(many.liquid.x[i], one.liquid.x);
  });
  const feeds = gas.flash({ T: 220, P: 40e5, z: [[1, 0, 0, 0], [85, 9, 4, 2], [NaN, 0, 0, 0]] });
  near(feeds.beta[1], gas.flash({ T: 220, P: 40e5 }).beta);
  assert.deepEqual([...feeds.ok], [true, true, false]);
  assert.equal(gas.flash({ T: [], P: 1e5 }).length, 0);
  const slabs = gas.flash({ T: new Float64Array(5000).fill(220), P: 40e5, phases: 2 });
  assert.ok(slabs.enthalpy.every((h) => h === slabs.enthalpy[0]));
  assert.deepEqual(structuredClone(gas.flash({ T: 220, P: 40e5 }).toObject(["density", "viscosity"])).phases.map((p) => p.viscosity === null), [false, true]);
}

function errorsSayWhatIsWrong() {
  refused(RangeError, 'unknown component "methan", did you mean methane', () => kestrune.mixture({ methan: 1 }));
  refused(RangeError, "allowMissingPairs: true takes them as zero", () => kestrune.mixture({ nitrogen: 0.5, "carbonyl sulfide": 0.5 }));
  refused(RangeError, "the amount of methane must be a finite number", () => kestrune.mixture({ methane: NaN }));
  refused(RangeError, "no option \"phase\"", () => gas.flash({ T: 220, P: 1e5, phase: 2 }));
  refused(RangeError, "not T and P and H", () => gas.flash({ T: 220, P: 1e5, H: 0 }));
  refused(TypeError, "P is a number or an array of numbers, not \"1e5\"", () => gas.flash({ T: 220, P: "1e5" }));
  refused(RangeError, "T has 2, P has 3", () => gas.flash({ T: [1, 2], P: [1, 2, 3] }));
  refused(RangeError, "4 fractions", () => gas.flash({ T: 220, P: 1e5, z: [1, 2] }));
  refused(KestruneError, "status 9004", () => gas.flash({ T: NaN, P: 1e5 }));
  refused(KestruneError, "no temperature or pressure has this vapour fraction with two phases (status 116)", () => gas.bubble({ P: 500e5 }));
  refused(RangeError, "NUL", () => kestrune.components("a\0b"));
  const many = Array.from({ length: 21 }, (_, k) => [`F${k}`, { M: 200 + 5 * k, SG: 0.8 + 0.005 * k, pieces: 20, eta: 150 + 5 * k }]);
  const file = { components: Object.fromEntries(many.map(([name]) => [name, 1])), fractions: Object.fromEntries(many) };
  refused(RangeError, "at most 400 components here, not 420", () => kestrune.mixture(file));
  const gone = kestrune.mixture({ methane: 1 });
  gone.dispose();
  gone.dispose();
  refused(Error, "disposed", () => gone.flash({ T: 200, P: 1e5 }));
}

function pureComponents() {
  const propane = kestrune.pure("C3H8");
  assert.ok(Math.abs(propane.boilingTemperature({ P: 101325 }) - 231.04) < 0.1); // its normal boiling point, data/components.csv
  assert.ok(propane.at("vapourPressure", { T: [300, 400] }).outside.every((o) => o === false));
}

function reportsAreThoseOfTheCommandLine() {
  const wet = kestrune.mixture({ methane: 0.6, ethane: 0.05, nC4: 0.05, nC6: 0.1, nC8: 0.1, water: 0.1 }, { units: "C,bar" });
  const [report, state] = [wet.report({ T: 40, P: 40 }), wet.flash({ T: 40, P: 40 })];
  assert.deepEqual(report.phases.map((p) => p.name), ["vapour", "hydrocarbon liquid", "aqueous liquid"]);
  [...state].forEach((phase, k) => {
    for (const name of ["fraction", "molarMass", "density", "enthalpy", "Cp"]) near(report.phases[k][name], phase[name]);
    assert.deepEqual(report.phases[k].x, phase.x);
  });
  near(report.overall.enthalpy, state.enthalpy);
  assert.deepEqual([report.phases[1].viscosity, report.notes.some((note) => note.includes("not for liquid water"))], [null, true]);
  assert.deepEqual(gas.report({ T: 20, P: 200, units: "C,bar" }).phases.map((p) => p.name), ["dense"]);
  refused(KestruneError, "report of methane, ethane, propane, 1 more at T = 220 K and P = -5 Pa: ", () => gas.report({ T: 220, P: -5 }));
  refused(RangeError, 'no option "z"', () => gas.report({ T: 220, P: 1e5, z: [1] }));
  const sour = kestrune.mixture({ methane: 90, CO2: 10 });
  const { T, P, warnings } = sour.hydrateRange({ inhibitor: "NaCl", percent: 22, units: "C,bar" });
  assert.deepEqual([...T, ...P].map((v) => Math.round(100 * v) / 100), [-8.15, 24.85, 12, 400]);
  assert.deepEqual(warnings, ["10 % carbon dioxide, outside sweet gas", "22 % inhibitor outside 0 to 20 %"]);
  assert.equal(sour.givenSum, 100);
}

/** What somebody may pass by mistake, or a program on its way to something else. */
const cyclic = {};
cyclic.self = cyclic;
const deep = Array.from({ length: 1e4 }).reduce((inner) => ({ components: inner }), 1);
const ODD = [
  ...[undefined, null, NaN, Infinity, -Infinity, -1, 0, -0, 1, 1e308, 1e-320, 2 ** 53, 220, 40e5, 0.5, "", "methane", "C,bar", "\0", "\ud800"],
  ...["💥".repeat(1e4), "[".repeat(1e5), "x=1,".repeat(1e5), true, 10n, Symbol("s"), () => 1, new Date(0), /x/, {}, [], [NaN], [1, "a"], [[1], [2, 3]]],
  ...[new Float64Array(0), new Float64Array([220, NaN]), new BigInt64Array(2), new DataView(new ArrayBuffer(8)), new ArrayBuffer(8), cyclic, deep],
  ...[{ methane: 1 }, { components: [] }, { components: { methane: 1 }, fractions: 7 }, new Map([["methane", 1]]), Object.create(null), Array(1000).fill(300)],
];

const USUAL = { T: 280, P: 30e5, H: -2e3, S: -40, beta: 0.5, z: [5, 1, 1, 1], phases: 2, method: "eos", water: 1e-4, units: "si", x: [1, 1, 1, 1] };

function randomInputNeverTraps(rounds) {
  const before = gas.flash({ T: 213.15, P: 40e5 }).beta;
  let seed = 7;
  const next = (n) => (seed = (seed * 48271) % 2147483647) % n;
  const odd = () => ODD[next(ODD.length)];
  const some = (...names) =>
    Object.fromEntries(names.filter(() => next(3) > 0).map((name) => [name, name in USUAL && next(3) > 0 ? USUAL[name] : odd()]));
  const methods = [
    () => kestrune.mixture(odd(), next(2) ? odd() : some("basis", "set", "name", "freeWater", "solubility", "settings", "units")),
    () => gas.flash(next(4) ? some("T", "P", "H", "S", "beta", "z", "phases", "units") : odd()),
    () => gas.flash({ T: 220, P: 40e5, ...some("T", "P", "phases", "z") }).toObject(["density", odd()]),
    () => gas.bubble(some("T", "P")).dew,
    () => gas.properties({ T: 280, P: 1e5, ...some("T", "P", "phase", "x", "units") }).viscosity,
    () => gas.envelope(some("quality", "points", "firstP", "highestP", "lowestT")),
    () => gas.kij(some("T")),
    () => gas.water.content({ T: 280, P: 1e6, ...some("T", "P", "method") }),
    () => gas.water.dew(some("T", "P", "water", "method")),
    () => gas.hydrate(some("T", "P", "inhibitor", "percent")),
    () => gas.hydrateRange(some("inhibitor", "percent")),
    () => gas.report(some("T", "P", "units")),
    () => kestrune.components(odd()),
    () => kestrune.pure(odd()).at(odd(), some("T")),
    () => kestrune.pure("water").at("vapourPressure", { T: odd() }),
    () => kestrune.units(odd()).toSi(odd(), odd()),
    () => kestrune.statusText(odd()),
  ];
  let thrown = 0;
  for (let round = 0; round < rounds; ++round) {
    const method = methods[next(methods.length)];
    try {
      method();
    } catch (error) {
      ++thrown;
      assert.ok(error instanceof Error && error.message.length > 0 && error.message.length < 5000, `${method}: ${error}`);
      assert.ok(!/undefined is not|Cannot read|is not a function|is not iterable/.test(error.message), `${method}: ${error.stack}`);
    }
    assert.ok(kestrune.alive, String(method));
  }
  assert.equal(gas.flash({ T: 213.15, P: 40e5 }).beta, before);
  console.log(`${rounds} rounds of random input, ${thrown} refused`);
}

async function bareExportsCheckTheirWords() {
  const bare = bareExports(await loadKestrune());
  const numbers = (n = 1) => new Float64Array(n);
  const record = new MixtureRecord(numbers(86), 2);
  const flash = (mixture, K) => bare.FlashLVatTP(300, 1, [0.5, 0.5], mixture, null, 1, numbers(), numbers(2), numbers(2), K);
  assert.equal(flash(record, numbers(2)), 9008); // no group data
  refused(RangeError, "K: 1 values, 2 are needed", () => flash(record, numbers(1)));
  refused(TypeError, "mixture: a MixtureRecord is needed", () => flash({}, numbers(2)));
  bare.ConvertPPR78GroupData(1, 1, [1], [0], [0], null);
  refused(RangeError, "2 components, but the group data are those of 1", () => flash(record, numbers(2)));
}

async function aTrapIsSaid() {
  const broken = await loadKestrune();
  const own = broken.mixture({ methane: 1 });
  refused(KestruneError, "loadKestrune()", () => broken.module.raw("ka_free", 0x7fffffff));
  assert.equal(broken.alive, false);
  refused(KestruneError, "status 9011", () => own.flash({ T: 200, P: 1e5 }));
  own.dispose();
  assert.ok((await loadKestrune()).alive && kestrune.alive);
}

async function memoryIsFreed() {
  const pages = () => kestrune.module.memoryBytes;
  for (let k = 0; k < 200; ++k) kestrune.mixture({ methane: 0.5, propane: 0.5 }).dispose();
  const before = pages();
  for (let k = 0; k < 2000; ++k) kestrune.mixture({ methane: 0.5, propane: 0.5 }).dispose();
  assert.equal(pages(), before);
}

/** The first block of the README as it is pasted, against what its comments say. */
async function readmeWorks() {
  const readme = readFileSync(new URL("./README.md", import.meta.resolve("kestrune")), "utf8");
  const code = readme.match(/```js\n(.*?)```/s)[1];
  const wanted = [...code.matchAll(/console\.log.*; \/\/ (.*)/g)].map((m) => m[1].replace(/ [a-z].*$/, ""));
  const lines = [];
  const body = code.replace('import { loadKestrune } from "kestrune";', "").replaceAll("console.log", "print");
  await new (async () => {}).constructor("loadKestrune", "print", body)(loadKestrune, (...words) => lines.push(words.join(" ")));
  assert.deepEqual(lines, wanted);
}

arraysAreStates();
pureComponents();
errorsSayWhatIsWrong();
reportsAreThoseOfTheCommandLine();
randomInputNeverTraps(1000);
await bareExportsCheckTheirWords();
await aTrapIsSaid();
await memoryIsFreed();
await readmeWorks();
console.log("the package does what it says");
