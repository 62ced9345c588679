// @ts-check
import { alphaTab } from "../shared/alphatab.js";

/**
 * Corrects how long alphaTab 1.8.4 takes things to last.
 *
 * @typedef {import("@coderline/alphatab").model.MasterBar} Bar
 */

const { MasterBar, TremoloPickingEffect, Duration } = alphaTab.model;

const ofFullBar = MasterBar.prototype.calculateDuration;

/**
 * Partial bars last as long as what is written in them. alphaTab counts what is played, and there grace notes before a
 * bar's first note are already counted in, and those of the next bar are taken away.
 *
 * @this {Bar}
 * @param {boolean} [respectAnacrusis]
 */
MasterBar.prototype.calculateDuration = function (respectAnacrusis = true) {
  return (this.isAnacrusis && respectAnacrusis && writtenDuration(this)) || ofFullBar.call(this, respectAnacrusis);
};

/** @param {Bar} masterBar */
function writtenDuration({ score, index }) {
  let longest = 0;
  for (const { staves } of score.tracks) {
    for (const { bars } of staves) {
      for (const { beats, isEmpty } of bars[index]?.voices ?? []) {
        const last = beats.at(-1);
        longest = last && !isEmpty ? Math.max(longest, last.displayStart + last.displayDuration) : longest;
      }
    }
  }
  return longest;
}

const ofShortNotes = TremoloPickingEffect.prototype.getDurationAsTicks;

/**
 * A stroke through the stem of a long note stands for eighths, as through that of a quarter. alphaTab counts strokes from
 * the note's own length.
 *
 * @param {number} beatDuration
 */
TremoloPickingEffect.prototype.getDurationAsTicks = function (beatDuration) {
  return ofShortNotes.call(this, Math.max(beatDuration, Duration.Quarter));
};
