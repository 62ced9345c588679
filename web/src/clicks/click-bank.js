// @ts-check
import { fullScale } from "../audio/full-scale.js";
import { clickSamples, sampleRate, soundNames } from "./click-sounds.js";

/**
 * The metronome's clicks as a sound bank of one instrument (SoundFont 2.01): each key is one sound, plain or accented.
 * In the synthesizer they are played to the sample, together with the notes.
 */

/** Bank and program under which the synthesizer finds the clicks; the bank is out of the way of any instrument's. */
export const clickBank = { msb: 2, lsb: 0, number: 2 << 7, program: 115 };

const firstKey = 60;

/**
 * @param {import("./click-sounds.js").SoundName} sound
 * @param {boolean} accent
 * @returns {number} the key that plays it
 */
export function clickKey(sound, accent) {
  return firstKey + soundNames.indexOf(sound) * 2 + (accent ? 1 : 0);
}

/** Silent samples that must follow each sound in the format. */
const gap = 46;

const generator = { keyRange: 43, instrument: 41, scaleTuning: 56, sampleId: 53 };

/** @returns {Uint8Array<ArrayBuffer>} the bank as a file */
export function buildClickBank() {
  const sounds = soundNames.flatMap((name) =>
    [false, true].map((accent) => ({ name, accent, key: clickKey(name, accent) })),
  );
  const zones = sounds.map(({ name, accent, key }) => ({
    name: name + (accent ? "+" : ""),
    key,
    samples: clickSamples(name, accent),
  }));
  const total = zones.reduce((sum, zone) => sum + zone.samples.length + gap, 0);
  const pcm = new Int16Array(total);
  const headers = [];
  let offset = 0;
  for (const { name, samples } of zones) {
    pcm.set(
      Array.from(samples, (value) => Math.round(value * fullScale)),
      offset,
    );
    headers.push(sampleHeader(name, offset, offset + samples.length));
    offset += samples.length + gap;
  }
  return list("RIFF", "sfbk", [
    list("LIST", "INFO", [
      chunk("ifil", [u16(2), u16(1)]),
      chunk("isng", [text("EMU8000", 8)]),
      chunk("INAM", [text("Clicks", 8)]),
    ]),
    list("LIST", "sdta", [chunk("smpl", [new Uint8Array(pcm.buffer)])]),
    list("LIST", "pdta", [
      ...presetChunks(),
      ...instrumentChunks(zones.map((zone) => zone.key)),
      chunk("shdr", [...headers, sampleHeader("EOS", 0, 0)]),
    ]),
  ]);
}

function presetChunks() {
  return [
    chunk("phdr", [presetHeader("Clicks", 0), presetHeader("EOP", 1)]),
    chunk("pbag", [u16(0), u16(0), u16(1), u16(0)]),
    chunk("pmod", [new Uint8Array(10)]),
    chunk("pgen", [u16(generator.instrument), u16(0), u16(0), u16(0)]),
  ];
}

/** @param {number[]} keys one zone each, in the order of the samples */
function instrumentChunks(keys) {
  const perZone = 3;
  const zones = keys.flatMap((key, index) => [
    u16(generator.keyRange),
    u16(key | (key << 8)),
    // The key chooses the sound and must not tune it.
    u16(generator.scaleTuning),
    u16(0),
    u16(generator.sampleId),
    u16(index),
  ]);
  const bags = [...keys, 0].flatMap((_, index) => [u16(index * perZone), u16(0)]);
  return [
    chunk("inst", [text("Clicks", 20), u16(0), text("EOI", 20), u16(keys.length)]),
    chunk("ibag", bags),
    chunk("imod", [new Uint8Array(10)]),
    chunk("igen", [...zones, u16(0), u16(0)]),
  ];
}

/**
 * @param {string} name
 * @param {number} bag
 */
function presetHeader(name, bag) {
  return join([text(name, 20), u16(clickBank.program), u16(clickBank.number), u16(bag), new Uint8Array(12)]);
}

/**
 * @param {string} name
 * @param {number} start
 * @param {number} end
 */
function sampleHeader(name, start, end) {
  const monoSample = 1;
  return join([
    text(name, 20),
    u32(start),
    u32(end),
    u32(start),
    u32(start),
    u32(sampleRate),
    new Uint8Array([firstKey, 0]),
    u16(0),
    u16(monoSample),
  ]);
}

/**
 * @param {string} id
 * @param {Uint8Array[]} parts
 */
function chunk(id, parts) {
  const body = join(parts);
  return join([text(id, 4), u32(body.length), body, new Uint8Array(body.length % 2)]);
}

/**
 * @param {string} id
 * @param {string} form
 * @param {Uint8Array[]} parts
 */
function list(id, form, parts) {
  return chunk(id, [text(form, 4), ...parts]);
}

/**
 * @param {string} value
 * @param {number} length
 */
function text(value, length) {
  const bytes = new Uint8Array(length);
  bytes.set(new TextEncoder().encode(value).subarray(0, length));
  return bytes;
}

/** @param {number} value */
function u16(value) {
  return new Uint8Array([value & 0xff, (value >> 8) & 0xff]);
}

/** @param {number} value */
function u32(value) {
  return join([u16(value & 0xffff), u16(value >>> 16)]);
}

/** @param {Uint8Array[]} parts */
function join(parts) {
  const joined = new Uint8Array(parts.reduce((sum, part) => sum + part.length, 0));
  let offset = 0;
  for (const part of parts) {
    joined.set(part, offset);
    offset += part.length;
  }
  return joined;
}
