// @ts-check
/**
 * Note values for lengths in ticks, 960 to a quarter.
 *
 * @typedef {{ duration: number, dots: number, numerator: number, denominator: number }} Rhythm `duration` as alphaTab has
 *     it: 4 for a quarter, 8 for an eighth, -2 and -4 for two and four whole notes; so many notes in the time of so many,
 *     -1 for both outside of tuplets
 */

const wholeNote = 3840;
const durations = [1, 2, 4, 8, 16, 32, 64, 128, 256];

/** From the most usual on. */
const tuplets = [
  [-1, -1],
  [3, 2],
  [6, 4],
  [5, 4],
  [7, 4],
  [9, 8],
];

/** @type {Map<number, Rhythm>} the plainest for each length */
const known = new Map();
for (const [numerator, denominator] of tuplets) {
  for (const dots of numerator < 0 ? [0, 1, 2] : [0, 1]) {
    for (const duration of [...durations, -2, -4]) {
      const plain = duration < 0 ? wholeNote * -duration : wholeNote / duration;
      const length = (plain * (2 - 0.5 ** dots) * denominator) / numerator;
      if (!known.has(length)) {
        known.set(length, { duration, dots, numerator, denominator });
      }
    }
  }
}
const lengths = [...known.keys()].sort((a, b) => b - a);

/**
 * @param {number} ticks
 * @returns {{ length: number, rhythm: Rhythm }[]} notes that last that long together, as few as can be found at once, the
 *     longest first; what is left of less than a 256th note is added to none
 */
export function rhythmsFor(ticks) {
  const found = [];
  let rest = ticks;
  while (rest > 0) {
    const length = known.has(rest)
      ? rest
      : lengths.find((one) => one < rest && known.get(one)?.dots === 0 && known.get(one)?.numerator === -1);
    if (length === undefined) {
      break;
    }
    found.push({ length, rhythm: /** @type {Rhythm} */ (known.get(length)) });
    rest -= length;
  }
  return found;
}
