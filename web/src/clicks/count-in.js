// @ts-check
/**
 * The count-in: one whole bar before the music starts, in the metre and at the tempo of the position it starts from. An
 * upbeat is led into: behind the whole bar come the beats of its own bar that are not written.
 *
 * @typedef {object} MeteredBar a bar in the order of playing, repeats written out
 * @property {number} start tick
 * @property {number} end tick
 * @property {number} numerator of the time signature: how many beats a whole bar has
 * @property {number} denominator of the time signature: the note value that is one beat
 * @property {boolean} pickup whether the bar is an upbeat, shorter than its time signature
 *
 * @typedef {object} Count
 * @property {number} beats until the music starts; before an upbeat not always a whole number
 * @property {number} barBeats each of so many begins a bar
 * @property {number} beatLength milliseconds of score time
 */

/** alphaTab reports positions a tick late: beats before an upbeat are counted in such parts of a beat. */
const beatParts = 48;

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
  const beat = (ticksPerQuarter * 4) / bar.denominator;
  const before = bar.pickup ? Math.max(bar.numerator - (bar.end - tick) / beat, 0) : 0;
  return {
    beats: bar.numerator + Math.round(before * beatParts) / beatParts,
    barBeats: bar.numerator,
    beatLength: beat * tempoMap.msPerTickAt(tick),
  };
}
