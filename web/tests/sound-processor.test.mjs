// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { SampleRing } from "../src/audio/sample-ring.js";
import { pass } from "./support/clock.mjs";
import { standIn } from "./support/stand-in.mjs";

const block = 128;
/** Frames that the sound system takes at once. */
const callback = 1024;
/** So many of them are one millisecond: a callback is 21 of those and a third. */
const perMillisecond = 48;

let Processor;
globalThis.AudioWorkletProcessor = standIn(
  class {
    port = {};
  },
);
globalThis.registerProcessor = (_, processor) => (Processor = processor);
await import("../src/synth/sound-processor.js");

/** The audio thread and a synthesizer that answers between two callbacks, with samples that count from 1. */
class Stage {
  questions = [];
  stream = 0;
  sent = 0;
  shared;
  /** How many frames of a question are answered at most. */
  most = Infinity;
  #processor = new Processor();
  #port = this.#newPort();
  #ring;

  constructor({ shared = true, latency = 0 } = {}) {
    this.shared = shared;
    const memory = shared ? SampleRing.sharedMemory() : null;
    this.#ring = memory && new SampleRing(memory);
    this.#processor.port.onmessage({ data: { port: this.#port, ring: memory } });
    this.page({ latency });
  }

  #newPort() {
    const port = {
      open: true,
      postMessage: (question) => this.questions.push(question),
      close: () => (port.open = false),
    };
    return port;
  }

  /** Another synthesizer takes the place of the present one, which answers its last question late. */
  replace() {
    const before = this.#port;
    this.#port = this.#newPort();
    this.page({ port: this.#port });
    this.#ring?.write(new Float32Array(2 * callback).fill(9));
    this.stream = 0;
    this.sent = 0;
    return before;
  }

  /** A call for a node that is not connected. */
  callDisconnected() {
    return this.#processor.process([], [[]]);
  }

  page(message) {
    this.#processor.port.onmessage({ data: message });
  }

  synth(message) {
    this.#port.onmessage({ data: { stream: this.stream, ...message } });
  }

  seek() {
    this.stream++;
    this.sent = 0;
    this.synth({});
  }

  answer() {
    const { stream, wanted } = this.questions.at(-1) ?? {};
    const count = Math.min(wanted - this.sent, this.most);
    if (stream === this.stream && count > 0) {
      const samples = Float32Array.from({ length: 2 * count }, (_, i) => this.sent + 1 + (i >> 1));
      this.sent += count;
      if (this.#ring) {
        this.#ring.write(samples);
      } else {
        this.synth({ samples });
      }
    }
  }

  /** @returns {number[]} what sounds during so many callbacks */
  render(callbacks) {
    const sound = [];
    for (let i = 0; i < callbacks; i++) {
      for (let at = 0; at < callback; at += block) {
        const [left, right] = [new Float32Array(block), new Float32Array(block)];
        this.#processor.process([], [[left, right]]);
        assert.deepEqual(left, right);
        sound.push(...left);
      }
      this.answer();
      pass(callback / perMillisecond);
    }
    return sound;
  }
}

const counting = (first, count) => Array.from({ length: count }, (_, i) => first + i);

for (const shared of [true, false]) {
  test(`every sample sounds once and in order ${shared ? "through shared memory" : "through messages"}`, () => {
    const stage = new Stage({ shared });
    stage.render(2);
    assert.equal(stage.questions.length, 0);
    stage.synth({ playing: true });
    assert.ok(stage.render(1).every((sample) => sample === 0));
    assert.deepEqual(stage.render(100), counting(1, 100 * callback));
  });
}

test("one question a callback, and no more is kept ahead than a mute may take", () => {
  const stage = new Stage();
  stage.synth({ playing: true });
  stage.render(50);
  assert.ok(stage.questions.length <= 51, String(stage.questions.length));
  assert.equal(stage.sent - 49 * callback, 1536);
});

test("more is kept ahead while the page is busy, and after a stutter", () => {
  const stage = new Stage();
  stage.synth({ playing: true });
  stage.render(2);
  stage.page({ busyFrames: 10 * callback });
  stage.render(2);
  assert.ok(stage.sent - 3 * callback >= 8192);
  stage.render(40);
  assert.equal(stage.sent - 43 * callback, 1536);
  stage.most = 700;
  stage.render(10);
  stage.most = Infinity;
  stage.render(20);
  assert.ok(stage.sent - 73 * callback > 1536);
});

test("the presented frame is reported as of the beginning of the audio callback", () => {
  const latency = 3000;
  const stage = new Stage({ latency });
  stage.synth({ playing: true });
  stage.render(1);
  const began = Date.now();
  stage.render(30);
  const told = stage.questions.filter(({ presented }) => presented !== undefined);
  assert.ok(told.length >= 28);
  for (const { presented, at } of told) {
    assert.ok(
      Math.abs(presented - ((at - began) * perMillisecond - latency)) <= block,
      `${presented} at ${at - began}`,
    );
  }
});

test("what is presented before it is drawn is reported ahead of time", () => {
  const stage = new Stage({ latency: -480 });
  stage.synth({ playing: true });
  stage.render(1);
  const began = Date.now();
  stage.render(10);
  const { presented, at } = stage.questions.at(-1);
  assert.ok(Math.abs(presented - ((at - began) * perMillisecond + 480)) <= block);
});

test("the end is presented when the output latency has passed", () => {
  const stage = new Stage({ latency: 4 * callback });
  stage.synth({ playing: true });
  stage.render(5);
  stage.most = 0;
  const last = stage.sent;
  stage.render(4);
  assert.ok(stage.questions.at(-1).presented < last);
  stage.render(4);
  assert.equal(stage.questions.at(-1).presented, last);
});

test("a seek fades out what was waiting, and what comes then is of the new stream", () => {
  const stage = new Stage();
  stage.synth({ playing: true });
  stage.render(10);
  const last = 9 * callback;
  stage.seek();
  const after = stage.render(2);
  assert.ok(Math.abs(after[0] - (last + 1)) < 1 && after[255] < after[0] / 100);
  after.slice(1, 256).forEach((sample, i) => assert.ok(sample < after[i], String(i)));
  assert.ok(after.slice(256, callback).every((sample) => sample === 0));
  assert.deepEqual(after.slice(callback), counting(1, callback));
  assert.ok(stage.questions.filter(({ stream }) => stream === 1).every(({ presented }) => !(presented > callback)));
});

test("a pause is silent, and asks for nothing", () => {
  const stage = new Stage();
  stage.synth({ playing: true });
  stage.render(10);
  stage.synth({ playing: false });
  stage.seek();
  const asked = stage.questions.length;
  assert.ok(
    stage
      .render(10)
      .slice(256)
      .every((sample) => sample === 0),
  );
  assert.equal(stage.questions.length, asked);
  stage.synth({ playing: true });
  assert.deepEqual(stage.render(5).slice(callback), counting(1, 4 * callback));
});

for (const shared of [true, false]) {
  test(`another synthesizer is heard from its first sample on ${shared ? "through shared memory" : "through messages"}`, () => {
    const stage = new Stage({ shared });
    stage.synth({ playing: true });
    stage.render(5);
    stage.seek();
    stage.render(5);
    const before = stage.replace();
    assert.equal(before.open, false);
    const { length } = stage.questions;
    assert.ok(
      stage
        .render(5)
        .slice(256)
        .every((sample) => sample === 0),
    );
    assert.equal(stage.questions.length, length);
    stage.synth({ playing: true });
    assert.deepEqual(stage.render(5).slice(callback), counting(1, 4 * callback));
  });
}

test("where no synthesizer is heard any more it is silent", () => {
  const stage = new Stage();
  stage.synth({ playing: true });
  stage.render(5);
  stage.page({ port: null });
  const { length } = stage.questions;
  const after = stage.render(5);
  assert.ok(after[255] < after[0] / 100 && after.slice(256).every((sample) => sample === 0));
  assert.equal(stage.questions.length, length);
});

test("a node that is being disconnected gets no channels, which is no fault", () => {
  const stage = new Stage();
  assert.equal(stage.callDisconnected(), true);
});
