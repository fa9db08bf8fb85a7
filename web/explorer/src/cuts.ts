// Three pictures along an isotherm or an isobar: vapour fraction, density, enthalpy.
import { rangeOf, type ChartSpec } from "./chart.ts";
import type { Known } from "./known.ts";
import { unitSymbol, withUnit } from "./numbers.ts";
import type { Palette } from "./palette.ts";
import type { CutPart, Numbers } from "./protocol.ts";
import { texts } from "./texts.ts";

export const CUT_COLUMNS = [
  { key: "beta", title: texts.vapourFraction, quantity: "" },
  { key: "density", title: texts.density, quantity: "density" },
  { key: "enthalpy", title: texts.enthalpy, quantity: "enthalpy" },
] as const;

/** The line of vapour fractions without what would look like boiling where a single phase is dense. */
function broken({ x, beta, gaps }: CutPart): { x: Numbers; y: Numbers } {
  const points = Array.from(x, (at, k) => ({ at, value: beta[k] }));
  points.push(...gaps.map((at) => ({ at, value: NaN })));
  points.sort((a, b) => a.at - b.at);
  return { x: points.map((point) => point.at), y: points.map((point) => point.value) };
}

/** The three pictures; none without a cut. */
export function cutPictures(known: Known, palette: Palette): ChartSpec[] {
  const cuts = known.all("cut");
  if (cuts.length === 0) return [];
  const [{ along, at }] = cuts;
  const { temperature, pressure } = known.symbols;
  const isotherm = along === "P";
  const title = isotherm ? texts.isotherm(withUnit(at, temperature)) : texts.isobar(withUnit(at, pressure));
  const xTitle = isotherm
    ? texts.at(texts.withUnit(texts.P, pressure), withUnit(at, temperature))
    : texts.at(texts.withUnit(texts.T, unitSymbol(temperature)), withUnit(at, pressure));
  return CUT_COLUMNS.map(({ key, title: what, quantity }) => {
    const unit = known.symbols[quantity] ?? "";
    const yTitle = unit === "" ? what : texts.withUnit(what, unit);
    const values = (all: Numbers) => Array.from(all);
    return {
      title: `${title}: ${yTitle}`,
      x: {
        title: xTitle,
        range: rangeOf(
          cuts.flatMap((c) => values(c.x)),
          0,
        ),
      },
      y: { title: yTitle, range: key === "beta" ? [-0.02, 1.02] : rangeOf(cuts.flatMap((c) => values(c[key]))) },
      lines: cuts.map((c) => ({
        ...{ label: known.gases > 1 ? texts.gasName(c.gas) : "", colour: palette.bubble[c.gas], width: 2.2 },
        ...{ dash: c.gas > 0 ? "8 5" : "", ...(key === "beta" ? broken(c) : { x: c.x, y: c[key] }) },
      })),
      marks: [],
      legend: known.gases > 1,
    };
  });
}
