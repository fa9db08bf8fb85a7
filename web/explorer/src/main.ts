// The page: its parts, and what happens between them.
import { drawChart, type ChartSpec } from "./chart.ts";
import { Conditions } from "./conditions.ts";
import { cutPictures } from "./cuts.ts";
import { Definitions } from "./definitions.ts";
import { button, choice, h, say } from "./dom.ts";
import { curvesCsv, cutsCsv, pngOf, save, svgOf } from "./exports.ts";
import { Handle } from "./handle.ts";
import { Known } from "./known.ts";
import { Link } from "./link.ts";
import { shown } from "./numbers.ts";
import { DARK, LIGHT, type Palette } from "./palette.ts";
import { pictureOf } from "./picture.ts";
import type { Part, Place } from "./protocol.ts";
import { Report, spokenOf } from "./report.ts";
import { addressOf, numberOf, stateOf } from "./state.ts";
import { Store } from "./store.ts";
import { Table } from "./table.ts";
import { texts } from "./texts.ts";
import { Theme } from "./theme.ts";

const inline = (id: string) => document.getElementById(id)!.textContent!;
const REST = 500; // ms without a change, after which the point is read out
const read = stateOf(location.hash);
const store = new Store(read.state);
const known = new Known();
const theme = new Theme(() => draw());
const report = new Report();

// ---- what is said -------------------------------------------------------------------------------

const message = h("p", { class: "message", role: "alert" });
const whole = h("p", { class: "wrong", id: "whole" });
const stale = h("p", { class: "hint", id: "stale" });
const sum = h("p", { class: "hint", id: "sum" });
const spoken = h("p", { class: "unseen", role: "status" });
const version = h("span", { class: "hint" }, texts.loading);
const tell = (text: string) => say(message, text);

// ---- calculation --------------------------------------------------------------------------------

const link = new Link(inline("worker"), inline("module"), {
  ready: (text) => say(version, texts.ready(text)),
  part: take,
  done: finish,
  failed: (text, started) => rest(started ? texts.restarted(text) : texts.failed(text)),
  tooLong: () => rest(texts.tooLong),
});

function rest(text: string): void {
  tell(text);
  document.documentElement.dataset.state = "done";
}

function calculate(): void {
  known.begin();
  link.calculate(store.state);
}

function take(part: Part): void {
  known.take(part);
  if (part.part === "gas" && part.gas === store.state.chosen) showGas();
  soon();
}

let speaking = 0;

function finish(): void {
  known.finish(store.state.gases.length);
  draw();
  clearTimeout(speaking);
  speaking = window.setTimeout(() => say(spoken, spokenOf(known)), REST);
  document.documentElement.dataset.state = "done";
}

// ---- the picture --------------------------------------------------------------------------------

const svg = document.createElementNS("http://www.w3.org/2000/svg", "svg");
svg.id = "envelope";
const box = h("div", { class: "picture" });
box.append(svg);
const cuts = h("div", { class: "cuts" });
let drawn: ChartSpec | null = null;
const handle = new Handle(svg, moveTo, () => draw());

function point(): Place | null {
  const [T, P] = [numberOf(store.state.T), numberOf(store.state.P)];
  return Number.isNaN(T) || Number.isNaN(P) ? null : { T, P };
}

function moveTo(place: Place): void {
  store.change({ T: String(place.T), P: String(place.P) }, "point");
}

let scheduled = 0;
/** Draws at the next frame what has come until then. */
function soon(): void {
  scheduled ||= requestAnimationFrame(draw);
}

function drawCuts(palette: Palette): void {
  const specs = cutPictures(known, palette);
  while (cuts.children.length > specs.length) cuts.lastElementChild!.remove();
  specs.forEach((spec, k) => {
    let picture = cuts.children[k] as SVGSVGElement | undefined;
    if (picture === undefined) {
      picture = document.createElementNS("http://www.w3.org/2000/svg", "svg");
      picture.id = `cut-${k}`;
      picture.setAttribute("role", "img");
      cuts.append(picture);
    }
    picture.setAttribute("aria-label", spec.title);
    drawChart(
      picture,
      spec,
      {
        width: Math.max(230, box.clientWidth < 700 ? box.clientWidth : Math.floor(box.clientWidth / 3) - 6),
        height: 260,
      },
      palette,
    );
  });
}

function draw(): void {
  cancelAnimationFrame(scheduled);
  scheduled = 0;
  const palette = theme.dark ? DARK : LIGHT;
  known.gases = store.state.gases.length;
  const spec = pictureOf(known, point(), numberOf(store.state.top), palette);
  // While the point is dragged, the axes stay.
  if (handle.dragging && drawn !== null) [spec.x.range, spec.y.range] = [drawn.x.range, drawn.y.range];
  drawn = spec;
  const width = Math.max(300, box.clientWidth);
  const frame = drawChart(svg, spec, { width, height: Math.min(640, Math.max(400, 0.66 * width)) }, palette);
  svg.setAttribute("aria-label", texts.chartLabel(spec.x.title, spec.y.title));
  handle.show(frame, point(), known.symbols);
  drawCuts(palette);
  report.show(known);
  conditions.show(known);
  if (spec.lines.length > 0 && performance.getEntriesByName("first picture").length === 0)
    performance.mark("first picture");
}

// ---- the gas ------------------------------------------------------------------------------------

const find = async (text: string) => (await link.ask({ kind: "find", text }, "found")).found;
const table = new Table(store, spoken, find, pasted);
const definitions = new Definitions(store);
const conditions = new Conditions(store, changeUnits);

async function pasted(text: string): Promise<void> {
  if (text.trim() === "") return tell(texts.pasteEmpty);
  const asked = store.state;
  const { read: table, error } = await link
    .ask({ kind: "read", text }, "read")
    .catch((e: Error) => ({ read: null, error: e.message }));
  if (table === null) return tell(texts.pasteFailed(error));
  if (store.state !== asked) return; // typed on in the meantime
  store.changeGas({ rows: table.rows, basis: table.basis, definitions: [] }, "");
  tell([texts.pasteTaken(table.rows.length), ...table.notes].join(" "));
}

/** The point stays where it is: its numbers are those of the new units. */
async function changeUnits(units: string): Promise<void> {
  const from = store.state.units;
  const { T, P, top } = store.state;
  const question = { kind: "convert" as const, from, to: units, T: [numberOf(T)], P: [numberOf(P), numberOf(top)] };
  const answer = await link.ask(question, "converted").catch(() => null);
  if (answer === null || store.state.units !== from) return;
  const shownIn = (value: number, old: string) => (Number.isFinite(value) ? String(Number(value.toPrecision(9))) : old);
  store.change({ units, T: shownIn(answer.T[0], T), P: shownIn(answer.P[0], P), top: shownIn(answer.P[1], top) }, "");
}

function showGas(): void {
  const part = known.of("gas", store.state.chosen);
  if (part === undefined) return;
  table.show(part);
  definitions.show(part);
  say(whole, part.error);
  say(stale, part.ok || known.of("envelope", part.gas) === undefined ? "" : texts.stale);
  const off = part.notes.some((text) => text.includes("normalised"));
  say(sum, part.sum === null ? "" : `${texts.sum(shown(part.sum), off)}; ${texts.molarMass(shown(part.molarMass))}`);
}

const tabs = h("div", { class: "row", role: "group", "aria-label": texts.composition });
function showTabs(): void {
  const { gases, chosen } = store.state;
  const tab = (k: number) =>
    button(texts.gasName(k), () => store.change({ chosen: k }, ""), { "aria-pressed": String(k === chosen) });
  const compare = button(texts.compare, () => store.change({ gases: [gases[0], gases[0]], chosen: 1 }, ""));
  const remove = button(texts.removeGas, () => store.change({ gases: [gases[0]], chosen: 0 }, ""));
  const key = `${gases.length} ${chosen}`;
  if (tabs.dataset.key === key) return;
  const focused = tabs.contains(document.activeElement);
  tabs.replaceChildren(...(gases.length > 1 ? [tab(0), tab(1), remove] : [compare]));
  tabs.dataset.key = key;
  if (focused) (tabs.children[gases.length > 1 ? chosen : 0] as HTMLElement).focus();
}

const basis = choice(texts.basis, Object.entries(texts.bases), (value) =>
  store.changeGas({ basis: value as "mole" }, ""),
);

function pasteBox(): HTMLElement {
  const area = h("textarea", { rows: 5, "aria-label": texts.paste, spellcheck: "false" });
  return h(
    "details",
    {},
    h("summary", {}, texts.paste),
    h("p", { class: "hint" }, texts.pasteHint),
    area,
    button(texts.pasteApply, () => pasted(area.value)),
  );
}

// ---- commands -----------------------------------------------------------------------------------

const undo = button(texts.undo, () => store.undo());
const redo = button(texts.redo, () => store.redo());

async function copyLink(): Promise<void> {
  showAddress();
  await navigator.clipboard.writeText(location.href).then(
    () => tell(texts.linkCopied),
    () => tell(texts.linkIs),
  );
}

async function exported(kind: "svg" | "png" | "csv"): Promise<void> {
  const name = `kestrune.${kind}`;
  if (kind === "csv") {
    const type = { type: "text/csv;charset=utf-8" };
    const along = cutsCsv(known);
    save(name, new Blob([curvesCsv(known)], type));
    if (along !== "") save("kestrune-cut.csv", new Blob([along], type));
  } else {
    const text = svgOf([pictureOf(known, point(), numberOf(store.state.top), LIGHT), ...cutPictures(known, LIGHT)]);
    save(name, kind === "svg" ? new Blob([text], { type: "image/svg+xml" }) : await pngOf(text));
  }
  tell(texts.exported(name));
}

function keys(event: KeyboardEvent): void {
  if (!(event.ctrlKey || event.metaKey) || event.altKey || event.target instanceof HTMLTextAreaElement) return;
  const key = event.key.toLowerCase();
  if (key !== "z" && key !== "y") return;
  event.preventDefault();
  if (key === "y" || event.shiftKey) store.redo();
  else store.undo();
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

function update(): void {
  document.documentElement.dataset.state = "busy";
  tell("");
  showTabs();
  table.update();
  definitions.update();
  conditions.update();
  basis.input.value = store.gas.basis;
  undo.disabled = !store.canUndo;
  redo.disabled = !store.canRedo;
  showGas();
  calculate();
  soon();
  clearTimeout(addressTimer);
  addressTimer = window.setTimeout(showAddress, 250);
}

function build(): void {
  const exportButtons = (["svg", "png", "csv"] as const).map((kind) =>
    button(texts[kind], () => exported(kind), { "aria-label": `${texts.exportAs} ${texts[kind]}` }),
  );
  const commands = h(
    "div",
    { class: "row commands" },
    undo,
    redo,
    ...exportButtons,
    button(texts.copyLink, copyLink),
    theme.box,
  );
  const head = h(
    "header",
    {},
    h("div", {}, h("h1", {}, texts.title), h("p", { class: "hint" }, `${texts.subtitle}. `, version)),
    commands,
  );
  const gas = h(
    "section",
    { class: "gas", "aria-label": texts.composition },
    h("h2", {}, texts.composition),
    tabs,
    basis.box,
    table.element,
    whole,
    sum,
    stale,
    pasteBox(),
    definitions.element,
    conditions.model,
  );
  const view = h("section", { class: "view", "aria-label": texts.picture }, h("h2", {}, texts.picture), box, cuts);
  const left = h(
    "div",
    { class: "left" },
    gas,
    h("section", { class: "conditions", "aria-label": texts.point }, conditions.element),
  );
  const right = h("div", { class: "right" }, view, report.element);
  document.body.replaceChildren(head, message, h("main", {}, left, right), spoken);
}

build();
store.onChange(update);
update();
tellStrange(read.strange);
addEventListener("keydown", keys);
addEventListener("focusout", () => store.settle());
addEventListener("hashchange", addressChanged);
addEventListener("resize", soon);
