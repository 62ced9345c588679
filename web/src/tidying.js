// @ts-check
/**
 * Collects the garbage that opening and drawing a score leaves, 70 MB with nine tracks, once nothing has happened for a
 * while. Nothing else would: left to itself V8 does it three times over, about when the music has begun to play.
 */

/**
 * How long nothing may have happened, in milliseconds. V8 gives up its room for new objects only when it has seen next to
 * none for five seconds.
 */
const rest = 6000;

/** Each thread collects twice: the first time leaves what the second finds, room that has been empty since then. */
const rounds = 2;

/** From one collection to the next, in milliseconds: two threads together would take each other's processor. */
const apart = 500;

/** A page that is just being read or scrolled would stumble. */
const gestures = ["wheel", "pointermove", "pointerdown", "keydown", "touchmove"];

export class Tidying {
  #api;
  #playback;
  #timer = 0;
  /** How many times each is still to collect: the drawing worker, and the page with the synthesizer's worker. */
  #left = { drawing: 0, page: 0 };

  /**
   * @param {Pick<import("./engine.js").Engine, "drawing" | "playerReady" | "playerStateChanged" | "synth">} api
   * @param {{ readonly playing: boolean }} playback
   * @param {EventTarget} view where the reader's hands are felt
   */
  constructor(api, playback, view) {
    this.#api = api;
    this.#playback = playback;
    const disturbed = () => {
      this.#left = { drawing: rounds, page: rounds };
      this.#wait(rest);
    };
    api.drawing.pieceShown.on(disturbed);
    api.playerReady.on(disturbed);
    const later = () => this.#wait(rest);
    api.playerStateChanged.on(later);
    for (const gesture of gestures) {
      view.addEventListener(gesture, later, { capture: true, passive: true });
    }
  }

  /** @param {number} milliseconds */
  #wait(milliseconds) {
    clearTimeout(this.#timer);
    if (this.#left.drawing + this.#left.page > 0) {
      this.#timer = setTimeout(() => this.#tidy(), milliseconds);
    }
  }

  #tidy() {
    const left = this.#left;
    // Neither the mark on the score nor the sound may stumble: when the music stops there is time again.
    const pageWaits = left.page === 0 || this.#playback.playing;
    if (left.drawing > 0 && (left.drawing >= left.page || pageWaits)) {
      left.drawing--;
      this.#api.drawing.tidy();
    } else if (!pageWaits) {
      left.page--;
      this.#api.synth?.tidy();
      collectGarbage();
    } else {
      return;
    }
    this.#wait(apart);
  }
}

/** Where the web engine lets a page ask for it. */
export function collectGarbage() {
  const { gc } = /** @type {{ gc?: (options: { type: string, execution: string }) => void }} */ (globalThis);
  // As a task of its own: what happens to lie on the stack would keep things.
  gc?.({ type: "major", execution: "async" });
}
