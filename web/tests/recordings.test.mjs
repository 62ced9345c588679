import assert from "node:assert/strict";
import { test } from "node:test";
import { vorbisRate, waveFile } from "../src/recordings.js";

test("the rate of an Ogg Vorbis stream is read from its head", () => {
  const bytes = new Uint8Array(80);
  bytes.set(new TextEncoder().encode("OggS"), 0);
  bytes.set(new TextEncoder().encode("\x01vorbis"), 28);
  new DataView(bytes.buffer).setUint32(28 + 12, 22050, true);
  assert.equal(vorbisRate(bytes), 22050);
  assert.equal(vorbisRate(bytes.subarray(0, 38)), null);
  assert.equal(vorbisRate(new TextEncoder().encode("ID3 something else altogether")), null);
});

test("decoded sound becomes a WAVE file with its samples interleaved", () => {
  const left = Float32Array.of(0, 1, -1, 2);
  const right = Float32Array.of(0.5, 0, 0, -2);
  const wave = waveFile({
    length: 4,
    numberOfChannels: 2,
    sampleRate: 8000,
    getChannelData: (channel) => (channel === 0 ? left : right),
  });
  const view = new DataView(wave.buffer);
  assert.equal(wave.length, 44 + 16);
  assert.equal(view.getUint32(24, true), 8000);
  assert.equal(view.getUint32(28, true), 32000);
  assert.equal(view.getUint32(40, true), 16);
  assert.deepEqual([...new Int16Array(wave.buffer, 44)], [0, 16383, 32767, 0, -32767, 0, 32767, -32767]);
});
