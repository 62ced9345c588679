// @ts-check
/**
 * Has the staves with strings show notation, tablature, or both, as the score has them. Staves without strings, and those
 * of drums, stay as they are.
 *
 * The staves are changed in the score: to be used on a copy that is only drawn.
 *
 * @typedef {import("../shared/alphatab.js").Score} Score
 * @typedef {Score["tracks"][number]["staves"][number]} Staff
 * @typedef {{ notation: boolean, tablature: boolean }} Shown
 */

/** @type {WeakMap<Staff, Shown>} what the file has each staff show */
const written = new WeakMap();

/**
 * @param {Score} score
 * @param {import("../bridge/bridge.js").ShownStaves} shown
 */
export function showStaves(score, shown) {
  for (const staff of score.tracks.flatMap(({ staves }) => staves)) {
    const asWritten = written.get(staff) ?? { notation: staff.showStandardNotation, tablature: staff.showTablature };
    written.set(staff, asWritten);
    if (staff.isPercussion || staff.stringTuning.tunings.length === 0) {
      continue;
    }
    staff.showStandardNotation = shown === "both" ? asWritten.notation : shown === "notation";
    staff.showTablature = shown === "both" ? asWritten.tablature : shown === "tablature";
  }
}
