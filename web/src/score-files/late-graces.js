// @ts-check
import { alphaTab } from "../shared/alphatab.js";

/**
 * Grace notes behind the last note of a bar end with it, in that note's time. alphaTab would begin with them in the next
 * bar, together with what begins there.
 *
 * @typedef {import("../shared/alphatab.js").Score} Score
 *
 * @param {Score} score
 */
export function endBeforeBarLines(score) {
  for (const staff of score.tracks.flatMap(({ staves }) => staves)) {
    staff.bars.forEach(({ voices }) => voices.forEach(endBeforeBarLine));
  }
}

/** @param {import("@coderline/alphatab").model.Voice} voice of a bar */
function endBeforeBarLine({ beats }) {
  let first = beats.length;
  while (first > 0 && beats[first - 1].graceType !== alphaTab.model.GraceType.None) {
    first--;
  }
  const main = beats[first - 1];
  const graces = beats.slice(first);
  const sum = graces.reduce((total, { playbackDuration }) => total + playbackDuration, 0);
  if (!main || sum === 0) {
    return;
  }
  const share = Math.min(1, main.playbackDuration / 2 / sum);
  let start = main.playbackStart + main.playbackDuration - Math.round(sum * share);
  main.playbackDuration = start - main.playbackStart;
  for (const grace of graces) {
    grace.playbackStart = start;
    grace.playbackDuration = Math.max(Math.floor(grace.playbackDuration * share), 1);
    start += grace.playbackDuration;
  }
}
