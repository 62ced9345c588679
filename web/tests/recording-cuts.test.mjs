import assert from "node:assert/strict";
import { test } from "node:test";
import { cutRecording } from "../src/backing-track/decode/recording-cuts.js";
import { frame, infoFrame, joined, little, noise, page, text, vorbisHead, wave } from "./support/audio-files.mjs";

const seconds = 50;
const frames = Array.from({ length: Math.ceil((seconds * 44100) / 1152) }, (_, index) => frame(index + 1));
const lengths = ({ parts }) => parts.map(({ length }) => length);
const sum = (numbers) => numbers.reduce((total, number) => total + number, 0);
const same = (one, other) => assert.ok(Buffer.compare(one, other) === 0);

test("a WAVE file is cut between frames, and each part is a file of its own", () => {
  const data = noise(seconds * 44100 * 4 + 3);
  const bytes = wave({ data, before: joined(text("LIST"), little(5), noise(6)) });
  const cuts = cutRecording(bytes);
  assert.equal(cuts.sampleRate, 44100);
  assert.ok(cuts.parts.length > 2);
  assert.equal(sum(lengths(cuts)), seconds * 44100);
  let at = 0;
  for (const part of cuts.parts) {
    same(cuts.fileOf(part), wave({ data: data.subarray(at, at + part.length * 4) }));
    at += part.length * 4;
  }
});

test("WAVE files whose frames cannot be told are not cut", () => {
  const data = noise(100000);
  assert.equal(cutRecording(wave({ format: 0x11, bits: 4, data })), null);
  assert.equal(cutRecording(wave({ rate: 1000, data })), null);
  assert.equal(cutRecording(wave({ data }).subarray(0, 30)), null);
});

test("a WAVE file that was never finished goes on to its end", () => {
  const bytes = wave({ data: noise(400000) });
  bytes.set(little(0), 40);
  assert.equal(sum(lengths(cutRecording(bytes))), 100000);
  bytes.set(little(0xffffffff), 40);
  assert.equal(sum(lengths(cutRecording(bytes))), 100000);
});

test("parts begin with little and go on with much", () => {
  const parts = lengths(cutRecording(wave({ data: noise(seconds * 44100 * 4) }))).map((length) => length / 44100);
  assert.ok(Math.abs(parts[0] - 4) < 0.1, String(parts));
  assert.ok(parts.slice(1, -1).every((length) => Math.abs(length - 16) < 0.1), String(parts));
});

test("an MP3 file is cut between frames, and each part begins some frames early", () => {
  const picture = joined(text("ID3"), [4, 0, 0, 0, 0, 4, 0], noise(512));
  const bytes = joined(picture, ...frames, text("TAG"), noise(125));
  const cuts = cutRecording(bytes);
  assert.equal(cuts.sampleRate, 44100);
  assert.equal(sum(lengths(cuts)), frames.length * 1152);
  let next = 0;
  for (const part of cuts.parts) {
    const lead = part.lead / 1152;
    assert.ok(next === 0 ? lead === 0 : lead > 3 && lead < 10, String(lead));
    const end = next + part.length / 1152;
    same(cuts.fileOf(part), joined(...frames.slice(next - lead, end)));
    next = end;
  }
});

test("what an encoder says of its padding is left out", () => {
  const [before, after] = [576, 1000];
  const cuts = cutRecording(joined(infoFrame(frames.length, before, after), ...frames));
  assert.equal(sum(lengths(cuts)), frames.length * 1152 - before - after);
  assert.equal(cuts.parts[0].from, 0, "the decoder has to read it");
  assert.equal(cuts.parts.at(-1).after, after - 529);
  const shortened = cutRecording(joined(infoFrame(frames.length, before, after), ...frames.slice(0, -100)));
  assert.equal(shortened.parts.at(-1).after, 0);
});

test("what is damaged in an MP3 file is left out", () => {
  const cuts = cutRecording(joined(...frames.slice(0, 600), noise(5000), ...frames.slice(600)));
  assert.equal(sum(lengths(cuts)), frames.length * 1152);
});

/** A Vorbis stream with so many samples a page. */
function stream(pages, samples, between = (index) => page({ packets: [noise(900, index + 1)], end: (index + 1) * samples })) {
  return { head: vorbisHead(), pages: Array.from({ length: pages }, (_, index) => between(index)) };
}

test("an Ogg file is cut between pages, and each part begins with the head of the stream", () => {
  const { head, pages } = stream(400, 5000);
  const cuts = cutRecording(joined(...head, ...pages));
  assert.equal(cuts.sampleRate, 44100);
  assert.ok(cuts.parts.length > 2);
  let next = 0;
  for (const part of cuts.parts) {
    const isLast = part === cuts.parts.at(-1);
    const count = isLast ? pages.length - next : Math.ceil((part.length || 4 * 44100) / 5000);
    const length = next > 0 ? count * 5000 : 0;
    assert.equal(part.length, length);
    const lead = next > 0 ? 4 : 0;
    same(cuts.fileOf(part), joined(...head, ...pages.slice(next - lead, next + count)));
    if (isLast) {
      same(cuts.fileOf({ ...part, to: part.leadTo }), joined(...head, ...pages.slice(next - lead, next)));
    }
    next += count;
  }
  assert.equal(next, pages.length);
});

test("a packet that takes several pages is not torn apart", () => {
  const { head, pages } = stream(400, 5000, (index) =>
    joined(page({ packets: [noise(510, index + 1)], end: -1, open: true }), page({ packets: [noise(100, index + 9)], end: (index + 1) * 5000 })),
  );
  const cuts = cutRecording(joined(...head, ...pages));
  const borders = cuts.parts.map(({ to }) => to - joined(...head).length);
  assert.ok(borders.every((border) => border % pages[0].length === 0), String(borders));
});

test("what is damaged in an Ogg file is left out, and time goes on", () => {
  const { head, pages } = stream(400, 5000);
  const cuts = cutRecording(joined(...head, ...pages.slice(0, 200), noise(3000), ...pages.slice(203)));
  const whole = cutRecording(joined(...head, ...pages));
  assert.deepEqual(lengths(cuts), lengths(whole));
});

test("Ogg files with several streams, or with another codec, are not cut", () => {
  const { head, pages } = stream(20, 5000);
  assert.equal(cutRecording(joined(...head, ...pages, ...head, ...pages)), null);
  assert.equal(cutRecording(joined(head[0], page({ packets: [noise(90)], end: 0, first: true, stream: 8 }), ...pages)), null);
  assert.equal(cutRecording(joined(page({ packets: [joined(text("\x7fFLAC"), noise(40))], end: 0, first: true }), ...pages)), null);
  assert.equal(cutRecording(joined(...head)), null);
});

test("other files are not cut", () => {
  assert.equal(cutRecording(new Uint8Array()), null);
  assert.equal(cutRecording(text("fLaC")), null);
  assert.equal(cutRecording(noise(100000)), null);
  assert.equal(cutRecording(joined(frames[0], frames[1], noise(80000))), null);
});
