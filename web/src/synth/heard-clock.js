// @ts-check
/**
 * Has the synthesizer know what is heard: each time that the audio thread tells, and in between when a note begins, which
 * is when the mark on the score has to move.
 */

/** How far ahead a note is waited for, in milliseconds; the audio thread tells the next time before that. */
const horizon = 60;

export class HeardClock {
  #synth;
  #frame = 0;
  #at = 0;
  /** Never less than the time before. */
  #told = 0;
  #timer = 0;

  /** @param {Pick<import("./practice-synth.js").PracticeSynth, "sampleRate" | "nextNote" | "heard">} synth */
  constructor(synth) {
    this.#synth = synth;
  }

  /**
   * @param {number} frame of the stream that was heard at the time `at`; below zero when it has not begun
   * @param {number} at milliseconds of Date
   */
  set(frame, at) {
    this.#frame = frame;
    this.#at = at;
    this.#tell(-Infinity);
  }

  /** To be called when the stream is broken off. */
  stop() {
    clearTimeout(this.#timer);
    this.#told = 0;
  }

  /** @param {number} least what is heard at least: the note that was waited for, as timers are no finer than milliseconds */
  #tell(least) {
    clearTimeout(this.#timer);
    const perMillisecond = this.#synth.sampleRate / 1000;
    const now = this.#frame + (Date.now() - this.#at) * perMillisecond;
    const heard = Math.max(now, least);
    if (heard >= 0) {
      this.#told = Math.max(heard, this.#told);
      this.#synth.heard(this.#told);
    }
    const note = this.#synth.nextNote;
    const wait = note === undefined ? Infinity : (note - now) / perMillisecond;
    if (note !== undefined && wait < horizon) {
      this.#timer = setTimeout(() => this.#tell(note), Math.ceil(Math.max(wait, 0)));
    }
  }
}
