// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { BackingTrackClicks } from "../src/backing-track/backing-track-clicks.js";

const first = Float32Array.of(1, 0.5);
const others = Float32Array.of(0.25);

/** A click every 1000 frames, the first of four higher. */
function clicking(levels = 2) {
  const clicks = new BackingTrackClicks(44100);
  const positions = Float64Array.from({ length: 40 }, (_, click) => 1000 * click);
  clicks.setPattern({ positions, levels: Uint8Array.from(positions, (_, click) => (click % 4 === 0 ? 0 : 1)) }, 0);
  clicks.ticking = { levels, sounds: [first, others, others, others] };
  return clicks;
}

/** @returns {Float32Array} what is heard from a position on, in blocks */
function heard(clicks, position, frames, speed, block = 128) {
  const left = new Float32Array(frames);
  const right = new Float32Array(frames);
  for (let at = 0; at < frames; at += block) {
    clicks.mix(left, right, at, Math.min(block, frames - at), position + at * speed, speed);
  }
  assert.deepEqual(left, right);
  return left;
}

const loud = (samples) => [...samples.entries()].filter(([, sample]) => sample !== 0).map(([at]) => at);

test("clicks fall where the backing track comes to them", () => {
  for (const speed of [0.25, 0.5, 1, 1.7, 2]) {
    const samples = heard(clicking(), 0, 6000, speed);
    const beats = loud(samples).filter((at) => samples[at] !== 0.5);
    assert.deepEqual(
      beats,
      Array.from(beats, (_, click) => Math.round((1000 * click) / speed)),
    );
    assert.ok(beats.length >= (6000 * speed) / 1000 - 1);
    assert.equal(samples[0], 1);
    assert.equal(samples[1], 0.5);
    assert.equal(samples[Math.round(1000 / speed)], 0.25);
  }
});

test("a click goes on in the next block", () => {
  assert.deepEqual(loud(heard(clicking(), 0, 2500, 1, 1)), [0, 1, 1000, 2000]);
});

test("only the levels that were chosen are heard", () => {
  assert.deepEqual(loud(heard(clicking(1), 0, 4500, 1)), [0, 1, 4000, 4001]);
  assert.deepEqual(loud(heard(clicking(0), 0, 4500, 1)), []);
});

test("a start hardly behind a click has it, one farther behind has not", () => {
  const clicks = clicking();
  clicks.goTo(4050);
  assert.deepEqual(loud(heard(clicks, 4050, 500, 1)), [0, 1]);
  clicks.goTo(4200);
  assert.deepEqual(loud(heard(clicks, 4200, 1100, 1)), [800]);
});

test("silence takes back what has begun", () => {
  const clicks = clicking();
  heard(clicks, 0, 1, 1);
  clicks.silence();
  assert.deepEqual(loud(heard(clicks, 1, 500, 1)), []);
});
