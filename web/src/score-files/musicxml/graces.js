// @ts-check
import { lengthOf, writingOf } from "./values.js";

/**
 * Tells how long grace notes sound. Those that are struck through are as short as alphaTab plays all of them. The others
 * (appoggiaturas) take their time from the note after them: as much as they are written with, at most half of it, or two
 * thirds of one with a dot (C. P. E. Bach, Versuch über die wahre Art das Clavier zu spielen, II 2).
 *
 * @typedef {import("./events.js").MusicEvent} MusicEvent
 *
 * @param {MusicEvent[]} graces one after the other, right before a note
 * @param {number} main length of that note, in ticks
 * @returns {number[] | null} in ticks; null where they are as short as usual
 */
export function graceLengths(graces, main) {
  if (graces.length === 0 || graces.some(({ notes }) => notes[0].child("grace")?.attributes.get("slash") === "yes")) {
    return null;
  }
  const lengths = graces.map(({ notes }) => {
    const writing = writingOf(notes[0]);
    return writing ? lengthOf(writing) : 0;
  });
  const sum = lengths.reduce((total, length) => total + length, 0);
  if (lengths.includes(0)) {
    return null;
  }
  const most = isDotted(main) ? (main * 2) / 3 : main / 2;
  return lengths.map((length) => Math.round(length * Math.min(1, most / sum)));
}

/** @param {number} ticks */
function isDotted(ticks) {
  return Number.isInteger(Math.log2(ticks / 45));
}
