// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { playingOrder } from "../timing/playing-order.js";

/**
 * The playing order of alphaTab's scores, each worked out once.
 *
 * @typedef {import("../shared/alphatab.js").Score} Score
 * @typedef {import("../timing/playing-order.js").Direction} Direction
 */

/** @type {WeakMap<Score, import("../timing/playing-order.js").PlayingOrder>} */
const known = new WeakMap();

/**
 * @param {Score} score
 * @returns {import("../timing/playing-order.js").PlayingOrder}
 */
export function scoreOrder(score) {
  const order = known.get(score) ?? playingOrder(writtenBars(score));
  known.set(score, order);
  return order;
}

/**
 * @param {Score} score
 * @returns {import("../timing/playing-order.js").WrittenBar[]}
 */
function writtenBars(score) {
  return score.masterBars.map((bar) => ({
    repeatStart: bar.isRepeatStart,
    repeatCount: bar.repeatCount,
    endings: bar.alternateEndings,
    directions: Array.from(bar.directions ?? [], directionName),
    weight: weightOf(score, bar.index),
  }));
}

/**
 * alphaTab's names with what tells jumps from their targets left out, and "To Coda" under its English name.
 *
 * @param {import("@coderline/alphatab").model.Direction} direction
 */
function directionName(direction) {
  const name = alphaTab.model.Direction[direction]
    .replace(/^(Target|Jump)/, "")
    .replace(/^Da(Double)?Coda$/, "To$1Coda");
  return /** @type {Direction} */ (name);
}

/**
 * @param {Score} score
 * @param {number} index of a bar
 * @returns {number} how many notes and rests it has
 */
function weightOf(score, index) {
  let weight = 1;
  for (const { staves } of score.tracks) {
    for (const { bars } of staves) {
      for (const voice of bars[index]?.voices ?? []) {
        weight += voice.beats.reduce((sum, { notes }) => sum + notes.length, voice.beats.length);
      }
    }
  }
  return weight;
}
