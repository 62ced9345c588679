// @ts-check
import { idOf, unwrittenDrums, withDrums } from "./drum-keys.js";
import { boundedInteger, boundedNumber } from "./values.js";
import { XmlElement } from "../containers/xml-scanner.js";

/**
 * Takes a document apart into its parts, and reads what their instruments are.
 *
 * @typedef {import("../containers/xml-builder.js").XmlBuilder} XmlBuilder
 *
 * @typedef {object} PartSource
 * @property {XmlElement} description the `score-part`
 * @property {XmlElement[]} measures
 * @property {Set<string>} drums the instruments that are keys of a drum kit
 * @property {((note: XmlElement) => number) | null} drumKey of notes that name none of them
 */

const mostParts = 256;
const mostInstruments = 256;

/**
 * @param {XmlElement} root
 * @returns {PartSource[]} those that have measures, in the order of the part list
 * @throws {Error} when there are more than any score has
 */
export function partsOf(root) {
  /** @type {Map<string, XmlElement[]>} */
  const measures = new Map();
  if (root.name === "score-timewise") {
    const bars = root.children.filter(({ name }) => name === "measure");
    bars.forEach((bar, index) => {
      for (const part of bar.children.filter(({ name }) => name === "part")) {
        const measure = new XmlElement("measure");
        measure.attributes = bar.attributes;
        measure.children = part.children;
        listOf(measures, part)[index] = measure;
      }
    });
    for (const list of measures.values()) {
      for (let index = 0; index < bars.length; index++) {
        list[index] ??= new XmlElement("measure");
      }
    }
  } else {
    for (const part of root.children.filter(({ name }) => name === "part")) {
      listOf(measures, part).push(...part.children.filter(({ name }) => name === "measure"));
    }
  }
  if (measures.size > mostParts) {
    throw new Error("it has more parts than any score needs");
  }
  const descriptions = (root.child("part-list")?.children ?? []).filter(({ name }) => name === "score-part");
  /** @type {PartSource[]} */
  const parts = [];
  for (const description of descriptions) {
    const own = measures.get(description.attributes.get("id") ?? "");
    if (own && own.length > 0) {
      parts.push(partOf(description, own));
      measures.delete(description.attributes.get("id") ?? "");
    }
  }
  for (const own of measures.values()) {
    if (own.length > 0) {
      parts.push({ description: new XmlElement("score-part"), measures: own, drums: new Set(), drumKey: null });
    }
  }
  return parts;
}

/**
 * @param {Map<string, XmlElement[]>} measures
 * @param {XmlElement} part
 */
function listOf(measures, part) {
  const id = part.attributes.get("id") ?? "";
  let list = measures.get(id);
  if (!list) {
    list = [];
    measures.set(id, list);
  }
  return list;
}

/**
 * @param {XmlElement} description
 * @param {XmlElement[]} measures
 * @returns {PartSource}
 */
function partOf(description, measures) {
  const drums = drumsOf(description);
  const drumKey = drums.size === 0 ? unwrittenDrums(description, measures) : null;
  if (!drumKey) {
    return { description, measures, drums, drumKey };
  }
  const whole = withDrums(description);
  return { description: whole, measures, drums: drumsOf(whole), drumKey };
}

/** @param {XmlElement} description */
function drumsOf(description) {
  /** @type {Set<string>} */
  const drums = new Set();
  for (const child of description.children) {
    if (child.name === "midi-instrument" && boundedInteger(child.textOf("midi-unpitched"), 1, 128, 0) > 0) {
      drums.add(child.attributes.get("id") ?? "");
    }
  }
  return drums;
}

/**
 * @param {PartSource} part
 * @param {XmlElement} note
 * @returns {string} the instrument that plays it, if that is a key of a drum kit
 */
export function drumOf({ drums, drumKey }, note) {
  if (drumKey) {
    return idOf(drumKey(note));
  }
  if (drums.size === 0) {
    return "";
  }
  const instrument = note.child("instrument")?.attributes.get("id") ?? "";
  if (drums.has(instrument)) {
    return instrument;
  }
  return note.child("unpitched") ? [...drums][0] : "";
}

/**
 * @param {XmlBuilder} writer
 * @param {PartSource} part
 * @param {string} id
 */
export function writeDescription(writer, { description, drums }, id) {
  writer.open("score-part", { id });
  let instruments = 0;
  for (const child of description.children) {
    switch (child.name) {
      case "part-name":
      case "part-name-display":
      case "part-abbreviation":
      case "part-abbreviation-display":
        writer.copy(child);
        break;
      case "score-instrument":
        if (++instruments <= mostInstruments) {
          writer.leaf("score-instrument", "", { id: child.attributes.get("id") });
        }
        break;
      case "midi-instrument":
        writeMidiInstrument(writer, child, drums);
        break;
    }
  }
  writer.close();
}

const drumChannel = 10;

/**
 * @param {XmlBuilder} writer
 * @param {XmlElement} instrument
 * @param {Set<string>} drums
 */
function writeMidiInstrument(writer, instrument, drums) {
  const id = instrument.attributes.get("id");
  writer.open("midi-instrument", { id });
  const channel = boundedInteger(instrument.textOf("midi-channel"), 1, 16, 0);
  if (channel > 0 && (channel !== drumChannel || drums.has(id ?? ""))) {
    writer.leaf("midi-channel", channel);
  }
  for (const [name, lowest, highest] of /** @type {[string, number, number][]} */ ([
    ["midi-bank", 1, 16384],
    ["midi-program", 1, 128],
    ["midi-unpitched", 1, 128],
  ])) {
    const value = boundedInteger(instrument.textOf(name), lowest, highest, 0);
    if (value > 0) {
      writer.leaf(name, value);
    }
  }
  for (const [name, lowest, highest] of /** @type {[string, number, number][]} */ ([
    ["volume", 0, 100],
    ["pan", -90, 90],
  ])) {
    const value = boundedNumber(instrument.textOf(name), lowest, highest, Number.NaN);
    if (!Number.isNaN(value)) {
      writer.leaf(name, value);
    }
  }
  writer.close();
}
