import assert from "node:assert/strict";
import { test } from "node:test";
import { Recordings } from "../src/backing-track/recordings.js";

/** Lengths of what was decoded. */
const decoded = [];
let readable = () => true;

globalThis.OfflineAudioContext = class {
  async decodeAudioData(buffer) {
    decoded.push(buffer.byteLength);
    if (!readable(new Uint8Array(buffer))) {
      throw new Error("not read");
    }
    structuredClone(buffer, { transfer: [buffer] });
  }
};

const large = 3 << 20;
const scoreWith = (rawAudioFile) => ({ backingTrack: rawAudioFile && { rawAudioFile } });

async function judged(bytes, isReadable) {
  decoded.length = 0;
  readable = isReadable;
  const recordings = new Recordings();
  const score = scoreWith(bytes);
  assert.equal(recordings.isWaiting(score), true);
  await recordings.prepare(score);
  assert.equal(recordings.isWaiting(score), false);
  assert.equal(bytes.length > 0, true, "the score keeps its recording");
  return { recordings, score, recording: recordings.of(score) };
}

test("of a large recording only the beginning is decoded to see that it can be heard", async () => {
  const bytes = new Uint8Array(large);
  assert.equal((await judged(bytes, () => true)).recording.file, bytes);
  assert.ok(Math.max(...decoded) < large / 4);
});

test("a recording that needs its end to be read is heard", async () => {
  const bytes = new Uint8Array(large);
  assert.equal((await judged(bytes, (part) => part.length === large)).recording.file, bytes);
});

test("a recording that nobody can read is none", async () => {
  assert.equal((await judged(new Uint8Array(large), () => false)).recording, null);
  assert.equal((await judged(new Uint8Array(100), () => false)).recording, null);
  assert.deepEqual(decoded, [100]);
});

test("the file of a recording stays with its score", async () => {
  const { score, recording, recordings } = await judged(new Uint8Array(100), () => true);
  assert.equal(recording.file.length, 100);
  assert.equal(score.backingTrack.rawAudioFile, recording.file);
  assert.equal(recordings.of(score), recording);
  recordings.giveUp(score);
  assert.equal(recordings.of(score), null);
  assert.equal(recordings.isWaiting(score), false);
});

test("a score without a recording waits for nothing", () => {
  const recordings = new Recordings();
  assert.equal(recordings.isWaiting(scoreWith(null)), false);
  assert.equal(recordings.isWaiting(scoreWith(new Uint8Array())), false);
  assert.equal(recordings.of(scoreWith(null)), null);
});
