// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { readSoundFile, to16BitSamples } from "../src/soundfont/sound-file.js";

test("a file is its description and its streams", () => {
  const description = {
    name: "Ö",
    zones: [],
    samples: [
      { at: 0, length: 2 },
      { at: 2, length: 3 },
    ],
  };
  const head = Buffer.from(JSON.stringify(description));
  const bytes = new Uint8Array(
    Buffer.concat([Buffer.from(Uint32Array.of(head.length).buffer), head, Buffer.from([1, 2, 3, 4, 5])]),
  );
  const file = readSoundFile(bytes);
  assert.deepEqual(file.description, description);
  assert.deepEqual([file.streamOf(0), file.streamOf(1)], [Uint8Array.of(1, 2), Uint8Array.of(3, 4, 5)]);
});

test("what a decoder adds at the end is left out, and what is too loud is cut off", () => {
  assert.deepEqual(
    to16BitSamples(Float32Array.of(0, 0.5, -1, 1.5, -1.5, 0.25, 0.25), 5),
    Int16Array.of(0, 16383, -32767, 32767, -32767),
  );
  assert.deepEqual(to16BitSamples(Float32Array.of(1), 5), Int16Array.of(32767));
});
