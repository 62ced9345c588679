// @ts-check
import { mpegSegments } from "./mpeg-segments.js";
import { oggSegments } from "./ogg-segments.js";
import { waveSegments } from "./wave-segments.js";

/**
 * Where audio files can be cut so that each segment can be decoded by itself, and all of them together are, sample by
 * sample, what the whole file is decoded to.
 *
 * @typedef {object} Segment a range of a file
 * @property {number} from its first byte; a decoder may need to begin before the segment does
 * @property {number} to
 * @property {number} length frames that are the segment's own, counted from the end of what is decoded. Of the first
 *     segment everything is its own.
 * @property {number} lead frames that are decoded before them, at least; they belong to the segment before
 * @property {number} after frames that are decoded behind them and belong to none
 * @property {number} [leadTo] for a segment whose length is not known exactly: up to this byte there is what comes
 *     before it
 *
 * @typedef {object} SegmentedFile
 * @property {number} sampleRate of the file, in samples a second
 * @property {Segment[]} segments in their order
 * @property {(segment: Segment) => Uint8Array<ArrayBuffer>} fileOf a file with nothing but that segment
 */

/** What Chromium decodes to, in samples a second. */
const rates = { lowest: 3000, highest: 384000 };

/**
 * @param {Uint8Array} bytes an audio file
 * @returns {SegmentedFile | null} null for one that nobody knows how to cut
 */
export function segmentsOf(bytes) {
  // The one that is known by its content alone comes last.
  const file = waveSegments(bytes) ?? oggSegments(bytes) ?? mpegSegments(bytes);
  return file && file.sampleRate >= rates.lowest && file.sampleRate <= rates.highest ? file : null;
}
