// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { barAfterSystem, lookAheadStep } from "../src/score-view/look-ahead.js";

const barTicks = 3840;

/** Bars as they are played, by their indexes; each is four quarter notes long. */
function played(...indexes) {
  const bars = indexes.map((index, place) => ({
    start: place * barTicks,
    end: (place + 1) * barTicks,
    masterBar: { index },
    nextMasterBar: null,
  }));
  bars.forEach((bar, place) => (bar.nextMasterBar = bars[place + 1] ?? null));
  return bars;
}

/** Three bars to a staff system. */
const leaving = (system) => (bar) => Math.floor(bar / 3) !== system;

test("the next staff system begins when the last bar of this one ends", () => {
  assert.deepEqual(barAfterSystem(played(0, 1, 2, 3, 4), 100, null, leaving(0)), { bar: 3, tick: 3 * barTicks });
  assert.deepEqual(barAfterSystem(played(0, 1, 2, 3, 4), 3 * barTicks - 1, null, leaving(0)), {
    bar: 3,
    tick: 3 * barTicks,
  });
});

test("a repeat leads back", () => {
  const bars = played(3, 4, 5, 0, 1);
  assert.deepEqual(barAfterSystem(bars, 2 * barTicks, null, leaving(1)), { bar: 0, tick: 3 * barTicks });
});

test("a repeat within the staff system does not leave it", () => {
  assert.deepEqual(barAfterSystem(played(0, 1, 0, 1, 2, 3), 0, null, leaving(0)), { bar: 3, tick: 5 * barTicks });
});

test("nothing comes after the end", () => {
  assert.equal(barAfterSystem(played(0, 1, 2), 0, null, leaving(0)), null);
  assert.equal(barAfterSystem([], 0, null, leaving(0)), null);
});

test("a loop leads back to where it begins, before its last bar ends", () => {
  const bars = played(0, 1, 2, 3, 4, 5);
  const loop = { startTick: barTicks, endTick: 5 * barTicks - 50 };
  assert.deepEqual(barAfterSystem(bars, 4 * barTicks, loop, leaving(1)), { bar: 1, tick: 5 * barTicks - 50 });
  assert.equal(barAfterSystem(bars, barTicks, { startTick: barTicks, endTick: 2 * barTicks }, leaving(0)), null);
  const whole = { startTick: 0, endTick: Infinity };
  assert.deepEqual(barAfterSystem(bars, 5 * barTicks, whole, leaving(1)), { bar: 0, tick: 6 * barTicks });
});

const view = 600;
const margin = 24;
const step = (now, next) => lookAheadStep(now, next, view, margin);

test("what is in view stays where it is", () => {
  assert.equal(step({ top: 20, height: 200 }, { top: 300, height: 200 }), 0);
});

test("two that have room for both are shown whole", () => {
  assert.equal(step({ top: 380, height: 200 }, { top: 600, height: 200 }), 380 - margin);
  assert.equal(step({ top: 20, height: 200 }, { top: -200, height: 200 }), -200 - margin);
});

test("two that have not share the view", () => {
  const now = { top: 24, height: 500 };
  const next = { top: 560, height: 500 };
  const moved = step(now, next);
  // Half of the view is still the present one's.
  assert.equal(now.top + now.height - moved, view / 2);
  assert.ok(next.top - moved < view - 100);
  assert.equal(now.top - step(now, { top: -520, height: 500 }), view / 2);
});

test("what is far away is not led to", () => {
  assert.equal(step({ top: 24, height: 500 }, { top: 4000, height: 500 }), 0);
  assert.equal(step({ top: 24, height: 500 }, { top: -4000, height: 500 }), 0);
});
