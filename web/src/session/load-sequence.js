// @ts-check
import { afterPaint, afterSight } from "../shared/painting.js";

/**
 * How a file becomes a score that is seen, then ready to play, then laid out to its end: one after the other, as all
 * three at once would take each other's processor. Each file that is opened goes through these states on its own, and
 * the score on the score page goes on with them while another file is read.
 *
 * | state               | waits for                                | and at most            |
 * | ------------------- | ---------------------------------------- | ---------------------- |
 * | idle                | a file                                   |                        |
 * | reading             | the notice that says so, then the file   | `noticeTimeoutMs`      |
 * | first screen        | the sight of the first layout batch      | `firstScreenTimeoutMs` |
 * | preparing sound     | the player, while the remainder is held  | `soundTimeoutMs`       |
 * | ready               | the first layout batch of the remainder  |                        |
 * | laying out the rest | the last layout batch                    |                        |
 *
 * The last two wait for the render worker alone, which is watched (`worker-watch.js`).
 *
 * @typedef {"idle" | "reading" | "first screen" | "preparing sound" | "ready" | "laying out the rest"} LoadState
 *
 * @typedef {"notice painted" | "refused" | "shown" | "replaced" | "beginning shown" | "seen" | "sound ready"
 *   | "remainder shown" | "end shown" | "time-out"} LoadEvent
 *
 * @typedef {"read" | "hold the remainder" | "lay out the remainder" | "show the cursor" | "wait for sight"
 *   | "prepare the sound"} LoadStep what is to be done
 *
 * @typedef {object} Progress
 * @property {LoadState} state
 * @property {boolean} complete whether the last layout batch has been shown
 */

/** How long reading a file waits until the reader can see that it is being opened: a covered window has no frames. */
export const noticeTimeoutMs = 100;

/** How long the sound waits for the first systems of a score. */
export const firstScreenTimeoutMs = 1000;

/**
 * How long a render pass waits for the sound with its remainder. The render worker counts it: the page stands still
 * while it generates playback.
 */
export const soundTimeoutMs = 2000;

/** Shorter files are read faster than the notice is shown. In bytes. */
const longFile = 100_000;

/**
 * What each state waits for, and how long. A time-out is taken for what was waited for.
 *
 * @type {Partial<Record<LoadState, { event: LoadEvent, timeoutMs: number }>>}
 */
const waits = {
  reading: { event: "notice painted", timeoutMs: noticeTimeoutMs },
  "first screen": { event: "seen", timeoutMs: firstScreenTimeoutMs },
};

/** @typedef {{ to?: LoadState, steps?: LoadStep[] }} Transition to the same state where none is named */

/**
 * The player gets ready with each change of player too, and whatever the state the remainder goes on then.
 *
 * @type {Transition}
 */
const readyAgain = { steps: ["lay out the remainder"] };

/** @type {Record<LoadState, Partial<Record<LoadEvent, Transition>>>} */
const transitions = {
  idle: { "sound ready": readyAgain },
  reading: {
    "notice painted": { steps: ["read"] },
    refused: { to: "idle" },
    shown: { to: "first screen", steps: ["hold the remainder"] },
  },
  "first screen": {
    "beginning shown": { steps: ["show the cursor", "wait for sight"] },
    seen: { to: "preparing sound", steps: ["prepare the sound"] },
    "sound ready": readyAgain,
  },
  "preparing sound": {
    "sound ready": { to: "ready", steps: ["lay out the remainder"] },
    // The worker has waited for long enough.
    "remainder shown": { to: "laying out the rest" },
  },
  ready: {
    "sound ready": readyAgain,
    "remainder shown": { to: "laying out the rest" },
  },
  "laying out the rest": { "sound ready": readyAgain },
};

/**
 * @param {Progress} progress
 * @param {LoadEvent} event
 * @returns {{ progress: Progress, steps: LoadStep[] }}
 */
export function advance({ state, complete }, event) {
  if (event === "replaced") {
    return { progress: { state: "idle", complete: true }, steps: [] };
  }
  if (event === "beginning shown" || event === "end shown") {
    // A render pass may take the place of another, for another zoom, at any time.
    complete = event === "end shown";
  }
  const awaited = (event === "time-out" && waits[state]?.event) || event;
  const { to = state, steps = [] } = transitions[state][awaited] ?? {};
  const isOver = complete && (to === "ready" || to === "laying out the rest");
  return { progress: { state: isOver ? "idle" : to, complete }, steps };
}

/**
 * @typedef {object} Work what the page does in the states, and none of its own accord
 * @property {() => void} announce that a file is being opened
 * @property {(timeoutMs: number) => void} holdRemainder
 * @property {() => void} layOutRemainder
 * @property {() => void} showCursor
 * @property {() => void} prepareSound
 *
 * @typedef {ReturnType<typeof setTimeout>} Timer
 *
 * @typedef {object} Dependencies
 * @property {(work: () => void, ms: number) => Timer} after
 * @property {(timer: Timer | undefined) => void} cancel
 * @property {(work: () => void) => void} afterPaint
 * @property {(work: () => void) => void} afterSight
 */

/** @type {Dependencies} */
const browser = {
  after: (work, ms) => setTimeout(work, ms),
  cancel: (timer) => clearTimeout(timer),
  afterPaint,
  afterSight,
};

/** One file on its way. */
export class Load {
  #work;
  #dependencies;
  /** @type {Progress} */
  #progress = { state: "idle", complete: true };
  /** @type {Timer | undefined} */
  #timer;
  /** @type {() => void} */
  #read = () => {};

  /** @type {Promise<void>} resolves when the file is to be read */
  mayRead = new Promise((resolve) => (this.#read = resolve));

  /**
   * @param {Work} work
   * @param {Dependencies} dependencies
   */
  constructor(work, dependencies) {
    this.#work = work;
    this.#dependencies = dependencies;
  }

  get state() {
    return this.#progress.state;
  }

  /** @param {LoadState} state */
  enter(state) {
    this.#progress = { state, complete: false };
    this.wait(waits[state]?.timeoutMs);
  }

  /** @param {number} [timeoutMs] without it nothing is waited for */
  wait(timeoutMs) {
    const { after, cancel } = this.#dependencies;
    cancel(this.#timer);
    this.#timer = timeoutMs === undefined ? undefined : after(() => this.receive("time-out"), timeoutMs);
  }

  /** @param {LoadEvent} event */
  receive(event) {
    const { state } = this.#progress;
    const { progress, steps } = advance(this.#progress, event);
    this.#progress = progress;
    if (progress.state !== state) {
      this.wait(waits[progress.state]?.timeoutMs);
    } else if (event === waits[state]?.event || event === "replaced") {
      this.wait();
    }
    steps.forEach((step) => this.#do(step));
  }

  /** @param {LoadStep} step */
  #do(step) {
    switch (step) {
      case "read":
        return this.#read();
      case "hold the remainder":
        return this.#work.holdRemainder(soundTimeoutMs);
      case "lay out the remainder":
        return this.#work.layOutRemainder();
      case "show the cursor":
        return this.#work.showCursor();
      case "wait for sight":
        return this.#dependencies.afterSight(() => this.receive("seen"));
      case "prepare the sound":
        return this.#work.prepareSound();
    }
  }
}

export class LoadSequence {
  #work;
  #dependencies;
  /** What is on the score page. */
  #current;

  /**
   * @param {Work} work
   * @param {Dependencies} [dependencies]
   */
  constructor(work, dependencies = browser) {
    this.#work = work;
    this.#dependencies = dependencies;
    this.#current = new Load(work, dependencies);
  }

  /** Of the score on the score page. */
  get state() {
    return this.#current.state;
  }

  /**
   * A file is about to be read, which holds up the page. What is on the screen before that can still appear: it is only
   * faded in, which needs no script. Therefore a long file waits until it is there.
   *
   * @param {number} size of the file in bytes
   * @returns {Load} to be read when it may be, and then refused or shown
   */
  begin(size) {
    const load = new Load(this.#work, this.#dependencies);
    this.#work.announce();
    load.enter("reading");
    if (size >= longFile) {
      this.#dependencies.afterPaint(() => load.receive("notice painted"));
    } else {
      load.receive("notice painted");
    }
    return load;
  }

  /** @param {Load} load that cannot be read: the score on the score page stays */
  refuse(load) {
    load.receive("refused");
  }

  /** @param {Load} load whose score is about to take the place of the one on the score page */
  show(load) {
    this.#current.receive("replaced");
    this.#current = load;
    load.receive("shown");
  }

  /** @param {{ first: boolean, last: boolean }} batch, the first or the last, that was put on the score page */
  batchShown({ first, last }) {
    if (first) {
      this.#current.receive("beginning shown");
    }
    if (last) {
      this.endShown();
    }
  }

  /** A layout batch that is not the first was put on the score page. */
  remainderShown() {
    this.#current.receive("remainder shown");
  }

  /** Nothing more of the score will come. */
  endShown() {
    this.#current.receive("end shown");
  }

  /** The player can play what it was given last. */
  soundReady() {
    this.#current.receive("sound ready");
  }
}
