// @ts-check
import { unpack } from "./bcfz.js";
import { storedZip } from "./stored-zip.js";
import { withoutGaps } from "./xml-gaps.js";

/**
 * Guitar Pro 6 files: small file systems, compressed or not. alphaTab reads both bit by bit, but what it finds in them
 * it also finds in a zip, which it reads byte by byte.
 *
 * Behind the mark "BCFS" come sectors of 4096 bytes, of which the first says nothing here. One that begins with the number
 * two is the head of a file: its name, its length, and the numbers of the sectors with its content, up to a zero. All
 * numbers have four bytes, the lowest first.
 *
 * @typedef {{ length: number, sectors: number[] }} Entry
 */

const markLength = 4;
const sectorLength = 4096;
const headMark = 2;
const place = { name: 4, length: 140, sectors: 148 };
const nameLength = 127;

const scoreName = "score.gpif";

/** Elements in a score of many thousand bars. alphaTab keeps some hundred bytes for each. */
export const mostElements = 1e6;

/** What alphaTab reads beside the score. A score can be read without any of it. */
const optional = ["BinaryStylesheet", "PartConfiguration", "LayoutConfiguration"];

/**
 * @param {Uint8Array} bytes of the file
 * @param {number} limit to what is unpacked, in bytes
 * @param {boolean} [alone] whether nothing but the score is wanted
 * @returns {Uint8Array | null} a zip with all of it that alphaTab reads, without optional parts that are damaged; null
 *   when the score is damaged or not there
 */
export function repackGpx(bytes, limit, alone = false) {
  const container = bytes[3] === "Z".charCodeAt(0) ? unpack(bytes, limit) : bytes;
  if (!container || String.fromCharCode(...container.subarray(0, markLength)) !== "BCFS") {
    return null;
  }
  const disk = container.subarray(markLength);
  const entries = findEntries(disk);
  /** @type {Map<string, Uint8Array>} */
  const files = new Map();
  for (const name of [scoreName, ...(alone ? [] : optional)]) {
    const entry = entries.get(name);
    const content = entry && contentOf(entry, disk);
    if (content) {
      files.set(name, name === scoreName ? withoutGaps(content) : content);
    }
  }
  const score = files.get(scoreName);
  return score && countElements(score) <= mostElements ? storedZip(files) : null;
}

/** @param {Uint8Array} xml */
export function countElements(xml) {
  const [less, slash] = ["<".charCodeAt(0), "/".charCodeAt(0)];
  let count = 0;
  for (let at = xml.indexOf(less); at >= 0; at = xml.indexOf(less, at + 1)) {
    // The end of an element is none.
    count += xml[at + 1] === slash ? 0 : 1;
  }
  return count;
}

/** @param {Uint8Array} disk */
function findEntries(disk) {
  const view = new DataView(disk.buffer, disk.byteOffset, disk.byteLength);
  /** @type {Map<string, Entry>} */
  const entries = new Map();
  // Content may look like a head.
  const isContent = new Uint8Array(Math.ceil(disk.length / sectorLength));
  for (let sector = 1; sector * sectorLength + place.sectors <= disk.length; sector++) {
    const at = sector * sectorLength;
    if (isContent[sector] || view.getUint32(at, true) !== headMark) {
      continue;
    }
    const entry = readEntry(view, at);
    entries.set(nameOf(disk, at), entry);
    for (const content of entry.sectors) {
      isContent[content] = 1;
    }
    // A long list of sectors leaves its own.
    isContent.fill(1, sector + 1, Math.ceil((at + place.sectors + 4 * entry.sectors.length) / sectorLength));
  }
  return entries;
}

/**
 * @param {DataView} view
 * @param {number} at the head
 * @returns {Entry}
 */
function readEntry(view, at) {
  const length = view.getUint32(at + place.length, true);
  const room = Math.max(
    Math.ceil(Math.min(length, view.byteLength) / sectorLength),
    (sectorLength - place.sectors) / 4,
  );
  const end = Math.min(at + place.sectors + 4 * room, view.byteLength - 3);
  const sectors = [];
  for (let next = at + place.sectors; next < end; next += 4) {
    const sector = view.getUint32(next, true);
    if (sector === 0) {
      break;
    }
    sectors.push(sector);
  }
  return { length, sectors };
}

/**
 * @param {Uint8Array} disk
 * @param {number} at the head
 */
function nameOf(disk, at) {
  const name = disk.subarray(at + place.name, at + place.name + nameLength);
  const end = name.indexOf(0);
  return String.fromCharCode(...name.subarray(0, end < 0 ? nameLength : end));
}

/**
 * @param {Entry} entry
 * @param {Uint8Array} disk
 * @returns {Uint8Array | null} null when not all of it is there
 */
function contentOf({ length, sectors }, disk) {
  if (length > Math.min(disk.length, sectors.length * sectorLength)) {
    return null;
  }
  const content = new Uint8Array(length);
  for (let at = 0, i = 0; at < length; at += sectorLength, i++) {
    const from = sectors[i] * sectorLength;
    const part = disk.subarray(from, from + Math.min(sectorLength, length - at));
    if (part.length < Math.min(sectorLength, length - at)) {
      return null;
    }
    content.set(part, at);
  }
  return content;
}
