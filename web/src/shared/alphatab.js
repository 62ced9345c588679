// @ts-check
/**
 * alphaTab, loaded by a classic script tag before the modules run. It is taken as one global
 * script because its workers import the very same file: nothing is parsed twice under two names.
 *
 * @typedef {import("@coderline/alphatab").AlphaTabApi} AlphaTabApi
 * @typedef {import("@coderline/alphatab").Settings} Settings
 * @typedef {import("@coderline/alphatab").model.Score} Score
 * @typedef {import("@coderline/alphatab").model.Track} Track
 * @typedef {import("@coderline/alphatab").model.Beat} Beat
 * @typedef {import("@coderline/alphatab").midi.MidiFile} MidiFile
 */

const scope = /** @type {{ alphaTab: typeof import("@coderline/alphatab") }} */ (/** @type {unknown} */ (globalThis));

export const alphaTab = scope.alphaTab;
