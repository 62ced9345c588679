// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { BackingTracks } from "../src/backing-track/backing-tracks.js";
import { standIn } from "./support/stand-in.mjs";

/** Lengths of what was decoded. */
const decoded = [];
/** @type {(bytes: Uint8Array) => boolean} */
let readable = () => true;

globalThis.OfflineAudioContext = standIn(
  class {
    async decodeAudioData(buffer) {
      decoded.push(buffer.byteLength);
      if (!readable(new Uint8Array(buffer))) {
        throw new Error("not read");
      }
      structuredClone(buffer, { transfer: [buffer] });
    }
  },
);

const large = 3 << 20;
const scoreWith = (rawAudioFile) => standIn({ backingTrack: rawAudioFile && { rawAudioFile } });

async function judged(bytes, isReadable) {
  decoded.length = 0;
  readable = isReadable;
  const backingTracks = new BackingTracks();
  const score = scoreWith(bytes);
  assert.equal(backingTracks.isWaiting(score), true);
  await backingTracks.prepare(score);
  assert.equal(backingTracks.isWaiting(score), false);
  assert.equal(bytes.length > 0, true, "the score keeps its backing track");
  return { backingTracks, score, backingTrack: backingTracks.of(score) };
}

test("of a large backing track only the beginning is decoded to see that it can be heard", async () => {
  const bytes = new Uint8Array(large);
  assert.equal((await judged(bytes, () => true)).backingTrack.file, bytes);
  assert.ok(Math.max(...decoded) < large / 4);
});

test("a backing track that needs its end to be read is heard", async () => {
  const bytes = new Uint8Array(large);
  assert.equal((await judged(bytes, (chunk) => chunk.length === large)).backingTrack.file, bytes);
});

test("a backing track that nobody can read is none", async () => {
  assert.equal((await judged(new Uint8Array(large), () => false)).backingTrack, null);
  assert.equal((await judged(new Uint8Array(100), () => false)).backingTrack, null);
  assert.deepEqual(decoded, [100]);
});

test("the file of a backing track stays with its score", async () => {
  const { score, backingTrack, backingTracks } = await judged(new Uint8Array(100), () => true);
  assert.equal(backingTrack.file.length, 100);
  assert.equal(score.backingTrack.rawAudioFile, backingTrack.file);
  assert.equal(backingTracks.of(score), backingTrack);
  backingTracks.giveUp(score);
  assert.equal(backingTracks.of(score), null);
  assert.equal(backingTracks.isWaiting(score), false);
});

test("a score without a backing track waits for nothing", () => {
  const backingTracks = new BackingTracks();
  assert.equal(backingTracks.isWaiting(scoreWith(null)), false);
  assert.equal(backingTracks.isWaiting(scoreWith(new Uint8Array())), false);
  assert.equal(backingTracks.of(scoreWith(null)), null);
});
