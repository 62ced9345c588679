// @ts-check
/**
 * Marks what is heard: the bar, and in it the notes, behind a band that leaves them legible. The band steps from note to
 * note. It could glide, but then the page, the window and the display would draw thirty times a second for it, and each
 * frame's delay would show the mark elsewhere than the sound.
 *
 * @typedef {import("@coderline/alphatab").rendering.BeatBounds} BeatBounds
 * @typedef {NonNullable<import("../alphatab/engine.js").Engine["customCursorHandler"]>} CursorHandler
 * @typedef {Parameters<CursorHandler["placeBeatCursor"]>[0]} Mark
 */

/** How wide the band is, in CSS pixels: a note head and its accidental's edge. */
const bandWidth = 18;

/** @implements {CursorHandler} */
export class Cursor {
  #engine;
  #marks;

  /** @param {import("../alphatab/engine.js").Engine} engine */
  constructor(engine) {
    this.#engine = engine;
    this.#marks = engine.uiFacade.createCursors();
    // The engine makes marks together with a player, which comes after the first lines of a score, and takes them away
    // with it: it gets these, and they stay.
    engine.uiFacade.createCursors = () => this.#marks;
    engine.uiFacade.destroyCursors = () => {};
    engine.customCursorHandler = this;
    engine.drawing.pieceShown.on(({ first }) => {
      if (first && !engine.hasPrepared) {
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
   * The engine learns where the beats lie in time when the score is prepared for playing. That its first beat comes first
   * is known before, so that the score's first picture shows the mark too.
   */
  #markStart() {
    const beat = this.#engine.boundsLookup?.staffSystems[0]?.bars[0]?.bars[0]?.beats[0];
    const marks = this.#marks;
    if (beat && marks) {
      this.onAttach(marks);
      // Behind the engine's own doing, which goes by the score before.
      this.#engine.uiFacade.beginInvoke(() => {
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
    this.#engine.drawing.markedBar = beat.barBounds.masterBarBounds.index;
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
