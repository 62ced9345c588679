// @ts-check
import { firstAtLeast } from "./stretch/time-stretch.js";

/**
 * The metronome's clicks beside a backing track, mixed in where the backing track has come to them.
 *
 * @typedef {object} Pattern
 * @property {Float64Array} positions frames of the backing track, in rising order
 * @property {Uint8Array} levels of each position: 0 for the first beat of a bar, higher for finer levels
 *
 * @typedef {object} Ticking
 * @property {number} levels clicks of a lower level than this sound
 * @property {Float32Array[]} sounds of each level
 */

/** A start so little behind a click is meant for it, in seconds: alphaTab takes a tick more for each call. */
const slackSeconds = 0.003;

export class BackingTrackClicks {
  #slack;
  /** @type {Pattern} */
  #pattern = { positions: new Float64Array(0), levels: new Uint8Array(0) };
  /** @type {Ticking} */
  #ticking = { levels: 0, sounds: [] };
  #next = 0;
  /**
   * @type {{ samples: Float32Array, from: number }[]} from: at which of the next frames it begins; negative when it has
   */
  #sounding = [];

  /** @param {number} sampleRate samples a second */
  constructor(sampleRate) {
    this.#slack = slackSeconds * sampleRate;
  }

  /** @param {Ticking} ticking from the next click on */
  set ticking(ticking) {
    this.#ticking = ticking;
  }

  /**
   * @param {Pattern} pattern
   * @param {number} position where the backing track is
   */
  setPattern(pattern, position) {
    this.#pattern = pattern;
    this.goTo(position);
  }

  /** @param {number} position where the backing track goes on */
  goTo(position) {
    this.#next = firstAtLeast(this.#pattern.positions, position - this.#slack);
  }

  /** Ends all clicks. */
  silence() {
    this.#sounding.length = 0;
  }

  /**
   * @param {Float32Array} left
   * @param {Float32Array} right
   * @param {number} at the first frame to mix to
   * @param {number} count
   * @param {number} position of the backing track at that frame
   * @param {number} speed frames of the backing track for each frame
   */
  mix(left, right, at, count, position, speed) {
    const { positions, levels } = this.#pattern;
    for (; this.#next < positions.length && positions[this.#next] < position + count * speed; this.#next++) {
      const level = levels[this.#next];
      if (level < this.#ticking.levels) {
        const samples = this.#ticking.sounds[level];
        this.#sounding.push({ samples, from: Math.max(Math.round((positions[this.#next] - position) / speed), 0) });
      }
    }
    let kept = 0;
    for (const click of this.#sounding) {
      const start = Math.max(click.from, 0);
      const end = Math.min(click.from + click.samples.length, count);
      for (let i = start; i < end; i++) {
        const sample = click.samples[i - click.from];
        left[at + i] += sample;
        right[at + i] += sample;
      }
      click.from -= count;
      if (click.from + click.samples.length > 0) {
        this.#sounding[kept++] = click;
      }
    }
    this.#sounding.length = kept;
  }
}
