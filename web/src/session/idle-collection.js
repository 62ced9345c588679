// @ts-check
import { collectGarbage, collectThoroughly } from "../shared/garbage.js";

/**
 * Collects the garbage that opening and rendering a score leaves, 70 MB with nine tracks, once nothing has happened for
 * a while. Nothing else would: left to itself V8 does it three times over, about when the music has begun to play.
 */

/**
 * How long nothing may have happened, in milliseconds. V8 gives up its room for new objects only when it has seen next
 * to none for five seconds.
 */
const inactivityDelayMs = 6000;

/** From one collection to the next, in milliseconds: two threads together would take each other's processor. */
const nextStepDelayMs = 500;

/** From the second collection of the page to its third, in milliseconds. */
const thirdCollectionDelayMs = 5500;

/** For how long a collection waits at most until the page has nothing else to do, in milliseconds. */
const idleTimeoutMs = 1000;

/** A page that is just being read or scrolled would stumble. */
const gestures = ["wheel", "pointermove", "pointerdown", "keydown", "touchmove"];

/**
 * @typedef {object} Step
 * @property {"renderer" | "synth" | "sound" | "page"} thread that collects
 * @property {boolean} [inSilence] whether the music would stumble, and has to have stopped
 * @property {number} wait for so many milliseconds since the step before
 */

/** @type {Step[]} */
const steps = [
  { thread: "renderer", wait: nextStepDelayMs },
  { thread: "synth", inSilence: true, wait: nextStepDelayMs },
  { thread: "sound", inSilence: true, wait: nextStepDelayMs },
  // By halves, so that it never stands still for long while music plays: the first time leaves what the second finds,
  // and the room for new objects is given up when the time since the last collection was without new objects.
  { thread: "page", wait: nextStepDelayMs },
  { thread: "page", wait: nextStepDelayMs },
  { thread: "page", wait: thirdCollectionDelayMs },
  { thread: "page", inSilence: true, wait: nextStepDelayMs },
];

export class IdleCollection {
  #playback;
  /** @type {ReturnType<typeof setTimeout> | undefined} */
  #timer;
  /** @type {Step[]} */
  #left = [];
  #api;

  /**
   * @param {Pick<import("../alphatab/page-api.js").PageApi, "workerRenderer" | "playerReady" | "playerStateChanged" |
   *     "backingTrackPlayer" | "synth">} api
   * @param {{ readonly playing: boolean }} playback
   * @param {EventTarget} view where the reader's hands are felt
   */
  constructor(api, playback, view) {
    this.#playback = playback;
    this.#api = api;
    const disturbed = () => {
      this.#left = [...steps];
      this.#wait(inactivityDelayMs);
    };
    api.workerRenderer.batchShown.on(disturbed);
    api.playerReady.on(disturbed);
    const later = () => this.#wait(inactivityDelayMs);
    api.playerStateChanged.on(later);
    for (const gesture of gestures) {
      view.addEventListener(gesture, later, { capture: true, passive: true });
    }
  }

  /** @returns {Step | undefined} */
  get #next() {
    return this.#left.find(({ inSilence }) => !inSilence || !this.#playback.playing);
  }

  /** @param {number} milliseconds */
  #wait(milliseconds) {
    clearTimeout(this.#timer);
    if (this.#next) {
      this.#timer = setTimeout(() => this.#collectGarbage(), milliseconds);
    }
  }

  #collectGarbage() {
    const step = this.#next;
    if (step) {
      this.#left = this.#left.filter((other) => other !== step);
      this.#collect(step);
      this.#wait(this.#next?.wait ?? 0);
    }
  }

  /** @param {Step} step */
  #collect(step) {
    const { thread } = step;
    if (thread === "renderer") {
      this.#api.workerRenderer.collectGarbage();
    } else if (thread === "synth") {
      this.#api.synth?.collectGarbage();
    } else if (thread === "sound") {
      this.#api.backingTrackPlayer.collectGarbage();
    } else {
      // While music plays the cursor moves between two notes, and is still while one sounds.
      requestIdleCallback(() => this.#collectHere(step), { timeout: idleTimeoutMs });
    }
  }

  /** @param {Step} step */
  #collectHere(step) {
    if (!step.inSilence) {
      collectGarbage();
    } else if (this.#playback.playing) {
      // Music began meanwhile.
      this.#left.push(step);
    } else {
      collectThoroughly();
    }
  }
}
