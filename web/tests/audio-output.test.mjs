// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { contexts, settled, told } from "./support/audio-context.mjs";
import { pass } from "./support/clock.mjs";
import { standIn } from "./support/stand-in.mjs";

const { AudioOutput } = await import("../src/synth/audio-output.js");

const audioOutput = new AudioOutput();

/** The ports that the audio thread was told of, in order. */
async function ports() {
  await settled();
  return told.filter((message) => "port" in message).map(({ port }) => port);
}

test("it sleeps when there has been nothing to hear for a while", async () => {
  const port = standIn({});
  audioOutput.connect(port);
  audioOutput.wake(port);
  await settled();
  assert.equal(contexts.state, "running");
  pass(60000);
  assert.equal(contexts.state, "running");
  audioOutput.fallAsleep(port);
  pass(14000);
  assert.equal(contexts.state, "running");
  pass(2000);
  assert.equal(contexts.state, "suspended");
});

test("a synthesizer that another one has taken the place of has no say any more", async () => {
  const [first, second] = standIn([{ name: "first" }, { name: "second" }]);
  audioOutput.connect(first);
  audioOutput.connect(second);
  audioOutput.wake(second);
  await settled();
  audioOutput.fallAsleep(first);
  audioOutput.disconnect(first);
  pass(60000);
  assert.equal(contexts.state, "running");
  assert.deepEqual((await ports()).slice(-2), [first, second]);
  audioOutput.disconnect(second);
  assert.equal((await ports()).at(-1), null);
  pass(60000);
  assert.equal(contexts.state, "suspended");
  audioOutput.wake(first);
  await settled();
  assert.equal(contexts.state, "suspended");
  assert.equal(contexts.made, 1);
});
