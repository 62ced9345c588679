// @ts-check
/**
 * Draws a marked range over the notation, with a handle at each end. alphaTab could draw a range itself, but stumbles
 * over one whose tracks are hidden or whose score is gone.
 *
 * @typedef {import("../timing/marked-range.js").MarkedRange} MarkedRange
 * @typedef {import("../timing/marked-range.js").WrittenPosition} WrittenPosition
 * @typedef {import("@coderline/alphatab").rendering.MasterBarBounds} MasterBarBounds
 * @typedef {{ x: number, y: number, w: number, h: number }} Box
 * @typedef {"start" | "end"} RangeEnd
 */

import { beatSpan } from "./beat-span.js";

export class RangeLayer {
  #api;
  #layer = document.createElement("div");
  /** @type {MarkedRange | null} */
  #range = null;

  /** @param {import("../alphatab/page-api.js").PageApi} api */
  constructor(api) {
    this.#api = api;
    this.#layer.className = "ranges";
    api.notation.append(this.#layer);
    api.postRenderFinished.on(() => this.#draw());
    // A long score is drawn some lines at a time.
    api.workerRenderer.batchShown.on(() => this.#draw());
  }

  /** @param {MarkedRange | null} range */
  show(range) {
    this.#range = range;
    this.#draw();
  }

  #draw() {
    const boxes = this.#range ? this.#boxesOf(this.#range) : [];
    this.#api.notation.classList.toggle("with-range", boxes.length > 0);
    this.#layer.replaceChildren(...boxes.map((box) => element("range", box)), ...handles(boxes));
  }

  /**
   * One box for each staff system that the range covers.
   *
   * @param {MarkedRange} range
   * @returns {Box[]}
   */
  #boxesOf({ start, end }) {
    const first = this.#barAt(start.bar);
    const last = this.#barAt(end.bar);
    const from = first?.staffSystemBounds?.index;
    const to = last?.staffSystemBounds?.index;
    if (!first || !last || from === undefined || to === undefined) {
      return [];
    }
    const startX = this.#xAt(first, start);
    const endX = this.#xAt(last, end);
    const systems = this.#api.boundsLookup?.staffSystems ?? [];
    return systems.slice(from, to + 1).map((system, offset) => {
      const box = system.visualBounds;
      const left = offset === 0 ? startX : box.x;
      const right = from + offset === to ? endX : box.x + box.w;
      const { y, h } = system.bars[0]?.visualBounds ?? box;
      return { x: left, y, w: right - left, h };
    });
  }

  /**
   * @param {number} index of a bar
   * @returns {MasterBarBounds | null} where it is drawn, or the one in whose long rest it is folded; null when it is not
   *     drawn yet
   */
  #barAt(index) {
    const lookup = this.#api.boundsLookup;
    const bar = lookup?.findMasterBarByIndex(index);
    if (bar) {
      return bar;
    }
    const before = lookup?.staffSystems.flatMap(({ bars }) => bars).filter((one) => one.index < index) ?? [];
    const drawn = lookup?.staffSystems.at(-1)?.bars.at(-1)?.index ?? -1;
    return drawn > index || lookup?.isFinished ? (before.at(-1) ?? null) : null;
  }

  /**
   * @param {MasterBarBounds} bar
   * @param {WrittenPosition} position
   */
  #xAt(bar, { bar: index, tick }) {
    const { x, w } = bar.visualBounds;
    const beats = bar.bars
      .flatMap(({ beats }) => beats)
      .map(({ beat, realBounds }) => ({ ...beatSpan(this.#api, beat), left: realBounds.x }));
    const ends = beats.map(({ end }) => end.tick);
    if (bar.index < index) {
      return tick > 0 ? x + w : x;
    }
    if (tick <= 0 || ends.length === 0) {
      return x;
    }
    // Staves may have their beats at other times: the nearest ones before and behind.
    const before = beats.filter(({ start }) => start.tick <= tick).sort((a, b) => b.start.tick - a.start.tick)[0];
    const behind = beats.filter(({ start }) => start.tick > tick).sort((a, b) => a.start.tick - b.start.tick)[0];
    const [fromTick, fromX] = before ? [before.start.tick, before.left] : [0, x];
    const [toTick, toX] = behind ? [behind.start.tick, behind.left] : [Math.max(...ends), x + w];
    return tick >= toTick ? toX : fromX + ((toX - fromX) * (tick - fromTick)) / (toTick - fromTick);
  }
}

/**
 * @param {Box[]} boxes
 * @returns {HTMLElement[]}
 */
function handles(boxes) {
  const [first, last] = [boxes[0], boxes.at(-1)];
  return first && last ? [handle("start", first.x, first), handle("end", last.x + last.w, last)] : [];
}

/**
 * @param {RangeEnd} end
 * @param {number} x
 * @param {Box} box
 */
function handle(end, x, { y, h }) {
  const made = element("range-handle", { x, y, h });
  made.dataset.rangeEnd = end;
  return made;
}

/**
 * @param {string} name
 * @param {{ x: number, y: number, w?: number, h: number }} box
 */
function element(name, { x, y, w, h }) {
  const made = document.createElement("div");
  made.className = name;
  Object.assign(
    made.style,
    { left: `${x}px`, top: `${y}px`, height: `${h}px` },
    w === undefined ? {} : { width: `${w}px` },
  );
  return made;
}
