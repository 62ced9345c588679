// @ts-check
import { scanXml } from "../containers/xml-scanner.js";
import { LateElement, XmlBuilder } from "../containers/xml-builder.js";
import { attributesAtBars, countStaves, stringsOf, writeAttribute } from "./attributes.js";
import { DirectionWriter, marksOfStaff } from "./directions.js";
import { readMeasure } from "./events.js";
import { graceLengths } from "./graces.js";
import { harmonicOf } from "./harmonics.js";
import { barLengthOf, commonMetre, readMetre } from "./metres.js";
import { beginsHammer, writeNote, writeRest } from "./notes.js";
import { drumOf, partsOf, writeDescription } from "./parts.js";
import { addSign, noSigns, readBarLines, signsOf, tellCodasApart } from "./road-signs.js";
import { tempoOf } from "./tempos.js";
import { findTies } from "./ties.js";
import { boundedInteger, longestBar, quarter, tolerance, writingsFor } from "./values.js";
import { assignVoices } from "./voices.js";

/**
 * Rewrites a MusicXML document into a form in which alphaTab's reader has nothing left to get wrong: staff by staff and
 * voice by voice from the beginning of each bar, with all gaps filled by rests and all times in alphaTab's ticks. What
 * belongs to whole bars (lengths, repeats, jumps, tempos) is told beside the document.
 *
 * @typedef {import("../containers/xml-scanner.js").XmlElement} XmlElement
 * @typedef {import("./events.js").Measure} Measure
 * @typedef {import("./events.js").Mark} Mark
 * @typedef {import("./events.js").MusicEvent} MusicEvent
 * @typedef {import("./metres.js").Metre} Metre
 * @typedef {import("./notes.js").PartFacts} PartFacts
 * @typedef {import("./parts.js").PartSource} PartSource
 * @typedef {import("./road-signs.js").RoadSigns} RoadSigns
 * @typedef {import("./voices.js").Staves} Staves
 *
 * @typedef {object} Bar
 * @property {Metre} metre
 * @property {boolean} metreChanges
 * @property {number} length in ticks
 * @property {boolean} partial whether it lasts otherwise than its metre says
 * @property {RoadSigns} signs
 * @property {{ time: number, quartersPerMinute: number }[]} tempos in time
 *
 * @typedef {object} BeatPlace
 * @property {number} part
 * @property {number} staff 0 for the uppermost
 * @property {number} bar
 * @property {number} voice 0 for the first
 * @property {number} beat
 *
 * @typedef {object} LongGrace grace notes that sound for as long as they are written, and the note after them later
 * @property {BeatPlace} first
 * @property {number[]} ticks of each grace note
 *
 * @typedef {object} CrossTie notes that are tied from one staff to another
 * @property {NotePlace} from
 * @property {NotePlace} to
 *
 * @typedef {BeatPlace & { note: number }} NotePlace
 *
 * @typedef {object} Rewritten
 * @property {XmlElement} root
 * @property {Bar[]} bars
 * @property {Leftovers} leftovers
 *
 * @typedef {object} Leftovers what alphaTab's reader has no words for
 * @property {BeatPlace[]} hiddenRests rests that are not drawn
 * @property {LongGrace[]} longGraces
 * @property {CrossTie[]} crossTies
 * @property {NotePlace[]} hammers notes that a hammer-on or a pull-off begins with
 * @property {(NotePlace & { harmonic: import("./harmonics.js").Harmonic })[]} harmonics on strings
 *
 * @typedef {object} Part
 * @property {PartSource} source
 * @property {Measure[]} measures
 * @property {XmlElement[][]} attributes
 * @property {Staves[]} staves by bar
 * @property {number} staffCount
 */

/** Where and how things are drawn on the score page that a file was made for. */
const layout = new Set(
  `default-x default-y relative-x relative-y font-family font-weight font-style color bezier-x bezier-y bezier-x2 bezier-y2
   width dynamics end-dynamics orientation xml:lang`.split(/\s+/),
);

/**
 * @param {string} text of a MusicXML document
 * @returns {Rewritten}
 * @throws {Error} when it is not well-formed, or exceeds a bound; the message is the rest of a sentence
 */
export function rewriteMusicXml(text) {
  const root = scanXml(text, layout);
  const sources = partsOf(root);
  const bars = readBars(sources);
  const parts = sources.map((source) => readPart(source, bars));
  const measures = parts.map((part) => part.measures);
  measureBars(bars, measures);
  readSigns(bars, measures);
  const writer = new XmlBuilder();
  writer.open("score-partwise", { version: "4.0" });
  writeHead(writer, root, sources);
  /** @type {Leftovers} */
  const leftovers = { hiddenRests: [], longGraces: [], crossTies: [], hammers: [], harmonics: [] };
  parts.forEach((part, index) => {
    const element = new LateElement("part", () => new PartWriter(part, index, bars, leftovers).measures());
    element.attributes = new Map([["id", `P${index}`]]);
    writer.copy(element);
  });
  writer.close();
  return { root: writer.taken(), bars, leftovers };
}

/**
 * @param {PartSource[]} sources
 * @returns {Bar[]} with their metres
 */
function readBars(sources) {
  const count = Math.max(0, ...sources.map(({ measures }) => measures.length));
  /** @type {Bar[]} */
  const bars = [];
  let metre = commonMetre;
  for (let index = 0; index < count; index++) {
    const next = metreAt(sources, index);
    bars.push({
      metre: next ?? metre,
      metreChanges: next !== null,
      length: 0,
      partial: false,
      signs: noSigns(),
      tempos: [],
    });
    metre = next ?? metre;
  }
  return bars;
}

/**
 * @param {PartSource[]} sources
 * @param {number} index
 * @returns {Metre | null} the first one that a part gives for the bar
 */
function metreAt(sources, index) {
  for (const { measures } of sources) {
    for (const child of measures[index]?.children ?? []) {
      for (const time of child.name === "attributes" ? child.children : []) {
        // A signature that is not shown tells how long the bar is, which its notes tell as well.
        if (time.name === "time" && (index === 0 || time.attributes.get("print-object") !== "no")) {
          const metre = readMetre(time);
          if (metre) {
            return metre;
          }
        }
      }
    }
  }
  return null;
}

/**
 * @param {PartSource} source
 * @param {Bar[]} bars
 * @returns {Part}
 */
function readPart(source, bars) {
  const state = { divisions: 1 };
  const measures = source.measures.map((measure, index) => readMeasure(measure, state, barLengthOf(bars[index].metre)));
  const staffCount = countStaves(measures);
  const staves = assignVoices(measures, staffCount);
  const attributes = attributesAtBars(
    measures,
    (bar, staff, time) =>
      staves[bar][staff - 1]?.every((events) => events.every(({ rest, onset }) => rest || onset >= time)) ?? true,
  );
  return { source, measures, attributes, staves, staffCount };
}

/**
 * A bar lasts as long as its longest staff's content. Without any it lasts as its metre says.
 *
 * @param {Bar[]} bars
 * @param {Measure[][]} parts
 */
function measureBars(bars, parts) {
  bars.forEach((bar, index) => {
    const nominal = barLengthOf(bar.metre);
    const extent = Math.max(0, ...parts.map((measures) => measures[index]?.extent ?? 0));
    bar.length =
      extent > 0 && Math.abs(extent - nominal) > tolerance ? Math.min(extent, longestBar * quarter) : nominal;
    bar.partial = bar.length !== nominal;
  });
}

/**
 * @param {Bar[]} bars
 * @param {Measure[][]} parts
 */
function readSigns(bars, parts) {
  const signs = bars.map((bar) => bar.signs);
  readBarLines(
    parts.map((measures) => measures.map(({ barLines }) => barLines)),
    signs,
  );
  bars.forEach(({ length }, index) => {
    for (const measures of parts) {
      for (const { element, onset } of measures[index]?.marks ?? []) {
        const atEnd = onset >= length - tolerance;
        for (const sign of element.name === "harmony" || element.name === "attributes" ? [] : signsOf(element)) {
          addSign(signs, index, sign, atEnd);
        }
        const quartersPerMinute = tempoOf(element);
        const bar = atEnd ? bars[index + 1] : bars[index];
        const time = atEnd ? 0 : onset;
        if (quartersPerMinute > 0 && bar && !bar.tempos.some((other) => Math.abs(other.time - time) <= tolerance)) {
          bar.tempos.push({ time, quartersPerMinute });
        }
      }
    }
  });
  for (const { tempos } of bars) {
    tempos.sort((a, b) => a.time - b.time);
  }
  tellCodasApart(signs);
}

/** What stands at the head of a score. */
const titles = new Set(["work", "movement-title", "identification", "credit"]);

/**
 * @param {XmlBuilder} writer
 * @param {XmlElement} root
 * @param {PartSource[]} sources
 */
function writeHead(writer, root, sources) {
  for (const child of root.children) {
    if (titles.has(child.name)) {
      writer.copy(child);
    }
  }
  writer.open("part-list");
  sources.forEach((source, index) => writeDescription(writer, source, `P${index}`));
  writer.close();
}

class PartWriter {
  #writer = new XmlBuilder();
  #part;
  #index;
  #bars;
  #leftovers;
  #directions;
  /** @type {PartFacts} */
  #facts;
  #crossTies;
  #crossTied;
  /** @type {Map<XmlElement, NotePlace>} of the notes that are tied to another staff */
  #notePlaces = new Map();

  /**
   * @param {Part} part
   * @param {number} index
   * @param {Bar[]} bars
   * @param {Leftovers} leftovers takes those of the part
   */
  constructor(part, index, bars, leftovers) {
    this.#part = part;
    this.#index = index;
    this.#bars = bars;
    this.#leftovers = leftovers;
    this.#directions = new DirectionWriter(this.#writer, part.staffCount);
    let time = 0;
    const starts = bars.map(({ length }) => (time += length) - length);
    const allTies = findTies(part.staves, starts);
    const ties = allTies.filter(({ acrossStaves }) => !acrossStaves);
    this.#crossTies = allTies.filter(({ acrossStaves }) => acrossStaves);
    this.#crossTied = new Set(this.#crossTies.flatMap(({ from, to }) => [from, to]));
    this.#facts = {
      tiesFrom: new Map(ties.map(({ from }, number) => [from, number + 1])),
      tiesTo: new Map(ties.map(({ to }, number) => [to, number + 1])),
      strings:
        part.staves.length === 0
          ? []
          : Array.from({ length: part.staffCount }, (_, staff) => stringsOf(part.attributes, staff + 1)),
      instrumentOf: (note) => drumOf(part.source, note),
      fifths: 0,
    };
  }

  /** One after the other: alphaTab's reader is done with each before it asks for the next. */
  *measures() {
    for (const [index, measure] of this.#part.measures.entries()) {
      this.#writer.open("measure", { implicit: measure.unnumbered ? "yes" : undefined });
      for (const print of measure.prints) {
        this.#writer.copy(print);
      }
      this.#writeAttributes(index);
      let position = 0;
      this.#part.staves[index].forEach((voices, staff) => {
        position = this.#writeStaff(index, staff, voices, position);
      });
      this.#writeSounds(measure.marks);
      this.#writeBarStyles(measure.barLines);
      this.#writer.close();
      yield this.#writer.taken();
    }
    for (const { from, to } of this.#crossTies) {
      const places = [this.#notePlaces.get(from), this.#notePlaces.get(to)];
      if (places[0] && places[1]) {
        this.#leftovers.crossTies.push({ from: places[0], to: places[1] });
      }
    }
  }

  /** @param {number} index of the bar */
  #writeAttributes(index) {
    const bar = this.#bars[index];
    const elements = this.#part.attributes[index];
    const writesMetre = this.#index === 0 && (bar.metreChanges || index === 0);
    if (index > 0 && elements.length === 0 && !writesMetre) {
      return;
    }
    this.#writer.open("attributes");
    if (index === 0) {
      this.#writer.leaf("divisions", quarter);
    }
    const { staffCount, source } = this.#part;
    const about = { staffCount, percussion: source.drums.size > 0 };
    for (const element of elements.filter(({ name }) => name === "key")) {
      writeAttribute(this.#writer, element, about);
      this.#facts.fifths = boundedInteger(element.textOf("fifths"), -7, 7, 0);
    }
    if (writesMetre) {
      const { beats, beatType, symbol } = bar.metre;
      this.#writer.open("time", { symbol: symbol || undefined });
      this.#writer.leaf("beats", beats);
      this.#writer.leaf("beat-type", beatType);
      this.#writer.close();
    }
    if (index === 0) {
      this.#writer.leaf("staves", staffCount);
    }
    for (const element of elements.filter(({ name }) => name !== "key")) {
      writeAttribute(this.#writer, element, about);
    }
    this.#writer.close();
  }

  /**
   * @param {number} index of the bar
   * @param {number} staff 0 for the uppermost
   * @param {MusicEvent[][]} voices
   * @param {number} position of the reader
   * @returns {number} where the reader is afterwards
   */
  #writeStaff(index, staff, voices, position) {
    const bar = this.#bars[index];
    const first = voices.findIndex((events) => events.length > 0);
    const marks = marksOfStaff(this.#part.measures[index].marks, staff + 1, voices[first] ?? []);
    const stretch = barLengthOf(bar.metre) / bar.length;
    voices.forEach((events, voice) => {
      if (events.length > 0) {
        if (position > 0) {
          this.#writer.open("backup");
          this.#writer.leaf("duration", position);
          this.#writer.close();
        }
        this.#directions.beginVoice(staff + 1, marks, voice === first, stretch);
        position = this.#writeVoice(index, staff, voice, events);
      }
    });
    this.#directions.endStaff(staff + 1, marks);
    return position;
  }

  /**
   * @param {number} index of the bar
   * @param {number} staff
   * @param {number} voice
   * @param {MusicEvent[]} events
   * @returns {number} where the reader is afterwards
   */
  #writeVoice(index, staff, voice, events) {
    const { length } = this.#bars[index];
    let position = 0;
    let beat = 0;
    /** @type {MusicEvent[]} */
    let graces = [];
    /** @param {number} end */
    const fillUpTo = (end) => {
      for (const { ticks, writing } of end > position ? writingsFor(end - position) : []) {
        this.#leftovers.hiddenRests.push({ part: this.#index, staff, bar: index, voice, beat: beat++ });
        writeRest(
          this.#writer,
          { staff: staff + 1, voice: voice + 1, ticks, fillsBar: false, inChord: false },
          writing,
        );
        position += ticks;
      }
    };
    for (const event of events) {
      if (event.onset >= length && !event.grace) {
        break;
      }
      const end = event.fillsBar ? length : Math.min(event.end, length);
      this.#directions.writeUpTo(position, position);
      fillUpTo(event.onset);
      this.#directions.writeUpTo(position, event.onset);
      if (event.hidden) {
        this.#leftovers.hiddenRests.push({ part: this.#index, staff, bar: index, voice, beat });
      }
      event.notes.forEach((note, i) => {
        const place = {
          staff: staff + 1,
          voice: voice + 1,
          ticks: end - event.onset,
          fillsBar: event.fillsBar,
          inChord: i > 0,
        };
        writeNote(this.#writer, note, place, this.#facts);
        const notePlace = { part: this.#index, staff, bar: index, voice, beat, note: i };
        if (this.#crossTied.has(note)) {
          this.#notePlaces.set(note, notePlace);
        }
        if (this.#facts.strings[staff] > 0) {
          this.#keepManners(note, notePlace);
        }
      });
      const ticks = event.grace ? null : graceLengths(graces, end - event.onset);
      if (ticks) {
        const first = { part: this.#index, staff, bar: index, voice, beat: beat - graces.length };
        this.#leftovers.longGraces.push({ first, ticks });
      }
      graces = event.grace ? [...graces, event] : [];
      beat++;
      position = end;
    }
    if (voice === 0) {
      fillUpTo(length);
    }
    this.#directions.writeUpTo(position, Number.POSITIVE_INFINITY);
    return position;
  }

  /**
   * @param {XmlElement} note on a string
   * @param {NotePlace} place
   */
  #keepManners(note, place) {
    if (beginsHammer(note)) {
      this.#leftovers.hammers.push(place);
    }
    const harmonic = harmonicOf(note);
    if (harmonic) {
      this.#leftovers.harmonics.push({ ...place, harmonic });
    }
  }

  /** @param {Mark[]} marks */
  #writeSounds(marks) {
    for (const { element } of marks) {
      const sound = element.name === "sound" ? element : element.child("sound");
      const instrument = sound?.child("midi-instrument");
      const swing = sound?.child("swing");
      if (instrument || swing) {
        this.#writer.open("sound");
        for (const child of [instrument, swing]) {
          if (child) {
            this.#writer.copy(child);
          }
        }
        this.#writer.close();
      }
    }
  }

  /** @param {XmlElement[]} barLines */
  #writeBarStyles(barLines) {
    for (const barLine of barLines) {
      const style = barLine.child("bar-style");
      if (style) {
        this.#writer.open("barline", { location: barLine.attributes.get("location") });
        this.#writer.copy(style);
        this.#writer.close();
      }
    }
  }
}
