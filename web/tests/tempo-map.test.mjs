// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { TempoMap } from "../src/timing/tempo-map.js";

test("without a tempo mark a quarter note lasts half a second", () => {
  const line = new TempoMap([], 3840, 960);
  assert.equal(line.msAt(960), 500);
  assert.equal(line.endMs, 2000);
});

test("each stretch runs at its own tempo", () => {
  const line = new TempoMap(
    [
      { tick: 0, bpm: 120 },
      { tick: 3840, bpm: 60 },
      { tick: 7680, bpm: 240 },
    ],
    11520,
    960,
  );
  assert.equal(line.msAt(3840), 2000);
  assert.equal(line.msAt(5760), 4000);
  assert.equal(line.msAt(7680), 6000);
  assert.equal(line.endMs, 7000);
});

test("a later tempo mark at the same tick wins", () => {
  const line = new TempoMap(
    [
      { tick: 0, bpm: 120 },
      { tick: 0, bpm: 60 },
    ],
    960,
    960,
  );
  assert.equal(line.endMs, 1000);
});

test("a tempo of nothing does not stop time", () => {
  assert.ok(Number.isFinite(new TempoMap([{ tick: 0, bpm: 0 }], 960, 960).endMs));
});

test("an empty score has no length", () => {
  assert.equal(new TempoMap([], 0, 960).endMs, 0);
});
