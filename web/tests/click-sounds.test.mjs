// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { buildClickBank, clickKey } from "../src/clicks/click-bank.js";
import { clickSamples, sampleRate, soundNamed, soundNames } from "../src/clicks/click-sounds.js";

const loudness = (samples) => Math.sqrt(samples.reduce((sum, value) => sum + value * value, 0) / samples.length);

test("every sound is short, audible and not cut off", () => {
  for (const name of soundNames) {
    for (const accent of [false, true]) {
      const samples = clickSamples(name, accent);
      assert.ok(samples.length < sampleRate / 5, name);
      assert.ok(Math.max(...samples.map(Math.abs)) > 0.2, name);
      assert.ok(Math.abs(samples[samples.length - 1]) < 0.01, name);
    }
  }
});

test("an accent is louder", () => {
  for (const name of soundNames) {
    assert.ok(loudness(clickSamples(name, true)) > 1.2 * loudness(clickSamples(name, false)), name);
  }
});

test("the sounds differ from one another", () => {
  const texts = soundNames.map((name) => clickSamples(name, false).slice(0, 500).join());
  assert.equal(new Set(texts).size, soundNames.length);
});

test("an unknown sound is the woodblock", () => {
  assert.equal(soundNamed("gong"), "woodblock");
  assert.equal(soundNamed("tick"), "tick");
});

test("the bank is a sound font whose chunks add up", () => {
  const bank = buildClickBank();
  const view = new DataView(bank.buffer, bank.byteOffset, bank.byteLength);
  const id = (at) => String.fromCharCode(...bank.subarray(at, at + 4));
  assert.equal(id(0), "RIFF");
  assert.equal(id(8), "sfbk");
  assert.equal(view.getUint32(4, true) + 8, bank.length);
  const lists = [];
  for (let at = 12; at < bank.length; at += 8 + view.getUint32(at + 4, true)) {
    assert.equal(id(at), "LIST");
    lists.push(id(at + 8));
  }
  assert.deepEqual(lists, ["INFO", "sdta", "pdta"]);
});

test("each sound and its accent has a key of its own", () => {
  const keys = soundNames.flatMap((name) => [clickKey(name, false), clickKey(name, true)]);
  assert.equal(new Set(keys).size, keys.length);
});
