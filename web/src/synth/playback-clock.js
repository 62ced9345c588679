// @ts-check
/**
 * Has the synthesizer know what is presented: each time that the audio thread posts it, and in between when a note
 * begins, which is when the cursor has to move.
 */

/** How far ahead a note is waited for; the audio thread posts again before that. */
const horizonMs = 60;

export class PlaybackClock {
  #synth;
  #frame = 0;
  #at = 0;
  /** Never less than the time before. */
  #reported = 0;
  /** @type {ReturnType<typeof setTimeout> | undefined} */
  #timer;

  /** @param {Pick<import("./practice-synth.js").PracticeSynth, "sampleRate" | "rendered" | "nextNote" | "presented">} synth */
  constructor(synth) {
    this.#synth = synth;
  }

  /**
   * @param {number} frame of the stream that was presented at the time `at`; below zero when it has not begun
   * @param {number} at milliseconds of Date
   */
  set(frame, at) {
    this.#frame = frame;
    this.#at = at;
    this.#report(-Infinity);
  }

  /** To be called when the stream is broken off. */
  stop() {
    clearTimeout(this.#timer);
    this.#reported = 0;
  }

  /**
   * @param {number} least what is presented at least: the note that was waited for, as timers are no finer than
   *     milliseconds
   */
  #report(least) {
    clearTimeout(this.#timer);
    const perMillisecond = this.#synth.sampleRate / 1000;
    const passed = this.#frame + (Date.now() - this.#at) * perMillisecond;
    // After a standstill, of the machine or of this process, more time has passed than there was sound for.
    const now = Math.min(passed, Math.max(this.#synth.rendered, this.#frame));
    const presented = Math.max(now, least);
    if (presented >= 0) {
      this.#reported = Math.max(presented, this.#reported);
      this.#synth.presented(this.#reported);
    }
    const note = this.#synth.nextNote;
    const wait = note === undefined ? Infinity : (note - now) / perMillisecond;
    if (note !== undefined && wait < horizonMs) {
      this.#timer = setTimeout(() => this.#report(note), Math.ceil(Math.max(wait, 0)));
    }
  }
}
