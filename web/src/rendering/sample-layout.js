// @ts-check
import { alphaTab } from "../shared/alphatab.js";

/**
 * V8 forgets what it knows of objects when a collection finds none of their kind, and with that the code it has
 * compiled for them. Where a whole layout is let go of, the next one takes twice as long, until the code is compiled
 * anew. The layout of two bars, about half a megabyte, keeps it.
 *
 * @typedef {import("./layout-run.js").ScoreRenderer} ScoreRenderer
 * @typedef {import("../shared/alphatab.js").Score} Score
 * @typedef {import("../shared/alphatab.js").Track} Track
 */

/** How many bars: half a megabyte with nine tracks. */
const sampleBars = 2;

/** In CSS pixels: any that a bar has room in. */
const sampleWidth = 1000;

/**
 * @param {ScoreRenderer} renderer with a score
 * @returns {ScoreRenderer} another one that has laid out its fullest bar and the next; to be kept, and used for nothing else
 */
export function layOutSample({ score, tracks, settings }) {
  const { jsObjectToSettings, settingsToJsObject } = alphaTab.model.JsonConverter;
  const own = jsObjectToSettings(settingsToJsObject(settings));
  const shown = tracks ?? [];
  own.display.layoutMode = alphaTab.LayoutMode.Page;
  own.display.startBar = score ? fullestBar(score, shown) + 1 : 1;
  own.display.barCount = sampleBars;
  const sample = new alphaTab.rendering.ScoreRenderer(own);
  // A bar that cannot be laid out has been told of before.
  sample.error.on(() => {});
  sample.width = sampleWidth;
  sample.renderScore(
    score,
    shown.map(({ index }) => index),
  );
  return sample;
}

/**
 * @param {Score} score
 * @param {Track[]} tracks
 * @returns {number} the first of those bars that have the most notes, by its index
 */
export function fullestBar({ masterBars }, tracks) {
  const counts = masterBars.map(({ index }) => {
    const voices = tracks.flatMap(({ staves }) => staves.flatMap(({ bars }) => bars[index]?.voices ?? []));
    return voices.reduce((sum, { beats }) => beats.reduce((notes, beat) => notes + beat.notes.length, sum), 0);
  });
  return counts.reduce((best, count, index) => (count > counts[best] ? index : best), 0);
}
