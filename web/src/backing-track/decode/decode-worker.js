// @ts-check
import { OnsetDetector } from "./onsets.js";
import { fullScale } from "../../audio/full-scale.js";
import { Resampler } from "../../audio/resampler.js";
import { blockLength } from "../../audio/samples.js";

/**
 * The worker that prepares a backing track for being played, as it is decoded chunk by chunk: it is brought to the
 * sample rate it is played at, samples of 16 bits take half the memory, and onsets are looked for once.
 *
 * @typedef {object} Decoded what comes next
 * @property {number} silent frames of silence that come first: nobody could decode them
 * @property {Float32Array[]} channels of equal length; none where nothing comes but silence
 * @property {number} from the first frame in there that is meant
 * @property {number} length frames that are meant; silent where they are missing
 * @property {number} sampleRate whole samples a second, the same for all chunks
 * @property {number} wantedRate
 * @property {boolean} last
 */

/** What one channel takes on its way from the decoder to the blocks in which it is kept. */
class Channel {
  /** @type {Resampler | null} */
  #resampler;
  #block = new Int16Array(blockLength);
  #filled = 0;

  /**
   * @param {number} from samples a second
   * @param {number} to
   */
  constructor(from, to) {
    this.#resampler = from === to ? null : new Resampler(from, to);
  }

  /**
   * @param {Float32Array} samples
   * @param {boolean} last
   */
  resample(samples, last) {
    const resampled = this.#resampler ? [this.#resampler.push(samples)] : [samples];
    if (this.#resampler && last) {
      resampled.push(this.#resampler.finish());
    }
    return narrow(resampled);
  }

  /**
   * @param {Int16Array} samples
   * @param {boolean} last
   * @returns {Int16Array[]} the blocks that are full; the last one as it is
   */
  fill(samples, last) {
    const blocks = [];
    for (let at = 0; at < samples.length;) {
      const count = Math.min(samples.length - at, blockLength - this.#filled);
      this.#block.set(samples.subarray(at, at + count), this.#filled);
      this.#filled += count;
      at += count;
      if (this.#filled === blockLength) {
        blocks.push(this.#block);
        this.#block = new Int16Array(blockLength);
        this.#filled = 0;
      }
    }
    return last ? [...blocks, this.#block.slice(0, this.#filled)] : blocks;
  }
}

/** @type {Channel[]} */
let channels = [];
/** @type {OnsetDetector | undefined} */
let detector;

/** @param {Float32Array[]} resampled */
function narrow(resampled) {
  const narrowed = new Int16Array(resampled.reduce((length, samples) => length + samples.length, 0));
  let to = 0;
  for (const samples of resampled) {
    for (let i = 0; i < samples.length; i++) {
      narrowed[to++] = Math.round(Math.max(-1, Math.min(1, samples[i])) * fullScale);
    }
  }
  return narrowed;
}

/**
 * @param {Decoded} decoded
 * @param {number} channel
 */
function meant({ silent, channels, from, length }, channel) {
  const own = channels[Math.min(channel, channels.length - 1)]?.subarray(from, from + length);
  if (silent === 0 && own?.length === length) {
    return own;
  }
  const all = new Float32Array(silent + length);
  all.set(own ?? [], silent);
  return all;
}

addEventListener("message", (/** @type {MessageEvent<Decoded>} */ { data }) => {
  const { sampleRate, wantedRate, last } = data;
  const first = !detector;
  if (!detector) {
    detector = new OnsetDetector(wantedRate);
    channels = data.channels.map(() => new Channel(sampleRate, wantedRate));
  }
  const narrowed = channels.map((channel, index) => channel.resample(meant(data, index), last));
  const onsets = Int32Array.from([...detector.push(narrowed), ...(last ? detector.finish() : [])]);
  const blocks = channels.map((channel, index) => channel.fill(narrowed[index], last));
  /** @type {import("../stretch/decoded-track.js").Chunk} */
  const chunk = { first, blocks, onsets, last };
  postMessage(chunk, { transfer: [onsets.buffer, ...blocks.flat().map(({ buffer }) => buffer)] });
});
