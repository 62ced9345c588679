import assert from "node:assert/strict";
import { test } from "node:test";

// The module's class is made for a page; its geometry is not.
const { lineStep, sidewaysStep } = await import("../src/score-view/follow.js");

const height = 900;

test("a line in view stays where it is", () => {
  assert.equal(lineStep({ top: 10, height: 300 }, null, height), 0);
  assert.equal(lineStep({ top: 600, height: 300 }, null, height), 0);
});

test("a line half out of view comes to the top", () => {
  assert.equal(lineStep({ top: 700, height: 300 }, null, height), 676);
  assert.equal(lineStep({ top: -50, height: 300 }, null, height), -74);
});

test("a line higher than the view stays while it fills the middle", () => {
  assert.equal(lineStep({ top: -400, height: 1400 }, null, height), 0);
});

test("from one high line to the next the same tracks stay in view", () => {
  const before = { top: -400, height: 1400 };
  assert.equal(lineStep({ top: 1000, height: 1400 }, before, height), 1400);
});

test("a high line far away comes to the top", () => {
  assert.equal(lineStep({ top: 5000, height: 1400 }, { top: 3600, height: 1400 }, height), 4976);
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
