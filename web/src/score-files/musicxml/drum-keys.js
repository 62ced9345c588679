// @ts-check
import { XmlElement } from "../containers/xml-scanner.js";

/**
 * Tells which keys of a drum kit are meant where a document does not say: by the names of its instruments, or by where
 * the notes stand on the staff, as drummers write them.
 */

/** By words in a name, the more special first. */
const names = /** @type {[RegExp, number][]} */ ([
  [/pedal hi ?hat/, 44],
  [/open(ed)? hi ?hat/, 46],
  [/hi ?hat/, 42],
  [/bass drum|kick/, 36],
  [/side ?stick|rim ?shot/, 37],
  [/snare/, 38],
  [/clap/, 39],
  [/floor tom/, 41],
  [/low tom/, 45],
  [/mid tom/, 47],
  [/high tom/, 50],
  [/tom/, 47],
  [/ride bell/, 53],
  [/ride/, 51],
  [/china|chinese/, 52],
  [/splash/, 55],
  [/crash|cymbal/, 49],
  [/tambourine/, 54],
  [/cow ?bell/, 56],
  [/wood ?block/, 76],
  [/triangle/, 81],
  [/claves/, 75],
  [/maracas|shaker/, 70],
]);

/** By step and octave, in a treble clef. */
const places = new Map([
  ["D4", 44],
  ["E4", 36],
  ["F4", 36],
  ["A4", 41],
  ["B4", 45],
  ["C5", 38],
  ["D5", 47],
  ["E5", 50],
  ["F5", 51],
  ["G5", 42],
  ["A5", 49],
  ["B5", 57],
]);
const snare = 38;
const drumChannel = "10";

/**
 * @param {XmlElement} description the `score-part`
 * @param {XmlElement[]} measures
 * @returns {((note: XmlElement) => number) | null} the key of a note; null for parts that are no drums
 */
export function unwrittenDrums(description, measures) {
  if (!isForDrums(description, measures) || measures.some(({ children }) => children.some(isPitched))) {
    return null;
  }
  /** @type {Map<string, number>} */
  const named = new Map();
  for (const instrument of description.children.filter(({ name }) => name === "score-instrument")) {
    const words = `${instrument.textOf("instrument-name")} ${instrument.textOf("instrument-sound")}`;
    const text = words.toLowerCase().replace(/[-._]/g, " ");
    const key = names.find(([pattern]) => pattern.test(text))?.[1];
    if (key) {
      named.set(instrument.attributes.get("id") ?? "", key);
    }
  }
  return (note) => {
    const unpitched = note.child("unpitched");
    const place = `${unpitched?.textOf("display-step")}${unpitched?.textOf("display-octave")}`;
    return named.get(note.child("instrument")?.attributes.get("id") ?? "") ?? places.get(place) ?? snare;
  };
}

/**
 * @param {XmlElement} description the `score-part`
 * @returns {XmlElement} the same with an instrument for each key, as a document would have them
 */
export function withDrums(description) {
  const whole = new XmlElement("score-part");
  const loudness = description.child("midi-instrument")?.children.filter(({ name }) => /^(volume|pan)$/.test(name));
  const keys = new Set([...names.map(([, key]) => key), ...places.values(), snare]);
  whole.children = [
    ...description.children.filter(({ name }) => !/^(score|midi)-instrument$/.test(name)),
    ...Array.from(keys, (key) => element("score-instrument", idOf(key))),
    ...Array.from(keys, (key) => {
      const instrument = element("midi-instrument", idOf(key));
      const children = [element("midi-channel", "", drumChannel), element("midi-unpitched", "", String(key + 1))];
      instrument.children = [...children, ...(loudness ?? [])];
      return instrument;
    }),
  ];
  return whole;
}

/**
 * @param {string} name
 * @param {string} id
 * @param {string} [text]
 */
function element(name, id, text = "") {
  const made = new XmlElement(name);
  made.attributes = new Map(id ? [["id", id]] : []);
  made.text = text;
  return made;
}

/** @param {number} key */
export function idOf(key) {
  return `drum ${key}`;
}

/**
 * @param {XmlElement} description
 * @param {XmlElement[]} measures
 */
function isForDrums(description, measures) {
  const channels = description.children.flatMap((child) =>
    child.name === "midi-instrument" && child.child("midi-channel") ? [child.textOf("midi-channel")] : [],
  );
  if (channels.length > 0) {
    return channels.includes(drumChannel);
  }
  return (measures[0]?.children ?? []).some(({ name, children }) =>
    children.some((clef) => name === "attributes" && clef.textOf("sign").toLowerCase() === "percussion"),
  );
}

/** @param {XmlElement} child of a measure */
function isPitched(child) {
  return child.name === "note" && child.child("pitch") !== undefined;
}
