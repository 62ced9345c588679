// @ts-check
import { ornamentSteps } from "./internals/alphatab-internals.js";

/**
 * Has turns and mordents go to the neighbours of their notes in the key. alphaTab goes up to the next white key and down a
 * semitone, whatever the key is.
 *
 * @typedef {import("../shared/alphatab.js").Score} Score
 */

/** Semitones from C of the notes of C major. */
const major = [0, 2, 4, 5, 7, 9, 11];

/** @type {{ up: number[], down: number[] } | null} */
let steps = null;

/**
 * For the notes of a bar, right before they are generated.
 *
 * @param {Score} score
 * @param {number} index of the bar
 */
export function ornamentInKey(score, index) {
  steps ??= ornamentSteps();
  const { up, down } = steps;
  const scale = scaleOf(score, index);
  for (let key = 0; key < 12; key++) {
    up[key] = distance(scale, key, 1);
    down[key] = -distance(scale, key, -1);
  }
}

/**
 * The keys of all staves are one key as it sounds: that of the first that has pitches is enough.
 *
 * @param {Score} score
 * @param {number} index
 * @returns {Set<number>} semitones from C
 */
function scaleOf(score, index) {
  const staff = score.tracks.flatMap(({ staves }) => staves).find(({ isPercussion }) => !isPercussion);
  const fifths = staff?.bars[index]?.keySignature ?? 0;
  const tonic = fifths * 7 + (staff?.displayTranspositionPitch ?? 0);
  return new Set(major.map((semitones) => modulo12(semitones + tonic)));
}

/**
 * @param {Set<number>} scale
 * @param {number} key
 * @param {1 | -1} direction
 * @returns {number} how many semitones away the next note of the scale is
 */
function distance(scale, key, direction) {
  let semitones = 1;
  while (!scale.has(modulo12(key + direction * semitones))) {
    semitones++;
  }
  return semitones;
}

/** @param {number} value */
function modulo12(value) {
  return ((value % 12) + 12) % 12;
}
