// @ts-check
/**
 * Decides click by click what is due soon while a recording plays: the recording tells its place some twenty times a
 * second, too coarsely to click by, but well enough to see the next clicks coming.
 *
 * @typedef {{ ms: number, level: number }} TimedClick milliseconds of score time
 * @typedef {{ click: TimedClick, delay: number }} DueClick delay in real milliseconds from now
 */

/** How far ahead clicks are handed out, in real milliseconds: more than the time between two reports. */
const horizon = 180;

/** A report this far behind what was handed out already is a jump back and no rounding, in milliseconds. */
const jump = 400;

export class ClickSchedule {
  /** @type {TimedClick[]} */
  #clicks = [];
  #handedOut = -Infinity;

  /** @param {TimedClick[]} clicks in rising order of time */
  setClicks(clicks) {
    this.#clicks = clicks;
    this.#handedOut = -Infinity;
  }

  /** Forgets what was handed out: the recording stands somewhere else, or stopped. */
  reset() {
    this.#handedOut = -Infinity;
  }

  /**
   * @param {number} place where the recording is, in milliseconds of score time
   * @param {number} rate milliseconds of score time for each real one
   * @returns {DueClick[]} the clicks that fall soon and were not handed out yet
   */
  due(place, rate) {
    if (place < this.#handedOut - horizon * rate - jump) {
      this.#handedOut = -Infinity;
    }
    const from = Math.max(place, this.#handedOut);
    const to = place + horizon * rate;
    if (to <= from) {
      return [];
    }
    this.#handedOut = to;
    return this.#clicks
      .filter(({ ms }) => ms >= from && ms < to)
      .map((click) => ({ click, delay: (click.ms - place) / rate }));
  }
}
