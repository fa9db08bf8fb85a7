// A picture of lines and marks with axes and a legend, in SVG that stands for itself: colours and fonts are in it.
import { axisBottom, axisLeft } from "d3-axis";
import { scaleLinear, type ScaleLinear } from "d3-scale";
import { select, type Selection } from "d3-selection";
import { line } from "d3-shape";
import type { Palette } from "./palette.ts";
import type { Numbers } from "./protocol.ts";

export interface ChartLine {
  label: string;
  colour: string;
  width: number;
  /** As stroke-dasharray; "" for a whole line. */
  dash: string;
  x: Numbers;
  y: Numbers;
  /** Whether the axes are made to show it; true where nothing is said. */
  wanted?: boolean;
}
export interface ChartMark {
  label: string;
  colour: string;
  shape: "disc" | "square" | "triangle" | "point";
  hollow?: boolean;
  x: number;
  y: number;
}
export interface ChartSpec {
  title: string;
  x: { title: string; range: [number, number] };
  y: { title: string; range: [number, number] };
  lines: ChartLine[];
  marks: ChartMark[];
  legend: boolean;
}
export interface Size {
  width: number;
  height: number;
}
export interface Frame {
  x: ScaleLinear<number, number>;
  y: ScaleLinear<number, number>;
}

export const FONT = "system-ui, 'Segoe UI', 'DejaVu Sans', sans-serif";
const LETTER = 6.6; // width of one at 12 px
const ROW = 19;
const LEFT = 64;
const RIGHT = 14;
const TOP = 14;
type Group = Selection<SVGGElement, unknown, null, undefined>;

const SHAPES = {
  disc: "M-5,0a5,5 0 1,0 10,0a5,5 0 1,0 -10,0Z",
  square: "M-4.5,-4.5h9v9h-9Z",
  triangle: "M0,-6L5.6,4.4H-5.6Z",
  point: "M-13,0H-5A5,5 0 1,0 5,0H13M-5,0A5,5 0 1,1 5,0M0,-13V-5M0,5V13",
};

/** Entries of the legend in rows that fit. */
function rowsOf(spec: ChartSpec, width: number): (ChartLine | ChartMark)[][] {
  const labels = new Set<string>();
  const rows: (ChartLine | ChartMark)[][] = [[]];
  let used = 0;
  for (const entry of [...spec.lines, ...spec.marks]) {
    if (!spec.legend || entry.label === "" || labels.has(entry.label)) continue;
    labels.add(entry.label);
    const needed = 42 + LETTER * entry.label.length;
    if (used > 0 && used + needed > width) {
      rows.push([]);
      used = 0;
    }
    rows.at(-1)!.push(entry);
    used += needed;
  }
  return rows.filter((row) => row.length > 0);
}

function drawMark(path: Selection<SVGPathElement, unknown, null, undefined>, mark: ChartMark, palette: Palette): void {
  const open = mark.shape === "point";
  path.attr("d", SHAPES[mark.shape]).attr("fill", open ? "none" : mark.hollow ? palette.paper : mark.colour);
  const edge = open || mark.hollow;
  path.attr("stroke", edge ? mark.colour : palette.paper).attr("stroke-width", edge ? 1.8 : 1.2);
}

function drawLegend(root: Group, rows: (ChartLine | ChartMark)[][], top: number, palette: Palette): void {
  rows.forEach((row, k) => {
    let x = 10;
    for (const entry of row) {
      const g = root.append("g").attr("transform", `translate(${x},${top + ROW * k})`);
      if ("shape" in entry) drawMark(g.append("path").attr("transform", "translate(13,0) scale(0.8)"), entry, palette);
      else
        g.append("path")
          .attr("d", "M0,0H26")
          .attr("stroke", entry.colour)
          .attr("stroke-width", entry.width)
          .attr("stroke-dasharray", entry.dash);
      g.append("text").attr("x", 32).attr("y", 4).attr("fill", palette.ink).text(entry.label);
      x += 42 + LETTER * entry.label.length;
    }
  });
}

/** About as many round values as asked for, and at least three. */
function ticksOf(scale: ScaleLinear<number, number>, wanted: number): number[] {
  let count = Math.max(3, Math.round(wanted));
  while (scale.ticks(count).length < 3 && count < 12) ++count;
  return scale.ticks(count);
}

function drawAxes(root: Group, spec: ChartSpec, frame: Frame, palette: Palette): void {
  const [left, right] = frame.x.range();
  const [bottom, top] = frame.y.range();
  const ticks = [ticksOf(frame.x, (right - left) / 65), ticksOf(frame.y, (bottom - top) / 55)];
  const written = (value: { valueOf(): number }) => String(Number(value.valueOf().toPrecision(12))).replace("-", "\u2212");
  const place = (axis: Group) => {
    axis.attr("font-size", 12).attr("font-family", FONT);
    axis.selectAll("text").attr("fill", palette.faint);
    axis.selectAll("line").attr("stroke", palette.grid);
    axis.selectAll("path").attr("stroke", palette.faint);
  };
  const below = root.append("g").attr("transform", `translate(0,${bottom})`);
  below
    .call(
      axisBottom(frame.x)
        .tickValues(ticks[0])
        .tickFormat(written)
        .tickSize(top - bottom)
        .tickPadding(8),
    )
    .call(place);
  const beside = root.append("g").attr("transform", `translate(${left},0)`);
  beside
    .call(
      axisLeft(frame.y)
        .tickValues(ticks[1])
        .tickFormat(written)
        .tickSize(left - right)
        .tickPadding(8),
    )
    .call(place);
  const title = (text: string) =>
    root.append("text").attr("fill", palette.ink).attr("text-anchor", "middle").text(text);
  title(spec.x.title)
    .attr("x", (left + right) / 2)
    .attr("y", bottom + 38);
  title(spec.y.title).attr("transform", `translate(15,${(bottom + top) / 2}) rotate(-90)`);
}

/** Draws all but the operating point into the picture, in place of what was there. */
export function drawChart(svg: SVGSVGElement, spec: ChartSpec, size: Size, palette: Palette): Frame {
  const rows = rowsOf(spec, size.width - 20);
  const bottom = size.height - 56 - ROW * rows.length;
  const frame: Frame = {
    x: scaleLinear(spec.x.range, [LEFT, size.width - RIGHT]),
    y: scaleLinear(spec.y.range, [bottom, TOP]),
  };
  const root = select(svg);
  root.attr("viewBox", `0 0 ${size.width} ${size.height}`).attr("width", size.width).attr("height", size.height);
  root.select("g.drawing").remove();
  const drawing = root
    .insert("g", ":first-child")
    .attr("class", "drawing")
    .attr("font-size", 12)
    .attr("font-family", FONT);
  drawing.attr("aria-hidden", "true");
  drawing.append("rect").attr("width", size.width).attr("height", size.height).attr("fill", palette.paper);
  drawAxes(drawing, spec, frame, palette);
  const clip = `clip-${svg.id || "export"}`;
  drawing
    .append("clipPath")
    .attr("id", clip)
    .append("rect")
    .attr("x", LEFT)
    .attr("y", TOP)
    .attr("width", size.width - RIGHT - LEFT)
    .attr("height", Math.max(0, bottom - TOP));
  const inside = drawing.append("g").attr("clip-path", `url(#${clip})`).attr("fill", "none");
  for (const entry of spec.lines) {
    const path = line<number>(
      (k) => frame.x(entry.x[k]),
      (k) => frame.y(entry.y[k]),
    )
      .defined((k) => Number.isFinite(entry.x[k]) && Number.isFinite(entry.y[k]))
      .digits(2)([...entry.x.keys()]);
    inside
      .append("path")
      .attr("class", "curve")
      .attr("data-label", entry.label)
      .attr("d", path ?? "")
      .attr("stroke", entry.colour)
      .attr("stroke-width", entry.width)
      .attr("stroke-dasharray", entry.dash)
      .attr("stroke-linejoin", "round");
  }
  for (const mark of spec.marks)
    drawMark(
      inside.append("path").attr("transform", `translate(${frame.x(mark.x)},${frame.y(mark.y)})`),
      mark,
      palette,
    );
  drawLegend(drawing, rows, bottom + 58, palette);
  return frame;
}

/** Ends of an axis for these values, with a margin. */
export function rangeOf(values: number[], margin = 0.04): [number, number] {
  let [low, high] = [Infinity, -Infinity];
  for (const v of values) if (Number.isFinite(v)) [low, high] = [Math.min(low, v), Math.max(high, v)];
  if (!(low <= high)) return [0, 1];
  const wide = high > low ? high - low : Math.abs(low) || 1;
  return [low - margin * wide, high + margin * wide];
}
