// @ts-check
/**
 * @typedef {import("../shared/alphatab.js").Beat} Beat
 * @typedef {import("../timing/marked-range.js").MarkedRange} MarkedRange
 */

/**
 * From where to where a beat sounds, in the bar in which it is written.
 *
 * @param {{ tickCache: import("@coderline/alphatab").midi.MidiTickLookup | null }} api
 * @param {Beat} beat
 * @returns {MarkedRange}
 */
export function beatSpan({ tickCache }, beat) {
  const bar = beat.voice.bar.index;
  const sounds = tickCache?.getRelativeBeatPlaybackRange(beat);
  const start = Math.max(sounds?.startTick ?? beat.playbackStart, 0);
  const end = sounds?.endTick ?? start + beat.playbackDuration;
  return { start: { bar, tick: start }, end: { bar, tick: Math.max(end, start + 1) } };
}
