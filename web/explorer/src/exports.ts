// Pictures and tables as files.
import { drawChart, FONT, type ChartSpec, type Size } from "./chart.ts";
import { CUT_COLUMNS } from "./cuts.ts";
import type { Known } from "./known.ts";
import { heading } from "./numbers.ts";
import { LIGHT } from "./palette.ts";
import { curvesOf, placesOf } from "./picture.ts";
import type { Gas, State } from "./state.ts";
import { texts } from "./texts.ts";

const SIZE: Size = { width: 960, height: 680 };
const CUT: Size = { width: 960, height: 380 };
const FINE = 2; // pixels of PNG for one of the picture

const LINE = 18; // of the heading
const WIDEST = 135; // letters of one

/** Words in lines that fit. */
function wrapped(text: string): string[] {
  const lines = [""];
  for (const word of text.split(" ")) {
    if (lines.at(-1)! !== "" && lines.at(-1)!.length + word.length >= WIDEST) lines.push("");
    lines.push(`${lines.pop()} ${word}`.trim());
  }
  return lines;
}

/** What a picture is of: its gases, the model, and what dotted lines mean. */
function headingOf(title: string, state: State): string[] {
  const gas = ({ basis, rows }: Gas, k: number) => {
    const given = rows.filter((r) => r.name.trim() !== "" && r.amount.trim() !== "");
    const list = `${texts.bases[basis]}: ${given.map((r) => `${r.name.trim()} ${r.amount.trim()}`).join(", ")}`;
    return wrapped(state.gases.length > 1 ? texts.ofGas(k, list) : list);
  };
  const model = [texts.headingModel(texts.sets[state.set]), ...(state.zero ? [texts.zero] : [])].join(", ");
  const dotted = state.hydrate || state.water ? `; ${texts.headingDotted}` : "";
  return [title, ...state.gases.flatMap(gas), ...wrapped(model + dotted)];
}

const escaped = (text: string) =>
  text.replace(/[&<>]/g, (c) => `&#${c.charCodeAt(0)};`).replace(/[\0-\x08\x0b-\x1f\ufffe\uffff]|\p{Surrogate}/gu, "\ufffd");

/** Pictures one below the other, on white, with a heading. */
export function svgOf(specs: ChartSpec[], state: State): string {
  const lines = headingOf(specs[0].title, state);
  const head = 14 + LINE * lines.length;
  const heading = lines.map(
    (text, k) =>
      `<text x="16" y="${22 + LINE * k}" font-size="${k === 0 ? 15 : 12}" font-family="${FONT}" fill="${LIGHT.ink}">${escaped(text)}</text>`,
  );
  const heights = specs.map((_, k) => (k === 0 ? SIZE : CUT).height);
  const parts = specs.map((spec, k) => {
    const svg = document.createElementNS("http://www.w3.org/2000/svg", "svg");
    svg.id = `picture-${k}`;
    drawChart(svg, spec, k === 0 ? SIZE : CUT, LIGHT);
    svg.setAttribute("y", String(heights.slice(0, k).reduce((a, b) => a + b, head)));
    return new XMLSerializer().serializeToString(svg);
  });
  const height = heights.reduce((a, b) => a + b, head);
  const paper = `<rect width="${SIZE.width}" height="${head}" fill="${LIGHT.paper}"/>`;
  return `<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 ${SIZE.width} ${height}" width="${SIZE.width}" height="${height}">${paper}${heading.join("\n")}${parts.join("\n")}</svg>\n`;
}

export async function pngOf(svg: string): Promise<Blob> {
  const image = new Image();
  image.src = `data:image/svg+xml;charset=utf-8,${encodeURIComponent(svg)}`;
  await image.decode();
  const canvas = document.createElement("canvas");
  canvas.width = FINE * image.naturalWidth;
  canvas.height = FINE * image.naturalHeight;
  canvas.getContext("2d")!.drawImage(image, 0, 0, canvas.width, canvas.height);
  return new Promise((resolve, reject) =>
    canvas.toBlob((blob) => (blob ? resolve(blob) : reject(new Error("PNG"))), "image/png"),
  );
}

const cell = (value: string | number) => {
  if (typeof value === "number") return Number.isFinite(value) ? String(value) : "";
  return /[",\n]/.test(value) ? `"${value.replaceAll('"', '""')}"` : value;
};
const rowsOf = (rows: (string | number)[][]) => rows.map((row) => `${row.map(cell).join(",")}\n`).join("");
const letter = (gas: number) => "AB"[gas];

/** All curves with all digits, cardinal points first. */
export function curvesCsv(known: Known): string {
  const head = [
    "gas",
    "curve",
    "kind",
    heading("temperature", known.symbols.temperature),
    heading("pressure", known.symbols.pressure),
  ];
  const places = known
    .all("envelope")
    .flatMap((part) => placesOf(part).map(({ name, place }) => [letter(part.gas), name, "point", place.T, place.P]));
  const points = curvesOf(known).flatMap(({ gas, name, kind, T, P }) =>
    Array.from(T, (t, k) => [letter(gas), name, kind, t, P[k]]),
  );
  return rowsOf([head, ...places, ...points]);
}

/** The cuts with all digits; empty for none. */
export function cutsCsv(known: Known): string {
  const cuts = known.all("cut");
  if (cuts.length === 0) return "";
  const { temperature, pressure } = known.symbols;
  const columns = CUT_COLUMNS.map(({ key, quantity }) =>
    key === "beta" ? "vapour_fraction" : heading(quantity, known.symbols[quantity]),
  );
  const head = ["gas", heading("temperature", temperature), heading("pressure", pressure), ...columns];
  const rows = cuts.flatMap((c) =>
    Array.from(c.x, (x, k) => [
      letter(c.gas),
      ...(c.along === "P" ? [c.at, x] : [x, c.at]),
      ...CUT_COLUMNS.map(({ key }) => c[key][k]),
    ]),
  );
  return rowsOf([head, ...rows]);
}

/** Hands a file to the browser. */
export function save(name: string, content: Blob): void {
  const link = document.createElement("a");
  link.href = URL.createObjectURL(content);
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10_000);
}
