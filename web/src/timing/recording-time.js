// @ts-check
/**
 * Where the score's time lies in its backing track.
 *
 * @typedef {{ score: number, backingTrack: number }} SyncPoint milliseconds of score time, and of the backing track
 */

/**
 * @param {SyncPoint[]} points in rising order; between two of them both times run evenly
 * @param {number} ms of score time
 * @returns {number} milliseconds of the backing track; the same where there are no points
 */
export function recordingTime(points, ms) {
  if (points.length < 2) {
    return points.length === 0 ? ms : ms - points[0].score + points[0].backingTrack;
  }
  let index = points.findIndex(({ score }) => score > ms) - 1;
  if (index < 0) {
    index = points[0].score > ms ? 0 : points.length - 2;
  }
  const from = points[index];
  const to = points[index + 1];
  const length = to.score - from.score;
  const pace = length > 0 ? (to.backingTrack - from.backingTrack) / length : 1;
  return from.backingTrack + (ms - from.score) * pace;
}
