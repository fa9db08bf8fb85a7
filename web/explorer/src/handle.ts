// The grip of the operating point in the picture: it is dragged, moved by arrow keys, or set by a click.
import { select } from "d3-selection";
import type { Frame } from "./chart.ts";
import { withUnit } from "./numbers.ts";
import type { Place } from "./protocol.ts";
import { texts } from "./texts.ts";

const PIXELS = 4; // of one press of an arrow key

export class Handle {
  #frame: Frame | null = null;
  #place: Place | null = null;
  #group;
  dragging = false;

  /** moved: the point was moved to; ended: the drag is over. */
  constructor(
    private readonly svg: SVGSVGElement,
    private readonly moved: (place: Place) => void,
    private readonly ended: () => void,
  ) {
    const group = (this.#group = select(svg).append("g"));
    group.attr("class", "handle").attr("tabindex", 0).attr("role", "slider").attr("aria-label", texts.pointLabel);
    group.append("circle").attr("class", "grip").attr("r", 22).attr("fill", "transparent");
    svg.addEventListener("pointerdown", (event) => {
      const onGrip = group.node()!.contains(event.target as Node);
      // A finger beside the grip may be about to scroll; if it only taps, a click follows.
      if (event.button !== 0 || !this.#at(event) || (event.pointerType === "touch" && !onGrip)) return;
      event.preventDefault();
      this.dragging = true;
      svg.setPointerCapture(event.pointerId);
      group.node()!.focus({ preventScroll: true });
      this.#move(event);
    });
    svg.addEventListener("click", (event) => {
      if ((event as PointerEvent).pointerType === "touch") this.#move(event as PointerEvent);
    });
    svg.addEventListener("pointermove", (event) => this.dragging && this.#move(event));
    for (const name of ["pointerup", "pointercancel"] as const)
      svg.addEventListener(name, () => {
        if (!this.dragging) return;
        this.dragging = false;
        this.ended();
      });
    group.node()!.addEventListener("keydown", (event) => this.#key(event));
  }

  /** The place under a pointer; null outside the axes. */
  #at(event: PointerEvent): Place | null {
    if (this.#frame === null) return null;
    const box = this.svg.getBoundingClientRect();
    const view = this.svg.viewBox.baseVal;
    const [px, py] = [
      ((event.clientX - box.left) * view.width) / box.width,
      ((event.clientY - box.top) * view.height) / box.height,
    ];
    const [[left, right], [bottom, top]] = [this.#frame.x.range(), this.#frame.y.range()];
    if (!this.dragging && (px < left || px > right || py < top || py > bottom)) return null;
    return this.#placeAt(Math.min(Math.max(px, left), right), Math.min(Math.max(py, top), bottom - 1));
  }

  /** With as many digits as a pixel has. */
  #placeAt(px: number, py: number): Place {
    const { x, y } = this.#frame!;
    const rounded = (scale: Frame["x"], at: number) => {
      const step = 10 ** Math.floor(Math.log10(Math.abs(scale.invert(at + 1) - scale.invert(at))));
      return Number((Math.round(scale.invert(at) / step) * step).toPrecision(12));
    };
    return { T: rounded(x, px), P: rounded(y, py) };
  }

  #move(event: PointerEvent): void {
    const place = this.#at(event);
    if (place !== null) this.moved(place);
  }

  #key(event: KeyboardEvent): void {
    const steps: Record<string, [number, number]> = {
      ArrowLeft: [-1, 0],
      ArrowRight: [1, 0],
      ArrowUp: [0, -1],
      ArrowDown: [0, 1],
    };
    const step = steps[event.key];
    if (step === undefined || this.#frame === null || this.#place === null) return;
    event.preventDefault();
    const far = PIXELS * (event.shiftKey ? 10 : 1);
    const { x, y } = this.#frame;
    const next = this.#placeAt(
      x(this.#place.T) + far * step[0],
      Math.min(y(this.#place.P) + far * step[1], y.range()[0] - 1),
    );
    this.moved({ T: step[0] === 0 ? this.#place.T : next.T, P: step[1] === 0 ? this.#place.P : next.P });
  }

  show(frame: Frame, place: Place | null, symbols: Record<string, string>): void {
    this.#frame = frame;
    this.#place = place;
    const group = this.#group.attr("display", place === null ? "none" : null);
    if (place === null) return;
    group.attr("transform", `translate(${frame.x(place.T)},${frame.y(place.P)})`);
    const [low, high] = frame.x.domain();
    group.attr("aria-valuemin", low).attr("aria-valuemax", high).attr("aria-valuenow", place.T);
    group.attr(
      "aria-valuetext",
      texts.placeOf(withUnit(place.T, symbols.temperature ?? ""), withUnit(place.P, symbols.pressure ?? "")),
    );
  }
}
