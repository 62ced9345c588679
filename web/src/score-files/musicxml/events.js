// @ts-check
import {
  bounded,
  boundedInteger,
  boundedNumber,
  lengthOf,
  longestBar,
  longestNote,
  mostNotesInBar,
  mostNotesInChord,
  mostStaves,
  quarter,
  tolerance,
  writingOf,
} from "./values.js";

/**
 * Works out when everything in a bar happens. A MusicXML measure is a list through which a position moves: notes move it
 * on, `backup` and `forward` move it without a note. Nothing of that remains here: each event knows its own times.
 *
 * @typedef {import("../containers/xml-scanner.js").XmlElement} XmlElement
 *
 * @typedef {object} MusicEvent notes that begin together, or a rest
 * @property {XmlElement[]} notes the first one gives the length; none for a rest that the file does not have
 * @property {number} onset
 * @property {number} end as `onset` for grace notes
 * @property {number} staff 1 for the uppermost
 * @property {string} voice as the file names it
 * @property {boolean} grace
 * @property {boolean} rest
 * @property {boolean} hidden a rest that is not drawn
 * @property {boolean} fillsBar a rest for as long as the bar lasts
 *
 * @typedef {object} Mark something that stands at a time and is no note
 * @property {XmlElement} element
 * @property {number} onset may lie before or after the bar
 * @property {number} staff
 *
 * @typedef {object} Measure
 * @property {MusicEvent[]} events in the order of the file
 * @property {Mark[]} marks directions, harmonies, sounds and attributes
 * @property {XmlElement[]} barLines
 * @property {XmlElement[]} prints
 * @property {number} extent how far notes, rests and `forward` reach
 * @property {boolean} unnumbered
 */

/**
 * @param {XmlElement} measure
 * @param {{ divisions: number }} part divisions of a quarter note at the measure's beginning; kept up to date
 * @param {number} metre the bar's length by its time signature
 * @returns {Measure}
 * @throws {Error} when it holds more than any bar does
 */
export function readMeasure(measure, part, metre) {
  const reader = new MeasureReader(part, metre);
  for (const child of measure.children) {
    reader.read(child);
  }
  reader.finish();
  return {
    events: reader.events,
    marks: reader.marks,
    barLines: measure.children.filter(({ name }) => name === "barline"),
    prints: measure.children.filter(({ name }) => name === "print"),
    extent: reader.extent,
    unnumbered: measure.attributes.get("implicit") === "yes",
  };
}

class MeasureReader {
  /** @type {MusicEvent[]} */
  events = [];
  /** @type {Mark[]} */
  marks = [];
  extent = 0;
  #part;
  #metre;
  /** In quarters, which are not rounded until they become times. */
  #position = 0;
  /** @type {MusicEvent[]} what further notes of a chord join: one for each of its staves */
  #chord = [];
  #notes = 0;
  #isWithinBar = false;

  /**
   * @param {{ divisions: number }} part
   * @param {number} metre
   */
  constructor(part, metre) {
    this.#part = part;
    this.#metre = metre;
  }

  /** @param {XmlElement} element */
  read(element) {
    switch (element.name) {
      case "note":
        this.#readNote(element);
        break;
      case "backup":
        this.#move(-this.#quartersOf(element));
        break;
      case "forward":
        this.#move(this.#quartersOf(element));
        this.extent = Math.max(this.extent, ticksOf(this.#position));
        break;
      case "attributes":
        this.#part.divisions = boundedNumber(element.textOf("divisions"), 1e-3, 1e7, this.#part.divisions);
        this.#mark(element, 1);
        break;
      case "direction":
      case "harmony":
      case "sound":
        this.#mark(element, staffOf(element));
        break;
    }
  }

  /** Works out what takes all events to tell. */
  finish() {
    for (const event of this.events) {
      event.fillsBar &&= !this.events.some(
        (other) => other !== event && other.staff === event.staff && other.voice === event.voice,
      );
      event.end = event.fillsBar ? Math.min(event.end, this.#metre) : event.end;
      this.extent = Math.max(this.extent, event.end);
    }
    this.events = this.events.filter(({ rest, notes }) => rest || !notes.every(standsForSign));
  }

  /** @param {XmlElement} note */
  #readNote(note) {
    if (++this.#notes > mostNotesInBar) {
      throw new Error("a bar has more notes than any score needs");
    }
    const staff = staffOf(note);
    const grace = note.child("grace") !== undefined;
    if (note.child("chord") && this.#isWithinBar) {
      this.#joinChord(note, staff);
      return;
    }
    this.#isWithinBar = true;
    const rest = note.child("rest");
    const quarters = grace ? 0 : this.#lengthOf(note);
    const onset = ticksOf(this.#position);
    this.#move(quarters);
    /** @type {MusicEvent} */
    const event = {
      notes: [note],
      onset,
      end: ticksOf(this.#position),
      staff,
      voice: note.textOf("voice"),
      grace,
      rest: rest !== undefined,
      hidden: rest !== undefined && note.attributes.get("print-object") === "no",
      fillsBar: false,
    };
    event.fillsBar = rest !== undefined && this.#mayFillBar(note, rest, event);
    // What is there for other players to follow is not played; the time passes.
    const cue = note.child("cue") !== undefined;
    this.#chord = rest || cue ? [] : [event];
    if (!cue) {
      this.events.push(event);
    }
  }

  /**
   * @param {XmlElement} note
   * @param {number} staff
   */
  #joinChord(note, staff) {
    const event = this.#chord.find((other) => other.staff === staff);
    const first = this.#chord[0];
    if (!first) {
      // Notes beside a rest, or beside one that is not played, are none either.
      return;
    }
    if (!event) {
      const joined = { ...first, notes: [note], staff };
      this.#chord.push(joined);
      this.events.push(joined);
    } else if (event.notes.length < mostNotesInChord) {
      event.notes.push(note);
    }
  }

  /**
   * Rests of a whole bar are written as whole notes in any metre, and some programs write the length of those.
   *
   * @param {XmlElement} note
   * @param {XmlElement} rest
   * @param {MusicEvent} event
   */
  #mayFillBar(note, rest, { onset, end }) {
    if (onset > tolerance) {
      return false;
    }
    const type = note.textOf("type");
    return (
      rest.attributes.get("measure") === "yes" || ((type === "whole" || type === "") && end >= this.#metre - tolerance)
    );
  }

  /**
   * @param {XmlElement} note
   * @returns {number} in quarters
   */
  #lengthOf(note) {
    const duration = this.#quartersOf(note);
    if (duration > 0) {
      return duration;
    }
    const writing = writingOf(note);
    return writing ? lengthOf(writing) / quarter : 0;
  }

  /** @param {XmlElement} element @returns {number} its duration in quarters; 0 where it has none that makes sense */
  #quartersOf(element) {
    const duration = Number.parseFloat(element.textOf("duration"));
    return bounded(duration / this.#part.divisions, 0, longestNote, 0);
  }

  /**
   * @param {XmlElement} element
   * @param {number} staff
   */
  #mark(element, staff) {
    const offset = Number.parseFloat(element.textOf("offset")) / this.#part.divisions;
    const position = this.#position + bounded(offset, -longestNote, longestNote, 0);
    this.marks.push({ element, onset: ticksOf(Math.max(0, position)), staff });
  }

  /** @param {number} quarters */
  #move(quarters) {
    this.#position = Math.min(Math.max(0, this.#position + quarters), longestBar);
  }
}

/**
 * Some programs write what a trill or a tremolo sounds like beside it, in notes that take no room. The sign is played.
 *
 * @param {XmlElement} note
 */
function standsForSign({ attributes }) {
  return attributes.get("print-object") === "no" && attributes.get("print-spacing") === "no";
}

/** @param {number} quarters */
function ticksOf(quarters) {
  return Math.round(quarters * quarter);
}

/** @param {XmlElement} element */
function staffOf(element) {
  return boundedInteger(element.textOf("staff"), 1, mostStaves, 1);
}
