// @ts-check
import { ZipReader } from "./containers/zip-reader.js";
import { countElements, mostElements } from "./gpx-archive.js";
import { storedZip } from "./stored-zip.js";
import { withoutGaps } from "./xml-gaps.js";

/**
 * Guitar Pro 7 and 8 files: zips with a description of the score in them. A small zip unpacks to gigabytes, and alphaTab
 * keeps some hundred bytes for each element of the description; so it is unpacked within bounds first.
 */

const folder = "Content/";
const scoreName = `${folder}score.gpif`;
const besides = ["BinaryStylesheet", "PartConfiguration", "LayoutConfiguration"].map((name) => folder + name);
const audioFiles = `${folder}Assets/`;

/** Of a backing track, in bytes. */
const largestAudioFile = 128 << 20;

/**
 * @param {Uint8Array} bytes of a zip
 * @param {number} limit to the score's description when it is unpacked, in bytes
 * @returns {Uint8Array | null} a zip with what alphaTab reads of it; null when there is no score in it
 * @throws {Error} when it is damaged, or exceeds a bound; the message is the rest of a sentence
 */
export function repackGp(bytes, limit) {
  const zip = new ZipReader(bytes);
  const description = zip.find(scoreName);
  if (!description) {
    return null;
  }
  const score = withoutGaps(zip.read(description, limit));
  if (countElements(score) > mostElements) {
    throw new Error("it has more elements than any score");
  }
  /** @type {Map<string, Uint8Array>} */
  const files = new Map([[scoreName, score]]);
  for (const member of zip.members) {
    if (besides.includes(member.name)) {
      files.set(member.name, zip.read(member, limit));
    } else if (member.name.startsWith(audioFiles) && member.name !== audioFiles) {
      files.set(member.name, zip.read(member, largestAudioFile));
    }
  }
  return storedZip(files);
}
