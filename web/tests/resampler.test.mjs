// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { Resampler } from "../src/audio/resampler.js";

const rates = [
  [44100, 48000],
  [48000, 44100],
  [22050, 44100],
  [44100, 22050],
  [8000, 48000],
  [96000, 44100],
];
const sine = (hertz, rate, seconds = 1) =>
  Float32Array.from({ length: rate * seconds }, (_, frame) => Math.sin((2 * Math.PI * hertz * frame) / rate));

function resampled(samples, from, to, size = samples.length) {
  const resampler = new Resampler(from, to);
  const parts = [];
  for (let at = 0; at < samples.length; at += size) {
    parts.push(...resampler.push(samples.subarray(at, at + size)));
  }
  return Float32Array.from([...parts, ...resampler.finish()]);
}

const decibels = (one, other) =>
  20 * Math.log10(one.reduce((most, sample, frame) => Math.max(most, Math.abs(sample - other[frame])), 1e-9));
const inner = (samples) => samples.subarray(200, -200);

for (const [from, to] of rates) {
  test(`tones stay what and where they are from ${from} to ${to}`, () => {
    for (const hertz of [50, 1000, 0.38 * Math.min(from, to)]) {
      const samples = resampled(sine(hertz, from), from, to);
      assert.equal(samples.length, to);
      const off = decibels(inner(samples), inner(sine(hertz, to)));
      assert.ok(off < -75, `${hertz} Hz: ${off} dB`);
    }
  });

  test(`wherever sound is cut, the same comes out from ${from} to ${to}`, () => {
    const samples = sine(777, from, 0.5);
    const whole = resampled(samples, from, to);
    for (const size of [1, 37, 1000, 20000]) {
      assert.deepEqual(resampled(samples, from, to, size), whole);
    }
  });
}

test("tones that the lower rate cannot hold are gone", () => {
  const samples = resampled(sine(20000, 48000), 48000, 22050);
  const level = 20 * Math.log10(Math.max(...inner(samples).map(Math.abs)));
  assert.ok(level < -75, `${level} dB`);
});
