// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { audibleLevels, clicksOf } from "../src/clicks/click-pattern.js";

const quarter = 960;

/** What is heard in a mode, as [tick, first beat of a bar] pairs. */
function heard(bars, mode) {
  return clicksOf(bars, quarter)
    .filter(({ level }) => level < audibleLevels(mode))
    .map(({ tick, level }) => [tick, level === 0]);
}

const common = { start: 0, end: 3840, denominator: 4, pickup: false };

test("in common time each mode doubles the one before it", () => {
  assert.deepEqual(heard([common], "bar"), [[0, true]]);
  assert.deepEqual(heard([common], "beat"), [
    [0, true],
    [960, false],
    [1920, false],
    [2880, false],
  ]);
  assert.equal(heard([common], "half").length, 8);
  assert.equal(heard([common], "quarter").length, 16);
  assert.deepEqual(heard([common], "quarter")[3], [720, false]);
});

test("the note value of the time signature is the beat", () => {
  const sixEight = { start: 0, end: 2880, denominator: 8, pickup: false };
  assert.deepEqual(
    heard([sixEight], "beat").map(([tick]) => tick),
    [0, 480, 960, 1440, 1920, 2400],
  );
  const halves = { start: 0, end: 3840, denominator: 2, pickup: false };
  assert.deepEqual(
    heard([halves], "beat").map(([tick]) => tick),
    [0, 1920],
  );
});

test("every bar starts afresh, also after one of odd length", () => {
  const bars = [
    { start: 0, end: 3360, denominator: 8, pickup: false },
    { start: 3360, end: 7200, denominator: 4, pickup: false },
  ];
  assert.deepEqual(heard(bars, "bar"), [
    [0, true],
    [3360, true],
  ]);
  assert.deepEqual(heard(bars, "beat").slice(7), [
    [3360, true],
    [4320, false],
    [5280, false],
    [6240, false],
  ]);
});

test("an upbeat is counted into the bar it leads to and accents nothing", () => {
  const bars = [
    { start: 0, end: 1440, denominator: 4, pickup: true },
    { start: 1440, end: 5280, denominator: 4, pickup: false },
  ];
  assert.deepEqual(heard(bars, "bar"), [[1440, true]]);
  assert.deepEqual(heard(bars, "beat").slice(0, 2), [
    [480, false],
    [1440, true],
  ]);
  assert.deepEqual(heard(bars, "half").slice(0, 4), [
    [0, false],
    [480, false],
    [960, false],
    [1440, true],
  ]);
});

test("an unknown mode is the beat", () => {
  assert.equal(audibleLevels("sometimes"), audibleLevels("beat"));
});
