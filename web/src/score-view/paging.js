// @ts-check
/**
 * Scrolls by what can be read at once: from one screenful of lines to the next, with one line of the screenful before left
 * as context. In the endless line the same goes for bars.
 *
 * @typedef {{ start: number, length: number }} Line where a line lies, in CSS pixels of what scrolls
 */

/** Room kept before a line at the edge of the view, in CSS pixels. */
const margin = 24;

/** How much of the view is gone through at once where a line is longer than the view. */
const longStep = 0.85;

export class Paging {
  #api;
  #viewport;
  #autoScroll;

  /**
   * @param {import("../alphatab/page-api.js").PageApi} api
   * @param {HTMLElement} viewport what scrolls
   * @param {import("./auto-scroll.js").AutoScroll} autoScroll which is not to scroll back at once
   */
  constructor(api, viewport, autoScroll) {
    this.#api = api;
    this.#viewport = viewport;
    this.#autoScroll = autoScroll;
  }

  /** @param {1 | -1} direction */
  turn(direction) {
    const viewport = this.#viewport;
    const origin = this.#api.notation.getBoundingClientRect();
    const view = viewport.getBoundingClientRect();
    const systems = this.#api.boundsLookup?.staffSystems ?? [];
    this.#autoScroll.noticeReader();
    if (systems.length === 1 && viewport.scrollWidth > viewport.clientWidth) {
      const left = origin.left - view.left + viewport.scrollLeft;
      const bars = systems[0].bars.map(({ visualBounds: { x, w } }) => ({ start: left + x, length: w }));
      viewport.scrollTo({ left: pageStep(bars, viewport.scrollLeft, viewport.clientWidth, direction) });
    } else {
      const top = origin.top - view.top + viewport.scrollTop;
      const lines = systems.map(({ visualBounds: { y, h } }) => ({ start: top + y, length: h }));
      viewport.scrollTo({ top: pageStep(lines, viewport.scrollTop, viewport.clientHeight, direction) });
    }
  }
}

/**
 * @param {readonly Line[]} lines from the first one on
 * @param {number} from how far the view is scrolled
 * @param {number} length of the view
 * @param {1 | -1} direction
 * @returns {number} how far to scroll it; beyond either end too
 */
export function pageStep(lines, from, length, direction) {
  const whole = lines.filter((line) => line.start >= from && line.start + line.length <= from + length);
  return direction > 0 ? stepOn(lines, whole, from, length) : stepBack(lines, whole, from, length);
}

/**
 * @param {readonly Line[]} lines
 * @param {readonly Line[]} whole those that are in view as a whole
 * @param {number} from
 * @param {number} length
 */
function stepOn(lines, whole, from, length) {
  const context = whole.at(-1);
  if (context && context.start - margin > from + 1) {
    return context.start - margin;
  }
  const next = lines.find((line) => line.start - margin > from + 1);
  return Math.min(next ? next.start - margin : Infinity, from + longStep * length);
}

/**
 * @param {readonly Line[]} lines
 * @param {readonly Line[]} whole
 * @param {number} from
 * @param {number} length
 */
function stepBack(lines, whole, from, length) {
  const context = whole[0];
  const farthest = context ? context.start + context.length + margin - length : from - longStep * length;
  if (farthest <= 0) {
    return 0;
  }
  const first = lines.find((line) => line.start - margin >= farthest && line.start - margin < from - 1);
  return first ? first.start - margin : Math.min(farthest, from - longStep * length);
}
