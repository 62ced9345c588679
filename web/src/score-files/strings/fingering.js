// @ts-check
import { HandStates } from "./hand-states.js";

/**
 * Chooses strings and frets for notes, as a guitarist would: by dynamic programming over hand positions, for the whole
 * piece (Sayegh 1989, "Fingering for String Instruments with the Optimum Path Paradigm"), with costs for shifts,
 * stretches, high positions, open strings and chords (Radisavljevic and Driessen 2004, "Path Difference Learning for
 * Guitar Fingering Problem"). Notes that sound on keep their string and their fret; all voices share the one hand.
 *
 * @typedef {{ start: number, end: number, key: number }} SoundingNote
 *   `start` and `end` in ticks, `key` as a MIDI key. In the order of their starts; of one key, none begins while another
 *   sounds.
 * @typedef {{ string: number, fret: number }} Placement
 *   `string` counts from 0, in the order of the tuning.
 */

/** Frets from the index finger to the little finger, without a stretch. */
const handSpan = 3;
/** A stretch of the hand reaches one fret farther. */
const widestSpan = 4;
const fingers = 4;

const costs = {
  stretch: 1.2,
  perPosition: 0.06,
  /** For each fret beyond the twelfth. */
  high: 0.4,
  /** An open string in the midst of a high position sounds unlike its neighbours. */
  openInHighPosition: 0.5,
  openInLowPosition: -0.15,
  barre: 0.4,
  /** To let go of a note before its time. */
  release: 4,
  unplayable: 40,
};

/** Positions up to which open strings come naturally. */
const lowPosition = 5;

/**
 * What is tried for the notes that begin together lies in fields: there are ten thousand such events in a long score,
 * and lists that live for one of them only would cost more than the arithmetic.
 */
export class Fingering {
  #notes;
  #tuning;
  #frets;
  #states;
  /** @type {number[]} of each event that was played: the first note behind it */
  #ends = [];

  /** Which notes are tried. */
  #first = 0;
  #end = 0;
  /** When the next event begins: what ends by then is not held any more. */
  #next = 0;
  /** The note that is tried on each string, or held there; -1 where there is none. */
  #noteOn;
  #group = 0;
  #price = 0;
  #span = 0;
  #found = false;

  /**
   * @param {SoundingNote[]} notes that are known; others may be added at the end
   * @param {number[]} tuning the keys of the open strings, in any order
   * @param {number} frets the highest fret there is
   */
  constructor(notes, tuning, frets) {
    this.#notes = notes;
    this.#tuning = tuning;
    this.#frets = frets;
    this.#states = new HandStates(tuning.length, frets);
    this.#noteOn = new Int32Array(tuning.length);
  }

  /**
   * Tries event after event, each as soon as it is certain what sounds on until the next one.
   *
   * @param {number} certain how many of the notes will stay as they are; Infinity when no others will come
   */
  play(certain) {
    const notes = this.#notes;
    for (let first = this.#end; first < notes.length; first = this.#end) {
      let end = first + 1;
      while (end < notes.length && notes[end].start === notes[first].start) {
        end++;
      }
      if (end >= Math.min(certain, notes.length) && certain < Infinity) {
        return;
      }
      this.#first = first;
      this.#end = end;
      this.#next = end < notes.length ? notes[end].start : Infinity;
      this.#play();
      this.#states.proceed();
      this.#ends.push(end);
    }
  }

  /**
   * Hands over what no note to come can change any more.
   *
   * @param {boolean} isOver whether none will come
   * @param {(note: number, placement: Placement) => void} place called for each note that was not handed over before, in
   *   any order, but for those that no string is left for
   * @returns {number} how many notes are decided
   */
  settle(isOver, place) {
    const events = this.#states.settle(isOver, (string, note) => {
      place(note, { string, fret: this.#notes[note].key - this.#tuning[string] });
    });
    return events > 0 ? this.#ends[events - 1] : 0;
  }

  /** Finds every way to play the notes of the event, after every way to have played those before. */
  #play() {
    const states = this.#states;
    let any = false;
    for (let group = 0; group < states.groups; group++) {
      const held = this.#heldIn(group);
      const found = this.#tryAll(group, true, 0, widestSpan);
      if (!found && held > 0) {
        any = this.#tryAll(group, false, costs.release * held, widestSpan) || any;
      }
      any = any || found;
    }
    if (!any) {
      any = this.#tryAll(states.cheapestGroup(), false, costs.unplayable, this.#frets);
    }
    if (!any) {
      this.#leaveOut();
    }
  }

  /** @param {number} group */
  #heldIn(group) {
    let held = 0;
    for (let string = 0; string < this.#tuning.length; string++) {
      held += this.#states.heldOn(group, string) >= 0 ? 1 : 0;
    }
    return held;
  }

  /**
   * @param {number} group states in which the same notes sound on at the same places
   * @param {boolean} holding whether they do, or are let go of
   * @param {number} price of what was given up before
   * @param {number} span the farthest that two fingers may be apart, in frets; beyond a hand's reach, fingers are not
   *   counted
   * @returns {boolean} whether there is any way
   */
  #tryAll(group, holding, price, span) {
    let low = Infinity;
    let high = -Infinity;
    for (let string = 0; string < this.#tuning.length; string++) {
      const note = holding ? this.#states.heldOn(group, string) : -1;
      this.#noteOn[string] = note;
      const fret = note < 0 ? 0 : this.#notes[note].key - this.#tuning[string];
      if (fret > 0) {
        low = Math.min(low, fret);
        high = Math.max(high, fret);
      }
    }
    this.#group = group;
    this.#price = price;
    this.#span = span;
    this.#found = false;
    if (this.#end - this.#first <= this.#tuning.length) {
      this.#fret(this.#first, low, high, 0);
    }
    return this.#found;
  }

  /**
   * @param {number} note
   * @param {number} low the lowest fret that is pressed so far; Infinity when none is
   * @param {number} high
   * @param {number} open how many notes of the event are played on open strings so far
   */
  #fret(note, low, high, open) {
    if (note === this.#end) {
      this.#add(low, high, open);
      return;
    }
    const { key } = this.#notes[note];
    const noteOn = this.#noteOn;
    for (let string = 0; string < noteOn.length; string++) {
      const fret = key - this.#tuning[string];
      if (fret < 0 || fret > this.#frets || noteOn[string] >= 0) {
        continue;
      }
      const lower = fret > 0 && fret < low ? fret : low;
      const higher = fret > high && fret > 0 ? fret : high;
      if (higher - lower > this.#span) {
        continue;
      }
      noteOn[string] = note;
      this.#fret(note + 1, lower, higher, fret === 0 ? open + 1 : open);
      noteOn[string] = -1;
    }
  }

  /**
   * Adds the way that is tried, in each position that the hand can have for it.
   *
   * @param {number} low
   * @param {number} high
   * @param {number} open
   */
  #add(low, high, open) {
    const strained = this.#span > widestSpan;
    const grip = this.#gripCost(low);
    if (grip === Infinity && !strained) {
      return;
    }
    this.#found = true;
    const states = this.#states;
    states.beginWay(this.#noteOn, this.#first, (note) => this.#notes[note].end > this.#next);
    const openLow = open * costs.openInLowPosition;
    const openHigh = open * costs.openInHighPosition;
    if (low === Infinity) {
      for (let position = 1; position <= this.#frets; position++) {
        states.stay(this.#group, position, this.#price + (position <= lowPosition ? openLow : openHigh));
      }
      return;
    }
    const stretched = high - low > handSpan;
    const strain = strained ? high - low : 0;
    const price = Math.min(grip, costs.unplayable) + this.#price + strain + (stretched ? costs.stretch : 0);
    for (let position = stretched ? low : Math.max(1, high - handSpan); position <= low; position++) {
      const here = costs.perPosition * position + costs.high * Math.max(0, position - 12);
      states.arrive(this.#group, position, price + here + (position <= lowPosition ? openLow : openHigh));
    }
  }

  /**
   * What the fingers have to do: one finger can lie across strings at the lowest fret, the others press one string each.
   *
   * @param {number} low
   */
  #gripCost(low) {
    let pressed = 0;
    let atLowest = 0;
    for (let string = 0; string < this.#noteOn.length; string++) {
      const note = this.#noteOn[string];
      const fret = note < 0 ? 0 : this.#notes[note].key - this.#tuning[string];
      pressed += fret > 0 ? 1 : 0;
      atLowest += fret === low ? 1 : 0;
    }
    if (pressed <= fingers) {
      return 0;
    }
    return pressed - atLowest < fingers ? costs.barre : Infinity;
  }

  /** For what no hand can hold: each note gets the string that serves it best of those that are left. */
  #leaveOut() {
    const tuning = this.#tuning;
    const notes = this.#notes.slice(this.#first, this.#end);
    /** @param {number} key @param {number} open */
    const reaches = (key, open) => key >= open && key - open <= this.#frets;
    /** @param {number} key */
    const choices = (key) => tuning.filter((open) => reaches(key, open)).length;
    const order = notes
      .map(({ key }, place) => ({ key, place }))
      .sort((one, other) => choices(one.key) - choices(other.key));
    let lowest = Infinity;
    this.#noteOn.fill(-1);
    for (const { key, place } of order) {
      let best = -1;
      for (let string = 0; string < tuning.length; string++) {
        if (reaches(key, tuning[string]) && this.#noteOn[string] < 0 && (best < 0 || tuning[string] > tuning[best])) {
          best = string;
        }
      }
      if (best >= 0) {
        this.#noteOn[best] = this.#first + place;
        lowest = key > tuning[best] ? Math.min(lowest, key - tuning[best]) : lowest;
      }
    }
    const group = this.#states.cheapestGroup();
    const position = lowest < Infinity ? lowest : this.#states.cheapestPosition(group);
    this.#states.beginWay(this.#noteOn, this.#first, () => false);
    this.#states.arrive(group, position, costs.unplayable);
  }
}
