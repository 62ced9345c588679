// @ts-check
/**
 * Long rests of a track that is shown alone are folded into one bar with their number. alphaTab does so for the tracks that
 * the score lists; a score with one track stays as its file has it.
 *
 * @typedef {import("../../shared/alphatab.js").Score} Score
 */

/** @type {WeakMap<Score, Set<number> | null>} the tracks that the file lists */
const written = new WeakMap();

/** @param {Score} score */
export function foldLongRests(score) {
  if (score.tracks.length > 1) {
    written.set(score, score.stylesheet.perTrackMultiBarRest);
    score.stylesheet.perTrackMultiBarRest = new Set(score.tracks.map(({ index }) => index));
  }
}

/**
 * @param {Score} score
 * @returns {Set<number> | null} the tracks whose rests the score's file has folded
 */
export function writtenFolding(score) {
  return written.has(score) ? (written.get(score) ?? null) : score.stylesheet.perTrackMultiBarRest;
}
