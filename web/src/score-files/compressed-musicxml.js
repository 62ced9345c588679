// @ts-check
import { decodeText } from "./containers/text-encoding.js";
import { scanXml } from "./containers/xml-scanner.js";
import { ZipReader } from "./containers/zip-reader.js";

/**
 * Takes the score out of a compressed MusicXML file: a zip archive whose container tells which member it is.
 *
 * @param {Uint8Array} archive
 * @param {number} limit in bytes: how much the score may unpack to
 * @returns {Uint8Array | null} null when the archive is not compressed MusicXML
 * @throws {Error} when it is and cannot be unpacked; the message is the rest of a sentence
 */
export function musicXmlIn(archive, limit) {
  let zip;
  try {
    zip = new ZipReader(archive);
  } catch {
    return null;
  }
  const name = namedByContainer(zip, limit) ?? zip.members.find(isScore)?.name;
  const score = name === undefined ? undefined : zip.find(name);
  return score ? zip.read(score, limit) : null;
}

/**
 * @param {ZipReader} zip
 * @param {number} limit
 */
function namedByContainer(zip, limit) {
  const container = zip.find("META-INF/container.xml");
  if (!container) {
    return undefined;
  }
  const roots = scanXml(decodeText(zip.read(container, limit))).child("rootfiles");
  return roots?.child("rootfile")?.attributes.get("full-path");
}

/** @param {import("./containers/zip-reader.js").Member} member */
function isScore({ name }) {
  return !name.startsWith("META-INF/") && /\.(xml|musicxml)$/i.test(name);
}
