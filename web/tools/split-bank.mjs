/**
 * Takes a sound bank apart into one file for each sound, so that the page loads what a score plays and no more.
 *
 * usage: split-bank.mjs BANK LEVELS FOLDER
 *
 * Writes FOLDER anew: BANK-PROGRAM for each of the General MIDI sounds of BANK, their list as index.json, and what
 * BANK says of its makers and its licence as LICENSE.txt. LEVELS is a JSON object with the change of level of each sound,
 * in decibels, by the name of its file.
 *
 * A file is the length of a description in bytes (32 bits, little-endian), the description (JSON in UTF-8, the type
 * Description) and the streams that it names.
 */
import { mkdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { fileURLToPath } from "node:url";
import { generator, readSoundFont } from "./sound-font.mjs";

/**
 * @typedef {[number, number]} Range with its ends
 * @typedef {object} Zone
 * @property {Range} keys
 * @property {Range} velocities
 * @property {number} sample
 * @property {[number, number]} loop from its first sample to the one after its last
 * @property {[number, number][]} generators their numbers in the SoundFont format, and signed amounts
 *
 * @typedef {object} Stream
 * @property {number} at first of its bytes, counted from the end of the description
 * @property {number} length bytes
 * @property {number} frames samples in it: decoders may add some, up to the end of the last block
 * @property {number} rate samples a second
 * @property {number} root the key at which it has its own pitch
 * @property {number} correction cents
 *
 * @typedef {{ name: string, bank: number, program: number, zones: Zone[], samples: Stream[] }} Description
 */

const percussionBank = 128;

/** The percussion kits that the light bank has too. */
const kits = [0, 8, 32, 40];

/** In tenths of decibels. */
const attenuation = 48;
/**
 * The hardware that banks have been made for from the beginning attenuates by less than what is written. FluidSynth
 * does so too (EMU_ATTENUATION_FACTOR); the synthesizer of the page takes the figure as it is.
 */
const heardAttenuation = 0.4;

/** A filter as open as the format goes is none; the synthesizer would work at it, unless told of one wide beyond that. */
const filter = { number: 8, open: 13500, beyond: 14000 };

const loopOffsets = { start: 2, end: 3, startCoarse: 45, endCoarse: 50 };
const coarse = 32768;

/** What the synthesizer understands, with the amount that holds where a bank says nothing (section 8.1.3). */
const defaults = new Map([
  ...[5, 6, 7, 9, 10, 11, 13, 17, 22, 24, 29, 31, 32, 37, 39, 40, attenuation, 51, 52, 54, 57].map(
    (number) => /** @type {const} */ ([number, 0]),
  ),
  [filter.number, filter.open],
  ...[21, 23, 25, 26, 27, 28, 30, 33, 34, 35, 36, 38].map((number) => /** @type {const} */ ([number, -12000])),
  [56, 100],
  [58, -1],
]);

/** Those that belong to the sample and that a preset has no say in (section 8.1.2). */
const ofSampleAlone = new Set([...Object.values(loopOffsets), 54, 57, 58]);

/**
 * @param {import("./sound-font.mjs").SoundFont} font
 * @param {import("./sound-font.mjs").Preset} preset
 * @param {number} gain decibels
 * @returns {{ description: Description, streams: Uint8Array[] }}
 */
export function soundOf(font, preset, gain) {
  const zones = preset.zones.flatMap((outer) =>
    (font.instruments[outer.target] ?? []).flatMap((inner) => zoneOf(font, outer.generators, inner, gain)),
  );
  const used = [...new Set(zones.map(({ sample }) => sample))];
  const samples = used.map((index) => font.samples[index]);
  if (samples.some(({ compressed }) => !compressed)) {
    throw new Error(`${preset.name}: its samples are not compressed`);
  }
  let at = 0;
  const streams = samples.map(({ bytes, rate, root, correction }) => {
    const stream = { at, length: bytes.length, frames: framesIn(bytes), rate, root, correction };
    at += bytes.length;
    return stream;
  });
  const { name, bank, program } = preset;
  const renumbered = zones.map((zone) => ({ ...zone, sample: used.indexOf(zone.sample) }));
  return {
    description: { name, bank, program, zones: renumbered, samples: streams },
    streams: samples.map(({ bytes }) => bytes),
  };
}

/**
 * Each page of an Ogg stream tells how many samples there are up to its end (RFC 3533, section 6).
 *
 * @param {Uint8Array} stream
 */
function framesIn(stream) {
  const bytes = Buffer.from(stream.buffer, stream.byteOffset, stream.length);
  const lastPage = bytes.lastIndexOf("OggS");
  if (lastPage < 0 || lastPage + 14 > bytes.length) {
    throw new Error("a sample is not an Ogg stream");
  }
  return Number(bytes.readBigInt64LE(lastPage + 6));
}

/**
 * @param {import("./sound-font.mjs").SoundFont} font
 * @param {import("./sound-font.mjs").Generators} outer of the preset
 * @param {import("./sound-font.mjs").Zone} inner of the instrument
 * @param {number} gain
 * @returns {Zone[]} none where no key, or no velocity, is left
 */
function zoneOf(font, outer, inner, gain) {
  const keys = common(generator.keyRange, outer, inner.generators);
  const velocities = common(generator.velocityRange, outer, inner.generators);
  const sample = font.samples[inner.target];
  if (keys[0] > keys[1] || velocities[0] > velocities[1] || !sample) {
    return [];
  }
  /** @type {(fine: number, rough: number) => number} */
  const offset = (fine, rough) =>
    signed(inner.generators.get(fine) ?? 0) + signed(inner.generators.get(rough) ?? 0) * coarse;
  const start = sample.loop[0] + offset(loopOffsets.start, loopOffsets.startCoarse);
  const end = sample.loop[1] + offset(loopOffsets.end, loopOffsets.endCoarse);
  return [
    {
      keys,
      velocities,
      sample: inner.target,
      loop: [start, end],
      generators: generatorsOf(outer, inner.generators, gain),
    },
  ];
}

/**
 * @param {import("./sound-font.mjs").Generators} outer
 * @param {import("./sound-font.mjs").Generators} inner
 * @param {number} gain
 */
function generatorsOf(outer, inner, gain) {
  /** @type {[number, number][]} */
  const result = [];
  for (const [number, usual] of defaults) {
    const own = inner.has(number) ? signed(inner.get(number) ?? 0) : usual;
    let amount = own + (ofSampleAlone.has(number) ? 0 : signed(outer.get(number) ?? 0));
    if (number === attenuation) {
      amount = Math.round(amount * heardAttenuation - gain * 10);
    }
    if (number === filter.number && amount >= filter.open) {
      amount = filter.beyond;
    }
    if (amount !== usual) {
      result.push([number, amount]);
    }
  }
  return result;
}

/**
 * @param {number} number of a range
 * @param {import("./sound-font.mjs").Generators[]} levels
 * @returns {Range}
 */
function common(number, ...levels) {
  const ranges = levels.map((generators) => generators.get(number) ?? 127 << 8);
  return [Math.max(...ranges.map((range) => range & 0xff)), Math.min(...ranges.map((range) => range >> 8))];
}

/** @param {number} word */
function signed(word) {
  return (word << 16) >> 16;
}

/**
 * @param {{ description: Description, streams: Uint8Array[] }} sound
 * @returns {Uint8Array}
 */
function fileOf({ description, streams }) {
  const head = Buffer.from(JSON.stringify(description));
  const length = Buffer.alloc(4);
  length.writeUInt32LE(head.length);
  return Buffer.concat([length, head, ...streams]);
}

/** @param {import("./sound-font.mjs").Preset} preset */
function isGeneralMidi({ bank, program }) {
  return bank === 0 || (bank === percussionBank && kits.includes(program));
}

/**
 * @param {string} bankPath
 * @param {string} levelsPath
 * @param {string} folder
 */
function split(bankPath, levelsPath, folder) {
  const font = readSoundFont(readFileSync(bankPath));
  const levels = JSON.parse(readFileSync(levelsPath, "utf8"));
  rmSync(folder, { recursive: true, force: true });
  mkdirSync(folder, { recursive: true });
  writeFileSync(join(folder, "LICENSE.txt"), font.terms);
  const names = [];
  for (const preset of font.presets.filter(isGeneralMidi)) {
    const name = `${preset.bank}-${preset.program}`;
    writeFileSync(join(folder, name), fileOf(soundOf(font, preset, levels[name] ?? 0)));
    names.push(name);
  }
  writeFileSync(join(folder, "index.json"), JSON.stringify(names.sort()));
}

if (process.argv[1] === fileURLToPath(import.meta.url)) {
  const [bank, levels, folder] = process.argv.slice(2);
  if (!folder) {
    console.error("usage: split-bank.mjs BANK LEVELS FOLDER");
    process.exit(2);
  }
  try {
    split(bank, levels, folder);
  } catch (error) {
    console.error(`${bank}: ${error.message}`);
    process.exit(1);
  }
}
