// @ts-check
import { boundedInteger, quarter } from "./values.js";

/**
 * Reads time signatures.
 *
 * @typedef {import("../containers/xml-scanner.js").XmlElement} XmlElement
 *
 * @typedef {object} Metre
 * @property {number} beats
 * @property {number} beatType 4 for quarters
 * @property {string} symbol "common", "cut" or none
 */

/** @type {Readonly<Metre>} */
export const commonMetre = { beats: 4, beatType: 4, symbol: "" };

const longestMetre = 64;

/** @param {Metre} metre @returns {number} in ticks */
export function barLengthOf({ beats, beatType }) {
  return (beats * 4 * quarter) / beatType;
}

/**
 * @param {XmlElement} time
 * @returns {Metre | null} null where there is none, as in free time, or none that makes sense
 */
export function readMetre(time) {
  const beats = time.children.filter(({ name }) => name === "beats").map(({ text }) => sumOf(text));
  const types = time.children
    .filter(({ name }) => name === "beat-type")
    .map(({ text }) => boundedInteger(text, 1, 64, 0));
  if (beats.length === 0 || beats.length !== types.length || types.some((type) => !Number.isInteger(Math.log2(type)))) {
    return null;
  }
  // Several signatures beside each other are one of their sum.
  const beatType = Math.max(...types);
  const sum = beats.reduce((total, value, i) => total + (value * beatType) / types[i], 0);
  const symbol = time.attributes.get("symbol") ?? "";
  return sum >= 1 && sum <= longestMetre ? { beats: sum, beatType, symbol } : null;
}

/** @param {string} text such as "3+2" */
function sumOf(text) {
  return text.split("+").reduce((total, part) => total + boundedInteger(part, 1, longestMetre, 0), 0);
}
