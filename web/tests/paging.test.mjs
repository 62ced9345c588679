// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { pageStep } from "../src/score-view/paging.js";

/** Lines of 200 pixels from 300 on, below the title, 20 pixels apart. */
const lines = Array.from({ length: 10 }, (_, index) => ({ start: 300 + index * 220, length: 200 }));
const view = 700;

test("a turn leaves the last whole line as context, at the top", () => {
  // In view are lines 0 and, cut off, 1.
  assert.equal(pageStep(lines, 0, view, 1), lines[0].start - 24);
  // From there, lines 0 to 2 are.
  const first = lines[0].start - 24;
  assert.equal(pageStep(lines, first, view, 1), lines[2].start - 24);
  assert.equal(pageStep(lines, lines[2].start - 24, view, 1), lines[4].start - 24);
});

test("a turn back leaves the first whole line as context, at the bottom", () => {
  const from = lines[6].start - 24;
  const to = pageStep(lines, from, view, -1);
  assert.equal(to, lines[4].start - 24);
  assert.ok(lines[6].start + lines[6].length <= to + view);
});

test("back from the first lines leads to the title", () => {
  assert.equal(pageStep(lines, lines[0].start - 24, view, -1), 0);
  assert.equal(pageStep(lines, 100, view, -1), 0);
});

test("no part of a line longer than the view is passed over", () => {
  const long = [0, 1, 2].map((index) => ({ start: index * 2000, length: 1900 }));
  const steps = [];
  for (let from = 0; from < 3800 && steps.length < 20; from = steps.at(-1)) {
    steps.push(pageStep(long, from, view, 1));
    assert.ok(steps.at(-1) > from && steps.at(-1) <= from + view);
  }
  assert.ok(steps.includes(2000 - 24) && steps.includes(4000 - 24), String(steps));
  for (let from = 4000; from > 0;) {
    const to = pageStep(long, from, view, -1);
    assert.ok(to < from && to >= from - view);
    from = to;
  }
});

test("one line that just fits is followed by the next", () => {
  const single = [0, 1, 2].map((index) => ({ start: 24 + index * 680, length: 660 }));
  assert.equal(pageStep(single, 0, view, 1), Math.min(single[1].start - 24, 0.85 * view));
  assert.equal(pageStep(single, single[1].start - 24, view, -1), single[1].start - 24 - 0.85 * view);
});

test("before anything is drawn a turn scrolls by most of the view", () => {
  assert.equal(pageStep([], 1000, view, 1), 1000 + 0.85 * view);
  assert.equal(pageStep([], 1000, view, -1), 1000 - 0.85 * view);
});
