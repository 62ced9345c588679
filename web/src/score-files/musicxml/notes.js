// @ts-check
import { boundedInteger, boundedNumber, keyOf, lengthOf, tolerance, writingFor, writingOf } from "./values.js";

/**
 * Writes notes and rests for alphaTab's reader: with the lengths that they have, in voices as it counts them, with ties by
 * number, and without what it misunderstands.
 *
 * @typedef {import("../containers/xml-scanner.js").XmlElement} XmlElement
 * @typedef {import("../containers/xml-builder.js").XmlBuilder} XmlBuilder
 * @typedef {import("./values.js").Writing} Writing
 *
 * @typedef {object} Place
 * @property {number} staff 1 for the uppermost
 * @property {number} voice 1 for the first of the staff
 * @property {number} ticks how long the note lasts; 0 for grace notes
 * @property {boolean} fillsBar
 * @property {boolean} inChord whether the note joins the one before
 *
 * @typedef {object} PartFacts
 * @property {Map<XmlElement, number>} tiesFrom numbers of the ties that notes start
 * @property {Map<XmlElement, number>} tiesTo numbers of the ties that notes stop
 * @property {number[]} strings of each staff; 0 where it is not tuned
 * @property {(note: XmlElement) => string} instrumentOf the percussion instrument that plays a note, or nothing
 * @property {number} fifths of the key that the bar is in
 */

/** Copied as they are: their texts are words that alphaTab knows, or none of its. */
const copied = new Set(["accidental", "stem", "beam", "notehead", "play"]);

const mostVerses = 12;
const mostSyllables = 8;

/**
 * @param {XmlBuilder} writer
 * @param {XmlElement} note
 * @param {Place} place
 * @param {PartFacts} part
 */
export function writeNote(writer, note, place, part) {
  const hidden = note.attributes.get("print-object") === "no" ? "no" : undefined;
  const rest = note.child("rest") !== undefined;
  writer.open("note", hidden && { "print-object": hidden });
  const grace = note.child("grace");
  if (grace) {
    writer.leaf("grace", "", { slash: grace.attributes.get("slash") === "yes" ? "yes" : undefined });
  }
  if (place.inChord) {
    writer.empty("chord");
  }
  if (rest) {
    writer.empty("rest");
  } else {
    writePitch(writer, note, part);
  }
  writeTime(writer, place, grace ? writingOf(note) : shownWriting(note, rest, place));
  for (const child of note.children) {
    if (copied.has(child.name) && !rest) {
      writer.copy(child);
    }
  }
  writeStaff(writer, place);
  writeNotations(writer, note, place, part);
  writeLyrics(writer, note);
  writer.close();
}

/**
 * Writes a rest that the file does not have.
 *
 * @param {XmlBuilder} writer
 * @param {Place} place
 * @param {Writing} writing
 */
export function writeRest(writer, place, writing) {
  writer.open("note");
  writer.empty("rest");
  writeTime(writer, place, writing);
  writeStaff(writer, place);
  writer.close();
}

/**
 * @param {XmlBuilder} writer
 * @param {XmlElement} note
 * @param {PartFacts} part
 */
function writePitch(writer, note, part) {
  const instrument = part.instrumentOf(note);
  const pitch = note.child("pitch");
  const unpitched = note.child("unpitched");
  if (instrument) {
    writer.open("unpitched");
    writer.leaf("display-step", unpitched?.textOf("display-step") ?? pitch?.textOf("step") ?? "");
    writer.leaf(
      "display-octave",
      boundedInteger((unpitched ?? pitch)?.textOf(unpitched ? "display-octave" : "octave") ?? "", 0, 9, 4),
    );
    writer.close();
    writer.leaf("instrument", "", { id: instrument });
    return;
  }
  const key = keyOf(pitch);
  writer.open("pitch");
  writer.leaf(
    "step",
    pitch && key !== null ? pitch.textOf("step").toUpperCase() : unpitched?.textOf("display-step") || "C",
  );
  const alter = key === null ? 0 : Math.trunc(boundedNumber(pitch?.textOf("alter") ?? "", -4, 4, 0));
  if (alter !== 0) {
    writer.leaf("alter", alter);
  }
  writer.leaf("octave", boundedInteger(pitch?.textOf("octave") ?? unpitched?.textOf("display-octave") ?? "", -1, 9, 4));
  writer.close();
}

/**
 * @param {XmlBuilder} writer
 * @param {Place} place
 * @param {Writing | null} writing
 */
function writeTime(writer, { ticks, voice }, writing) {
  if (ticks > 0) {
    writer.leaf("duration", ticks);
  }
  if (voice > 1) {
    writer.leaf("voice", voice);
  }
  if (!writing) {
    return;
  }
  writer.leaf("type", writing.type);
  for (let i = 0; i < Math.min(writing.dots, 2); i++) {
    writer.empty("dot");
  }
  if (writing.actual !== writing.normal) {
    writer.open("time-modification");
    writer.leaf("actual-notes", writing.actual);
    writer.leaf("normal-notes", writing.normal);
    writer.close();
  }
}

/**
 * What is the first is not written: the reader takes it for granted.
 *
 * @param {XmlBuilder} writer
 * @param {Place} place
 */
function writeStaff(writer, { staff }) {
  if (staff > 1) {
    writer.leaf("staff", staff);
  }
}

/**
 * @param {XmlElement} note
 * @param {boolean} rest
 * @param {Place} place
 * @returns {Writing | null} how the length is drawn: as the file says, or as it would be where the file does not say
 */
function shownWriting(note, rest, { ticks, fillsBar }) {
  if (fillsBar) {
    return null;
  }
  const writing = writingOf(note);
  if (rest && writing && Math.abs(lengthOf(writing) - ticks) > tolerance) {
    return writingFor(ticks) ?? writing;
  }
  return writing ?? writingFor(ticks);
}

/**
 * @param {XmlBuilder} writer
 * @param {XmlElement} note
 * @param {Place} place
 * @param {PartFacts} part
 */
function writeNotations(writer, note, place, part) {
  const from = part.tiesFrom.get(note);
  const to = part.tiesTo.get(note);
  const groups = note.children.filter(({ name }) => name === "notations");
  if (groups.length === 0 && from === undefined && to === undefined) {
    return;
  }
  writer.open("notations");
  if (to !== undefined) {
    writer.leaf("tied", "", { type: "stop", number: to });
  }
  if (from !== undefined) {
    writer.leaf("tied", "", { type: "start", number: from });
  }
  for (const { children } of groups) {
    for (const notation of children) {
      if (notation.name === "technical") {
        writeTechnical(writer, notation, part.strings[place.staff - 1]);
      } else if (notation.name === "ornaments") {
        writeOrnaments(writer, notation, note, part.fifths);
      } else if (notation.name === "arpeggiate") {
        // alphaTab goes by a guitarist's hand, which moves down to the highest string; the document by the keys.
        const downwards = notation.attributes.get("direction") === "down";
        writer.leaf("arpeggiate", "", { direction: downwards ? "up" : "down" });
      } else if (notation.name !== "tied" && notation.name !== "tuplet") {
        writer.copy(notation);
      }
    }
  }
  writer.close();
}

/** How many strokes alphaTab plays. */
const mostStrokes = 5;

/**
 * @param {XmlBuilder} writer
 * @param {XmlElement} ornaments
 * @param {XmlElement} note
 * @param {number} fifths
 */
function writeOrnaments(writer, ornaments, note, fifths) {
  writer.open("ornaments");
  for (const child of ornaments.children) {
    if (child.name === "trill-mark") {
      // The document may say "half" or "whole" here; alphaTab takes semitones, and two where nothing is said.
      writer.leaf("trill-mark", "", { "trill-step": trillStep(note, fifths) });
    } else if (child.name === "tremolo") {
      writer.leaf("tremolo", boundedInteger(child.text, 0, mostStrokes, 3), { type: child.attributes.get("type") });
    } else {
      writer.copy(child);
    }
  }
  writer.close();
}

const letters = "FCGDAEB";

/**
 * @param {XmlElement} note
 * @param {number} fifths of the key
 * @returns {number} semitones up to the next step of the key
 */
function trillStep(note, fifths) {
  const pitch = note.child("pitch");
  const step = pitch?.textOf("step").toUpperCase() ?? "";
  const at = letters.indexOf(step);
  const key = keyOf(pitch);
  if (at < 0 || key === null || step === "") {
    return 2;
  }
  // A step up is two fifths up; each round of seven fifths raises by a semitone.
  const next = (at + 2) % 7;
  const raised = fifths > 0 ? (next < fifths ? 1 : 0) : next >= 7 + fifths ? -1 : 0;
  const natural = step === "E" || step === "B" ? 1 : 2;
  const alter = Math.trunc(boundedNumber(pitch?.textOf("alter") ?? "", -4, 4, 0));
  return Math.min(Math.max(natural + raised - alter, 1), 3);
}

/** @param {XmlElement} note */
export function beginsHammer(note) {
  return note.children.some(
    ({ name, children }) =>
      name === "notations" &&
      children.some((group) => group.name === "technical" && group.children.some(isHammerStart)),
  );
}

/** @param {XmlElement} element */
function isHammerStart({ name, attributes }) {
  return (name === "hammer-on" || name === "pull-off") && attributes.get("type") !== "stop";
}

/**
 * @param {XmlBuilder} writer
 * @param {XmlElement} technical
 * @param {number} strings
 */
function writeTechnical(writer, technical, strings) {
  const string = boundedInteger(technical.textOf("string"), 1, strings, 0);
  const fret = boundedInteger(technical.textOf("fret"), 0, 36, -1);
  writer.open("technical");
  for (const child of technical.children) {
    if (child.name !== "string" && child.name !== "fret" && child.name !== "bend") {
      writer.copy(child);
    } else if (child.name === "bend" && Math.abs(boundedNumber(child.textOf("bend-alter"), -12, 12, 0)) > 0) {
      writer.copy(child);
    }
  }
  // The string of a bowed instrument says nothing about the key, and without a tuning alphaTab would play none.
  if (string > 0 && fret >= 0) {
    writer.leaf("string", string);
    writer.leaf("fret", fret);
  }
  writer.close();
}

/**
 * @param {XmlBuilder} writer
 * @param {XmlElement} note
 */
function writeLyrics(writer, note) {
  let verses = 0;
  for (const lyric of note.children) {
    if (lyric.name === "lyric" && ++verses <= mostVerses) {
      writer.open("lyric", { number: boundedInteger(lyric.attributes.get("number") ?? "", 1, mostVerses, verses) });
      let syllables = 0;
      for (const child of lyric.children) {
        if ((child.name === "text" || child.name === "elision") && ++syllables <= mostSyllables) {
          writer.leaf(child.name, child.text);
        }
      }
      writer.close();
    }
  }
}
