// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { placeMarks } from "../src/score-view/section-marks.js";

test("a mark lies at its section's share of what scrolls, with room up to the next one", () => {
  const sections = [
    { title: "Verse", tick: 3840, at: 500 },
    { title: "Intro", tick: 0, at: 200 },
    { title: "End", tick: 9600, at: 1000 },
  ];
  assert.deepEqual(placeMarks(sections, 2000), [
    { title: "Intro", tick: 0, left: 0.1, width: 0.15 },
    { title: "Verse", tick: 3840, left: 0.25, width: 0.25 },
    { title: "End", tick: 9600, left: 0.5, width: 0.5 },
  ]);
});

test("of sections in one line the first is marked", () => {
  const sections = ["A", "B", "C"].map((title, index) => ({ title, tick: index, at: index < 2 ? 200 : 400 }));
  assert.deepEqual(
    placeMarks(sections, 800).map(({ title }) => title),
    ["A", "C"],
  );
  assert.deepEqual(placeMarks([], 800), []);
});
