// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { fromHost, toHost } from "../src/score-view/host-range.js";

test("a range comes back from the program as it was reported", () => {
  for (const end of [
    { bar: 3, tick: 1920 },
    { bar: 3, tick: Infinity },
  ]) {
    const range = { start: { bar: 1, tick: 480 }, end };
    const held = JSON.parse(JSON.stringify(toHost(range)));
    assert.deepEqual(fromHost(held, 4), range);
  }
});

test("a range of a longer score is none", () => {
  assert.equal(fromHost({ startBar: 0, startTick: 0, endBar: 4, endTick: 960 }, 4), null);
});
