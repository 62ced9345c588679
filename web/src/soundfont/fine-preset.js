// @ts-check
/**
 * Makes presets for alphaTab's synthesizer out of sounds of the fine bank, whose samples are decoded elsewhere. The
 * synthesizer makes presets out of banks that it has parsed; it is given one of one preset, in the same shape.
 *
 * @typedef {import("../alphatab/internals/alphatab-internals.js").PresetMaker} PresetMaker
 * @typedef {import("../alphatab/internals/alphatab-internals.js").Preset} Preset
 * @typedef {import("../alphatab/internals/alphatab-internals.js").Region} Region
 *
 * @typedef {object} FineSound
 * @property {string} name
 * @property {number} bank
 * @property {number} program
 * @property {import("./sound-file.js").Zone[]} zones
 * @property {FineSample[]} samples
 *
 * @typedef {{ samples: Int16Array, rate: number, root: number, correction: number }} FineSample
 */

const generator = { instrument: 41, keyRange: 43, velocityRange: 44, sampleId: 53 };

/** A mono sample that is a stream of its own, so that its loop counts from its beginning. */
const monoStream = 0x11;

/**
 * @param {PresetMaker} synthesizer is left as it is
 * @param {FineSound} sound
 * @returns {Preset}
 */
export function finePreset(synthesizer, sound) {
  const maker = /** @type {PresetMaker} */ (Object.create(Object.getPrototypeOf(synthesizer)));
  const allKeys = new Set(Array.from({ length: 128 }, (_, key) => key));
  maker.loadPresets(bankOf(sound), new Set([sound.program]), allKeys, false);
  return /** @type {Preset[]} */ (maker.presets)[0];
}

/** @param {FineSound} sound */
function bankOf({ name, bank, program, zones, samples }) {
  const entries = zones.map(({ keys, velocities, generators }, index) => [
    entry(generator.keyRange, rangeWord(keys)),
    entry(generator.velocityRange, rangeWord(velocities)),
    ...generators.map(([number, amount]) => entry(number, amount)),
    entry(generator.sampleId, index),
  ]);
  let next = 0;
  const firstEntries = [...entries.map((ofZone) => (next += ofZone.length) - ofZone.length), next];
  return {
    phdrs: [
      { presetName: name, preset: program, bank, presetBagNdx: 0 },
      { presetName: "EOP", preset: 0, bank: 0, presetBagNdx: 1 },
    ],
    pbags: [{ genNdx: 0 }, { genNdx: 1 }],
    pgens: [entry(generator.instrument, 0)],
    insts: [{ instBagNdx: 0 }, { instBagNdx: zones.length }],
    ibags: firstEntries.map((instGenNdx) => ({ instGenNdx })),
    igens: entries.flat(),
    sHdrs: zones.map((zone) => sampleHead(zone, samples[zone.sample])),
    sampleData: new Uint8Array(),
    decodeSamples: (/** @type {number} */ sample) => samples[sample].samples,
  };
}

/** @param {import("./sound-file.js").Range} range */
function rangeWord([low, high]) {
  return low | (high << 8);
}

/**
 * @param {number} number
 * @param {number} amount
 */
function entry(number, amount) {
  const genAmount = {
    wordAmount: amount & 0xffff,
    shortAmount: amount,
    lowByteAmount: amount & 0xff,
    highByteAmount: (amount >> 8) & 0xff,
  };
  return { genOper: number, genAmount };
}

/**
 * @param {import("./sound-file.js").Zone} zone
 * @param {FineSample} sample
 */
function sampleHead({ sample: start, loop }, { rate, root, correction }) {
  // What alphaTab hands back to decodeSamples() is where the sample starts: its number, here.
  return {
    sampleName: "",
    start,
    end: start,
    startLoop: loop[0],
    endLoop: loop[1],
    sampleRate: rate,
    originalPitch: root,
    pitchCorrection: correction,
    sampleType: monoStream,
  };
}
