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
  const playback = { playing: false, atStart: true, tick: 0, loop: null, msUntil: () => 0 };
  const scroll = new AutoScroll(/** @type {any} */ (api), /** @type {any} */ (playback), /** @type {any} */ (viewport));
  const press = Object.assign(new Event("pointerdown"), { buttons: 1 });
  Object.defineProperty(press, "target", { value: notation });
  return {
    ...{ api, playback, viewport, scroll },
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

/** A staff system of 200 pixels, with a beat in it. */
const beatIn = (/** @type {number} */ index) => {
  const visualBounds = { x: 0, y: 1500 + 250 * index, w: 800, h: 200 };
  return /** @type {any} */ ({
    onNotesX: 100,
    barBounds: { masterBarBounds: { visualBounds, staffSystemBounds: { index } } },
  });
};

/**
 * A score that plays, at a time that stands still until it is moved.
 *
 * @param {import("node:test").TestContext} context
 */
function playingScore(context) {
  const runTimers = holdTimers(context);
  let now = 100_000;
  context.mock.method(performance, "now", () => now);
  /** @type {(() => void) | undefined} */
  let frame;
  globalThis.requestAnimationFrame = /** @type {any} */ ((/** @type {() => void} */ step) => (frame = step));
  const score = stoppedScore();
  Object.assign(score.playback, { playing: true, atStart: false });
  const pass = (/** @type {number} */ ms) => {
    now += ms;
    frame?.();
  };
  const play = (/** @type {number} */ system) =>
    score.scroll.onBeatCursorUpdating(beatIn(system), undefined, 0, 0, 150);
  return { ...score, runTimers, pass, play };
}

test("while music plays the score goes along with it", (context) => {
  const { viewport, play } = playingScore(context);
  play(0);
  assert.equal(viewport.scrollTop, 1500 - 24);
});

test("readers who scroll while music plays are left alone for a while, and taken along then", (context) => {
  const { viewport, play, pass, wheel } = playingScore(context);
  wheel();
  pass(2400);
  play(0);
  assert.equal(viewport.scrollTop, 400);
  pass(200);
  play(0);
  assert.equal(viewport.scrollTop, 1500 - 24);
});

test("while readers choose a range the score stays under the pointer", (context) => {
  const { viewport, play, press } = playingScore(context);
  press();
  play(0);
  assert.equal(viewport.scrollTop, 400);
});

test("the next staff system comes into view before it is played", (context) => {
  const { api, viewport, play, pass, runTimers } = playingScore(context);
  const bar = (/** @type {number} */ index) => ({
    ...{ start: index * 3840, end: (index + 1) * 3840, masterBar: { index } },
    nextMasterBar: /** @type {object | null} */ (null),
  });
  const bars = [bar(0), bar(1)];
  bars[0].nextMasterBar = bars[1];
  Object.assign(api.tickCache, { masterBars: bars });
  Object.assign(api.boundsLookup, {
    findMasterBarByIndex: (/** @type {number} */ index) => beatIn(index).barBounds.masterBarBounds,
  });
  viewport.scrollTop = 1200;
  play(0);
  assert.equal(viewport.scrollTop, 1200);
  runTimers();
  pass(1000);
  assert.equal(viewport.scrollTop, 1500 - 24);
});
