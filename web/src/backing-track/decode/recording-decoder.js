// @ts-check
import { decodingContext } from "../../audio/decoding-context.js";
import { cutRecording } from "./recording-cuts.js";

/**
 * Decodes a recording part by part where its file can be cut, so that it can be heard after the first part, and memory
 * never holds more than a few of them as the decoder writes them; as a whole where it cannot.
 *
 * @typedef {import("../stretch/recorded-sound.js").Part} Part
 * @typedef {import("./recording-worker.js").Decoded} Decoded
 * @typedef {import("./recording-cuts.js").Cut} Cut
 */

/** As many as there are ears. */
const mostChannels = 2;

/**
 * @param {Uint8Array<ArrayBuffer>} bytes an audio file; what cannot be decoded in its midst is silent
 * @param {number} sampleRate that the recording is wanted at, in samples a second
 * @returns {AsyncGenerator<Part, void>} throws when nothing can be decoded
 */
export async function* decodeRecording(bytes, sampleRate) {
  const worker = new Worker(new URL("./recording-worker.js", import.meta.url), { type: "module" });
  try {
    /** @type {Promise<Part> | null} */
    let underWay = null;
    for await (const decoded of decode(bytes, sampleRate)) {
      // While the worker was at one part, the next one has been decoded.
      const part = await underWay;
      underWay = prepare(worker, decoded);
      if (part) {
        yield part;
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
  const cuts = cutRecording(bytes);
  if (!cuts || !(yield* decodeCuts(cuts, wantedRate))) {
    const buffer = await decodedWith(decodingContext(wantedRate), bytes.slice());
    const channels = channelsOf(buffer);
    yield { silent: 0, channels, from: 0, length: buffer.length, sampleRate: wantedRate, wantedRate, last: true };
  }
}

/**
 * @param {import("./recording-cuts.js").Cuts} cuts
 * @param {number} wantedRate
 * @returns {AsyncGenerator<Decoded, boolean>} whether anything could be decoded
 */
async function* decodeCuts({ sampleRate, parts, fileOf }, wantedRate) {
  // At the file's own rate nothing is resampled, which would tell where the file was cut.
  const context = decodingContext(sampleRate);
  const rates = { sampleRate, wantedRate };
  /** @type {(cut: Cut, end: number) => Promise<number>} */
  const beginningOf = async (cut, end) => {
    if (cut.leadTo !== undefined) {
      const lead = await decodedWith(context, fileOf({ ...cut, to: cut.leadTo })).catch(() => null);
      return Math.min(lead?.length ?? 0, end);
    }
    // Of a damaged part the end is missing.
    return end - cut.length >= cut.lead ? end - cut.length : Math.min(cut.lead, end);
  };
  let heard = false;
  let silent = 0;
  for (const [index, cut] of parts.entries()) {
    const buffer = await decodedWith(context, fileOf(cut)).catch(() => null);
    if (buffer) {
      const end = Math.max(buffer.length - cut.after, 0);
      const from = index === 0 ? 0 : await beginningOf(cut, end);
      const length = index === 0 || cut.leadTo !== undefined ? Math.max(end - from, cut.length) : cut.length;
      yield { silent, channels: channelsOf(buffer), from, length, ...rates, last: index === parts.length - 1 };
      heard = true;
      silent = 0;
    } else {
      silent += cut.length;
    }
  }
  if (heard && silent > 0) {
    yield { silent, channels: [], from: 0, length: 0, ...rates, last: true };
  }
  return heard;
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
  return Array.from({ length: Math.min(buffer.numberOfChannels, mostChannels) }, (_, index) => buffer.getChannelData(index));
}

/**
 * @param {Worker} worker
 * @param {Decoded} decoded loses its samples
 * @returns {Promise<Part>}
 */
function prepare(worker, decoded) {
  /** @type {Promise<Part>} */
  const prepared = new Promise((resolve, reject) => {
    worker.onmessage = ({ data }) => resolve(data);
    worker.onerror = ({ message }) => reject(new Error(message));
    worker.postMessage(decoded, decoded.channels.map(({ buffer }) => buffer));
  });
  // Whether it failed is asked when the next part has been decoded.
  prepared.catch(() => {});
  return prepared;
}
