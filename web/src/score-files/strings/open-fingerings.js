// @ts-check
/**
 * The fingerings that are still to be worked out of scores that are open. A long score takes more time for its strings
 * than its first lines may wait: whoever needs strings asks for them here, up to the bar they need.
 *
 * @typedef {import("../../shared/alphatab.js").Score} Score
 * @typedef {import("./part-fingering.js").PartFingering} PartFingering
 */

/** @type {WeakMap<Score, PartFingering[]>} */
const fingerings = new WeakMap();

/**
 * @param {Score} score
 * @param {PartFingering[]} parts
 */
export function leaveOpen(score, parts) {
  if (parts.length > 0) {
    fingerings.set(score, parts);
  }
}

/** @param {Score} score */
export function hasAllStrings(score) {
  return !fingerings.has(score);
}

/**
 * Gives notes their strings and frets, where they lack them.
 *
 * @param {Score} score
 * @param {number} [lastBar] the index of the last bar for which that is needed; all without it
 */
export function chooseStrings(score, lastBar = Infinity) {
  const parts = fingerings.get(score) ?? [];
  parts.forEach((part) => part.through(lastBar));
  if (parts.every((part) => part.isComplete)) {
    fingerings.delete(score);
  }
}
