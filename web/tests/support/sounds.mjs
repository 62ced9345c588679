// @ts-check
// Sounds made up for the tests, as 16-bit samples, and what is heard when they are stretched.
import { findOnsets } from "../../src/backing-track/decode/onsets.js";
import { DecodedTrack } from "../../src/backing-track/stretch/decoded-track.js";
import { blockLength } from "../../src/audio/samples.js";
import { TimeStretch } from "../../src/backing-track/stretch/time-stretch.js";

export const sampleRate = 44100;

/** @param {(seconds: number) => number} wave */
export function sound(seconds, wave) {
  return Int16Array.from({ length: Math.round(seconds * sampleRate) }, (_, frame) =>
    Math.round(30000 * wave(frame / sampleRate)),
  );
}

/** @param {Int16Array} samples */
export function blocksOf(samples) {
  return Array.from({ length: Math.ceil(samples.length / blockLength) }, (_, index) =>
    samples.slice(index * blockLength, (index + 1) * blockLength),
  );
}

/** Sharp strokes at some times. */
export function strokes(seconds, times) {
  const samples = new Int16Array(Math.round(seconds * sampleRate));
  for (const time of times) {
    const start = Math.round(time * sampleRate);
    for (let i = 0; i < 0.03 * sampleRate && start + i < samples.length; i++) {
      const t = i / sampleRate;
      samples[start + i] = Math.round(26000 * Math.cos(2 * Math.PI * 1800 * t) * Math.exp(-t / 0.004));
    }
  }
  return samples;
}

/** A player: renders in blocks as the audio thread does, and starts over at the end of a loop. */
export class Player {
  /** @param {Int16Array[]} channels */
  constructor(channels, { speed = 1, loop = null, onsets = findOnsets(channels, sampleRate) } = {}) {
    const sound = new DecodedTrack(channels.length, sampleRate);
    sound.add({ first: true, blocks: channels.map(blocksOf), onsets, last: true });
    this.stretch = new TimeStretch(sound);
    this.stretch.speed = speed;
    this.stretch.loop = loop;
  }

  /** @returns {Float32Array[]} left and right; shorter where the backing track ends */
  render(seconds) {
    const length = Math.round(seconds * sampleRate);
    const left = new Float32Array(length);
    const right = new Float32Array(length);
    let done = 0;
    while (done < length) {
      const count = Math.min(128 - (done % 128), length - done, this.stretch.framesLeft);
      if (count === 0 && !this.stretch.hasLoop) {
        break;
      }
      if (count === 0) {
        this.stretch.startOver();
      }
      this.stretch.render(left, right, done, count);
      done += count;
    }
    return [left.subarray(0, done), right.subarray(0, done)];
  }
}

/** Where strokes begin, in milliseconds. */
export function onsets(samples, apart = 0.04) {
  const loudest = samples.reduce((most, sample) => Math.max(most, Math.abs(sample)), 0);
  const found = [];
  for (let frame = 0, next = 0; frame < samples.length; frame++) {
    if (frame >= next && Math.abs(samples[frame]) > loudest / 2) {
      found.push((frame * 1000) / sampleRate);
      next = frame + apart * sampleRate;
    }
  }
  return found;
}

/** The level of each stretch of some milliseconds, in decibels. */
export function levels(samples, milliseconds = 50) {
  const size = Math.round((milliseconds * sampleRate) / 1000);
  const found = [];
  for (let at = 0; at + size <= samples.length; at += size) {
    const energy = samples.subarray(at, at + size).reduce((sum, sample) => sum + sample * sample, 0);
    found.push(10 * Math.log10(energy / size + 1e-12));
  }
  return found;
}

/** How often a tone swings in a second, from its first rise through zero to its last. */
export function pitch(samples) {
  const rises = [];
  for (let frame = 1; frame < samples.length; frame++) {
    const [before, now] = [samples[frame - 1], samples[frame]];
    if (before < 0 && now >= 0) {
      rises.push(frame - now / (now - before));
    }
  }
  return ((rises.length - 1) * sampleRate) / (rises[rises.length - 1] - rises[0]);
}

/** The sharpest bend of a curve: what is heard as a click. */
export function sharpest(samples) {
  let most = 0;
  for (let frame = 2; frame < samples.length; frame++) {
    most = Math.max(most, Math.abs(samples[frame] - 2 * samples[frame - 1] + samples[frame - 2]));
  }
  return most;
}
