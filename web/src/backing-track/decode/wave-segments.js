// @ts-check
import { boundariesOf } from "./segment-boundaries.js";

/**
 * Cuts WAVE files: any frame may be a boundary, as long as each takes the same number of bytes.
 *
 * @typedef {import("./segments.js").SegmentedFile} SegmentedFile
 */

/**
 * Formats whose samples stand side by side: whole numbers, floating-point, A-law, mu-law and what another chunk
 * declares.
 */
const plain = [0x0001, 0x0003, 0x0006, 0x0007, 0xfffe];

/** Frames that are not taken apart. */
const grain = 1024;

const headLength = 12;
const chunkHeadLength = 8;

/**
 * @param {Uint8Array} bytes
 * @returns {SegmentedFile | null}
 */
export function waveSegments(bytes) {
  const chunks = chunksOf(bytes);
  const format = chunks.get("fmt ");
  const data = chunks.get("data");
  if (!format || !data || format.length < 16) {
    return null;
  }
  const fields = new DataView(format.buffer, format.byteOffset, format.length);
  const sampleRate = fields.getUint32(4, true);
  const frameLength = fields.getUint16(12, true);
  const sampleLength = Math.ceil(fields.getUint16(14, true) / 8);
  const channels = fields.getUint16(2, true);
  if (!plain.includes(fields.getUint16(0, true)) || frameLength === 0 || frameLength !== channels * sampleLength) {
    return null;
  }
  const frames = Math.floor(data.length / frameLength);
  const start = data.byteOffset - bytes.byteOffset;
  /** @type {(index: number) => number} */
  const frameAt = (index) => Math.min(index * grain, frames);
  const boundaries = boundariesOf(Math.ceil(frames / grain), sampleRate, frameAt);
  const segments = boundaries.slice(1).map((boundary, index) => {
    const [from, to] = [frameAt(boundaries[index]), frameAt(boundary)];
    return { from: start + from * frameLength, to: start + to * frameLength, length: to - from, lead: 0, after: 0 };
  });
  return { sampleRate, segments, fileOf: ({ from, to }) => waveFile(format, bytes.subarray(from, to)) };
}

/**
 * @param {Uint8Array} bytes
 * @returns {Map<string, Uint8Array>} the first chunk of each name; none when it is another kind of file
 */
function chunksOf(bytes) {
  /** @type {Map<string, Uint8Array>} */
  const chunks = new Map();
  if (textAt(bytes, 0) !== "RIFF" || textAt(bytes, 8) !== "WAVE") {
    return chunks;
  }
  const view = new DataView(bytes.buffer, bytes.byteOffset, bytes.length);
  for (let at = headLength; at + chunkHeadLength <= bytes.length;) {
    const name = textAt(bytes, at);
    const length = view.getUint32(at + 4, true);
    const start = at + chunkHeadLength;
    // What was written while it was recorded may not know its length: it goes on to the end.
    const open = name === "data" && length === 0;
    if (!chunks.has(name)) {
      chunks.set(name, bytes.subarray(start, open ? bytes.length : start + length));
    }
    at = open ? bytes.length : start + length + (length % 2);
  }
  return chunks;
}

/**
 * @param {Uint8Array} format
 * @param {Uint8Array} data
 */
function waveFile(format, data) {
  const dataAt = headLength + chunkHeadLength + format.length;
  const file = new Uint8Array(dataAt + chunkHeadLength + data.length);
  const view = new DataView(file.buffer);
  const encoder = new TextEncoder();
  /** @type {(at: number, name: string, length: number) => void} */
  const chunk = (at, name, length) => {
    encoder.encodeInto(name, file.subarray(at));
    view.setUint32(at + 4, length, true);
  };
  chunk(0, "RIFF", file.length - chunkHeadLength);
  encoder.encodeInto("WAVE", file.subarray(8));
  chunk(headLength, "fmt ", format.length);
  file.set(format, headLength + chunkHeadLength);
  chunk(dataAt, "data", data.length);
  file.set(data, dataAt + chunkHeadLength);
  return file;
}

/**
 * @param {Uint8Array} bytes
 * @param {number} at
 */
function textAt(bytes, at) {
  return String.fromCharCode(...bytes.subarray(at, at + 4));
}
