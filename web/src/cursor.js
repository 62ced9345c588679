// @ts-check
/**
 * Marks what is heard: the bar, and in it the notes, behind a band that leaves them legible. The band steps from note to
 * note. It could glide, but then the page, the window and the display would draw thirty times a second for it, and each
 * frame's delay would show the mark elsewhere than the sound.
 *
 * @typedef {import("@coderline/alphatab").rendering.BeatBounds} BeatBounds
 * @typedef {NonNullable<import("./engine.js").Engine["customCursorHandler"]>} CursorHandler
 * @typedef {Parameters<CursorHandler["placeBeatCursor"]>[0]} Mark
 */

/** How wide the band is, in CSS pixels: a note head and its accidental's edge. */
const bandWidth = 18;

/** @implements {CursorHandler} */
export class Cursor {
  /** @param {Parameters<CursorHandler["onAttach"]>[0]} cursors */
  onAttach({ beatCursor }) {
    beatCursor.width = bandWidth;
  }

  onDetach() {}

  /**
   * @param {Mark} mark
   * @param {BeatBounds} beat
   */
  placeBarCursor(mark, beat) {
    const { x, y, w, h } = beat.barBounds.masterBarBounds.visualBounds;
    mark.setBounds(x, y, w, h);
  }

  /**
   * @param {Mark} mark
   * @param {BeatBounds} beat
   */
  placeBeatCursor(mark, beat) {
    const { y, h } = beat.barBounds.masterBarBounds.visualBounds;
    mark.transitionToX(0, beat.onNotesX);
    mark.setBounds(beat.onNotesX, y, 1, h);
  }

  /**
   * @param {Mark} mark
   * @param {BeatBounds} beat
   */
  transitionBeatCursor(mark, beat) {
    this.placeBeatCursor(mark, beat);
  }
}
