// @ts-check
/**
 * Long rests of a track that is shown alone are folded into one bar with their number. alphaTab does so for the tracks that
 * the score lists. A score with one track has what its file has.
 *
 * @typedef {import("../../shared/alphatab.js").Score} Score
 */

/** @type {WeakMap<Score, Set<number> | null>} the tracks that the file lists */
const written = new WeakMap();

/** @param {Score} score */
export function foldLongRests(score) {
  const { stylesheet, tracks } = score;
  const asWritten = writtenFolding(score);
  written.set(score, asWritten);
  stylesheet.perTrackMultiBarRest = tracks.length > 1 ? new Set(tracks.map(({ index }) => index)) : asWritten;
}

/**
 * @param {Score} score
 * @returns {Set<number> | null} the tracks whose rests the score's file has folded
 */
export function writtenFolding(score) {
  return written.has(score) ? (written.get(score) ?? null) : score.stylesheet.perTrackMultiBarRest;
}
