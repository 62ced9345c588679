// @ts-check
/** How long segments are, in seconds. The first one is what a musician waits for. */
const firstSegmentSeconds = 4;
const furtherSegmentSeconds = 16;

/**
 * Groups what cannot be cut any finer into segments.
 *
 * @param {number} count of frames or pages of the file
 * @param {number} sampleRate
 * @param {(index: number) => number} lengthUpTo frames of sound before that frame or page
 * @returns {number[]} where segments begin, and where the last one ends
 */
export function boundariesOf(count, sampleRate, lengthUpTo) {
  const boundaries = [0];
  let end = firstSegmentSeconds * sampleRate;
  for (let index = 1; index < count; index++) {
    if (lengthUpTo(index) >= end) {
      boundaries.push(index);
      end = lengthUpTo(index) + furtherSegmentSeconds * sampleRate;
    }
  }
  return [...boundaries, count];
}
