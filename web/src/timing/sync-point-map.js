// @ts-check
/**
 * Where the score's time lies in its backing track.
 *
 * @typedef {{ scoreMs: number, backingTrackMs: number }} SyncPoint milliseconds of score time, and of the backing track
 */

/**
 * @param {SyncPoint[]} points in rising order; between two of them both times run evenly
 * @param {number} ms of score time
 * @returns {number} milliseconds of the backing track; the same where there are no points
 */
export function backingTrackMs(points, ms) {
  if (points.length < 2) {
    return points.length === 0 ? ms : ms - points[0].scoreMs + points[0].backingTrackMs;
  }
  let index = points.findIndex(({ scoreMs }) => scoreMs > ms) - 1;
  if (index < 0) {
    index = points[0].scoreMs > ms ? 0 : points.length - 2;
  }
  const from = points[index];
  const to = points[index + 1];
  const length = to.scoreMs - from.scoreMs;
  const pace = length > 0 ? (to.backingTrackMs - from.backingTrackMs) / length : 1;
  return from.backingTrackMs + (ms - from.scoreMs) * pace;
}
