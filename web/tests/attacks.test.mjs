import assert from "node:assert/strict";
import { test } from "node:test";
import { AttackFinder, findAttacks } from "../src/backing-track/decode/attacks.js";
import { sampleRate, sound, strokes } from "./support/sounds.mjs";

const beats = Array.from({ length: 60 }, (_, beat) => 0.2 + 0.31 * beat + 0.05 * Math.sin(beat));
const left = strokes(20, beats);
const right = sound(20, (t) => 0.2 * Math.sin(2 * Math.PI * 110 * t) * Math.exp(-((t * 1.7) % 1) * 4));

test("attacks are found where they are", () => {
  const found = [...findAttacks([left], sampleRate)].map((frame) => frame / sampleRate);
  assert.equal(found.length, beats.length);
  found.forEach((at, beat) => assert.ok(Math.abs(at - beats[beat]) < 0.0005, `${at} instead of ${beats[beat]}`));
});

test("wherever a recording is cut, the same attacks are found, each soon after it came", () => {
  const whole = [...findAttacks([left, right], sampleRate)];
  assert.ok(whole.length > beats.length);
  for (const size of [100, 7777, 65536, left.length]) {
    const finder = new AttackFinder(sampleRate);
    const found = [];
    for (let at = 0; at < left.length; at += size) {
      found.push(...finder.push([left, right].map((samples) => samples.subarray(at, at + size))));
      const known = Math.min(at + size, left.length) - 0.1 * sampleRate;
      assert.equal(found.filter((frame) => frame < known).length, whole.filter((frame) => frame < known).length);
    }
    assert.deepEqual([...found, ...finder.finish()], whole, `in pieces of ${size}`);
  }
});

test("there are no attacks in nothing", () => {
  const finder = new AttackFinder(sampleRate);
  assert.deepEqual(finder.push([new Int16Array(0)]), []);
  assert.deepEqual(finder.push([new Int16Array(5000)]), []);
  assert.deepEqual(finder.finish(), []);
  assert.deepEqual(new AttackFinder(sampleRate).finish(), []);
});
