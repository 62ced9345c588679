// @ts-check
import { boundedInteger } from "./values.js";

/**
 * Writes directions and harmonies beside the notes that they belong to. alphaTab's reader gives most of them to the next
 * note that it reads, whichever staff and voice that is in, and lets wedges and octave lines go on through all that it
 * reads until they stop.
 *
 * @typedef {import("../containers/xml-scanner.js").XmlElement} XmlElement
 * @typedef {import("../containers/xml-builder.js").XmlBuilder} XmlBuilder
 * @typedef {import("./events.js").Mark} Mark
 * @typedef {import("./events.js").MusicEvent} MusicEvent
 */

/** The kinds of direction that alphaTab reads here; tempos, repeats and jumps take another way. */
const kinds = new Set(["rehearsal", "words", "wedge", "dynamics", "dashes", "pedal", "octave-shift"]);

const longestWords = 300;

/** Those of them that go on until they stop. */
const lasting = new Set(["octave-shift", "wedge", "dashes"]);

/** What dashes behind such words hold for, under the words that alphaTab's reader knows. */
const manners = /** @type {[RegExp, string][]} */ ([
  [/^p\.?\s*m\.?$/i, "P.M."],
  [/^let\s*ring$/i, "LetRing"],
]);

/** What goes on through a staff until it stops. */
class Lines {
  /** @type {XmlElement | null} */
  octave = null;
  wedge = "stop";
  /** The numbers of dashes, by what they hold for. @type {Map<string, string>} */
  dashes = new Map();
}

/** @type {Map<string, string>} */
const noDashes = new Map();

/** Writes what stands in one part, bar by bar, staff by staff and voice by voice. */
export class DirectionWriter {
  #writer;
  /** @type {Lines[]} as the music has them at the beginning of the bar, by staff */
  #staves;
  /** As alphaTab's reader has them. */
  #current = new Lines();
  /** @type {Mark[]} of the bar and staff that is being written */
  #marks = [];
  #next = 0;
  #staff = 0;
  #isFirstVoice = true;
  /** As they are in the music. @type {Map<string, string>} */
  #dashes = noDashes;
  /** What a time in the bar is multiplied by to become what the reader divides by the metre. */
  #stretch = 1;

  /**
   * @param {XmlBuilder} writer
   * @param {number} staffCount
   */
  constructor(writer, staffCount) {
    this.#writer = writer;
    this.#staves = Array.from({ length: staffCount }, () => new Lines());
  }

  /**
   * @param {number} staff 1 for the uppermost
   * @param {Mark[]} marks of the staff in this bar, in time
   * @param {boolean} isFirstVoice whether the first voice with notes follows, which takes all that stands at notes
   * @param {number} stretch the bar's length by its metre, divided by its real one
   */
  beginVoice(staff, marks, isFirstVoice, stretch) {
    this.#staff = staff;
    this.#marks = marks;
    this.#next = 0;
    this.#isFirstVoice = isFirstVoice;
    this.#stretch = stretch;
    const lines = this.#staves[staff - 1];
    this.#setOctave(lines.octave);
    this.#setWedge(isFirstVoice ? lines.wedge : "stop");
    this.#dashes = new Map(lines.dashes);
    this.#setDashes(isFirstVoice ? this.#dashes : noDashes);
  }

  /**
   * Writes what stands before the next event.
   *
   * @param {number} position of the reader
   * @param {number} time up to which; later events of the voice take the rest
   */
  writeUpTo(position, time) {
    while (this.#next < this.#marks.length && this.#marks[this.#next].onset <= time) {
      this.#write(this.#marks[this.#next++], position);
    }
  }

  /**
   * Remembers what goes on into the next bar.
   *
   * @param {number} staff
   * @param {Mark[]} marks of the staff in this bar
   */
  endStaff(staff, marks) {
    const lines = this.#staves[staff - 1];
    for (const { element } of marks) {
      const found = kindsOf(element);
      for (const [index, kind] of found.entries()) {
        if (kind.name === "dashes") {
          applyDashes(lines.dashes, found, index);
        } else if (kind.name === "octave-shift") {
          lines.octave = kind.attributes.get("type") === "stop" ? null : kind;
        } else if (kind.name === "wedge") {
          lines.wedge = kind.attributes.get("type") ?? "stop";
        }
      }
    }
  }

  /**
   * @param {Mark} mark
   * @param {number} position
   */
  #write({ element, onset }, position) {
    if (element.name === "harmony") {
      if (this.#isFirstVoice) {
        writeHarmony(this.#writer, element);
      }
      return;
    }
    const found = kindsOf(element);
    for (const [index, kind] of found.entries()) {
      if (kind.name === "dashes") {
        applyDashes(this.#dashes, found, index);
        this.#setDashes(this.#isFirstVoice ? this.#dashes : noDashes);
      } else if (kind.name === "octave-shift") {
        this.#setOctave(kind.attributes.get("type") === "stop" ? null : kind);
      } else if (kind.name === "wedge") {
        this.#setWedge(this.#isFirstVoice ? (kind.attributes.get("type") ?? "stop") : "stop");
      } else if (this.#isFirstVoice && !mannerOf(found, index + 1)) {
        this.#writeDirection(kind, kind.name === "pedal" ? Math.round(onset * this.#stretch - position) : 0);
      }
    }
  }

  /** @param {XmlElement | null} octave */
  #setOctave(octave) {
    const same = this.#current.octave?.attributes.get("type") === octave?.attributes.get("type");
    if (!same || this.#current.octave?.attributes.get("size") !== octave?.attributes.get("size")) {
      this.#current.octave = octave;
      this.#writeLine("octave-shift", octave?.attributes.get("type") ?? "stop", octave?.attributes.get("size"));
    }
  }

  /** @param {string} wedge */
  #setWedge(wedge) {
    if (this.#current.wedge !== wedge) {
      this.#current.wedge = wedge;
      this.#writeLine("wedge", wedge);
    }
  }

  /** @param {Map<string, string>} dashes */
  #setDashes(dashes) {
    for (const [, manner] of manners) {
      if (this.#current.dashes.has(manner) !== dashes.has(manner)) {
        this.#begin();
        this.#writer.leaf("words", manner);
        this.#writer.close();
        this.#writer.open("direction-type");
        this.#writer.leaf("dashes", "", { type: dashes.has(manner) ? "start" : "stop" });
        this.#end(0);
      }
    }
    this.#current.dashes = new Map(dashes);
  }

  /**
   * @param {string} name
   * @param {string} type
   * @param {string} [size]
   */
  #writeLine(name, type, size) {
    this.#begin();
    this.#writer.leaf(name, "", { type, size });
    this.#end(0);
  }

  /**
   * @param {XmlElement} kind
   * @param {number} offset in ticks
   */
  #writeDirection(kind, offset) {
    this.#begin();
    if (kind.name === "words" || kind.name === "rehearsal") {
      this.#writer.leaf(kind.name, kind.text.slice(0, longestWords).trim());
    } else {
      this.#writer.copy(kind);
    }
    this.#end(offset);
  }

  #begin() {
    this.#writer.open("direction");
    this.#writer.open("direction-type");
  }

  /** @param {number} offset */
  #end(offset) {
    this.#writer.close();
    if (offset !== 0) {
      this.#writer.leaf("offset", offset);
    }
    this.#writer.leaf("staff", this.#staff);
    this.#writer.close();
  }
}

/** @param {XmlElement} element @returns {XmlElement[]} */
function kindsOf(element) {
  if (element.name !== "direction") {
    return [];
  }
  return element.children.flatMap((child) =>
    child.name === "direction-type" ? child.children.filter(({ name }) => kinds.has(name)) : [],
  );
}

/**
 * @param {XmlElement[]} found in a direction
 * @param {number} index of dashes among them
 * @returns {string} what they hold for; nothing if that is not known, and for what is no dashes
 */
function mannerOf(found, index) {
  const words = found[index]?.name === "dashes" && found[index - 1]?.name === "words" ? found[index - 1].text : "";
  return manners.find(([pattern]) => pattern.test(words))?.[1] ?? "";
}

/**
 * @param {Map<string, string>} dashes are changed
 * @param {XmlElement[]} found in a direction
 * @param {number} index of dashes among them
 */
function applyDashes(dashes, found, index) {
  const manner = mannerOf(found, index);
  const number = found[index].getAttribute("number", "1");
  if (found[index].attributes.get("type") !== "stop") {
    if (manner) {
      dashes.set(manner, number);
    }
    return;
  }
  for (const [held, heldNumber] of dashes) {
    // Some programs repeat the words where their dashes stop.
    if (manner ? held === manner : heldNumber === number) {
      dashes.delete(held);
    }
  }
}

/** Directions that hold until they stop, and stop after the last note of a bar. @param {Mark} mark */
function isLine({ element }) {
  const found = kindsOf(element);
  return found.length > 0 && found.every(({ name }, index) => lasting.has(name) || mannerOf(found, index + 1) !== "");
}

/**
 * @param {Mark[]} marks of a bar
 * @param {number} staff
 * @param {MusicEvent[]} events of the staff's first voice with any
 * @returns {Mark[]} those of the staff that are written, in time, none beyond the last note that could take it
 */
export function marksOfStaff(marks, staff, events) {
  const last = events.at(-1)?.onset ?? 0;
  return marks
    .filter((mark) => mark.staff === staff && (mark.element.name === "harmony" || kindsOf(mark.element).length > 0))
    .map((mark) => (mark.onset > last && !isLine(mark) ? { ...mark, onset: last } : mark))
    .sort((a, b) => a.onset - b.onset);
}

const mostStrings = 12;

/**
 * @param {XmlBuilder} writer
 * @param {XmlElement} harmony
 */
function writeHarmony(writer, harmony) {
  writer.open("harmony", {
    "print-frame": harmony.attributes.get("print-frame"),
    "print-object": harmony.attributes.get("print-object"),
  });
  for (const child of harmony.children) {
    if (child.name === "frame") {
      writeFrame(writer, child);
    } else if (child.name !== "offset" && child.name !== "staff") {
      writer.copy(child);
    }
  }
  writer.close();
}

/**
 * @param {XmlBuilder} writer
 * @param {XmlElement} frame
 */
function writeFrame(writer, frame) {
  const strings = boundedInteger(frame.textOf("frame-strings"), 1, mostStrings, 6);
  writer.open("frame");
  writer.leaf("frame-strings", strings);
  writer.leaf("first-fret", boundedInteger(frame.textOf("first-fret"), 1, 36, 1));
  for (const note of frame.children) {
    const string = boundedInteger(note.textOf("string"), 1, strings, 0);
    if (note.name === "frame-note" && string > 0) {
      writer.open("frame-note");
      writer.leaf("string", string);
      writer.leaf("fret", boundedInteger(note.textOf("fret"), 0, 36, 0));
      const barre = note.child("barre");
      if (barre) {
        writer.copy(barre);
      }
      writer.close();
    }
  }
  writer.close();
}
