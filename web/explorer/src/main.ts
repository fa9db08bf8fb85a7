// The page: its parts, and what happens between them.
import { Commands } from "./commands.ts";
import { Composition } from "./composition.ts";
import { Conditions } from "./conditions.ts";
import { h, say } from "./dom.ts";
import { Known } from "./known.ts";
import { Link } from "./link.ts";
import type { Part } from "./protocol.ts";
import { Report, spokenOf } from "./report.ts";
import { addressOf, numberOf, stateOf } from "./state.ts";
import { Store } from "./store.ts";
import { texts } from "./texts.ts";
import { Theme } from "./theme.ts";
import { View } from "./view.ts";

const REST = 500; // ms without a change, after which the point is read out
const ADDRESS = 250; // and after which the address shows the state
const inline = (id: string) => document.getElementById(id)!.textContent!;
const root = document.documentElement;

const read = stateOf(location.hash);
const store = new Store(read.state);
const known = new Known();
const message = h("p", { class: "message", role: "alert" });
const spoken = h("p", { class: "unseen", role: "status" });
const version = h("span", { class: "hint" }, texts.loading);
const tell = (text: string) => say(message, text);
const link = new Link(inline("worker"), inline("module"), {
  ready: (text) => say(version, texts.ready(text)),
  part: take,
  done: finish,
  failed: (text, started) => rest(started ? texts.restarted(text) : texts.failed(text)),
  tooLong: () => rest(texts.tooLong),
});
const theme = new Theme(() => draw());
const conditions = new Conditions(store, changeUnits);
const composition = new Composition(store, link, tell, spoken, conditions.model);
const view = new View(store, known, () => draw());
const report = new Report();
const commands = new Commands(store, known, tell, showAddress, theme.box);

// ---- calculation --------------------------------------------------------------------------------

function rest(text: string): void {
  tell(text);
  root.dataset.state = "done";
}

function take(part: Part): void {
  known.take(part);
  if (part.part === "gas") composition.show(known);
  soon();
}

let speaking = 0;

function finish(): void {
  known.finish(store.state.gases.length);
  draw();
  clearTimeout(speaking);
  speaking = window.setTimeout(() => say(spoken, spokenOf(known)), REST);
  root.dataset.state = "done";
}

let scheduled = 0;

/** Draws at the next frame what has come until then. */
function soon(): void {
  scheduled ||= requestAnimationFrame(draw);
}

function draw(): void {
  cancelAnimationFrame(scheduled);
  scheduled = 0;
  known.gases = store.state.gases.length;
  view.draw(theme.dark);
  report.show(known);
  conditions.show(known);
}

/** The point stays where it is: its numbers are those of the new units. */
async function changeUnits(units: string): Promise<void> {
  const from = store.state.units;
  const { T, P, top } = store.state;
  const question = { kind: "convert" as const, from, to: units, T: [numberOf(T)], P: [numberOf(P), numberOf(top)] };
  const answer = await link.ask(question, "converted").catch(() => null);
  if (answer === null || store.state.units !== from) return conditions.update();
  const shownIn = (value: number, old: string) => (Number.isFinite(value) ? String(Number(value.toPrecision(9))) : old);
  store.change({ units, T: shownIn(answer.T[0], T), P: shownIn(answer.P[0], P), top: shownIn(answer.P[1], top) }, "");
}

// ---- the address --------------------------------------------------------------------------------

let shownAddress = location.hash.slice(1);
let addressTimer = 0;

function showAddress(): void {
  clearTimeout(addressTimer);
  shownAddress = addressOf(store.state);
  history.replaceState(null, "", `#${shownAddress}`);
}

function tellStrange(words: string[]): void {
  tell(words.length > 0 ? texts.strange(words) : "");
}

function addressChanged(): void {
  if (location.hash.slice(1) === shownAddress) return;
  const { state, strange } = stateOf(location.hash);
  store.change(state, "");
  tellStrange(strange);
}

// ---- all together -------------------------------------------------------------------------------

/** After every change of the state. */
function update(): void {
  root.dataset.state = "busy";
  tell("");
  composition.update();
  conditions.update();
  commands.update();
  composition.show(known);
  known.begin();
  link.calculate(store.state);
  soon();
  clearTimeout(addressTimer);
  addressTimer = window.setTimeout(showAddress, ADDRESS);
}

function build(): void {
  const title = h("div", {}, h("h1", {}, texts.title), h("p", { class: "hint" }, `${texts.subtitle}. `, version));
  const fields = h("section", { class: "conditions", "aria-label": texts.point }, conditions.element);
  const left = h("div", { class: "left" }, composition.element, fields);
  const right = h("div", { class: "right" }, view.element, report.element);
  document.body.replaceChildren(h("header", {}, title, commands.element), message, h("main", {}, left, right), spoken);
}

build();
store.onChange(update);
update();
tellStrange(read.strange);
addEventListener("focusout", () => store.settle());
addEventListener("hashchange", addressChanged);
addEventListener("resize", soon);
