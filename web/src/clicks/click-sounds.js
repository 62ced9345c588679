// @ts-check
/** The metronome's sounds, computed: none of them needs a file. */

/** Samples a second where nothing else is given. */
export const sampleRate = 44100;

export const soundNames = /** @type {const} */ (["woodblock", "beep", "click", "tick"]);

/** @typedef {typeof soundNames[number]} SoundName */

/**
 * A struck or sounding partial.
 *
 * @typedef {{ hertz: number, level: number, decay: number }} Partial decay is the time in seconds to fall to a third
 */

/**
 * @type {Record<SoundName, { seconds: number, partials: Partial[], noise: number, noiseDecay: number, attack: number
 *     }>}
 */
const recipes = {
  woodblock: {
    seconds: 0.12,
    partials: [
      { hertz: 820, level: 0.62, decay: 0.022 },
      { hertz: 1915, level: 0.3, decay: 0.011 },
      { hertz: 3170, level: 0.12, decay: 0.006 },
    ],
    noise: 0.18,
    noiseDecay: 0.002,
    attack: 0.0004,
  },
  beep: {
    seconds: 0.09,
    partials: [
      { hertz: 1000, level: 0.52, decay: 0.05 },
      { hertz: 2000, level: 0.06, decay: 0.03 },
    ],
    noise: 0,
    noiseDecay: 0.001,
    attack: 0.002,
  },
  click: {
    seconds: 0.05,
    partials: [
      { hertz: 2300, level: 0.55, decay: 0.004 },
      { hertz: 1480, level: 0.3, decay: 0.006 },
    ],
    noise: 0.45,
    noiseDecay: 0.0016,
    attack: 0.0002,
  },
  tick: {
    seconds: 0.04,
    partials: [
      { hertz: 5200, level: 0.5, decay: 0.0025 },
      { hertz: 3650, level: 0.32, decay: 0.0035 },
    ],
    noise: 0.12,
    noiseDecay: 0.0008,
    attack: 0.0001,
  },
};

/** How an accented click differs: a fourth higher and louder. */
const accentPitch = 4 / 3;
const plainLevel = 0.72;

/**
 * @param {SoundName} name
 * @param {boolean} accent
 * @param {number} rate samples a second
 * @returns {Float32Array<ArrayBuffer>} mono samples between -1 and 1
 */
export function clickSamples(name, accent, rate = sampleRate) {
  const recipe = recipes[name];
  const samples = new Float32Array(Math.round(recipe.seconds * rate));
  const level = accent ? 1 : plainLevel;
  const pitch = accent ? accentPitch : 1;
  // A fixed seed: the same click every time.
  let seed = 0x2545f491;
  for (let i = 0; i < samples.length; i++) {
    const t = i / rate;
    seed = (Math.imul(seed, 1664525) + 1013904223) >>> 0;
    let value = (seed / 0x80000000 - 1) * recipe.noise * Math.exp(-t / recipe.noiseDecay);
    for (const partial of recipe.partials) {
      value += Math.sin(2 * Math.PI * partial.hertz * pitch * t) * partial.level * Math.exp(-t / partial.decay);
    }
    const fadeIn = Math.min(t / recipe.attack, 1);
    const fadeOut = Math.min((recipe.seconds - t) / 0.005, 1);
    samples[i] = Math.max(-1, Math.min(1, value * level * fadeIn * fadeOut));
  }
  return samples;
}

/**
 * @param {string} word
 * @returns {SoundName} the first sound for a word that names none
 */
export function soundNamed(word) {
  return soundNames.find((name) => name === word) ?? soundNames[0];
}
