// @ts-check
/**
 * The count-in: one whole bar before the music starts, in the metre and at the tempo of the position it starts from.
 *
 * @typedef {object} MeteredBar a bar in the order of playing, repeats written out
 * @property {number} start tick
 * @property {number} end tick
 * @property {number} numerator of the time signature: how many beats a whole bar has
 * @property {number} denominator of the time signature: the note value that is one beat
 *
 * @typedef {{ beats: number, beatLength: number }} Count beatLength in milliseconds of score time
 */

/**
 * @param {MeteredBar[]} bars in rising order
 * @param {import("../timing/tempo-map.js").TempoMap} tempoMap
 * @param {number} tick where the music starts; also in the middle of a bar a whole one is counted
 * @param {number} ticksPerQuarter
 * @returns {Count | null} null where there is no bar
 */
export function countInAt(bars, tempoMap, tick, ticksPerQuarter) {
  const bar = bars.filter(({ start }) => start <= tick).at(-1) ?? bars[0];
  if (!bar) {
    return null;
  }
  return { beats: bar.numerator, beatLength: ((ticksPerQuarter * 4) / bar.denominator) * tempoMap.msPerTickAt(tick) };
}
