// @ts-check
/** The longest buffer, in bytes, that V8 takes for a possible one. Chromium's end at 2 GB. */
const tooLarge = 2 ** 35 - 1;

/**
 * Collects all that can be collected and packs what is left, at the price of four collections in a row: 0.4 s for a
 * score of nine tracks, 0.1 to 0.2 s in the page. After it the layout of such a score takes 10 MB less than after
 * collectGarbage(), however often, and the room for new objects is given up at once.
 */
export function collectThoroughly() {
  try {
    // Before V8 gives up on a buffer it tries to make room for it.
    new ArrayBuffer(tooLarge);
  } catch {
    // As expected.
  }
}

/** Collects most of it, where Chromium lets a page ask for that. */
export function collectGarbage() {
  const { gc } = /** @type {{ gc?: (options: { type: string, execution: string }) => void }} */ (globalThis);
  // As a task of its own: what happens to lie on the stack would keep things.
  gc?.({ type: "major", execution: "async" });
}

/** In bars of one track. */
const longScore = 3000;

/**
 * @param {import("./alphatab.js").Score} score
 * @returns {boolean} whether reading it leaves a hundred megabytes or more, and takes seconds: then 0.1 s for a
 *     collection do not count
 */
export function leavesMuch({ masterBars, tracks }) {
  return masterBars.length * tracks.length >= longScore;
}
