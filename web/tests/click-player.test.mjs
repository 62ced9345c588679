// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { contexts, settled } from "./support/audio-context.mjs";
import { pass } from "./support/clock.mjs";
import { standIn } from "./support/stand-in.mjs";

let started = 0;
Object.assign(globalThis.AudioContext.prototype, {
  createBuffer: () => ({ copyToChannel() {} }),
});
globalThis.AudioBufferSourceNode = standIn(
  class {
    connect(node) {
      return node;
    }
    start() {
      started++;
    }
  },
);
globalThis.GainNode.prototype.connect = (node) => node;

const { ClickPlayer } = await import("../src/metronome/click-player.js");

test("an audio context runs for a click, and a few seconds more", async () => {
  const player = new ClickPlayer();
  /** @type {import("../src/metronome/click-player.js").Sounding} */
  const click = { sound: "click", accent: false, volume: 1 };
  player.play(click);
  await settled();
  assert.deepEqual([started, contexts.state], [1, "running"]);
  pass(4000);
  player.play(click);
  pass(4000);
  assert.deepEqual([started, contexts.state], [2, "running"]);
  pass(2000);
  assert.equal(contexts.state, "suspended");
  player.play(click);
  await settled();
  assert.deepEqual([started, contexts.state, contexts.made], [3, "running", 1]);
});
