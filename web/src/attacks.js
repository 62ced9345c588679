// @ts-check
/**
 * Finds the attacks in a recording: plucks, strokes, beats, everything that begins at one moment. Stretched time keeps
 * these sharp and puts them where they belong, so what counts is where they begin, to a millisecond or better.
 *
 * An attack is where the energy of some milliseconds is a multiple of what it was in the time before. The energy is
 * taken of the sound itself, for what is low, and of its slope, which weighs higher tones more and so hears a new
 * string through those that ring on. Compare J. P. Bello et al., "A Tutorial on Onset Detection in Music Signals", IEEE
 * Transactions on Speech and Audio Processing 13 (2005), on energy and its high-frequency weighting.
 */

/** In seconds: how finely energy is looked at, over how long it is summed, and the time before that it is held against. */
const hop = 0.0015;
const hopsSummed = 4;
const hopsBefore = 24;

/** By what an attack exceeds the energy of the time before: the sound's own, and that of its slope. */
const rises = { sound: 4, slope: 2.5 };

/** Energy below this part of the loudest so far is no attack, and neither is what is below a step of 16-bit samples. */
const faintest = 1e-4;

/** Two attacks are at least so far from each other, in seconds. */
export const closest = 0.05;

/** How far an attack stands out from what was before, and which part of its peak counts as its beginning. */
const standsOut = 1.25;
const beginning = 0.05;

/**
 * @param {Int16Array[]} channels of equal length
 * @param {number} sampleRate samples a second
 * @returns {Int32Array} frames, in rising order
 */
export function findAttacks(channels, sampleRate) {
  const length = channels[0]?.length ?? 0;
  const step = Math.max(Math.round(hop * sampleRate), 1);
  const energies = measure(channels, length, step);
  const rise = {
    sound: rising(energies.sound, rises.sound, channels.length * step),
    slope: rising(energies.slope, rises.slope, channels.length * step),
  };
  const count = energies.sound.length;
  const apart = Math.round((closest * sampleRate) / step);
  /** @type {number[]} */
  const found = [];
  let last = -apart;
  for (let at = 0; at < count; at++) {
    const strength = Math.max(rise.sound[at], rise.slope[at]);
    if (strength > 1 && at - last >= apart && strongest(rise, at, apart >> 1)) {
      last = at;
      found.push(begins(channels, at * step, step, rise.sound[at] > rise.slope[at]));
    }
  }
  return Int32Array.from(found);
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
 * @param {Float64Array} energy of each step
 * @param {number} rise
 * @param {number} floor energy of a step that is hardly silent
 * @returns {Float32Array} above 1 where the energy rises by more than `rise`
 */
function rising(energy, rise, floor) {
  const count = energy.length;
  const summed = new Float64Array(count);
  for (let at = count - 1, sum = 0; at >= 0; at--) {
    sum += energy[at] - (energy[at + hopsSummed] ?? 0);
    summed[at] = sum;
  }
  const strengths = new Float32Array(count);
  let loudest = 0;
  for (let at = 0; at < count; at++) {
    loudest = Math.max(loudest, summed[at]);
    let before = Math.max(loudest * faintest, floor * hopsSummed);
    for (let back = Math.max(at - hopsBefore, 0); back <= at - hopsSummed; back++) {
      before = Math.max(before, summed[back]);
    }
    strengths[at] = summed[at] / before / rise;
  }
  return strengths;
}

/**
 * @param {{ sound: Float32Array, slope: Float32Array }} rise
 * @param {number} at
 * @param {number} around
 */
function strongest(rise, at, around) {
  const strength = Math.max(rise.sound[at], rise.slope[at]);
  const end = Math.min(at + around, rise.sound.length - 1);
  for (let other = at + 1; other <= end; other++) {
    if (Math.max(rise.sound[other], rise.slope[other]) > strength) {
      return false;
    }
  }
  return true;
}

/**
 * @param {Int16Array[]} channels
 * @param {number} at near the attack
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
  const threshold = Math.max(peak(at - hopsBefore * step, start) * standsOut, peak(start, at + 2 * hopsSummed * step) * beginning);
  const end = at + hopsSummed * step;
  for (let frame = Math.max(start, 0); frame < end; frame++) {
    if (level(frame) > threshold) {
      return frame;
    }
  }
  return at;
}
