// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { decodeBackingTrack } from "../src/backing-track/decode/backing-track-decoder.js";
import { joined, noise, text, wave } from "./support/audio-files.mjs";
import { onsets, strokes } from "./support/sounds.mjs";
import { standIn } from "./support/stand-in.mjs";

const rate = 44100;
const broken = text("cannot be decoded");

/** Decodes WAVE files of 16 bits, and none with that text in it. */
globalThis.OfflineAudioContext = standIn(
  class {
    constructor(_channels, _length, sampleRate) {
      this.sampleRate = sampleRate;
    }

    async decodeAudioData(buffer) {
      const bytes = Buffer.from(buffer);
      decodedLengths.push(bytes.length);
      if (bytes.includes(Buffer.from(broken)) || bytes.toString("latin1", 0, 4) !== "RIFF") {
        throw new Error("Unable to decode audio data");
      }
      const count = bytes.readUInt16LE(22);
      const samples = new Int16Array(buffer.slice(44));
      const channels = Array.from({ length: count }, (_, channel) =>
        Float32Array.from(
          { length: Math.floor(samples.length / count) },
          (_, frame) => samples[frame * count + channel] / 32767,
        ),
      );
      return { length: channels[0].length, numberOfChannels: count, getChannelData: (channel) => channels[channel] };
    }
  },
);

/** A worker that works at once. */
class FakeWorker {
  static running = 0;
  static made = 0;
  /** @type {(event: { data: unknown }) => void} */
  onmessage = () => {};
  #listening;

  constructor(script) {
    FakeWorker.running++;
    this.#listening = new Promise((resolve) => {
      globalThis.addEventListener = (_, listener) => resolve(listener);
    });
    void import(`${script}?${FakeWorker.made++}`);
  }

  async postMessage(data) {
    const listener = await this.#listening;
    globalThis.postMessage = (answer) => this.onmessage({ data: answer });
    listener({ data: structuredClone(data) });
  }

  terminate() {
    FakeWorker.running--;
  }
}
globalThis.Worker = standIn(FakeWorker);

const decodedLengths = [];

async function decoded(bytes, wanted = rate) {
  decodedLengths.length = 0;
  const chunks = [];
  for await (const chunk of decodeBackingTrack(bytes, wanted)) {
    chunks.push(chunk);
  }
  assert.equal(FakeWorker.running, 0);
  assert.deepEqual(
    chunks.map(({ first }) => first),
    chunks.map((_, index) => index === 0),
  );
  assert.deepEqual(
    chunks.map(({ last }) => last),
    chunks.map((_, index) => index === chunks.length - 1),
  );
  const channels = chunks[0].blocks.map((_, channel) =>
    Int16Array.from(chunks.flatMap(({ blocks }) => blocks[channel].flatMap((block) => [...block]))),
  );
  return { chunks, channels, onsets: chunks.flatMap((chunk) => [...chunk.onsets]) };
}

const bytesOf = (samples) => new Uint8Array(samples.buffer, samples.byteOffset, samples.byteLength);
const beats = Array.from({ length: 90 }, (_, beat) => 0.4 + beat * 0.5);
const played = strokes(46, beats);
const mono = (samples) => wave({ channels: 1, data: bytesOf(samples) });

test("a backing track comes out chunk by chunk as it is", async () => {
  const { chunks, channels, onsets } = await decoded(mono(played));
  assert.ok(chunks.length > 2);
  assert.ok(Math.max(...decodedLengths) < 20 * rate * 2);
  assert.equal(channels.length, 1);
  assert.deepEqual(channels[0], played);
  assert.equal(onsets.length, beats.length);
  assert.ok(
    chunks.every(({ blocks }) =>
      blocks[0].every((block, index) => block.length === 65536 || index === blocks[0].length - 1),
    ),
  );
});

test("both channels come out as they are, and of more than two the first", async () => {
  const stereo = Int16Array.from({ length: 30 * rate * 2 }, (_, index) => ((index * 7919) % 65536) - 32768);
  const { channels } = await decoded(wave({ data: bytesOf(stereo) }));
  assert.equal(channels.length, 2);
  for (const channel of [0, 1]) {
    assert.deepEqual(
      channels[channel],
      stereo.filter((_, index) => index % 2 === channel).map((sample) => Math.max(sample, -32767)),
    );
  }
  const many = await decoded(wave({ channels: 6, data: bytesOf(stereo) }));
  assert.equal(many.channels.length, 2);
});

test("a backing track of another rate is brought to the wanted one, with its beats in time", async () => {
  const { channels, onsets } = await decoded(mono(played), 48000);
  assert.equal(channels[0].length, (played.length * 48000) / rate);
  assert.equal(onsets.length, beats.length);
  onsets.forEach((frame, beat) =>
    assert.ok(Math.abs(frame / 48000 - beats[beat]) < 0.001, `${frame / 48000} instead of ${beats[beat]}`),
  );
});

test("chunks that nobody can decode are silent, and the rest is where it belongs", async () => {
  for (const place of [1, 10, 45]) {
    const bytes = mono(played);
    bytes.set(broken, 44 + place * rate * 2);
    const { channels } = await decoded(bytes);
    assert.equal(channels[0].length, played.length);
    const heard = onsets(channels[0]);
    assert.ok(heard.length > 40 && heard.length < beats.length);
    for (const at of heard) {
      assert.ok(
        beats.some((beat) => Math.abs(beat * 1000 - at) < 1),
        String(at),
      );
    }
  }
});

test("what cannot be cut is decoded as a whole", async () => {
  const bytes = joined(mono(played));
  bytes.set([2, 0], 20); // says that its frames are packed
  const { chunks, channels } = await decoded(bytes);
  assert.equal(chunks.length, 1);
  assert.deepEqual(channels[0], played);
  assert.deepEqual(decodedLengths, [bytes.length]);
});

test("a backing track of which nothing can be decoded is an error, and leaves nothing behind", async () => {
  for (const bytes of [noise(100000), wave({ channels: 1, data: joined(broken, noise(1000)) })]) {
    await assert.rejects(decoded(bytes), /Unable to decode/);
    assert.equal(FakeWorker.running, 0);
  }
});

test("nobody has to listen to the end", async () => {
  for await (const chunk of decodeBackingTrack(mono(played), rate)) {
    assert.ok(chunk.first);
    break;
  }
  assert.equal(FakeWorker.running, 0);
});
