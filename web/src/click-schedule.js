// @ts-check
/**
 * Which clicks come soon while a recording plays. The recording tells its place some twenty times a second: too
 * coarsely to click by, but well enough to see the next clicks coming, and to correct when they come.
 *
 * @typedef {{ ms: number, level: number }} TimedClick milliseconds of the recording
 * @typedef {{ click: TimedClick, delay: number }} DueClick delay in real milliseconds from now
 */

/** How far ahead clicks are seen coming, in real milliseconds: more than the page is ever busy with something else. */
const horizon = 600;

export class ClickSchedule {
  /** @type {TimedClick[]} */
  #clicks = [];

  /** @param {TimedClick[]} clicks in rising order of time */
  setClicks(clicks) {
    this.#clicks = clicks;
  }

  /**
   * @param {number} place where the recording is, in milliseconds
   * @param {number} rate milliseconds of the recording for each real one
   * @returns {DueClick[]} the clicks to come, the same ones again until they are past
   */
  due(place, rate) {
    const to = place + horizon * rate;
    return this.#clicks
      .filter(({ ms }) => ms >= place && ms < to)
      .map((click) => ({ click, delay: (click.ms - place) / rate }));
  }
}
