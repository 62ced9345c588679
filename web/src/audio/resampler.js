// @ts-check
/**
 * Brings sound from one sample rate to another, chunk by chunk: what comes out is the same wherever the chunks meet.
 * Each sample is the sum of its neighbours, weighted by a windowed sinc; see J. O. Smith, "Digital Audio Resampling",
 * https://ccrma.stanford.edu/~jos/resample/, and for the window J. F. Kaiser, "Nonrecursive Digital Filter Design Using
 * the I0-sinh Window Function", ISCAS 1974.
 */

/** Neighbours on either side that count, in samples of the lower rate. */
const reach = 24;

/** Kaiser's parameter: what it folds back is 80 dB below, for a transition of a tenth of the band. */
const shape = 8;

/** The band that passes, of what the lower rate can hold. */
const passes = 0.95;

export class Resampler {
  #up;
  #down;
  #half;
  /** @type {Float32Array[]} the weights for each position that a sample can have between two others */
  #phases;
  /** What of the sound is still needed, from frame #begin on. Before the beginning there is silence. */
  #held;
  #begin;
  /** The next sample to come out lies behind frame #index by #phase fractions of the distance to the one after. */
  #index = 0;
  #phase = 0;

  /**
   * @param {number} from samples a second, as is `to`; both whole numbers
   * @param {number} to
   */
  constructor(from, to) {
    const common = greatestCommon(from, to);
    this.#up = to / common;
    this.#down = from / common;
    const cutoff = passes * Math.min(1, to / from);
    this.#half = Math.ceil(reach * Math.max(1, from / to));
    this.#phases = Array.from({ length: this.#up }, (_, phase) => weights(phase / this.#up, this.#half, cutoff));
    this.#begin = 1 - this.#half;
    this.#held = new Float32Array(this.#half - 1);
  }

  /**
   * @param {Float32Array} samples
   * @returns {Float32Array} all that is certain by now
   */
  push(samples) {
    const held = new Float32Array(this.#held.length + samples.length);
    held.set(this.#held);
    held.set(samples, this.#held.length);
    // Frames from here on have neighbours that are not there yet.
    const output = this.#resample(held, this.#begin + held.length - this.#half);
    const needed = this.#index + 1 - this.#half;
    this.#held = held.slice(needed - this.#begin);
    this.#begin = needed;
    return output;
  }

  /** @returns {Float32Array} what is left: behind the end there is silence */
  finish() {
    const end = this.#begin + this.#held.length;
    const held = new Float32Array(this.#held.length + this.#half);
    held.set(this.#held);
    return this.#resample(held, end);
  }

  /**
   * @param {Float32Array} held
   * @param {number} end the frame in which it stops
   */
  #resample(held, end) {
    const up = this.#up;
    const whole = Math.floor(this.#down / up);
    const fraction = this.#down % up;
    const left = (end - this.#index) * up - this.#phase;
    const output = new Float32Array(Math.max(Math.ceil(left / this.#down), 0));
    for (let i = 0; i < output.length; i++) {
      const taps = this.#phases[this.#phase];
      const first = this.#index + 1 - this.#half - this.#begin;
      let sum = 0;
      for (let tap = 0; tap < taps.length; tap++) {
        sum += taps[tap] * held[first + tap];
      }
      output[i] = sum;
      this.#phase += fraction;
      const carry = this.#phase >= up ? 1 : 0;
      this.#phase -= carry * up;
      this.#index += whole + carry;
    }
    return output;
  }
}

/**
 * @param {number} offset behind the sample in the middle, in samples
 * @param {number} half
 * @param {number} cutoff 1 for half of the rate
 */
function weights(offset, half, cutoff) {
  const taps = Float32Array.from({ length: 2 * half }, (_, tap) => {
    const distance = tap + 1 - half - offset;
    const share = distance / half;
    const window = Math.abs(share) < 1 ? bessel(shape * Math.sqrt(1 - share * share)) / bessel(shape) : 0;
    return window * cutoff * sinc(cutoff * distance);
  });
  const sum = taps.reduce((total, weight) => total + weight, 0);
  return taps.map((weight) => weight / sum);
}

/** @param {number} x */
function sinc(x) {
  return x === 0 ? 1 : Math.sin(Math.PI * x) / (Math.PI * x);
}

/**
 * The modified Bessel function of the first kind and order 0, by its power series.
 *
 * @param {number} x
 */
function bessel(x) {
  let sum = 1;
  for (let term = 1, k = 1; term > 1e-12 * sum; k++) {
    term *= (x / (2 * k)) ** 2;
    sum += term;
  }
  return sum;
}

/**
 * @param {number} a
 * @param {number} b
 * @returns {number}
 */
function greatestCommon(a, b) {
  return b === 0 ? a : greatestCommon(b, a % b);
}
