// State, address and undo; numbers as people type them.
import assert from "node:assert/strict";
import { test } from "node:test";
import { definitionOf } from "../src/gas.ts";
import { History } from "../src/history.ts";
import { heading, shown } from "../src/numbers.ts";
import { addressOf, firstState, numberOf, stateOf } from "../src/state.ts";

const HARD = "2,2-dimethylbutane;a:b~~3b%&=#+ \u00e9\u{1f4a5}";

test("a state comes back from its address", () => {
  const rows = [HARD, "C7+", "", "methane"].map((name, k) => ({ name, amount: ["1,5%", "", "x;y", "85"][k] }));
  const gas = {
    basis: "mass",
    rows,
    definitions: [
      { kind: "fraction", name: "C7+", words: "M=218, curve=10:120;x" },
      { kind: "component", name: HARD, words: HARD },
    ],
  };
  const all = {
    gases: [gas, { ...gas, basis: "mole" }],
    chosen: 1,
    set: "original",
    zero: true,
    units: "F,psig,kJ/kmol",
    T: "-2,5",
    P: "",
    top: "90",
  };
  const state = {
    ...firstState(),
    ...all,
    quality: "0.9, 0.5",
    hydrate: true,
    inhibitor: "MEG",
    percent: "20",
    water: true,
    waterAmount: "60",
    method: "chart",
    cut: "P",
  };
  assert.deepEqual(stateOf(`#${addressOf(state)}`), { state, strange: [] });
  assert.deepEqual(stateOf(""), { state: firstState(), strange: [] });
  assert.equal(addressOf(firstState()), "a=methane:85;ethane:9;propane:4;n-butane:2&T=-60&P=40");
});

test("nonsense in the address is named and left out", () => {
  const { state, strange } = stateOf("#a=methane:1&units=C,bar&set=7&zero=maybe&method=&cut=H&hydrate&x=1&T=30&abasis=volume&chosen=c");
  assert.deepEqual(strange, ["units=C,bar", "set=7", "zero=maybe", "hydrate=", "method=", "cut=H", "abasis=volume", "chosen=c", "x"]);
  assert.deepEqual([state.units, state.T, state.gases[0].rows.length], ["engineering", "30", 1]);
  for (const text of [
    "%",
    "%zz",
    "a=%E0%A4",
    "&&&=&=;:~",
    "a=;;;:::;",
    "__proto__=1",
    "constructor=2",
    "a".repeat(1e5),
    `a=${"x:1;".repeat(5000)}`,
  ])
    assert.ok(
      stateOf(text).state.gases.every((gas) => gas.rows.length <= 200),
      text.slice(0, 40),
    );
  assert.deepEqual(stateOf(`a=${"x:1;".repeat(201)}`).strange, ["a after entry 200"]);
  assert.match(addressOf({ ...firstState(), T: "\ud8001" }), /T=%EF%BF%BD1&/);
});

test("numbers as they are typed", () => {
  const cases = [
    ["20", 20],
    [" -2,5 ", -2.5],
    ["\u22123", -3],
    ["1e-3", 1e-3],
    [".5", 0.5],
    ["5.", 5],
    ["", NaN],
    ["0x10", NaN],
    ["1e999", NaN],
    ["1e31", NaN],
    ["1,2,3", NaN],
    ["1,000", NaN],
    ["0,125", 0.125],
    ["Infinity", NaN],
    ["12 bar", NaN],
  ];
  for (const [text, value] of cases) assert.ok(Object.is(numberOf(text), value), `${text}: ${numberOf(text)}`);
  assert.deepEqual(
    [0, 78.3151668, 1e-7, 123456789, null].map((v) => shown(v)),
    ["0", "78.3152", "1.0000e-7", "1.2346e+8", "-"],
  );
  assert.deepEqual(
    [heading("temperature", "C"), heading("entropy", "kJ/(kg K)"), heading("density", "kg/m3")],
    ["temperature_C", "entropy_kJ_kg_K", "density_kg_m3"],
  );
});

test("words of a definition", () => {
  assert.deepEqual(
    { ...definitionOf("M=218, kij=methane:0.04, CO2:0.1, SG=0.85") },
    { M: "218", kij: "methane:0.04, CO2:0.1", SG: "0.85" },
  );
  assert.throws(() => definitionOf("218"), /"218" is no description/);
  assert.throws(() => definitionOf("M=1, M=2"), /M is given twice/);
});

test("undo and redo; quick changes of one thing are one step", () => {
  const history = new History(0);
  history.add(1, "T", 0);
  history.add(2, "T", 100);
  history.add(3, "P", 200);
  history.add(4, "P", 5000);
  history.add(5, "", 5001);
  history.add(6, "", 5002);
  assert.deepEqual(
    [1, 2, 3, 4, 5, 6].map(() => history.undo()),
    [5, 4, 3, 2, 0, 0],
  );
  assert.deepEqual([history.redo(), history.redo(), history.canUndo, history.canRedo], [2, 3, true, true]);
  history.add(7, "T", 6000);
  history.settle();
  history.add(8, "T", 6001);
  assert.deepEqual([history.canRedo, history.undo(), history.undo(), history.undo()], [false, 7, 3, 2]);
});
