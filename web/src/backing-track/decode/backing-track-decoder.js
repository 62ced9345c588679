// @ts-check
import { decodingContext } from "../../audio/decoding-context.js";
import { segmentsOf } from "./segments.js";

/**
 * Decodes a backing track chunk by chunk where its file can be cut, so that it can be played after the first chunk, and
 * memory never holds more than a few of them as the decoder writes them; as a whole where it cannot.
 *
 * @typedef {import("../stretch/decoded-track.js").Chunk} Chunk
 * @typedef {import("./decode-worker.js").Decoded} Decoded
 * @typedef {import("./segments.js").Segment} Segment
 */

/** As many as there are ears. */
const mostChannels = 2;

/**
 * @param {Uint8Array<ArrayBuffer>} bytes an audio file; what cannot be decoded in its midst is silent
 * @param {number} sampleRate that the backing track is wanted at, in samples a second
 * @returns {AsyncGenerator<Chunk, void>} throws when nothing can be decoded
 */
export async function* decodeBackingTrack(bytes, sampleRate) {
  const worker = new Worker(new URL("./decode-worker.js", import.meta.url), { type: "module" });
  try {
    /** @type {Promise<Chunk> | null} */
    let underWay = null;
    for await (const decoded of decode(bytes, sampleRate)) {
      // While the worker was at one chunk, the next one has been decoded.
      const chunk = await underWay;
      underWay = prepare(worker, decoded);
      if (chunk) {
        yield chunk;
      }
    }
    if (underWay) {
      yield await underWay;
    }
  } finally {
    worker.terminate();
  }
}

/**
 * @param {Uint8Array<ArrayBuffer>} bytes
 * @param {number} wantedRate
 * @returns {AsyncGenerator<Decoded, void>}
 */
async function* decode(bytes, wantedRate) {
  const segmented = segmentsOf(bytes);
  if (!segmented || !(yield* decodeSegments(segmented, wantedRate))) {
    const buffer = await decodedWith(decodingContext(wantedRate), bytes.slice());
    const channels = channelsOf(buffer);
    yield { silent: 0, channels, from: 0, length: buffer.length, sampleRate: wantedRate, wantedRate, last: true };
  }
}

/**
 * @param {import("./segments.js").SegmentedFile} segmented
 * @param {number} wantedRate
 * @returns {AsyncGenerator<Decoded, boolean>} whether anything could be decoded
 */
async function* decodeSegments({ sampleRate, segments, fileOf }, wantedRate) {
  // At the file's own rate nothing is resampled, which would show where the file was cut.
  const context = decodingContext(sampleRate);
  const rates = { sampleRate, wantedRate };
  /** @type {(segment: Segment, end: number) => Promise<number>} */
  const beginningOf = async (segment, end) => {
    if (segment.leadTo !== undefined) {
      const lead = await decodedWith(context, fileOf({ ...segment, to: segment.leadTo })).catch(() => null);
      return Math.min(lead?.length ?? 0, end);
    }
    // Of a damaged chunk the end is missing.
    return end - segment.length >= segment.lead ? end - segment.length : Math.min(segment.lead, end);
  };
  let decodedAny = false;
  let silent = 0;
  for (const [index, segment] of segments.entries()) {
    const buffer = await decodedWith(context, fileOf(segment)).catch(() => null);
    if (buffer) {
      const end = Math.max(buffer.length - segment.after, 0);
      const from = index === 0 ? 0 : await beginningOf(segment, end);
      const length =
        index === 0 || segment.leadTo !== undefined ? Math.max(end - from, segment.length) : segment.length;
      yield { silent, channels: channelsOf(buffer), from, length, ...rates, last: index === segments.length - 1 };
      decodedAny = true;
      silent = 0;
    } else {
      silent += segment.length;
    }
  }
  if (decodedAny && silent > 0) {
    yield { silent, channels: [], from: 0, length: 0, ...rates, last: true };
  }
  return decodedAny;
}

/**
 * @param {OfflineAudioContext} context
 * @param {Uint8Array<ArrayBuffer>} file is lost
 */
function decodedWith(context, file) {
  return context.decodeAudioData(file.buffer);
}

/** @param {AudioBuffer} buffer */
function channelsOf(buffer) {
  return Array.from({ length: Math.min(buffer.numberOfChannels, mostChannels) }, (_, index) =>
    buffer.getChannelData(index),
  );
}

/**
 * @param {Worker} worker
 * @param {Decoded} decoded loses its samples
 * @returns {Promise<Chunk>}
 */
function prepare(worker, decoded) {
  /** @type {Promise<Chunk>} */
  const prepared = new Promise((resolve, reject) => {
    worker.onmessage = ({ data }) => resolve(data);
    worker.onerror = ({ message }) => reject(new Error(message));
    worker.postMessage(
      decoded,
      decoded.channels.map(({ buffer }) => buffer),
    );
  });
  // Whether it failed is looked at when the next chunk has been decoded.
  prepared.catch(() => {});
  return prepared;
}
