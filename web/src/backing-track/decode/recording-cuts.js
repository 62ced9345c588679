// @ts-check
import { cutMpeg } from "./cut-mpeg.js";
import { cutOgg } from "./cut-ogg.js";
import { cutWave } from "./cut-wave.js";

/**
 * Where audio files can be cut so that each part can be decoded by itself, and all of them together are, sample by
 * sample, what the whole file is decoded to.
 *
 * @typedef {object} Cut a part of a file
 * @property {number} from its first byte; a decoder may need to begin before the part does
 * @property {number} to
 * @property {number} length frames that are the part's own, counted from the end of what is decoded. Of the first part
 *     everything is its own.
 * @property {number} lead frames that are decoded before them, at least; they belong to the part before
 * @property {number} after frames that are decoded behind them and belong to none
 * @property {number} [leadTo] for a part whose length is not known exactly: up to this byte there is what comes before it
 *
 * @typedef {object} Cuts
 * @property {number} sampleRate of the file, in samples a second
 * @property {Cut[]} parts in their order
 * @property {(cut: Cut) => Uint8Array<ArrayBuffer>} fileOf a file with nothing but that part
 */

/** What Chromium decodes to, in samples a second. */
const rates = { lowest: 3000, highest: 384000 };

/**
 * @param {Uint8Array} bytes an audio file
 * @returns {Cuts | null} null for one that nobody knows how to cut
 */
export function cutRecording(bytes) {
  // The one that is known by its content alone comes last.
  const cuts = cutWave(bytes) ?? cutOgg(bytes) ?? cutMpeg(bytes);
  return cuts && cuts.sampleRate >= rates.lowest && cuts.sampleRate <= rates.highest ? cuts : null;
}
