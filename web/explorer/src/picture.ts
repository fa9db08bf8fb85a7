// The phase envelope with all that is drawn over it: lines, marks and axes of the parts that are known.
import { rangeOf, type ChartLine, type ChartMark, type ChartSpec } from "./chart.ts";
import { unitSymbol, withUnit } from "./numbers.ts";
import type { Palette } from "./palette.ts";
import type { CurveData, EnvelopePart, LinePart, Numbers, Place } from "./protocol.ts";
import type { Known } from "./known.ts";
import { texts } from "./texts.ts";

const named = (known: Known, gas: number, text: string) => known.named(gas, text);

/** What the dashes of the second gas have besides its colour. */
const ofSecond = (gas: number) => (gas > 0 ? " 1 3" : "");

/** Style of a stretch beside which another phase splits off. */
const notStable = (known: Known, part: EnvelopePart, palette: Palette) => ({
  ...{ label: named(known, part.gas, texts.notStable), colour: palette.unstable, width: 1.6, dash: "2 4" },
  wanted: false,
});

function outlineLines(known: Known, part: EnvelopePart, palette: Palette): ChartLine[] {
  const ofGas = { width: 2.6, dash: part.gas > 0 ? "8 5" : "" };
  const dew = part.pure
    ? { label: texts.vapourPressure, colour: palette.bubble[part.gas] }
    : { label: texts.dew, colour: palette.dew[part.gas] };
  const styles: Record<string, Omit<ChartLine, "x" | "y">> = {
    dew: { ...dew, ...ofGas },
    bubble: { label: texts.bubble, colour: palette.bubble[part.gas], ...ofGas },
    "two liquids": { label: texts.twoLiquids, colour: palette.liquids, width: 2, dash: "7 3", wanted: false },
  };
  return part.curves.flatMap((curve) =>
    curve.lines.map(({ kind, T: x, P: y }) => {
      const style = styles[kind];
      if (style === undefined) return { ...notStable(known, part, palette), x, y };
      return { ...style, label: named(known, part.gas, style.label), x, y };
    }),
  );
}

function qualityLines(known: Known, part: EnvelopePart, palette: Palette): ChartLine[] {
  const dashes = ["6 4", "3 3", "9 3 2 3", "12 4", "2 2", "6 2 2 2", "4 6", "8 6", "1 3"];
  return part.curves.flatMap((curve, k) =>
    curve.lines.map(({ kind, T: x, P: y }) => {
      if (kind !== "quality") return { ...notStable(known, part, palette), x, y };
      const label = named(known, part.gas, texts.qualityLine(curve.fraction));
      return { label, dash: dashes[k % dashes.length] + ofSecond(part.gas), colour: palette.quality[part.gas], width: 1.6, x, y };
    }),
  );
}

/** A line in its stretches inside and outside what its method was made for; neighbours share a point. */
function stretches(part: LinePart): { inside: boolean; x: Numbers; y: Numbers }[] {
  const all: { inside: boolean; first: number; end: number }[] = [];
  part.good.forEach((good, k) => {
    const last = all.at(-1);
    if (last?.inside === good) last.end = k + 1;
    else all.push({ inside: good, first: Math.max(0, k - 1), end: k + 1 });
  });
  return all.map(({ inside: good, first, end }) => ({
    inside: good,
    x: part.T.slice(first, end),
    y: part.P.slice(first, end),
  }));
}

function boundaryLines(known: Known, part: LinePart, palette: Palette): ChartLine[] {
  const name = part.part === "hydrate" ? texts.hydrate : texts.water;
  const label = named(known, part.gas, part.given === "" ? name : `${name} (${part.given})`);
  const colour = palette[part.part][part.gas];
  const dash = (part.part === "hydrate" ? "14 3 3 3" : "5 2") + ofSecond(part.gas);
  const anyGood = part.good.includes(true); // else the dotted line has the name
  return stretches(part).map(({ inside, x, y }) => ({
    ...{ label: inside || !anyGood ? label : "", colour, width: inside ? 2 : 1.4 },
    ...{ dash: inside ? dash : "2 4", x, y },
  }));
}

/** Cardinal points with their names, of the outline of each gas. */
export function placesOf(part: EnvelopePart): { name: string; place: Place }[] {
  const [curve] = part.curves;
  if (curve === undefined) return [];
  const extremes: [string, Place | null][] = [
    [texts.cricondentherm, curve.cricondentherm],
    [texts.cricondenbar, curve.cricondenbar],
  ];
  const all = curve.critical.map((place): [string, Place | null] => [texts.critical, place]);
  if (!part.pure) all.push(...extremes);
  return all.flatMap(([name, place]) => (place === null ? [] : [{ name, place }]));
}

function marksOf(known: Known, part: EnvelopePart, palette: Palette): ChartMark[] {
  const shapes: Record<string, ChartMark["shape"]> = {
    [texts.cricondentherm]: "triangle",
    [texts.cricondenbar]: "square",
  };
  const { temperature, pressure } = known.symbols;
  return placesOf(part).map(({ name, place }) => {
    const where = texts.placeOf(withUnit(place.T, temperature, 5), withUnit(place.P, pressure, 5));
    const colour =
      name === texts.critical
        ? palette.ink
        : name === texts.cricondentherm
          ? palette.dew[part.gas]
          : palette.bubble[part.gas];
    return {
      label: named(known, part.gas, `${name} ${where}`),
      colour,
      shape: shapes[name] ?? "disc",
      hollow: part.gas > 0,
      x: place.T,
      y: place.P,
    };
  });
}

function pointMark(known: Known, { T, P }: Place, palette: Palette): ChartMark {
  const { temperature = "", pressure = "" } = known.symbols;
  const where = texts.placeOf(withUnit(T, temperature, 5), withUnit(P, pressure, 5));
  return { label: `${texts.point} ${where}`, colour: palette.point, shape: "point", x: T, y: P };
}

const OPEN_TOP = 400; // bar, of envelopes without a cricondenbar

/** The highest pressure that suits, as on the command line: a little above the cricondenbar. */
function topOf(outlines: EnvelopePart[], lines: ChartLine[], bar: number): number {
  const highest = (all: Numbers[]) => all.reduce((top, values) => Math.max(top, ...values), 0);
  const ofCurve = ({ cricondenbar, lines: own }: CurveData) =>
    cricondenbar !== null ? 1.12 * cricondenbar.P : Math.min(1.05 * highest(own.map((l) => l.P)), OPEN_TOP * bar);
  const tops = outlines.flatMap((part) => part.curves.map(ofCurve));
  return tops.length > 0
    ? Math.max(...tops)
    : Math.min(1.05 * highest(lines.map((l) => l.y)) || Infinity, OPEN_TOP * bar);
}

/** The picture of what is known. chosenTop: the highest pressure that was asked for, or NaN. */
export function pictureOf(known: Known, point: Place | null, chosenTop: number, palette: Palette): ChartSpec {
  const outlines = known.all("envelope");
  const outline = outlines.flatMap((part) => outlineLines(known, part, palette));
  const over = [
    ...known.all("quality").flatMap((part) => qualityLines(known, part, palette)),
    ...[...known.all("hydrate"), ...known.all("water")].flatMap((part) => boundaryLines(known, part, palette)),
  ];
  const marks = outlines.flatMap((part) => marksOf(known, part, palette));
  if (point !== null) marks.push(pointMark(known, point, palette));
  const suits = Math.max(topOf(outlines, [...outline, ...over], known.bar), ...marks.map((m) => 1.05 * m.y));
  const top = chosenTop > 0 ? chosenTop : suits;
  const main = [...outline, ...over].filter((l) => l.wanted !== false);
  const T = (main.length > 0 ? main : outline).flatMap((l) => Array.from(l.x).filter((_, k) => l.y[k] <= top));
  const x = rangeOf([...T, ...marks.filter((m) => m.y <= top).map((m) => m.x)]);
  const title = (what: string, quantity: string) => texts.withUnit(what, unitSymbol(known.symbols[quantity] ?? ""));
  return {
    ...{ title: texts.picture, lines: [...outline, ...over], marks, legend: true },
    x: { title: title(texts.T, "temperature"), range: x },
    y: { title: title(texts.P, "pressure"), range: [Math.min(0, known.vacuum), top] },
  };
}

/** Every curve with its name, for tables of all numbers. */
export function curvesOf(known: Known): { gas: number; name: string; kind: string; T: Numbers; P: Numbers }[] {
  const old = (gas: number, name: string) => (known.whyNot(gas) === "" ? name : texts.old(name));
  const ofCurve = (part: EnvelopePart, curve: CurveData) => {
    const name =
      part.part === "quality" ? texts.qualityLine(curve.fraction) : part.pure ? texts.vapourPressure : texts.outline;
    return curve.lines.map(({ kind, T, P }) => ({ gas: part.gas, name: old(part.gas, name), kind, T, P }));
  };
  const ofLine = ({ part, gas, T, P }: LinePart) => ({
    gas,
    name: old(gas, part === "hydrate" ? texts.hydrate : texts.water),
    kind: part,
    T,
    P,
  });
  return [
    ...[...known.all("envelope"), ...known.all("quality")].flatMap((part) =>
      part.curves.flatMap((curve) => ofCurve(part, curve)),
    ),
    ...[...known.all("hydrate"), ...known.all("water")].map(ofLine),
  ];
}
