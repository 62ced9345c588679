// @ts-check
/**
 * Which clicks fall where.
 *
 * @typedef {object} PlayedBar a bar in the order of playing, repeats written out
 * @property {number} start tick
 * @property {number} end tick
 * @property {number} denominator of the time signature: the note value that is one beat
 * @property {boolean} pickup whether the bar is an upbeat, shorter than its time signature
 *
 * @typedef {{ tick: number, level: number }} Click level is an index into `levels`
 */

/** From the coarsest to the finest: a click belongs to the coarsest level it falls on. */
export const levels = /** @type {const} */ (["bar", "beat", "half", "quarter"]);

/** @typedef {typeof levels[number]} Mode */

/**
 * @param {PlayedBar[]} bars
 * @param {number} ticksPerQuarter
 * @returns {Click[]} every click of the finest mode, in rising order of tick
 */
export function clicksOf(bars, ticksPerQuarter) {
  /** @type {Click[]} */
  const clicks = [];
  for (const bar of bars) {
    const beat = (ticksPerQuarter * 4) / bar.denominator;
    const step = beat / 4;
    // An upbeat leads into the next bar: its beats are counted back from there and none of them is a first beat.
    const steps = Math.round((bar.end - bar.start) / step);
    const first = bar.pickup ? (4 - (steps % 4)) % 4 : 0;
    for (let i = 0; i < steps; i++) {
      const position = i + first;
      clicks.push({ tick: Math.round(bar.start + i * step), level: levelAt(position, bar.pickup) });
    }
  }
  return clicks;
}

/**
 * @param {number} position in quarters of a beat from the start of the (whole) bar
 * @param {boolean} pickup
 */
function levelAt(position, pickup) {
  if (position === 0 && !pickup) {
    return 0;
  }
  return position % 4 === 0 ? 1 : position % 2 === 0 ? 2 : 3;
}

/**
 * @param {Mode} level of a click
 * @param {boolean} wanted whether there are accents
 * @returns {boolean} whether the click is accented: that is the first beat of a bar
 */
export function isAccented(level, wanted) {
  return wanted && level === "bar";
}

/**
 * @param {string} mode
 * @returns {number} how many of the levels sound in that mode, 1 to 4; 2 ("beat") for an unknown word
 */
export function audibleLevels(mode) {
  const index = levels.indexOf(/** @type {Mode} */ (mode));
  return index < 0 ? 2 : index + 1;
}
