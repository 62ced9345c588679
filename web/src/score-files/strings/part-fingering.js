// @ts-check
import { lookUpByString } from "./by-string.js";
import { Fingering } from "./fingering.js";
import { Sounds } from "./sounds.js";

/**
 * Gives the notes of a staff their strings and frets: those of the cheapest way through the whole score, and yet no
 * farther than they are asked for. The ways that are still open at some bar have come to be the same a few bars before,
 * mostly, and what they share does not depend on what follows. So the first lines can be drawn while nothing is chosen
 * for the rest.
 *
 * @typedef {import("./sounds.js").Staff} Staff
 * @typedef {import("./sounds.js").Note} Note
 */

const octave = 12;

export class PartFingering {
  #staff;
  #keyOf;
  #sounds;
  #fingering;
  /** How many bars are known to the fingering. */
  #known = 0;
  /** @type {number[]} of each of them: how many sounds had begun at its end */
  #begun = [];
  /** How many bars have their strings. */
  #done = 0;

  /**
   * @param {Staff} staff whose notes have none yet
   * @param {(note: Note) => number} keyOf the MIDI key that a note sounds with, asked for before its string is chosen
   * @param {number} frets the highest fret there is
   */
  constructor(staff, keyOf, frets) {
    this.#staff = staff;
    this.#keyOf = keyOf;
    this.#sounds = new Sounds(keyOf);
    this.#fingering = new Fingering(this.#sounds.all, staff.tuning, frets);
  }

  get isComplete() {
    return this.#done === this.#staff.bars.length;
  }

  /** @param {number} last index of the last bar whose notes need their strings; those behind it may get theirs, too */
  through(last) {
    const { bars } = this.#staff;
    const wanted = Math.min(last + 1, bars.length);
    for (let ahead = 1; this.#done < wanted; ahead *= 2) {
      const end = Math.min(wanted + ahead, bars.length);
      while (this.#known < end) {
        this.#sounds.add(bars[this.#known++]);
        // Ties from the last bar may still make its notes longer. And after each bar, whatever was asked for: wherever
        // a score is read, the same is tried with the same known.
        this.#fingering.play(this.#begun.at(-1) ?? 0);
        this.#begun.push(this.#sounds.all.length);
      }
      this.#settle();
    }
  }

  #settle() {
    const { all } = this.#sounds;
    const isOver = this.#known === this.#staff.bars.length;
    if (isOver) {
      this.#fingering.play(Infinity);
    }
    const decided = this.#fingering.settle(isOver, (sound, placement) => (all[sound].placement = placement));
    while (this.#done < this.#known && this.#begun[this.#done] <= decided) {
      this.#finish(this.#staff.bars[this.#done++]);
    }
  }

  /** @param {import("./sounds.js").Bar} bar */
  #finish({ voices }) {
    for (const { beats } of voices) {
      for (const beat of beats) {
        for (const note of beat.notes) {
          this.#finger(note);
        }
        lookUpByString(beat);
      }
    }
  }

  /** @param {Note} note */
  #finger(note) {
    const { placement } = this.#sounds.of(note);
    if (placement) {
      note.octave = -1;
      note.tone = -1;
      // alphaTab counts strings from the lowest.
      note.string = this.#staff.tuning.length - placement.string;
      note.fret = placement.fret;
    } else {
      const key = this.#keyOf(note);
      note.octave = Math.floor(key / octave);
      note.tone = key % octave;
    }
  }
}
