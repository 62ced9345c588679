// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import {
  LoadSequence,
  advance,
  firstScreenTimeoutMs,
  noticeTimeoutMs,
  soundTimeoutMs,
} from "../src/session/load-sequence.js";

/**
 * @typedef {import("../src/session/load-sequence.js").Load} Load
 * @typedef {import("../src/session/load-sequence.js").LoadState} LoadState
 * @typedef {import("../src/session/load-sequence.js").LoadEvent} LoadEvent
 */

const short = 1000;
const long = 1_000_000;
const beginning = { first: true, last: false };
const end = { first: false, last: true };
const whole = { first: true, last: true };

/** A load sequence whose work is written down, and whose time passes when the test says so. */
function page() {
  /** @type {string[]} */
  const log = [];
  /** @type {Map<number, { work: () => void, ms: number }>} */
  const timers = new Map();
  /** @type {(() => void)[]} */
  const paints = [];
  /** @type {(() => void)[]} */
  const sights = [];
  let timer = 0;
  /** @type {(work: () => void, ms: number) => any} */
  const after = (work, ms) => {
    timers.set(++timer, { work, ms });
    return timer;
  };
  const sequence = new LoadSequence(
    {
      announce: () => log.push("announce"),
      holdRemainder: (ms) => log.push(`hold the remainder for ${ms}`),
      layOutRemainder: () => log.push("lay out the remainder"),
      showCursor: () => log.push("show the cursor"),
      prepareSound: () => log.push("prepare the sound"),
    },
    {
      after,
      cancel: (timer) => timers.delete(Number(timer)),
      afterPaint: (work) => paints.push(work),
      afterSight: (work) => sights.push(work),
    },
  );
  const run = (/** @type {(() => void)[]} */ works) => works.splice(0).forEach((work) => work());
  return {
    sequence,
    take: () => log.splice(0),
    waiting: () => [...timers.values()].map(({ ms }) => ms),
    paint: () => run(paints),
    see: () => run(sights),
    /** Whatever is waited for has not come. */
    giveUp: () => {
      const due = [...timers.values()];
      timers.clear();
      due.forEach(({ work }) => work());
    },
  };
}

/** @param {Load} load @returns {() => boolean} whether it may be read, once what was just done is settled */
function watched(load) {
  let may = false;
  void load.mayRead.then(() => (may = true));
  return () => may;
}

const settled = () => new Promise((resolve) => setImmediate(resolve));

/** @typedef {ReturnType<typeof page>} Page */

/** What leads a page from its start to each state, with a score of several layout batches. @type {[LoadState, (page: Page) => void][]} */
const roads = [
  ["first screen", ({ sequence }) => sequence.show(sequence.begin(short))],
  ["preparing sound", ({ sequence, see }) => (sequence.batchShown(beginning), see())],
  ["ready", ({ sequence }) => sequence.soundReady()],
  ["laying out the rest", ({ sequence }) => sequence.remainderShown()],
  ["idle", ({ sequence }) => sequence.batchShown(end)],
];

/** @param {LoadState} state @returns {Page} whose score is there */
function pageAt(state) {
  const at = page();
  for (const [next, go] of roads) {
    go(at);
    assert.equal(at.sequence.state, next);
    if (next === state) {
      break;
    }
  }
  at.take();
  return at;
}

test("a score is seen, then prepared for playing, then laid out to its end", () => {
  const { sequence, take, see, waiting } = page();
  const load = sequence.begin(short);
  assert.equal(load.state, "reading");
  assert.deepEqual(take(), ["announce"]);
  sequence.show(load);
  assert.equal(sequence.state, "first screen");
  assert.deepEqual(take(), [`hold the remainder for ${soundTimeoutMs}`]);
  sequence.batchShown(beginning);
  assert.equal(sequence.state, "first screen", "it is on the page and not painted yet");
  assert.deepEqual(take(), ["show the cursor"]);
  see();
  assert.equal(sequence.state, "preparing sound");
  assert.deepEqual(take(), ["prepare the sound"]);
  assert.deepEqual(waiting(), [], "the worker counts how long the remainder waits");
  sequence.soundReady();
  assert.equal(sequence.state, "ready");
  assert.deepEqual(take(), ["lay out the remainder"]);
  sequence.remainderShown();
  assert.equal(sequence.state, "laying out the rest");
  sequence.batchShown(end);
  assert.equal(sequence.state, "idle");
  assert.deepEqual(take(), []);
});

test("a score that fits the screen is laid out when it can be played", () => {
  const { sequence, see } = page();
  sequence.show(sequence.begin(short));
  sequence.batchShown(whole);
  assert.equal(sequence.state, "first screen");
  see();
  assert.equal(sequence.state, "preparing sound");
  sequence.soundReady();
  assert.equal(sequence.state, "idle");
});

test("an endless system that is shown as a whole after its beginning comes to an end", () => {
  const { sequence } = pageAt("ready");
  sequence.batchShown(whole);
  assert.equal(sequence.state, "idle");
});

test("a page without a score waits for a file alone, and makes nothing", () => {
  const { waiting, take, sequence } = page();
  assert.deepEqual([sequence.state, waiting(), take()], ["idle", [], []]);
  sequence.show(sequence.begin(short));
  assert.deepEqual(waiting(), [firstScreenTimeoutMs]);
});

test("a short file is read at once, a long one when the notice has been painted", async () => {
  const { sequence, paint, waiting } = page();
  const shortMay = watched(sequence.begin(short));
  const longMay = watched(sequence.begin(long));
  await settled();
  assert.deepEqual([shortMay(), longMay()], [true, false]);
  assert.ok(waiting().includes(noticeTimeoutMs));
  paint();
  await settled();
  assert.ok(longMay());
  assert.ok(!waiting().includes(noticeTimeoutMs));
});

test("a long file is read after a while although nothing is painted", async () => {
  const { sequence, giveUp, paint } = page();
  const load = sequence.begin(long);
  const may = watched(load);
  giveUp();
  await settled();
  assert.ok(may());
  assert.equal(load.state, "reading");
  sequence.show(load);
  paint();
  assert.equal(sequence.state, "first screen");
});

test("the sound is prepared after a while although nothing is seen, and not again when it is", () => {
  const { sequence, waiting, giveUp, take, see } = pageAt("first screen");
  assert.deepEqual(waiting(), [firstScreenTimeoutMs]);
  sequence.batchShown(beginning);
  take();
  giveUp();
  assert.equal(sequence.state, "preparing sound");
  assert.deepEqual(take(), ["prepare the sound"]);
  see();
  assert.deepEqual([sequence.state, take()], ["preparing sound", []]);
});

test("the sight of the score ends the waiting for it", () => {
  assert.deepEqual(pageAt("preparing sound").waiting(), []);
});

test("the remainder that comes before the sound was waited for long enough", () => {
  const { sequence, take } = pageAt("preparing sound");
  sequence.remainderShown();
  assert.equal(sequence.state, "laying out the rest");
  sequence.batchShown(end);
  assert.equal(sequence.state, "idle");
  assert.deepEqual(take(), []);
  sequence.soundReady();
  assert.deepEqual(take(), ["lay out the remainder"], "later render passes need not wait");
});

test("the remainder goes on whenever a player is ready, and another player changes nothing else", () => {
  for (const state of /** @type {LoadState[]} */ (["first screen", "ready", "laying out the rest", "idle"])) {
    const { sequence, take } = pageAt(state);
    sequence.soundReady();
    assert.deepEqual([sequence.state, take()], [state, ["lay out the remainder"]]);
  }
});

test("a score that is drawn anew on its way is laid out to the end of its last render pass", () => {
  const { sequence, see } = pageAt("first screen");
  sequence.batchShown(whole);
  sequence.batchShown(beginning);
  see();
  sequence.soundReady();
  assert.equal(sequence.state, "ready");
  sequence.batchShown(beginning);
  sequence.remainderShown();
  sequence.batchShown(end);
  assert.equal(sequence.state, "idle");
  sequence.batchShown(beginning);
  assert.equal(sequence.state, "idle");
});

test("a renderer that gives up ends the waiting for the remainder", () => {
  for (const state of /** @type {LoadState[]} */ (["ready", "laying out the rest"])) {
    const { sequence } = pageAt(state);
    sequence.endShown();
    assert.equal(sequence.state, "idle");
  }
  const { sequence } = pageAt("preparing sound");
  sequence.endShown();
  assert.equal(sequence.state, "preparing sound");
  sequence.soundReady();
  assert.equal(sequence.state, "idle");
});

for (const [state] of roads) {
  test(`while another file is read, and when it cannot be, a score goes on from "${state}"`, () => {
    const at = pageAt(state);
    const other = at.sequence.begin(short);
    assert.equal(at.sequence.state, state);
    const rest = roads.slice(roads.findIndex(([name]) => name === state) + 1);
    rest.slice(0, 1).forEach(([, go]) => go(at));
    at.sequence.refuse(other);
    assert.equal(other.state, "idle");
    rest.slice(1).forEach(([, go]) => go(at));
    assert.equal(at.sequence.state, "idle");
  });

  test(`another score takes the place of one at "${state}", of which nothing happens any more`, () => {
    const at = pageAt(state);
    if (state === "first screen") {
      at.sequence.batchShown(beginning);
    }
    const other = at.sequence.begin(short);
    at.take();
    at.sequence.show(other);
    assert.deepEqual(at.take(), [`hold the remainder for ${soundTimeoutMs}`]);
    assert.deepEqual(at.waiting(), [firstScreenTimeoutMs]);
    at.see();
    assert.deepEqual([at.sequence.state, at.take()], ["first screen", []], "the other one has not been seen");
    at.sequence.batchShown(beginning);
    at.see();
    assert.equal(at.sequence.state, "preparing sound");
  });
}

test("another file may be opened while one is read: each has its own way", async () => {
  const { sequence, paint } = page();
  const first = sequence.begin(long);
  const second = sequence.begin(long);
  const may = [watched(first), watched(second)];
  paint();
  await settled();
  assert.deepEqual([may[0](), may[1]()], [true, true]);
  sequence.refuse(second);
  sequence.show(first);
  assert.deepEqual([first.state, second.state, sequence.state], ["first screen", "idle", "first screen"]);
});

test("what is not waited for changes no state", () => {
  /** @type {Record<LoadState, LoadEvent[]>} by which a state is left */
  const exits = {
    idle: [],
    reading: ["refused", "shown"],
    "first screen": ["seen", "time-out"],
    "preparing sound": ["sound ready", "remainder shown"],
    ready: ["remainder shown", "end shown"],
    "laying out the rest": ["end shown"],
  };
  /** @type {LoadEvent[]} */
  const events = ["notice painted", "refused", "shown", "beginning shown", "seen", "sound ready"];
  /** @type {LoadEvent[]} */
  const all = [...events, "remainder shown", "end shown", "time-out"];
  for (const state of /** @type {LoadState[]} */ (Object.keys(exits))) {
    const left = all.filter((event) => advance({ state, complete: false }, event).progress.state !== state);
    assert.deepEqual(left.sort(), [...exits[state]].sort(), state);
    assert.equal(advance({ state, complete: false }, "replaced").progress.state, "idle");
  }
});
