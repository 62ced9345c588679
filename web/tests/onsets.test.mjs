// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { OnsetDetector, findOnsets } from "../src/backing-track/decode/onsets.js";
import { sampleRate, sound, strokes } from "./support/sounds.mjs";

const beats = Array.from({ length: 60 }, (_, beat) => 0.2 + 0.31 * beat + 0.05 * Math.sin(beat));
const left = strokes(20, beats);
const right = sound(20, (t) => 0.2 * Math.sin(2 * Math.PI * 110 * t) * Math.exp(-((t * 1.7) % 1) * 4));

test("onsets are found where they are", () => {
  const found = [...findOnsets([left], sampleRate)].map((frame) => frame / sampleRate);
  assert.equal(found.length, beats.length);
  found.forEach((at, beat) => assert.ok(Math.abs(at - beats[beat]) < 0.0005, `${at} instead of ${beats[beat]}`));
});

test("wherever a backing track is cut, the same onsets are found, each soon after it came", () => {
  const whole = [...findOnsets([left, right], sampleRate)];
  assert.ok(whole.length > beats.length);
  for (const size of [100, 7777, 65536, left.length]) {
    const detector = new OnsetDetector(sampleRate);
    const found = [];
    for (let at = 0; at < left.length; at += size) {
      found.push(...detector.push([left, right].map((samples) => samples.subarray(at, at + size))));
      const known = Math.min(at + size, left.length) - 0.1 * sampleRate;
      assert.equal(found.filter((frame) => frame < known).length, whole.filter((frame) => frame < known).length);
    }
    assert.deepEqual([...found, ...detector.finish()], whole, `in chunks of ${size}`);
  }
});

test("there are no onsets in nothing", () => {
  const detector = new OnsetDetector(sampleRate);
  assert.deepEqual(detector.push([new Int16Array(0)]), []);
  assert.deepEqual(detector.push([new Int16Array(5000)]), []);
  assert.deepEqual(detector.finish(), []);
  assert.deepEqual(new OnsetDetector(sampleRate).finish(), []);
});
