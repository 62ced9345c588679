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

/**
 * Each thread collects three times. The first time leaves what the second finds; the room for new objects is given up when
 * the time since the last collection was a quiet one, and the first of them is seldom far enough from the drawing for that.
 */
const rounds = 3;

/** From one collection to the next, in milliseconds: two threads together would take each other's processor. */
const apart = 500;

/** From the last collection but one of all threads to the last one of the first. */
const quiet = 5500;

/** For how long a collection waits at most until the page has nothing else to do, in milliseconds. */
const idle = 1000;

/** A page that is just being read or scrolled would stumble. */
const gestures = ["wheel", "pointermove", "pointerdown", "keydown", "touchmove"];

/** @typedef {"drawing" | "synth" | "sound" | "page"} Thread in the order in which they collect */

/** What these do is heard. @type {Thread[]} */
const heard = ["synth", "sound"];

export class Tidying {
  #playback;
  #timer = 0;
  /** How many times each is still to collect. @type {Record<Thread, number>} */
  #left = { drawing: 0, synth: 0, sound: 0, page: 0 };
  /** @type {Record<Thread, () => void>} */
  #collect;

  /**
   * @param {Pick<import("./engine.js").Engine, "drawing" | "playerReady" | "playerStateChanged" | "recordingPlayer" | "synth">} api
   * @param {{ readonly playing: boolean }} playback
   * @param {EventTarget} view where the reader's hands are felt
   */
  constructor(api, playback, view) {
    this.#playback = playback;
    this.#collect = {
      drawing: () => api.drawing.tidy(),
      synth: () => api.synth?.tidy(),
      sound: () => api.recordingPlayer.tidy(),
      // The mark on the score moves between two notes, and is still while one sounds.
      page: () => requestIdleCallback(collectGarbage, { timeout: idle }),
    };
    const disturbed = () => {
      this.#left = { drawing: rounds, synth: rounds, sound: rounds, page: rounds };
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

  /** Those whose turn it is, the first of them first. */
  get #most() {
    // The sound may not stumble: when the music stops there is time again.
    const threads = /** @type {Thread[]} */ (Object.keys(this.#left)).filter((thread) => !this.#playback.playing || !heard.includes(thread));
    const most = Math.max(...threads.map((thread) => this.#left[thread]));
    return { most, threads: threads.filter((thread) => this.#left[thread] === most) };
  }

  /** @param {number} milliseconds */
  #wait(milliseconds) {
    clearTimeout(this.#timer);
    if (this.#most.most > 0) {
      this.#timer = setTimeout(() => this.#tidy(), milliseconds);
    }
  }

  #tidy() {
    const { most, threads } = this.#most;
    if (most > 0) {
      this.#left[threads[0]]--;
      this.#collect[threads[0]]();
      this.#wait(most > 1 && this.#most.most === 1 ? quiet : apart);
    }
  }
}

/** Where the web engine lets a page ask for it. */
export function collectGarbage() {
  const { gc } = /** @type {{ gc?: (options: { type: string, execution: string }) => void }} */ (globalThis);
  // As a task of its own: what happens to lie on the stack would keep things.
  gc?.({ type: "major", execution: "async" });
}
