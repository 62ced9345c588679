// @ts-check
/** How long parts are, in seconds. The first one is what a musician waits for. */
const firstPart = 4;
const furtherParts = 16;

/**
 * Groups what cannot be cut any finer into parts.
 *
 * @param {number} count of frames or pages of the file
 * @param {number} sampleRate
 * @param {(index: number) => number} lengthUpTo frames of sound before that frame or page
 * @returns {number[]} where parts begin, and where the last one ends
 */
export function bordersOf(count, sampleRate, lengthUpTo) {
  const borders = [0];
  let end = firstPart * sampleRate;
  for (let index = 1; index < count; index++) {
    if (lengthUpTo(index) >= end) {
      borders.push(index);
      end = lengthUpTo(index) + furtherParts * sampleRate;
    }
  }
  return [...borders, count];
}
