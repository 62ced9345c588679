// @ts-check
/**
 * Shows what is presented: the bar, and in it the notes, behind a band that leaves them legible. The band steps from
 * note to note. It could glide, but then the page, the window and the display would draw thirty times a second for it,
 * and each frame's delay would show the cursor elsewhere than the sound.
 *
 * @typedef {import("@coderline/alphatab").rendering.BeatBounds} BeatBounds
 * @typedef {NonNullable<import("../alphatab/page-api.js").PageApi["customCursorHandler"]>} CursorHandler
 * @typedef {Parameters<CursorHandler["placeBeatCursor"]>[0]} CursorElement
 */

/** How wide the band is, in CSS pixels: a note head and its accidental's edge. */
const bandWidth = 18;

/** @implements {CursorHandler} */
export class Cursor {
  #api;
  #cursors;

  /** @param {import("../alphatab/page-api.js").PageApi} api */
  constructor(api) {
    this.#api = api;
    this.#cursors = api.uiFacade.createCursors();
    // alphaTab makes cursors together with a player, which comes after the first systems of a score, and takes them
    // away with it: it gets these, and they stay.
    api.uiFacade.createCursors = () => this.#cursors;
    api.uiFacade.destroyCursors = () => {};
    api.customCursorHandler = this;
  }

  /** @param {Parameters<CursorHandler["onAttach"]>[0]} cursors */
  onAttach({ beatCursor }) {
    beatCursor.width = bandWidth;
  }

  onDetach() {}

  /**
   * alphaTab learns where the beats lie in time when the score is prepared for playing. That its first beat comes first
   * is known before, so that the score's first picture shows the cursor too.
   */
  showAtStart() {
    const beat = this.#api.boundsLookup?.staffSystems[0]?.bars[0]?.bars[0]?.beats[0];
    const cursors = this.#cursors;
    if (beat && cursors) {
      this.onAttach(cursors);
      // Behind alphaTab's own doing, which goes by the score before.
      this.#api.uiFacade.beginInvoke(() => {
        this.placeBarCursor(cursors.barCursor, beat);
        this.placeBeatCursor(cursors.beatCursor, beat);
      });
    }
  }

  /**
   * @param {CursorElement} cursor
   * @param {BeatBounds} beat
   */
  placeBarCursor(cursor, beat) {
    const { x, y, w, h } = beat.barBounds.masterBarBounds.visualBounds;
    cursor.setBounds(x, y, w, h);
    this.#api.workerRenderer.cursorBar = beat.barBounds.masterBarBounds.index;
  }

  /**
   * @param {CursorElement} cursor
   * @param {BeatBounds} beat
   */
  placeBeatCursor(cursor, beat) {
    const { y, h } = beat.barBounds.masterBarBounds.visualBounds;
    cursor.transitionToX(0, beat.onNotesX);
    cursor.setBounds(beat.onNotesX, y, 1, h);
  }

  /**
   * @param {CursorElement} cursor
   * @param {BeatBounds} beat
   */
  transitionBeatCursor(cursor, beat) {
    this.placeBeatCursor(cursor, beat);
  }
}
