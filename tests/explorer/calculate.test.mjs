// What the worker calculates: the numbers of the package, messages beside the right row, and no trap whatever is typed.
import assert from "node:assert/strict";
import { test } from "node:test";
import { loadKestrune } from "kestrune";
import { fractionsOf, partsOf, Session } from "../src/calculate.ts";
import { inWords } from "../src/gas.ts";
import { tableOf } from "../src/paste.ts";
import { firstState, stateOf } from "../src/state.ts";

const wasm = (await import("node:fs")).readFileSync(`${process.env.KESTRUNE_PACKAGE}/kestrune.wasm`);
const kestrune = await loadKestrune({ wasm, onMessage: () => {} });
const session = new Session(kestrune);
const parts = (address) => {
  const found = {};
  for (const part of partsOf(session, stateOf(address).state)) (found[part.part] ??= []).push(part);
  return found;
};
const gasOf = (address) => parts(address).gas[0];

test("every part has the numbers of the same call", () => {
  const file = {
    components: { methane: 85, ethane: 9, propane: 4, "C7+": 2 },
    fractions: { "C7+": { M: 110, SG: 0.74, pieces: 2 } },
  };
  const gas = kestrune.mixture(file, { units: "F,psig,kJ/kmol" });
  const found = parts(
    "a=methane:85;ethane:9;propane:4;C7%2B:2&afraction=C7%2B:M=110,SG=0.74,pieces=2&units=F,psig,kJ/kmol&T=-20&P=500&quality=0.9&hydrate=1&inhibitor=MEG&percent=20&water=1&ppm=60&cut=T",
  );
  const { lines, cricondentherm } = gas.envelope({ points: 600 }).curve;
  assert.deepEqual(
    [found.envelope[0].curves[0].lines, found.envelope[0].curves[0].cricondentherm],
    [lines, cricondentherm],
  );
  assert.deepEqual(
    found.quality[0].curves[0].lines,
    gas.envelope({ quality: 0.9, points: 600 }).quality.get(0.9).lines,
  );
  const { phases, overall } = gas.report({ T: -20, P: 500 });
  assert.deepEqual([found.point[0].phases, found.point[0].overall], [phases, overall]);
  const [hydrate, water] = [found.hydrate[0], found.water[0]];
  assert.deepEqual(hydrate.T, [...gas.hydrate({ P: hydrate.P, inhibitor: "MEG", percent: 20 }).T]);
  assert.deepEqual(water.T, [...gas.water.dew({ P: water.P, water: 60e-6 }).T]);
  const bare = gas.hydrate({ P: hydrate.P }).T; // the range of the hydrate correlation is that without inhibitor, 17.33 to 76.73 F
  assert.deepEqual(
    hydrate.good,
    hydrate.P.map((P, k) => bare[k] >= 17.33 && bare[k] <= 76.73 && P >= 159.35 && P <= 5786.8),
  );
  assert.ok(hydrate.good.includes(true) && hydrate.good.includes(false));
  const cut = found.cut.at(-1);
  const along = gas.flash({ T: cut.x.map(() => -20), P: cut.x });
  for (const key of ["beta", "density", "enthalpy"]) assert.deepEqual(cut[key], [...along[key]]);
  assert.deepEqual(
    found.gas[0].shares.map((v) => Math.round(1e9 * v)),
    [85e7, 9e7, 4e7, 2e7],
  );
});

test("what is wrong stands beside its row or field", () => {
  const { rowErrors, rowHints, error } = gasOf("a=methan:85;ethane:-1;:3;C2:4;water:x;propane:;butane:9%25");
  assert.match(rowErrors[0], /^unknown component "methan", did you mean methane, .*\?$/);
  assert.deepEqual(rowErrors.slice(1), [
    "The amount -1 is negative.",
    "The amount has no component.",
    "ethane is given twice.",
    '"x" is no amount: write a number, 12.5 or 12.5%.',
    "",
    "",
  ]);
  assert.deepEqual([rowHints[5], error], ["no amount: left out", ""]);
  assert.match(gasOf("a=methane:1;C7%2B:1&afraction=C7%2B:SG=0.85").definitionErrors[0], /M is missing/);
  assert.match(gasOf("a=nitrogen:1;carbonyl+sulfide:1").error, /no published group interaction .* tick/);
  assert.ok(gasOf("a=nitrogen:1;carbonyl+sulfide:1&zero=1").ok);
  assert.equal(gasOf("a=").error, "Type a component and its amount.");
  assert.match(gasOf("a=methane:0;ethane:0").error, /all amounts .* zero/);
  const { units, water, hydrate, quality } = parts("a=methane:1&T=-300&P=x&water=1&hydrate=1&inhibitor=MEG&quality=2");
  assert.deepEqual(units[0].fieldErrors, ["The temperature in C is not above absolute zero.", '"x" is no number.']);
  assert.deepEqual([water[0].field, hydrate[0].field, quality[0].errors.length], ["waterAmount", "percent", 1]);
  assert.deepEqual(fractionsOf("0,9; 0.5,0,25"), [0.9, 0.5, 0.25]);
  assert.match(gasOf("a=methane:1,000;ethane:1").rowErrors[0], /may be 1.000 or 1000/);
});

test("tables as spreadsheets copy them", () => {
  const rows = (text) =>
    tableOf(kestrune, text)
      .rows.map(({ name, amount }) => `${name}=${amount}`)
      .join(" ");
  assert.equal(rows("methane\t85,12\r\nC2\t14,88\r\n"), "methane=85,12 C2=14,88");
  assert.equal(
    rows("Component;Formula;mol%\nMethane;CH4;85,12\nEthane;C2H6;14,88\nTotal;;100"),
    "methane=0.8512 ethane=0.1488",
  );
  assert.equal(rows("Component\twt%\nMethane\t50\nEthane\t50"), "Methane=50 Ethane=50");
  assert.equal(rows("methane=0.9,ethane=0.1"), "methane=0.9 ethane=0.1");
  assert.throws(() => rows("Component\tmol%\nMethane\t85\nEthan\t15"), /line 3: unknown component "Ethan"/);
});

test("plus fractions have the moles of all their pieces, whatever their names", () => {
  const { shares } = gasOf(
    "a=methane:80;c7%2B:10;C7%2B x:10&afraction=C7%2B:M=120,SG=0.75,pieces=2;C7%2B x:M=220,SG=0.8,pieces=2".replaceAll(" ", "+"),
  );
  assert.deepEqual(shares.map((v) => Math.round(1e9 * v)), [8e8, 1e8, 1e8]);
});

test("a pasted table keeps the basis and the descriptions of the gas, a mixture file brings its own", () => {
  const C7 = { kind: "fraction", name: "C7+", words: "M=120, SG=0.75" };
  const other = { kind: "fraction", name: "C20+", words: "M=400, SG=0.9" };
  const gas = { basis: "mass", rows: [], definitions: [C7, other] };
  const plain = tableOf(kestrune, "methane\t80,125\nc7+\t19,875", gas);
  assert.deepEqual(plain.rows.map((r) => `${r.name}=${r.amount}`), ["methane=80.125", "c7+=19.875"]);
  assert.deepEqual([plain.basis, plain.definitions], ["mass", [C7]]);
  assert.match(plain.notes.join(" "), /C7\+ was kept.*C20\+|C20\+ was dropped.*C7\+ was kept/);
  const moles = tableOf(kestrune, "Component\tmol%\nmethane\t80\nC7+\t20", gas);
  assert.deepEqual([moles.basis, moles.notes[0]], ["mole", "Amounts are moles now, as the table says."]);
  for (const text of [
    "[mixture]\nmethane 80\nC7+ 20\n[fraction C7+]\nM = 120\nSG = 0.75\n",
    "[fraction C7+]\nM=120\nSG=0.75\n[mixture]\nmethane;80\nC7+;20",
    '{"components": {"methane": 80, "C7+": 20}, "fractions": {"C7+": {"M": 120, "SG": 0.75}}}',
  ]) {
    const { rows, definitions } = tableOf(kestrune, text);
    assert.deepEqual([rows.map((r) => r.name), definitions], [["methane", "C7+"], [C7]], text);
  }
  const lists = '{"components": {"methane": 1, "x": 1}, "fractions": {"x": {"M": 120, "SG": [0.75]}}}';
  assert.throws(() => tableOf(kestrune, lists), /description of x has lists or objects/);
  assert.equal(tableOf(kestrune, "methane=0.8,C7+=0.2", gas).rows[1].name, "C7+");
});

test("a cut has points on both sides of its corners, and no boiling point in a dense phase", () => {
  const cut = parts("a=methane:85;ethane:10;propane:5&T=-20&P=40&cut=P").cut.at(-1);
  const kind = (beta) => (beta > 0 && beta < 1 ? "two" : beta);
  const corners = [...cut.x.keys()].slice(1).filter((k) => kind(cut.beta[k]) !== kind(cut.beta[k - 1]));
  const range = cut.x.at(-1) - cut.x[0];
  assert.equal(corners.length, 2);
  for (const k of corners) assert.ok(cut.x[k] - cut.x[k - 1] < 1e-6 * range, String(cut.x[k] - cut.x[k - 1]));
  assert.equal(cut.gaps.length, 0);
  assert.equal(parts("a=methane:85;ethane:10;propane:5&T=0&P=40&cut=T&top=200").cut.at(-1).gaps.length, 1);
  assert.equal(parts("a=propane:1&T=20&P=5&cut=T").cut.at(-1).gaps.length, 0);
  assert.equal(parts("a=methane:50;H2S:50").envelope[0].curves[0].critical.length, 1);
  assert.match(parts("a=CO2:50;water:50").envelope[0].errors.join(), /no stable critical point/);
});

test("a thousand states of anything end in parts and words", () => {
  let seed = 11;
  const next = (n) => (seed = (seed * 48271) % 2147483647) % n;
  const pick = (list) => list[next(list.length)];
  const names = kestrune.components().map((c) => c.name);
  const ODD = [
    "",
    " ",
    "x",
    "-1",
    "0",
    "1e308",
    "1e-320",
    "NaN",
    "%",
    "\0",
    "\ud800",
    "a".repeat(400),
    "5",
    "0.3",
    "85,12",
    "12%",
    "__proto__",
    "{}",
    "M=1",
    "C7+",
    "<b>",
    "\n",
  ];
  const odd = () => (next(12) ? pick(names) : pick(ODD));
  const words = () =>
    pick([
      "M=218, SG=0.85",
      "SG=0.7",
      "M=142, Tc=617, Pc=21, omega=0.49",
      "M=90,SG=0.7,pieces=40",
      "API=30, M=200, distribution=gamma, alpha=1.2",
      ...ODD,
    ]);
  const state = () => {
    const first = firstState();
    const definitions = Array.from({ length: next(6) ? 0 : 1 + next(2) }, () => ({
      kind: pick(["fraction", "component"]),
      name: pick(["C7+", "cut", ...ODD]),
      words: words(),
    }));
    const rows = Array.from({ length: 1 + next(next(20) ? 7 : 41) }, () => ({
      name: odd(),
      amount: next(10) ? String(1 + next(100)) : pick(ODD),
    }));
    for (const d of definitions) rows.push({ name: d.name, amount: "5" });
    first.gases = Array.from({ length: 1 + (next(8) === 0) }, () => ({
      basis: pick(["mole", "mass"]),
      rows,
      definitions,
    }));
    for (const key of ["T", "P", "top", "quality", "percent", "waterAmount"])
      if (!next(6)) first[key] = pick([...ODD, "0.5 0.9", "-300", "500", "1e5"]);
    const flags = {
      zero: next(3) > 0,
      hydrate: next(4) === 0,
      water: next(4) === 0,
      inhibitor: pick(["", "MEG", "NaCl", "x"]),
      set: pick(["2022", "original"]),
    };
    return {
      ...first,
      ...flags,
      units: pick(["engineering", "si", "field", "F,psig,kJ/kmol"]),
      cut: next(20) ? "" : pick(["T", "P"]),
      method: pick(["eos", "chart"]),
    };
  };
  let good = 0;
  for (let round = 0; round < 1000; ++round) {
    const asked = state();
    for (const part of partsOf(session, asked)) {
      if (part.part === "gas") good += part.ok;
      const said = [part.error ?? "", ...(part.notes ?? []), ...(part.errors ?? []), ...(part.rowErrors ?? [])];
      for (const text of said)
        assert.ok(!/undefined|\[object|Cannot read|is not a function/.test(text), `${text}: ${JSON.stringify(asked)}`);
      if (part.part === "gas" && !part.ok)
        assert.ok([part.error, ...part.rowErrors, ...part.definitionErrors].some(Boolean), JSON.stringify(asked));
      structuredClone(part);
    }
    try {
      tableOf(
        kestrune,
        Array.from({ length: 1 + next(5) }, () => `${odd()}${pick(["\t", ";", ",", "=", " "])}${odd()}`).join("\n"),
      );
    } catch (error) {
      assert.ok(inWords(error).length > 0 && error instanceof RangeError, error.stack);
    }
    assert.ok(kestrune.alive);
  }
  console.log(`1000 states, ${good} gases calculated, ${(kestrune.module.memoryBytes / 1e6).toFixed(0)} MB`);
  assert.ok(good > 200);
});

test("two gases and what they say", () => {
  const found = parts("a=methane:90;water:10&b=CO2:1&T=0&P=20");
  const wet = parts("a=methane:60;n-hexane:30;water:10&T=0&P=20&water=1").water[0];
  assert.ok(
    wet.good.includes(true) &&
      wet.notes.some((text) => /^no single gas without its water at \d+ of 41 points/.test(text)),
  );
  assert.match(found.envelope[0].errors[0], /water by the group interactions/);
  assert.ok(found.envelope[1].pure && found.envelope[1].curves[0].lines.length === 1);
  assert.deepEqual(
    found.point.map((p) => p.phases[0].name),
    ["vapour", "vapour"],
  );
  assert.ok(found.point[0].notes.some((text) => text.endsWith("the command water is the one to trust")));
});
