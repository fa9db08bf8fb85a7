// What is drawn: the envelope with the operating point in it, and the cuts below.
import { drawChart, type ChartSpec } from "./chart.ts";
import { cutPictures } from "./cuts.ts";
import { h } from "./dom.ts";
import { Handle } from "./handle.ts";
import type { Known } from "./known.ts";
import { DARK, LIGHT, type Palette } from "./palette.ts";
import { pictureOf } from "./picture.ts";
import type { Place } from "./protocol.ts";
import { numberOf, type State } from "./state.ts";
import type { Store } from "./store.ts";
import { texts } from "./texts.ts";

const CUT_HEIGHT = 260;
const svgElement = (id: string) => {
  const svg = document.createElementNS("http://www.w3.org/2000/svg", "svg");
  svg.id = id;
  return svg;
};

/** The operating point; null where it is none. */
function pointOf(state: State): Place | null {
  const [T, P] = [numberOf(state.T), numberOf(state.P)];
  return Number.isNaN(T) || Number.isNaN(P) ? null : { T, P };
}

/** All pictures, the envelope first. */
export const picturesOf = (known: Known, state: State, palette: Palette): [ChartSpec, ...ChartSpec[]] => [
  pictureOf(known, pointOf(state), numberOf(state.top), palette),
  ...cutPictures(known, palette),
];

export class View {
  readonly element: HTMLElement;
  #svg = svgElement("envelope");
  #box = h("div", { class: "picture" });
  #cuts = h("div", { class: "cuts" });
  #drawn: ChartSpec | null = null;
  #handle: Handle;

  /** ended: a drag is over. */
  constructor(
    private readonly store: Store,
    private readonly known: Known,
    ended: () => void,
  ) {
    this.#box.append(this.#svg);
    const moved = ({ T, P }: Place) => store.change({ T: String(T), P: String(P) }, "point");
    this.#handle = new Handle(this.#svg, moved, ended);
    const title = h("h2", {}, texts.picture);
    this.element = h("section", { class: "view", "aria-label": texts.picture }, title, this.#box, this.#cuts);
  }

  draw(dark: boolean): void {
    const palette = dark ? DARK : LIGHT;
    const { state } = this.store;
    const [spec, ...cuts] = picturesOf(this.known, state, palette);
    // While the point is dragged, the axes stay.
    if (this.#handle.dragging && this.#drawn !== null)
      [spec.x.range, spec.y.range] = [this.#drawn.x.range, this.#drawn.y.range];
    this.#drawn = spec;
    const width = Math.max(300, this.#box.clientWidth);
    const size = { width, height: Math.min(640, Math.max(400, 0.66 * width)) };
    const frame = drawChart(this.#svg, spec, size, palette);
    this.#svg.setAttribute("aria-label", texts.chartLabel(spec.x.title, spec.y.title));
    this.#handle.show(frame, pointOf(state), this.known.symbols);
    this.#drawCuts(cuts, palette);
    const first = performance.getEntriesByName("first picture").length === 0;
    if (first && spec.lines.length > 0) performance.mark("first picture");
  }

  #drawCuts(specs: ChartSpec[], palette: Palette): void {
    const whole = this.#box.clientWidth;
    const width = Math.max(230, whole < 700 ? whole : Math.floor(whole / 3) - 6);
    while (this.#cuts.children.length > specs.length) this.#cuts.lastElementChild!.remove();
    specs.forEach((spec, k) => {
      if (this.#cuts.children[k] === undefined) this.#cuts.append(svgElement(`cut-${k}`));
      const picture = this.#cuts.children[k] as SVGSVGElement;
      picture.setAttribute("role", "img");
      picture.setAttribute("aria-label", spec.title);
      drawChart(picture, spec, { width, height: CUT_HEIGHT }, palette);
    });
  }
}
