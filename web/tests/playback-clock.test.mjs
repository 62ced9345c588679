// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { PlaybackClock } from "../src/synth/playback-clock.js";
import { pass, standStill } from "./support/clock.mjs";

/** A synthesizer with notes at some frames, at a thousand frames a second. */
function synth(...notes) {
  const told = [];
  return {
    told,
    sampleRate: 1000,
    rendered: 1000,
    get nextNote() {
      return notes[0];
    },
    presented(frame) {
      told.push(frame);
      while (notes[0] <= frame) {
        notes.shift();
      }
    },
  };
}

test("a note is told of when it is heard, between two reports of the audio thread", () => {
  const one = synth(35, 47);
  const clock = new PlaybackClock(one);
  clock.set(10, Date.now());
  pass(24);
  assert.deepEqual(one.told, [10]);
  pass(1);
  assert.deepEqual(one.told, [10, 35]);
  pass(30);
  assert.deepEqual(one.told, [10, 35, 47]);
});

test("what the report took on its way counts", () => {
  const one = synth(35);
  const at = Date.now();
  pass(5);
  new PlaybackClock(one).set(10, at);
  assert.deepEqual(one.told, [15]);
  pass(20);
  assert.deepEqual(one.told, [15, 35]);
});

test("before the first sample is heard nothing is told, and then its note", () => {
  const one = synth(0);
  new PlaybackClock(one).set(-40, Date.now());
  pass(39);
  assert.deepEqual(one.told, []);
  pass(1);
  assert.deepEqual(one.told, [0]);
});

test("what is heard never goes back, and a note far ahead waits for the next report", () => {
  const one = synth(200);
  const clock = new PlaybackClock(one);
  clock.set(100, Date.now());
  pass(10);
  clock.set(95, Date.now());
  assert.deepEqual(one.told, [100, 100]);
  pass(500);
  assert.deepEqual(one.told, [100, 100]);
});

test("a stream that was broken off is told of no more", () => {
  const one = synth(30);
  const clock = new PlaybackClock(one);
  clock.set(10, Date.now());
  clock.stop();
  pass(100);
  assert.deepEqual(one.told, [10]);
  clock.set(0.5, Date.now());
  assert.deepEqual(one.told, [10, 0.5]);
});

test("after a standstill nothing is told that was never rendered", () => {
  const one = synth(35);
  one.rendered = 60;
  const clock = new PlaybackClock(one);
  clock.set(10, Date.now());
  // The timer for the note comes late, as does a report that was on its way.
  const at = Date.now();
  standStill(20_000);
  assert.deepEqual(one.told, [10, 60]);
  clock.set(15, at);
  assert.deepEqual(one.told, [10, 60, 60]);
  one.rendered = 120;
  clock.set(70, Date.now());
  assert.deepEqual(one.told, [10, 60, 60, 70]);
});
