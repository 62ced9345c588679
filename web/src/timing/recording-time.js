// @ts-check
/**
 * Where the score's time lies in its recording.
 *
 * @typedef {{ score: number, recording: number }} SyncPoint milliseconds of score time, and of the recording
 */

/**
 * @param {SyncPoint[]} points in rising order; between two of them both times run evenly
 * @param {number} ms of score time
 * @returns {number} milliseconds of the recording; the same where there are no points
 */
export function recordingTime(points, ms) {
  if (points.length < 2) {
    return points.length === 0 ? ms : ms - points[0].score + points[0].recording;
  }
  let index = points.findIndex(({ score }) => score > ms) - 1;
  if (index < 0) {
    index = points[0].score > ms ? 0 : points.length - 2;
  }
  const from = points[index];
  const to = points[index + 1];
  const length = to.score - from.score;
  const pace = length > 0 ? (to.recording - from.recording) / length : 1;
  return from.recording + (ms - from.score) * pace;
}
