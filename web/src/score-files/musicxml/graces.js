// @ts-check
import { alphaTab } from "../../shared/alphatab.js";
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

/**
 * Grace notes behind the last note of a bar end with it, in that note's time. alphaTab would begin with them in the next
 * bar, together with what begins there.
 *
 * @param {import("@coderline/alphatab").model.Voice} voice of a bar
 */
export function endBeforeBarLine({ beats }) {
  let first = beats.length;
  while (first > 0 && beats[first - 1].graceType !== alphaTab.model.GraceType.None) {
    first--;
  }
  const main = beats[first - 1];
  const graces = beats.slice(first);
  if (!main || graces.length === 0) {
    return;
  }
  const sum = graces.reduce((total, { playbackDuration }) => total + playbackDuration, 0);
  const share = Math.min(1, main.playbackDuration / 2 / sum);
  let start = main.playbackStart + main.playbackDuration - Math.round(sum * share);
  main.playbackDuration = start - main.playbackStart;
  for (const grace of graces) {
    grace.playbackStart = start;
    grace.playbackDuration = Math.max(Math.floor(grace.playbackDuration * share), 1);
    start += grace.playbackDuration;
  }
}

/** @param {number} ticks */
function isDotted(ticks) {
  return Number.isInteger(Math.log2(ticks / 45));
}
