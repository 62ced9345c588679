// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";

// What the module knows of a page.
Object.assign(globalThis, {
  Node: class {},
  KeyboardEvent: class extends Event {
    /** @param {string} type @param {{ key: string }} init */
    constructor(type, { key }) {
      super(type);
      this.key = key;
    }
  },
});
const { AutoScroll, systemStep, sidewaysStep } = await import("../src/score-view/auto-scroll.js");

const height = 900;

test("a line in view stays where it is", () => {
  assert.equal(systemStep({ top: 10, height: 300 }, null, height), 0);
  assert.equal(systemStep({ top: 600, height: 300 }, null, height), 0);
});

test("a line half out of view comes to the top", () => {
  assert.equal(systemStep({ top: 700, height: 300 }, null, height), 676);
  assert.equal(systemStep({ top: -50, height: 300 }, null, height), -74);
});

test("a line higher than the view stays while it fills the middle", () => {
  assert.equal(systemStep({ top: -400, height: 1400 }, null, height), 0);
});

test("from one high line to the next the same tracks stay in view", () => {
  const before = { top: -400, height: 1400 };
  assert.equal(systemStep({ top: 1000, height: 1400 }, before, height), 1400);
});

test("a high line far away comes to the top", () => {
  assert.equal(systemStep({ top: 5000, height: 1400 }, { top: 3600, height: 1400 }, height), 4976);
});

test("sideways the beat keeps room before it", () => {
  assert.equal(sidewaysStep(500, 1000), 0);
  assert.equal(sidewaysStep(800, 1000), 550);
  assert.equal(sidewaysStep(-300, 1000), -550);
});

test("sideways the next beat is in view before the music is there", () => {
  assert.equal(sidewaysStep(600, 1000, 990), 350);
  // The beat that is played stays in view for a next one that is further away than the view is wide.
  assert.equal(sidewaysStep(600, 1000, 3000), 576);
  // Where the music jumps back nothing comes after it on the right.
  assert.equal(sidewaysStep(600, 1000, 100), 0);
});

/** alphaTab's kind of event. */
function emitter() {
  /** @type {((value?: any) => void)[]} */
  const receivers = [];
  return {
    /** @param {(value?: any) => void} receiver */
    on: (receiver) => receivers.push(receiver),
    /** @param {any} [value] */
    post: (value) => receivers.forEach((receiver) => receiver(value)),
  };
}

/**
 * Holds what is put off until the returned function is called.
 *
 * @param {import("node:test").TestContext} context
 */
function holdTimers(context) {
  /** @type {Map<number, () => void>} */
  const held = new Map();
  let last = 0;
  context.mock.method(globalThis, "setTimeout", (/** @type {() => void} */ run) => held.set(++last, run) && last);
  context.mock.method(globalThis, "clearTimeout", (/** @type {number} */ id) => held.delete(id));
  globalThis.cancelAnimationFrame = () => undefined;
  return () => {
    const due = [...held.values()];
    held.clear();
    due.forEach((run) => run());
  };
}

/** A score at rest at its beginning, in a viewport that is scrolled by 400 pixels. */
function stoppedScore() {
  const ownerDocument = new EventTarget();
  const viewport = {
    ownerDocument,
    ...{ scrollLeft: 0, scrollTop: 400, scrollWidth: 800, scrollHeight: 3000, clientWidth: 800, clientHeight: 600 },
    /** @param {number} left @param {number} top */
    scrollTo: (left, top) => Object.assign(viewport, { scrollLeft: left, scrollTop: top }),
    getBoundingClientRect: () => ({ left: 0, top: 0 }),
  };
  const notation = Object.assign(new Node(), {
    contains: (/** @type {unknown} */ node) => node === notation,
    getBoundingClientRect: () => ({ left: -viewport.scrollLeft, top: -viewport.scrollTop }),
  });
  /** Where the beat at the position lies, as far as it has been laid out. @type {object | null} */
  let bounds = null;
  const api = {
    notation,
    tracks: [],
    tickCache: { findBeat: () => ({ beat: {} }) },
    boundsLookup: { findBeat: () => bounds },
    playerPositionChanged: emitter(),
    postRenderFinished: emitter(),
    scoreLoaded: emitter(),
    workerRenderer: { awaited: false, drewAgain: false },
  };
  const playback = { playing: false, atStart: true };
  new AutoScroll(/** @type {any} */ (api), /** @type {any} */ (playback), /** @type {any} */ (viewport));
  const press = Object.assign(new Event("pointerdown"), { buttons: 1 });
  Object.defineProperty(press, "target", { value: notation });
  return {
    ...{ api, playback, viewport },
    layOut: () => {
      const box = { x: 0, y: 1500, w: 800, h: 200 };
      bounds = { onNotesX: 100, barBounds: { masterBarBounds: { visualBounds: box } } };
    },
    wheel: () => ownerDocument.dispatchEvent(new Event("wheel")),
    press: () => ownerDocument.dispatchEvent(press),
  };
}

test("a score that was opened, or a seek, shows the beginning", (context) => {
  const runTimers = holdTimers(context);
  for (const event of /** @type {const} */ (["postRenderFinished", "playerPositionChanged"])) {
    const { api, viewport } = stoppedScore();
    api[event].post({ isSeek: true });
    runTimers();
    assert.equal(viewport.scrollTop, 0, event);
  }
});

test("readers who scroll, or choose, are not taken back by what was asked for before", (context) => {
  const runTimers = holdTimers(context);
  for (const gesture of /** @type {const} */ (["wheel", "press"])) {
    for (const event of /** @type {const} */ (["postRenderFinished", "playerPositionChanged"])) {
      const score = stoppedScore();
      score.api[event].post({ isSeek: true });
      score[gesture]();
      runTimers();
      assert.equal(score.viewport.scrollTop, 400, `${gesture} after ${event}`);
    }
  }
});

test("readers who scroll while the rest is laid out stay there; another score begins at its beginning", (context) => {
  const runTimers = holdTimers(context);
  const { api, viewport, wheel } = stoppedScore();
  wheel();
  api.postRenderFinished.post();
  runTimers();
  assert.equal(viewport.scrollTop, 400);
  api.scoreLoaded.post();
  api.postRenderFinished.post();
  runTimers();
  assert.equal(viewport.scrollTop, 0);
});

test("a seek shows its bar, wherever alphaTab's cursor still is", (context) => {
  const runTimers = holdTimers(context);
  const { api, playback, viewport, layOut } = stoppedScore();
  playback.atStart = false;
  layOut();
  api.playerPositionChanged.post({ isSeek: true });
  runTimers();
  assert.equal(viewport.scrollTop, 1500 - 24);
});

test("a seek to a bar that has not been laid out is shown when it has", (context) => {
  const runTimers = holdTimers(context);
  const { api, playback, viewport, layOut } = stoppedScore();
  playback.atStart = false;
  api.playerPositionChanged.post({ isSeek: true });
  runTimers();
  assert.equal(viewport.scrollTop, 400);
  layOut();
  api.workerRenderer.drewAgain = true;
  api.postRenderFinished.post();
  runTimers();
  assert.equal(viewport.scrollTop, 1500 - 24);
});
