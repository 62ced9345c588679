// @ts-check
/**
 * Which position of the score each frame belongs to. What is rendered now is presented later, and in between the score
 * may have been counted in, have changed its speed or have started over.
 *
 * @typedef {object} Span frames that belong to consecutive positions of the score
 * @property {number} frame the first of them, counted from the beginning of the stream
 * @property {number} position milliseconds of score time at that sample
 * @property {number} speed milliseconds of score time for each real one; 0 while the score waits
 * @property {boolean} startsOver whether the score jumped back to get here
 *
 * @typedef {{ position: number, startsOver: boolean }} Presented
 */
export class PresentationTimeMap {
  #sampleRate;
  /** @type {Span[]} */
  #spans = [];

  /** @param {number} sampleRate samples a second */
  constructor(sampleRate) {
    this.#sampleRate = sampleRate;
  }

  /** Forgets everything: another stream begins. */
  clear() {
    this.#spans = [];
  }

  /**
   * @param {Span} span behind all others; one that begins where the last begins takes its place
   */
  add(span) {
    const last = this.#spans.at(-1);
    if (last?.frame === span.frame) {
      this.#spans.pop();
      span.startsOver ||= last.startsOver;
    }
    this.#spans.push(span);
  }

  /**
   * @param {number} frame what is presented now; never less than the time before
   * @returns {Presented | null} the position in the score, and whether it started over since the last time; null when
   *     nothing was ever rendered
   */
  at(frame) {
    let startsOver = false;
    while (this.#spans.length > 1 && this.#spans[1].frame <= frame) {
      this.#spans.shift();
      startsOver ||= this.#spans[0].startsOver;
    }
    const span = this.#spans[0];
    if (!span) {
      return null;
    }
    const milliseconds = (Math.max(frame - span.frame, 0) * 1000) / this.#sampleRate;
    return { position: span.position + milliseconds * span.speed, startsOver };
  }
}
