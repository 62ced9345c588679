// @ts-check
/**
 * Finds the onsets in a backing track: plucks, strums, drum beats, everything that begins at one moment. Stretched time
 * keeps these sharp and puts them where they belong, so what counts is where they begin, to a millisecond or better.
 *
 * An onset is where the energy of some milliseconds is a multiple of what it was in the time before. The energy is
 * taken of the sound itself, for what is low, and of its slope, which weighs higher tones more and so finds a new
 * string through those that ring on. Compare J. P. Bello et al., "A Tutorial on Onset Detection in Music Signals", IEEE
 * Transactions on Speech and Audio Processing 13 (2005), on energy and its high-frequency weighting.
 */

/**
 * In seconds: how finely energy is looked at, over how long it is summed, and the time before that it is held against.
 */
const hop = 0.0015;
const hopsSummed = 4;
const hopsBefore = 24;

/** By what an onset exceeds the energy of the time before: the sound's own, and that of its slope. */
const rises = { sound: 4, slope: 2.5 };

/** Energy below this share of the loudest so far is no onset, and neither is what is below a step of 16-bit samples. */
const faintest = 1e-4;

/** Two onsets are at least so far from each other, in seconds. */
export const closest = 0.05;

/** How far an onset stands out from what was before, and which share of its peak counts as its beginning. */
const standsOut = 1.25;
const beginning = 0.05;

/** How many hops before a position decide on it; one more, because the slope of the very first sample is not known. */
const lookBack = hopsBefore + 1;

/** Looks for the onsets of a backing track that comes chunk by chunk; wherever the chunks meet, it finds the same. */
export class OnsetDetector {
  #step;
  #apart;
  /** @type {Int16Array[]} what may still be looked at, from hop #begin on */
  #window = [];
  #begin = 0;
  /** The first hop that was not decided on, and that of the last onset. */
  #next = 0;
  #last;
  /** The most that each energy was before #next. */
  #loudest = { sound: 0, slope: 0 };

  /** @param {number} sampleRate samples a second */
  constructor(sampleRate) {
    this.#step = Math.max(Math.round(hop * sampleRate), 1);
    this.#apart = Math.round((closest * sampleRate) / this.#step);
    this.#last = -this.#apart;
  }

  /**
   * @param {Int16Array[]} channels what comes next, of equal length
   * @returns {number[]} frames of the backing track, in rising order: onsets that are certain by now
   */
  push(channels) {
    this.#window = channels.map((samples, channel) => joined(this.#window[channel], samples));
    const whole = Math.floor(this.#window[0].length / this.#step);
    return this.#search(whole - (this.#apart >> 1) - 2 * hopsSummed);
  }

  /** @returns {number[]} the rest */
  finish() {
    return this.#search(Math.ceil((this.#window[0]?.length ?? 0) / this.#step));
  }

  /** @param {number} end the first hop of the window that is not decided on yet */
  #search(end) {
    const step = this.#step;
    const first = this.#next - this.#begin;
    if (end <= first) {
      return [];
    }
    const channels = this.#window;
    const energies = measure(channels, channels[0].length, step);
    const rise = {
      sound: rising(energies.sound, rises.sound, channels.length * step, this.#loudest.sound, first),
      slope: rising(energies.slope, rises.slope, channels.length * step, this.#loudest.slope, first),
    };
    /** @type {number[]} */
    const found = [];
    for (let at = first; at < end; at++) {
      const strength = Math.max(rise.sound.strengths[at], rise.slope.strengths[at]);
      if (strength > 1 && this.#begin + at - this.#last >= this.#apart && strongest(rise, at, this.#apart >> 1)) {
        this.#last = this.#begin + at;
        const bySound = rise.sound.strengths[at] > rise.slope.strengths[at];
        found.push(this.#begin * step + begins(channels, at * step, step, bySound));
      }
    }
    this.#loudest = { sound: rise.sound.loudest[end - 1], slope: rise.slope.loudest[end - 1] };
    this.#forget(end);
    return found;
  }

  /** @param {number} end hop of the window up to which it is decided */
  #forget(end) {
    this.#next = this.#begin + end;
    const past = Math.max(end - lookBack, 0);
    this.#begin += past;
    this.#window = this.#window.map((samples) => samples.slice(past * this.#step));
  }
}

/**
 * @param {Int16Array[]} channels of equal length
 * @param {number} sampleRate samples a second
 * @returns {Int32Array} frames, in rising order
 */
export function findOnsets(channels, sampleRate) {
  const detector = new OnsetDetector(sampleRate);
  return Int32Array.from([...detector.push(channels), ...detector.finish()]);
}

/**
 * @param {Int16Array | undefined} samples
 * @param {Int16Array} more
 */
function joined(samples, more) {
  const all = new Int16Array((samples?.length ?? 0) + more.length);
  all.set(samples ?? []);
  all.set(more, samples?.length ?? 0);
  return all;
}

/**
 * @param {Int16Array[]} channels
 * @param {number} length
 * @param {number} step
 */
function measure(channels, length, step) {
  const count = Math.ceil(length / step);
  const sound = new Float64Array(count);
  const slope = new Float64Array(count);
  for (const samples of channels) {
    let before = 0;
    for (let at = 0; at < count; at++) {
      const end = Math.min((at + 1) * step, length);
      let soundSum = 0;
      let slopeSum = 0;
      for (let i = at * step; i < end; i++) {
        const value = samples[i];
        const change = value - before;
        before = value;
        soundSum += value * value;
        slopeSum += change * change;
      }
      sound[at] += soundSum;
      slope[at] += slopeSum;
    }
  }
  return { sound, slope };
}

/**
 * @typedef {object} Rise
 * @property {Float32Array} strengths above 1 where the energy rises by more than it takes
 * @property {Float64Array} loudest the most that the energy was by then
 *
 * @param {Float64Array} energy of each step
 * @param {number} rise
 * @param {number} floor energy of a step that is hardly silent
 * @param {number} loudest the most that the energy was before `first`
 * @param {number} first the first step of interest
 * @returns {Rise}
 */
function rising(energy, rise, floor, loudest, first) {
  const count = energy.length;
  const summed = new Float64Array(count);
  for (let at = count - 1, sum = 0; at >= 0; at--) {
    sum += energy[at] - (energy[at + hopsSummed] ?? 0);
    summed[at] = sum;
  }
  const strengths = new Float32Array(count);
  const most = new Float64Array(count);
  for (let at = first; at < count; at++) {
    most[at] = Math.max(most[at - 1] ?? 0, loudest, summed[at]);
    let before = Math.max(most[at] * faintest, floor * hopsSummed);
    for (let back = Math.max(at - hopsBefore, 0); back <= at - hopsSummed; back++) {
      before = Math.max(before, summed[back]);
    }
    strengths[at] = summed[at] / before / rise;
  }
  return { strengths, loudest: most };
}

/**
 * @param {{ sound: Rise, slope: Rise }} rise
 * @param {number} at
 * @param {number} around
 */
function strongest({ sound, slope }, at, around) {
  const strength = Math.max(sound.strengths[at], slope.strengths[at]);
  const end = Math.min(at + around, sound.strengths.length - 1);
  for (let other = at + 1; other <= end; other++) {
    if (Math.max(sound.strengths[other], slope.strengths[other]) > strength) {
      return false;
    }
  }
  return true;
}

/**
 * @param {Int16Array[]} channels
 * @param {number} at near the onset
 * @param {number} step
 * @param {boolean} bySound whether the sound rose, or its slope
 * @returns {number} the frame in which it begins
 */
function begins(channels, at, step, bySound) {
  /** @type {(frame: number) => number} */
  const level = (frame) => {
    let sum = 0;
    for (const samples of channels) {
      sum += Math.abs((samples[frame] ?? 0) - (bySound ? 0 : (samples[frame - 1] ?? 0)));
    }
    return sum;
  };
  /** @type {(from: number, to: number) => number} */
  const peak = (from, to) => {
    let most = 0;
    for (let frame = Math.max(from, 0); frame < to; frame++) {
      most = Math.max(most, level(frame));
    }
    return most;
  };
  const start = at - hopsSummed * step;
  const threshold = Math.max(
    peak(at - hopsBefore * step, start) * standsOut,
    peak(start, at + 2 * hopsSummed * step) * beginning,
  );
  const end = at + hopsSummed * step;
  for (let frame = Math.max(start, 0); frame < end; frame++) {
    if (level(frame) > threshold) {
      return frame;
    }
  }
  return at;
}
