// @ts-check
import { finePreset } from "../soundfont/fine-preset.js";
import { soundsInUse } from "../soundfont/sounds-in-use.js";

/**
 * The sounds of a synthesizer: which of them the score plays, and how others take their place in the middle of playing.
 * A voice keeps the sound that it began with; the next note has the new one.
 *
 * All samples are 16-bit samples, so that what is rendered of them is to be divided by fullScale.
 *
 * @typedef {import("../soundfont/sounds-in-use.js").SoundInUse} SoundInUse
 * @typedef {import("../soundfont/sounds-in-use.js").ChannelEvent} ChannelEvent
 * @typedef {import("../soundfont/fine-preset.js").PresetMaker} PresetMaker
 * @typedef {import("../soundfont/fine-preset.js").Region} Region
 */
export class Instruments {
  #synthesizer;
  /** @type {ChannelEvent[]} */
  #events = [];
  /** @type {Map<number, number>} semitones, by channel */
  #transpositions = new Map();
  /** @type {unknown} the presets among which sounds may be replaced: another score has others */
  #replaceable = null;

  /** @param {PresetMaker} synthesizer */
  constructor(synthesizer) {
    this.#synthesizer = synthesizer;
    keep16BitSamples(synthesizer);
  }

  /** @param {ChannelEvent[]} events what is played from now on */
  setEvents(events) {
    this.#events = events;
    this.#replaceable = null;
  }

  /** @param {Map<number, number>} semitones by channel */
  setTranspositions(semitones) {
    this.#transpositions = semitones;
    this.#replaceable = null;
  }

  /** @returns {SoundInUse[]} those that replace() takes from now on, until another score is played */
  inUse() {
    const { presets } = this.#synthesizer;
    this.#replaceable = presets;
    return soundsInUse(this.#events, presets ?? [], this.#transpositions);
  }

  /**
   * @param {number} index as inUse() has it
   * @param {import("../soundfont/fine-preset.js").FineSound} sound
   */
  replace(index, sound) {
    const { presets } = this.#synthesizer;
    if (presets && presets === this.#replaceable) {
      const fine = finePreset(this.#synthesizer, sound);
      fine.regions.push(...regionsBeside(fine.regions, presets[index].regions));
      presets[index] = fine;
    }
  }
}

/**
 * No key falls silent because a fine sound does not have it.
 *
 * @param {Region[]} fine
 * @param {Region[]} light
 * @returns {Region[]} those of the light sound on the keys that the fine one leaves
 */
function regionsBeside(fine, light) {
  const covers = (/** @type {number} */ key) => fine.some(({ loKey, hiKey }) => loKey <= key && key <= hiKey);
  return light.flatMap((region) =>
    gaps(region.loKey, region.hiKey, covers).map((range) =>
      Object.assign(Object.create(Object.getPrototypeOf(region)), region, range),
    ),
  );
}

/**
 * @param {number} low
 * @param {number} high
 * @param {(key: number) => boolean} covers
 * @returns {{ loKey: number, hiKey: number }[]} the ranges that are not covered
 */
function gaps(low, high, covers) {
  /** @type {{ loKey: number, hiKey: number }[]} */
  const found = [];
  for (let key = low; key <= high; key++) {
    const last = found.at(-1);
    if (!covers(key) && last?.hiKey === key - 1) {
      last.hiKey = key;
    } else if (!covers(key)) {
      found.push({ loKey: key, hiKey: key });
    }
  }
  return found;
}

/**
 * alphaTab makes floating-point copies of a bank's samples, twice the size, and keeps them as long as the bank. The
 * samples have 16 bits in the bank as it is, little-endian like every processor that Chromium runs on.
 *
 * @param {PresetMaker} synthesizer
 */
function keep16BitSamples(synthesizer) {
  const { loadPresets } = synthesizer;
  synthesizer.loadPresets = (bank, ...others) => {
    const { buffer, byteOffset } = bank.sampleData;
    bank.decodeSamples = (start, end) => new Int16Array(buffer, byteOffset + start, (end - start) / 2);
    loadPresets.call(synthesizer, bank, ...others);
  };
}
