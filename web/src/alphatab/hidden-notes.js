// @ts-check
/**
 * MusicXML hides notes that are to be heard. alphaTab takes beats of nothing but such notes for empty ones, and plays
 * none of them.
 *
 * @typedef {import("../shared/alphatab.js").Score} Score
 */

/**
 * @template T
 * @param {Score} score
 * @param {() => T} play is called while no beat with notes counts as empty
 * @returns {T}
 */
export function withHiddenNotes(score, play) {
  const beats = [...hiddenBeats(score)];
  for (const beat of beats) {
    beat.isEmpty = false;
  }
  try {
    return play();
  } finally {
    for (const beat of beats) {
      beat.isEmpty = true;
    }
  }
}

/** @param {Score} score */
function* hiddenBeats(score) {
  for (const { staves } of score.tracks) {
    for (const { bars } of staves) {
      for (const { voices } of bars) {
        for (const { beats } of voices) {
          yield* beats.filter(({ isEmpty, notes }) => isEmpty && notes.length > 0);
        }
      }
    }
  }
}
