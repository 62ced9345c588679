// @ts-check
import { decodeText } from "./containers/text-encoding.js";

/**
 * Tells score files apart by their first bytes. alphaTab would take any text for its own notation language, so
 * nothing reaches it that does not look like one of these.
 *
 * @typedef {"guitarPro" | "gpx" | "archive" | "musicXml"} Format
 *   "gpx" is of Guitar Pro 6, "guitarPro" of those before. "archive" is a zip: a newer Guitar Pro file or a compressed
 *   MusicXML file.
 */

/** How far into a text the root element of a MusicXML file is looked for, in characters. */
const prologLength = 8192;

/**
 * @param {Uint8Array} bytes
 * @returns {Format | null} null for anything that is not a score file
 */
export function detectFormat(bytes) {
  if (startsWith(bytes, 0, "PK\x03\x04")) {
    return "archive";
  }
  if (startsWith(bytes, 0, "BCFZ") || startsWith(bytes, 0, "BCFS")) {
    return "gpx";
  }
  if (startsWith(bytes, 1, "FICHIER GUITAR PRO")) {
    return "guitarPro";
  }
  const prolog = decodeText(bytes.subarray(0, prologLength * 2)).trimStart();
  return prolog.startsWith("<") && /<(score-partwise|score-timewise)[\s>]/.test(prolog) ? "musicXml" : null;
}

/**
 * @param {Uint8Array} bytes
 * @param {number} offset
 * @param {string} text of single-byte characters
 */
function startsWith(bytes, offset, text) {
  for (let i = 0; i < text.length; i++) {
    if (bytes[offset + i] !== text.charCodeAt(i)) {
      return false;
    }
  }
  return true;
}
