// @ts-check
/**
 * Where the score's time lies in its recording.
 *
 * @typedef {{ score: number, recording: number }} SyncPoint milliseconds of score time, and of the recording
 */

/**
 * @param {SyncPoint[]} points in rising order; between two of them both times run evenly
 * @param {number} ms of score time
 * @returns {number} milliseconds of the recording; the same where there are no points
 */
export function recordingTime(points, ms) {
  if (points.length < 2) {
    return points.length === 0 ? ms : ms - points[0].score + points[0].recording;
  }
  let index = points.findIndex(({ score }) => score > ms) - 1;
  if (index < 0) {
    index = points[0].score > ms ? 0 : points.length - 2;
  }
  const from = points[index];
  const to = points[index + 1];
  const length = to.score - from.score;
  const pace = length > 0 ? (to.recording - from.recording) / length : 1;
  return from.recording + (ms - from.score) * pace;
}

/** How many looks at the recording the clock remembers. */
const memory = 24;

/** While a recording starts, so many looks are only good until the next. */
const unsettled = 3;

/** A look that differs by more than this from what was expected is a jump of the recording, in milliseconds. */
const jump = 120;

/**
 * Reads a running recording like a clock. What an audio element says about its place is right in the middle and wrong
 * by some milliseconds each time: the median of the last looks is steadier than any of them.
 */
export class RecordingClock {
  /** @type {number[]} where the recording was ahead of the real time, at each of the last looks */
  #leads = [];
  #rate = 1;
  #settling = unsettled;

  reset() {
    this.#leads = [];
    this.#settling = unsettled;
  }

  /**
   * @param {number} now real milliseconds
   * @param {number} place milliseconds of the recording
   * @param {number} rate milliseconds of the recording for each real one
   * @returns {number} the place to go by
   */
  look(now, place, rate) {
    const lead = place - now * rate;
    if (rate !== this.#rate || (this.#leads.length > 0 && Math.abs(lead - this.#median()) > jump)) {
      this.#leads = [];
    }
    this.#rate = rate;
    if (this.#settling > 0) {
      this.#settling--;
      this.#leads = [];
    }
    this.#leads.push(lead);
    if (this.#leads.length > memory) {
      this.#leads.shift();
    }
    return this.#median() + now * rate;
  }

  #median() {
    const sorted = [...this.#leads].sort((a, b) => a - b);
    const middle = sorted.length >> 1;
    return sorted.length % 2 === 1 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
  }
}
