// @ts-check
import { alphaTab } from "../../shared/alphatab.js";

/**
 * What the hand has to do for the notes of a staff: tied notes are one sound, and so are notes that two voices share.
 *
 * @typedef {import("../../shared/alphatab.js").Score["tracks"][0]["staves"][0]} Staff
 * @typedef {Staff["bars"][0]} Bar
 * @typedef {Bar["voices"][0]["beats"][0]} Beat
 * @typedef {Beat["notes"][0]} Note
 *
 * @typedef {object} Placed
 * @property {Note[]} notes
 * @property {import("./fingering.js").Placement | null} placement null as long as none is chosen
 *
 * @typedef {import("./fingering.js").SoundingNote & Placed} Sound
 */
export class Sounds {
  /** @type {Sound[]} in the order of their starts */
  all = [];
  #keyOf;
  /** @type {Map<Note, Sound>} */
  #soundOf = new Map();
  /** @type {Map<number, Sound>} the last of each key */
  #latest = new Map();

  /** @param {(note: Note) => number} keyOf the MIDI key that a note sounds with */
  constructor(keyOf) {
    this.#keyOf = keyOf;
  }

  /** @param {Note} note of a bar that was added */
  of(note) {
    return /** @type {Sound} */ (this.#soundOf.get(note));
  }

  /** @param {Bar} bar the one behind the bar that was added last */
  add(bar) {
    const latestStart = this.all.at(-1)?.start ?? -Infinity;
    for (const { note, start, end } of spansIn(bar)) {
      const sound = this.#soundFor(note, Math.max(start, latestStart), end);
      this.#soundOf.set(note, sound);
    }
  }

  /**
   * @param {Note} note
   * @param {number} start
   * @param {number} end
   */
  #soundFor(note, start, end) {
    const key = this.#keyOf(note);
    const last = this.#latest.get(key);
    const origin = note.isTieDestination && note.tieOrigin ? this.#soundOf.get(note.tieOrigin) : undefined;
    const shared = last?.start === start && last.notes.every(({ beat }) => beat !== note.beat);
    const same = origin ?? (shared ? last : undefined);
    if (same) {
      same.notes.push(note);
      same.end = Math.max(same.end, end);
      return same;
    }
    if (last) {
      // Struck again: the string is the same or another, but what sounded before is over.
      last.end = Math.min(last.end, start);
    }
    /** @type {Sound} */
    const sound = { start, end, key, notes: [note], placement: null };
    this.all.push(sound);
    this.#latest.set(key, sound);
    return sound;
  }
}

/**
 * Bars that were misread can hold more than fits. Their notes count as faster then: none falls together with those of
 * the next bar.
 *
 * @param {Bar} bar
 * @returns {{ note: Note, start: number, end: number }[]} in ticks, in the order of their starts; grace notes come one
 *   after the other before their beat
 */
function spansIn({ masterBar, voices }) {
  const duration = masterBar.calculateDuration();
  const spans = [];
  for (const { beats } of voices) {
    const last = beats[beats.length - 1];
    const faster = last ? Math.min(1, duration / (last.playbackStart + last.playbackDuration)) : 1;
    for (const beat of beats) {
      const begin = masterBar.start + beat.playbackStart * faster;
      const before = beat.graceType === alphaTab.model.GraceType.None ? 0 : graceOffset(beat);
      const start = begin - before;
      const end = before > 0 ? start + 1 : begin + beat.playbackDuration * faster;
      for (const note of beat.notes) {
        spans.push({ note, start, end });
      }
    }
  }
  return spans.sort((one, other) => one.start - other.start);
}

/** @param {Beat} beat a grace note */
function graceOffset({ graceGroup, graceIndex }) {
  return (graceGroup?.beats.length ?? 1) - Math.max(0, graceIndex);
}
