// @ts-check
/**
 * Long rests of a track that is shown alone are folded into one bar with their number. alphaTab does so for the tracks that
 * the score lists, in pages; in the endless line it draws what it has folded once more. A score with one track has in pages
 * what its file has.
 *
 * @typedef {import("../../shared/alphatab.js").Score} Score
 */

/** @type {WeakMap<Score, Set<number> | null>} the tracks that the file lists */
const written = new WeakMap();

/**
 * @param {Score} score
 * @param {boolean} inPages whether it is to be shown in pages, and not in the endless line
 */
export function foldLongRests(score, inPages) {
  const { stylesheet, tracks } = score;
  const asWritten = writtenFolding(score);
  written.set(score, asWritten);
  const several = tracks.length > 1 ? new Set(tracks.map(({ index }) => index)) : asWritten;
  stylesheet.perTrackMultiBarRest = inPages ? several : null;
}

/**
 * @param {Score} score
 * @returns {Set<number> | null} the tracks whose rests the score's file has folded
 */
export function writtenFolding(score) {
  return written.has(score) ? (written.get(score) ?? null) : score.stylesheet.perTrackMultiBarRest;
}
