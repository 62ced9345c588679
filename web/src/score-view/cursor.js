// @ts-check
/**
 * Marks what is heard: the bar, and in it the notes, behind a band that leaves them legible. The band steps from note to
 * note. It could glide, but then the page, the window and the display would draw thirty times a second for it, and each
 * frame's delay would show the mark elsewhere than the sound.
 *
 * @typedef {import("@coderline/alphatab").rendering.BeatBounds} BeatBounds
 * @typedef {NonNullable<import("../alphatab/page-api.js").PageApi["customCursorHandler"]>} CursorHandler
 * @typedef {Parameters<CursorHandler["placeBeatCursor"]>[0]} Mark
 */

/** How wide the band is, in CSS pixels: a note head and its accidental's edge. */
const bandWidth = 18;

/** @implements {CursorHandler} */
export class Cursor {
  #api;
  #marks;

  /** @param {import("../alphatab/page-api.js").PageApi} api */
  constructor(api) {
    this.#api = api;
    this.#marks = api.uiFacade.createCursors();
    // alphaTab makes marks together with a player, which comes after the first lines of a score, and takes them away
    // with it: it gets these, and they stay.
    api.uiFacade.createCursors = () => this.#marks;
    api.uiFacade.destroyCursors = () => {};
    api.customCursorHandler = this;
    api.workerRenderer.batchShown.on(({ first }) => {
      if (first && !api.hasPrepared) {
        this.#markStart();
      }
    });
  }

  /** @param {Parameters<CursorHandler["onAttach"]>[0]} marks */
  onAttach({ beatCursor }) {
    beatCursor.width = bandWidth;
  }

  onDetach() {}

  /**
   * alphaTab learns where the beats lie in time when the score is prepared for playing. That its first beat comes first
   * is known before, so that the score's first picture shows the mark too.
   */
  #markStart() {
    const beat = this.#api.boundsLookup?.staffSystems[0]?.bars[0]?.bars[0]?.beats[0];
    const marks = this.#marks;
    if (beat && marks) {
      this.onAttach(marks);
      // Behind alphaTab's own doing, which goes by the score before.
      this.#api.uiFacade.beginInvoke(() => {
        this.placeBarCursor(marks.barCursor, beat);
        this.placeBeatCursor(marks.beatCursor, beat);
      });
    }
  }

  /**
   * @param {Mark} mark
   * @param {BeatBounds} beat
   */
  placeBarCursor(mark, beat) {
    const { x, y, w, h } = beat.barBounds.masterBarBounds.visualBounds;
    mark.setBounds(x, y, w, h);
    this.#api.workerRenderer.cursorBar = beat.barBounds.masterBarBounds.index;
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
