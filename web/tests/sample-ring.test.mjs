// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { SampleRing } from "../src/audio/sample-ring.js";

/** @returns {Float32Array} of so many frames that count from `first`, the right channel negative */
function counting(first, frames) {
  return Float32Array.from({ length: frames * 2 }, (_, i) => (i % 2 === 0 ? 1 : -1) * (first + (i >> 1)));
}

/** Takes so many frames; tells which ones came. */
function take(ring, frames) {
  const [left, right] = [new Float32Array(frames), new Float32Array(frames)];
  const count = ring.take(left, right);
  assert.deepEqual(
    [...right],
    [...left].map((sample) => (sample === 0 ? 0 : -sample)),
  );
  return [...left].slice(0, count);
}

test("what one end writes the other takes, in order and round the end of the memory", () => {
  const memory = SampleRing.sharedMemory();
  const [one, other] = [new SampleRing(memory), new SampleRing(memory)];
  let written = 1;
  let taken = 1;
  for (let turn = 0; turn < 200; turn++) {
    one.write(counting(written, 1000 + turn));
    written += 1000 + turn;
    assert.equal(other.length, written - taken);
    const frames = take(other, 1000 + turn);
    assert.deepEqual(
      frames,
      Array.from({ length: 1000 + turn }, (_, i) => taken + i),
    );
    taken += frames.length;
  }
});

test("an empty ring leaves the rest as it was", () => {
  const ring = new SampleRing(null);
  ring.write(counting(1, 3));
  const left = new Float32Array(5).fill(9);
  assert.equal(ring.take(left, new Float32Array(5)), 3);
  assert.deepEqual([...left], [1, 2, 3, 9, 9]);
  assert.equal(ring.take(left, new Float32Array(5)), 0);
});

test("what was dropped is not heard, and what there is no room for is lost", () => {
  const ring = new SampleRing(null);
  ring.write(counting(1, 100));
  ring.clear();
  assert.equal(ring.length, 0);
  ring.write(counting(200, 20000));
  assert.equal(ring.length, 16384);
  assert.deepEqual(take(ring, 2), [200, 201]);
  ring.write(counting(7, 2));
  take(ring, 16382);
  assert.deepEqual(take(ring, 2), [7, 8]);
});

test("counts that overflow do no harm", () => {
  const memory = SampleRing.sharedMemory();
  new Int32Array(memory, 0, 2).fill(0x7ffffff0);
  const ring = new SampleRing(memory);
  ring.write(counting(1, 100));
  assert.equal(ring.length, 100);
  assert.deepEqual(
    take(ring, 100),
    Array.from({ length: 100 }, (_, i) => 1 + i),
  );
  assert.equal(ring.length, 0);
});
