// @ts-check
import { boundariesOf } from "./segment-boundaries.js";

/**
 * Cuts MP3 files at their frames (ISO/IEC 11172-3 and 13818-3, layer III). A frame may hold bytes of those that follow,
 * and what it sounds like depends on the frame before, so that decoding begins some frames early.
 *
 * @typedef {import("./segments.js").SegmentedFile} SegmentedFile
 *
 * @typedef {object} Head what a frame begins with
 * @property {number} kind the bits that are the same in all frames of a file
 * @property {number} length of the frame in bytes
 * @property {number} sampleRate
 * @property {number} samples in a frame, of each channel
 * @property {number} sideLength bytes at the beginning that are not sound
 *
 * @typedef {object} Padding silence that the encoder added, in samples; decoders leave it out
 * @property {number} before
 * @property {number} after
 */

/** Kilobits a second, for MPEG-1 and for MPEG-2 and 2.5. */
const bitRates = [
  [0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320],
  [0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160],
];

/** Samples a second of MPEG-1; MPEG-2 has half of them and MPEG-2.5 a quarter. */
const sampleRates = [44100, 48000, 32000];

/** Bytes of earlier frames that a frame may go back to. */
const reservoir = { mpeg1: 511, mpeg2: 255 };

/** Frames that have to be whole before a segment is, and one that a decoder may take to find its way. */
const frameLead = 3;

/** So many frames on end are no accident. */
const convincing = 4;

/** How far a file may be searched for its first frame, and for the next one behind damage, in bytes. */
const searched = 1 << 16;

/** What a decoder adds to the silence that an encoder declares: its own delay. */
const decoderDelay = 529;

/**
 * @param {Uint8Array} bytes
 * @returns {SegmentedFile | null}
 */
export function mpegSegments(bytes) {
  const start = firstFrame(bytes);
  const first = start >= 0 ? headAt(bytes, start) : null;
  if (!first) {
    return null;
  }
  const info = infoOf(bytes, start, first);
  const frames = framesFrom(bytes, info ? start + first.length : start, first.kind);
  const count = frames.length - 1;
  const padding = info?.frames === count ? info.padding : { before: info?.padding.before ?? 0, after: 0 };
  const { sampleRate, samples } = first;
  const boundaries = boundariesOf(count, sampleRate, (index) => index * samples);
  const segments = boundaries.slice(1).map((boundary, index) => {
    const own = boundaries[index];
    const first = leadTo(bytes, frames, own);
    const after = boundary === count ? padding.after : 0;
    return {
      // The frame that describes the others goes with the first segment, and makes its decoder leave out the padding.
      from: own === 0 ? start : frames[first],
      to: frames[boundary],
      length: (boundary - own) * samples - after - (own === 0 ? padding.before : 0),
      lead: (own - first) * samples,
      after,
    };
  });
  return { sampleRate, segments, fileOf: ({ from, to }) => bytes.slice(from, to) };
}

/**
 * @param {Uint8Array} bytes
 * @param {number} at
 * @returns {Head | null} null where no frame of layer III begins
 */
function headAt(bytes, at) {
  const [sync, kind, rates, mode] = [bytes[at], bytes[at + 1], bytes[at + 2], bytes[at + 3]];
  if (at + 4 > bytes.length || sync !== 0xff || (kind & 0xe6) !== 0xe2) {
    return null;
  }
  const version = (kind >> 3) & 3;
  const bitRate = bitRates[version === 3 ? 0 : 1][rates >> 4];
  const fullRate = sampleRates[(rates >> 2) & 3];
  if (version === 1 || !bitRate || !fullRate) {
    return null;
  }
  const sampleRate = fullRate / (version === 3 ? 1 : version === 2 ? 2 : 4);
  const samples = version === 3 ? 1152 : 576;
  const mono = mode >> 6 === 3;
  const checked = (kind & 1) === 0 ? 2 : 0;
  return {
    kind: ((kind & 0x1e) << 8) | (rates & 0x0c) | (mono ? 1 : 0),
    length: Math.floor((samples * bitRate * 125) / sampleRate) + ((rates >> 1) & 1),
    sampleRate,
    samples,
    sideLength: 4 + checked + (version === 3 ? (mono ? 17 : 32) : mono ? 9 : 17),
  };
}

/**
 * @param {Uint8Array} bytes
 * @returns {number} where the first frame begins; -1 where it is no such file
 */
function firstFrame(bytes) {
  const start = behindTags(bytes);
  for (let at = start; at < Math.min(start + searched, bytes.length); at++) {
    const head = headAt(bytes, at);
    if (head && followed(bytes, at, head.kind, convincing)) {
      return at;
    }
  }
  return -1;
}

/**
 * @param {Uint8Array} bytes
 * @returns {number} the first byte behind the texts and pictures of ID3 version 2
 */
function behindTags(bytes) {
  let at = 0;
  while (bytes[at] === 0x49 && bytes[at + 1] === 0x44 && bytes[at + 2] === 0x33 && at + 10 <= bytes.length) {
    const [a, b, c, d] = bytes.subarray(at + 6, at + 10);
    const footer = (bytes[at + 5] & 0x10) !== 0 ? 10 : 0;
    at += 10 + ((a << 21) | (b << 14) | (c << 7) | d) + footer;
  }
  return at;
}

/**
 * @param {Uint8Array} bytes
 * @param {number} at
 * @param {number} kind
 * @param {number} count
 * @returns {boolean} whether so many frames of that kind follow each other, or less up to the end of the file
 */
function followed(bytes, at, kind, count) {
  let next = at;
  for (let seen = 0; seen < count && next < bytes.length; seen++) {
    const head = headAt(bytes, next);
    if (head?.kind !== kind) {
      return false;
    }
    next += head.length;
  }
  return next > at;
}

/**
 * @param {Uint8Array} bytes
 * @param {number} start
 * @param {number} kind
 * @returns {number[]} where each frame begins, and where the last one ends; what is damaged in between is left out
 */
function framesFrom(bytes, start, kind) {
  const frames = [];
  let at = start;
  while (at < bytes.length) {
    const head = headAt(bytes, at);
    if (head?.kind === kind && at + head.length <= bytes.length) {
      frames.push(at);
      at += head.length;
      continue;
    }
    const end = Math.min(at + searched, bytes.length);
    let found = at + 1;
    while (found < end && !followed(bytes, found, kind, convincing)) {
      found++;
    }
    if (found >= end) {
      break;
    }
    at = found;
  }
  return [...frames, at];
}

/**
 * @param {Uint8Array} bytes
 * @param {number[]} frames
 * @param {number} wanted the first frame that has to be decoded right
 * @returns {number} the frame at which decoding has to begin for that
 */
function leadTo(bytes, frames, wanted) {
  let first = Math.max(wanted - frameLead, 0);
  for (let held = 0; first > 0; first--) {
    const head = headAt(bytes, frames[first]);
    const needed = head?.samples === 1152 ? reservoir.mpeg1 : reservoir.mpeg2;
    if (held >= needed) {
      break;
    }
    const before = headAt(bytes, frames[first - 1]);
    held += before ? before.length - before.sideLength : 0;
  }
  return first;
}

/**
 * The first frame of many files describes the others and holds no sound.
 *
 * @param {Uint8Array} bytes
 * @param {number} at
 * @param {Head} head
 * @returns {{ frames: number, padding: Padding } | null} null where it holds sound
 */
function infoOf(bytes, at, head) {
  const checked = (bytes[at + 1] & 1) === 0 ? 2 : 0;
  const tag = at + head.sideLength - checked;
  const name = String.fromCharCode(...bytes.subarray(tag, tag + 4));
  if (name !== "Xing" && name !== "Info") {
    const other = String.fromCharCode(...bytes.subarray(at + 36, at + 40));
    return other === "VBRI" ? { frames: 0, padding: { before: 0, after: 0 } } : null;
  }
  const view = new DataView(bytes.buffer, bytes.byteOffset, bytes.length);
  const present = view.getUint32(tag + 4);
  const frames = (present & 1) !== 0 ? view.getUint32(tag + 8) : 0;
  const encoder =
    tag + 8 + (present & 1 ? 4 : 0) + (present & 2 ? 4 : 0) + (present & 4 ? 100 : 0) + (present & 8 ? 4 : 0);
  return { frames, padding: paddingAt(bytes, encoder) };
}

/**
 * @param {Uint8Array} bytes
 * @param {number} at where the encoder calls itself by its name
 * @returns {Padding}
 */
function paddingAt(bytes, at) {
  const name = String.fromCharCode(...bytes.subarray(at, at + 4));
  if (!["LAME", "Lavf", "Lavc"].includes(name)) {
    return { before: 0, after: 0 };
  }
  const [a, b, c] = bytes.subarray(at + 21, at + 24);
  const delay = (a << 4) | (b >> 4);
  const behind = ((b & 15) << 8) | c;
  return { before: delay + decoderDelay, after: Math.max(behind - decoderDelay, 0) };
}
