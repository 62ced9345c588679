// @ts-check
/**
 * What a MusicXML document may ask for, and reading its numbers within that. A value beyond its bounds is taken for the
 * nearest one that is meant by anybody, or for none.
 *
 * @typedef {import("../containers/xml-scanner.js").XmlElement} XmlElement
 */

/** Ticks of a quarter note: alphaTab's. All times below are ticks from the beginning of a bar unless said otherwise. */
export const quarter = 960;

/** The longest note, and the longest bar, in quarters. */
export const longestNote = 256;
export const longestBar = 1024;

/** How many staves a part, and voices a staff may have. */
export const mostStaves = 8;
export const mostVoices = 8;

/** How many notes a staff may have in a bar. The longest written-out cadenzas come to a few hundred. */
export const mostNotesInBar = 4000;

/** How many keys sound at once. */
export const mostNotesInChord = 64;

/** Two times that lie no further apart are the same; files round them. */
export const tolerance = 12;

/**
 * @param {string} text
 * @param {number} lowest
 * @param {number} highest
 * @param {number} otherwise what stands for a number that is missing, or beyond the bounds
 */
export function boundedNumber(text, lowest, highest, otherwise) {
  return text === "" ? otherwise : bounded(Number.parseFloat(text), lowest, highest, otherwise);
}

/**
 * @param {number} value
 * @param {number} lowest
 * @param {number} highest
 * @param {number} otherwise what stands for a number beyond the bounds, or for none
 */
export function bounded(value, lowest, highest, otherwise) {
  return value >= lowest && value <= highest ? value : otherwise;
}

/**
 * @param {string} text
 * @param {number} lowest
 * @param {number} highest
 * @param {number} otherwise
 */
export function boundedInteger(text, lowest, highest, otherwise) {
  return Math.trunc(boundedNumber(text, lowest, highest, otherwise));
}

/** The written values from the longest to the shortest, in ticks. */
export const noteTypes = new Map([
  ["long", 16 * quarter],
  ["breve", 8 * quarter],
  ["whole", 4 * quarter],
  ["half", 2 * quarter],
  ["quarter", quarter],
  ["eighth", quarter / 2],
  ["16th", quarter / 4],
  ["32nd", quarter / 8],
  ["64th", quarter / 16],
  ["128th", quarter / 32],
  ["256th", quarter / 64],
]);

/** What lies beyond alphaTab's values. */
const otherTypes = new Map([
  ["maxima", 32 * quarter],
  ["512th", quarter / 128],
  ["1024th", quarter / 256],
]);

/**
 * How a length is written.
 *
 * @typedef {object} Writing
 * @property {string} type
 * @property {number} dots
 * @property {number} actual notes in the time of the normal ones; 1 where there is no tuplet
 * @property {number} normal
 */

/**
 * @param {XmlElement} note
 * @returns {Writing | null} null where the note does not tell, or tells what no program writes
 */
export function writingOf(note) {
  const type = note.textOf("type");
  if (!noteTypes.has(type) && !otherTypes.has(type)) {
    return null;
  }
  let dots = 0;
  for (const child of note.children) {
    dots += child.name === "dot" ? 1 : 0;
  }
  const modification = note.child("time-modification");
  const actual = boundedInteger(modification?.textOf("actual-notes") ?? "", 1, 256, 1);
  const normal = boundedInteger(modification?.textOf("normal-notes") ?? "", 1, 256, 1);
  return { type, dots: Math.min(dots, 4), actual, normal: modification ? normal : 1 };
}

/** @param {Writing} writing @returns {number} in ticks */
export function lengthOf({ type, dots, actual, normal }) {
  const plain = noteTypes.get(type) ?? otherTypes.get(type) ?? quarter;
  return (plain * (2 - 1 / (1 << dots)) * normal) / actual;
}

/**
 * @param {number} ticks
 * @returns {Writing | null} the one value that lasts exactly so long
 */
export function writingFor(ticks) {
  for (const [actual, normal] of [
    [1, 1],
    [3, 2],
  ]) {
    for (const [type, plain] of noteTypes) {
      for (const dots of actual === 1 ? [0, 1, 2] : [0]) {
        if (Math.abs((plain * (2 - 1 / (1 << dots)) * normal) / actual - ticks) <= 1) {
          return { type, dots, actual, normal };
        }
      }
    }
  }
  return null;
}

/**
 * Takes a length apart into values that follow each other.
 *
 * @param {number} ticks
 * @returns {{ ticks: number, writing: Writing }[]} what remains beyond the shortest value lengthens the last one
 */
export function writingsFor(ticks) {
  const parts = [];
  let left = ticks;
  while (left > 0) {
    const exact = writingFor(left);
    if (exact) {
      parts.push({ ticks: left, writing: exact });
      return parts;
    }
    const fitting = [...noteTypes].find(([, plain]) => plain <= left);
    if (!fitting) {
      break;
    }
    const times = Math.max(1, Math.min(Math.floor(left / fitting[1]), longestBar / 16));
    for (let i = 0; i < times; i++) {
      parts.push({ ticks: fitting[1], writing: { type: fitting[0], dots: 0, actual: 1, normal: 1 } });
      left -= fitting[1];
    }
  }
  const last = parts.at(-1);
  if (!last) {
    return [{ ticks, writing: { type: "256th", dots: 0, actual: 1, normal: 1 } }];
  }
  last.ticks += left;
  return parts;
}

const steps = new Map([
  ["C", 0],
  ["D", 2],
  ["E", 4],
  ["F", 5],
  ["G", 7],
  ["A", 9],
  ["B", 11],
]);

/**
 * @param {XmlElement | undefined} pitch
 * @returns {number | null} the MIDI key; null where there is none, or none that a program can play
 */
export function keyOf(pitch) {
  const step = steps.get(pitch?.textOf("step").toUpperCase() ?? "");
  if (!pitch || step === undefined) {
    return null;
  }
  const alter = Math.trunc(boundedNumber(pitch.textOf("alter"), -4, 4, 0));
  const octave = boundedInteger(pitch.textOf("octave"), -1, 10, 4);
  const key = (octave + 1) * 12 + step + alter;
  return key >= 0 && key <= 127 ? key : null;
}
