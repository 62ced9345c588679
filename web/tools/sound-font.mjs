/**
 * Reads sound banks in the SoundFont 2.04 format, and in its variant whose samples are Ogg Vorbis streams (version 3).
 *
 * @typedef {Map<number, number>} Generators unsigned words, by their number in the format (section 8.1.2)
 * @typedef {{ generators: Generators, target: number }} Zone what the target, an instrument or a sample, sounds like
 * @typedef {{ name: string, bank: number, program: number, zones: Zone[] }} Preset
 * @typedef {object} Sample
 * @property {Uint8Array} bytes
 * @property {boolean} compressed a Vorbis stream, or else 16-bit samples
 * @property {[number, number]} loop from its first sample to the one after its last
 * @property {number} rate samples a second
 * @property {number} root the key at which it has its own pitch
 * @property {number} correction cents
 * @typedef {{ presets: Preset[], instruments: Zone[][], samples: Sample[], terms: string }} SoundFont the terms are what the
 *     bank says of its makers and its licence
 */

export const generator = {
  instrument: 41,
  keyRange: 43,
  velocityRange: 44,
  sampleId: 53,
};

const vorbis = 1 << 4;
const highestKey = 127;
const middleC = 60;

/**
 * @param {Uint8Array} bytes
 * @returns {SoundFont}
 * @throws {Error} where the bytes are no sound bank
 */
export function readSoundFont(bytes) {
  const chunks = readChunks(bytes);
  /** @type {(id: string, size: number) => DataView[]} */
  const records = (id, size) => {
    const chunk = chunks.get(id);
    if (!chunk || chunk.length < size) {
      throw new Error(`not a sound bank: it has no "${id}"`);
    }
    const count = Math.floor(chunk.length / size);
    return Array.from(
      { length: count },
      (_, index) => new DataView(chunk.buffer, chunk.byteOffset + index * size, size),
    );
  };
  const presetZones = readZones(records("pbag", 4), records("pgen", 4), generator.instrument);
  const instrumentZones = readZones(records("ibag", 4), records("igen", 4), generator.sampleId);
  return {
    presets: ranges(records("phdr", 38), 24).map(([head, first, end]) => ({
      name: text(head),
      program: head.getUint16(20, true),
      bank: head.getUint16(22, true),
      zones: merged(presetZones.slice(first, end)),
    })),
    instruments: ranges(records("inst", 22), 20).map(([, first, end]) => merged(instrumentZones.slice(first, end))),
    samples: readSamples(records("shdr", 46), chunks.get("smpl") ?? new Uint8Array()),
    terms: ["INAM", "ICOP", "ICMT"].map((id) => paragraph(chunks.get(id) ?? new Uint8Array())).join("\n"),
  };
}

/** @param {Uint8Array} bytes */
function readChunks(bytes) {
  const view = new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
  /** @type {Map<string, Uint8Array>} */
  const chunks = new Map();
  let at = 0;
  while (at + 8 <= bytes.length) {
    const id = String.fromCharCode(...bytes.subarray(at, at + 4));
    const size = view.getUint32(at + 4, true);
    if (id === "RIFF" || id === "LIST") {
      at += 12;
      continue;
    }
    if (at + 8 + size > bytes.length) {
      throw new Error(`not a sound bank: "${id}" ends after the file does`);
    }
    chunks.set(id, bytes.subarray(at + 8, at + 8 + size));
    at += 8 + size;
    // The byte that makes an odd length even is left out by some writers. No name begins with a zero.
    at += size % 2 === 1 && bytes[at] === 0 ? 1 : 0;
  }
  return chunks;
}

/** @param {Uint8Array} bytes */
function paragraph(bytes) {
  return `${new TextDecoder().decode(bytes).replaceAll("\0", "").trim()}\n`;
}

/** @param {DataView} record */
function text(record) {
  const bytes = new Uint8Array(record.buffer, record.byteOffset, 20);
  const end = bytes.indexOf(0);
  return new TextDecoder("latin1").decode(bytes.subarray(0, end < 0 ? bytes.length : end));
}

/**
 * @param {DataView[]} records the last of which is there for its index alone
 * @param {number} offset of the index in a record
 * @returns {[DataView, number, number][]} each with the first and the one after the last of what belongs to it
 */
function ranges(records, offset) {
  const indices = records.map((record) => record.getUint16(offset, true));
  return records.slice(0, -1).map((record, index) => [record, indices[index], indices[index + 1]]);
}

/**
 * @param {DataView[]} bags
 * @param {DataView[]} entries
 * @param {number} targetNumber the generator that names a zone's target
 */
function readZones(bags, entries, targetNumber) {
  return ranges(bags, 0).map(([, first, end]) => {
    const generators = new Map(
      entries.slice(first, end).map((entry) => [entry.getUint16(0, true), entry.getUint16(2, true)]),
    );
    const target = generators.get(targetNumber);
    generators.delete(targetNumber);
    return { generators, target };
  });
}

/**
 * @param {{ generators: Generators, target: number | undefined }[]} zones the first of which holds for all when it has
 *     no target
 * @returns {Zone[]}
 */
function merged(zones) {
  const common = zones[0]?.target === undefined ? (zones[0]?.generators ?? []) : [];
  return zones.flatMap(({ generators, target }) =>
    target === undefined ? [] : [{ generators: new Map([...common, ...generators]), target }],
  );
}

/**
 * @param {DataView[]} records
 * @param {Uint8Array} data
 * @returns {Sample[]}
 */
function readSamples(records, data) {
  return records.slice(0, -1).map((record) => {
    const [start, end, loopStart, loopEnd, rate] = [20, 24, 28, 32, 36].map((at) => record.getUint32(at, true));
    const compressed = (record.getUint16(44, true) & vorbis) !== 0;
    const key = record.getUint8(40);
    return {
      // The loop of a stream counts from its own beginning, any other from that of all samples.
      bytes: compressed ? data.subarray(start, end) : data.subarray(start * 2, end * 2),
      loop: compressed ? [loopStart, loopEnd] : [loopStart - start, loopEnd - start],
      compressed,
      rate,
      root: key > highestKey ? middleC : key,
      correction: record.getInt8(41),
    };
  });
}
