// @ts-check
/**
 * Which place of the score each sample belongs to: what is rendered now is heard later, and in between the score may
 * have been counted in, have changed its speed or have started over.
 *
 * @typedef {object} Stretch samples that belong to consecutive places of the score
 * @property {number} frame the first of them, counted from the beginning of the stream
 * @property {number} place milliseconds of score time at that sample
 * @property {number} speed milliseconds of score time for each real one; 0 while the score waits
 * @property {boolean} startsOver whether the score jumped back to get here
 *
 * @typedef {{ place: number, startsOver: boolean }} Heard
 */
export class HeardTime {
  #sampleRate;
  /** @type {Stretch[]} */
  #stretches = [];

  /** @param {number} sampleRate samples a second */
  constructor(sampleRate) {
    this.#sampleRate = sampleRate;
  }

  /** Forgets everything: another stream begins. */
  clear() {
    this.#stretches = [];
  }

  /**
   * @param {Stretch} stretch behind all others; one that begins where the last begins takes its place
   */
  add(stretch) {
    const last = this.#stretches.at(-1);
    if (last?.frame === stretch.frame) {
      this.#stretches.pop();
      stretch.startsOver ||= last.startsOver;
    }
    this.#stretches.push(stretch);
  }

  /**
   * @param {number} frame what is heard now; never less than the time before
   * @returns {Heard | null} the place in the score, and whether it started over since the last time; null when nothing
   *     was ever rendered
   */
  at(frame) {
    let startsOver = false;
    while (this.#stretches.length > 1 && this.#stretches[1].frame <= frame) {
      this.#stretches.shift();
      startsOver ||= this.#stretches[0].startsOver;
    }
    const stretch = this.#stretches[0];
    if (!stretch) {
      return null;
    }
    const milliseconds = (Math.max(frame - stretch.frame, 0) * 1000) / this.#sampleRate;
    return { place: stretch.place + milliseconds * stretch.speed, startsOver };
  }
}
