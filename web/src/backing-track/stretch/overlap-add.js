// @ts-check
import { fullScale } from "../../audio/full-scale.js";

/**
 * A backing track played in segments: each is copied as it is, and fades into the next. Positions are frames of the
 * backing track; before its beginning and behind its end there is silence.
 *
 * @typedef {import("../../audio/samples.js").Samples} Samples
 */

/** Over how long two segments are compared, in seconds. */
const comparedTime = 0.016;

/** Segments are compared coarsely first, by the mean of so many samples. */
const coarse = 4;

export class OverlapAdd {
  #channels;
  #source = 0;
  /** What fades out: its source, how long it did, how long it takes, and how alike the two are. */
  #fading = { source: 0, done: 0, length: 0, likeness: 0 };
  #compared;
  /** @type {Float32Array[]} */
  #reference;
  /** @type {Float32Array[]} */
  #candidates;

  /**
   * @param {Samples[]} channels one or two, of equal length
   * @param {number} sampleRate samples a second
   * @param {number} range within how long the likest segment is looked for, in seconds
   */
  constructor(channels, sampleRate, range) {
    this.#channels = channels;
    this.#compared = Math.round(comparedTime * sampleRate);
    const length = Math.ceil(this.#compared / coarse);
    const steps = Math.ceil((range * sampleRate) / coarse) + 2;
    this.#reference = channels.map(() => new Float32Array(length));
    this.#candidates = channels.map(() => new Float32Array(length + steps));
  }

  /** What is played next. */
  get source() {
    return this.#source;
  }

  /** How many frames the present fade still takes; 0 for none. */
  get fadeLeft() {
    return this.#fading.length - this.#fading.done;
  }

  /** @param {number} source what to go on with, at once */
  begin(source) {
    this.#fading.done = this.#fading.length;
    this.#source = source;
  }

  /**
   * @param {number} source
   * @param {number} length frames of the fade
   */
  fadeTo(source, length) {
    this.#fading = { source: this.#source, done: 0, length, likeness: this.#likeness(this.#source, source, length) };
    this.#source = source;
  }

  /**
   * Goes on with the present segment.
   *
   * @param {Float32Array} left
   * @param {Float32Array} right
   * @param {number} at
   * @param {number} count at most as many as the fade still takes
   */
  play(left, right, at, count) {
    const fades = this.fadeLeft > 0;
    for (let channel = 0; channel < this.#channels.length; channel++) {
      const output = channel === 0 ? left : right;
      const samples = this.#channels[channel];
      for (let i = 0; i < count; i++) {
        output[at + i] = samples.at(this.#source + i) / fullScale;
      }
      if (fades) {
        this.#mixFading(output, samples, at, count);
      }
    }
    if (this.#channels.length === 1) {
      right.set(left.subarray(at, at + count), at);
    }
    if (fades) {
      this.#fading.done += count;
      this.#fading.source += count;
    }
    this.#source += count;
  }

  /**
   * The more alike the two are, the less louder both together are than each of them.
   *
   * @param {Float32Array} output
   * @param {Samples} samples
   * @param {number} at
   * @param {number} count
   */
  #mixFading(output, samples, at, count) {
    const { source, done, length, likeness } = this.#fading;
    for (let i = 0; i < count; i++) {
      const share = 0.5 - 0.5 * Math.cos((Math.PI * (done + i + 0.5)) / length);
      const other = 1 - share;
      const level = 1 / Math.sqrt(share * share + other * other + 2 * share * other * likeness);
      output[at + i] = level * (share * output[at + i] + (other * samples.at(source + i)) / fullScale);
    }
  }

  /**
   * @param {number} low
   * @param {number} high the first and the last source to choose from
   * @returns {number} the one that goes on most like the present one
   */
  likest(low, high) {
    this.#average(this.#reference, this.#source);
    this.#average(this.#candidates, low);
    const compared = this.#reference[0].length;
    const steps = Math.floor((high - low) / coarse);
    let best = 0;
    let most = -Infinity;
    for (let step = 0; step <= steps; step++) {
      let product = 0;
      let energy = 1;
      for (let channel = 0; channel < this.#reference.length; channel++) {
        const reference = this.#reference[channel];
        const candidates = this.#candidates[channel];
        for (let i = 0; i < compared; i++) {
          const value = candidates[step + i];
          product += reference[i] * value;
          energy += value * value;
        }
      }
      const alike = product / Math.sqrt(energy);
      if (alike > most) {
        most = alike;
        best = low + step * coarse;
      }
    }
    let finest = best;
    most = -Infinity;
    for (let source = Math.max(best - coarse + 1, low); source < Math.min(best + coarse, high + 1); source++) {
      const alike = this.#likeness(this.#source, source, this.#compared);
      if (alike > most) {
        most = alike;
        finest = source;
      }
    }
    return finest;
  }

  /**
   * @param {Float32Array[]} means
   * @param {number} from
   */
  #average(means, from) {
    means.forEach((target, channel) => {
      const samples = this.#channels[channel];
      for (let i = 0, at = from; i < target.length; i++, at += coarse) {
        target[i] = samples.at(at) + samples.at(at + 1) + samples.at(at + 2) + samples.at(at + 3);
      }
    });
  }

  /**
   * @param {number} one
   * @param {number} other
   * @param {number} length
   * @returns {number} from 0 for what has nothing in common to 1 for the same, whatever their levels
   */
  #likeness(one, other, length) {
    let product = 0;
    let oneEnergy = 0;
    let otherEnergy = 0;
    for (const samples of this.#channels) {
      for (let i = 0; i < length; i++) {
        const a = samples.at(one + i);
        const b = samples.at(other + i);
        product += a * b;
        oneEnergy += a * a;
        otherEnergy += b * b;
      }
    }
    const energy = Math.sqrt(oneEnergy * otherEnergy);
    return energy > 0 ? Math.max(product / energy, 0) : 1;
  }
}
