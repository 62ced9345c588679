// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { segmentsOf } from "../src/backing-track/decode/segments.js";
import { frame, infoFrame, joined, little, noise, page, text, vorbisHead, wave } from "./support/audio-files.mjs";

const seconds = 50;
const frames = Array.from({ length: Math.ceil((seconds * 44100) / 1152) }, (_, index) => frame(index + 1));
const lengths = ({ segments }) => segments.map(({ length }) => length);
const sum = (numbers) => numbers.reduce((total, number) => total + number, 0);
const same = (one, other) => assert.ok(Buffer.compare(one, other) === 0);

test("a WAVE file is cut between frames, and each segment is a file of its own", () => {
  const data = noise(seconds * 44100 * 4 + 3);
  const bytes = wave({ data, before: joined(text("LIST"), little(5), noise(6)) });
  const file = segmentsOf(bytes);
  assert.equal(file.sampleRate, 44100);
  assert.ok(file.segments.length > 2);
  assert.equal(sum(lengths(file)), seconds * 44100);
  let at = 0;
  for (const segment of file.segments) {
    same(file.fileOf(segment), wave({ data: data.subarray(at, at + segment.length * 4) }));
    at += segment.length * 4;
  }
});

test("WAVE files whose frames cannot be told are not cut", () => {
  const data = noise(100000);
  assert.equal(segmentsOf(wave({ format: 0x11, bits: 4, data })), null);
  assert.equal(segmentsOf(wave({ rate: 1000, data })), null);
  assert.equal(segmentsOf(wave({ data }).subarray(0, 30)), null);
});

test("a WAVE file that was never finished goes on to its end", () => {
  const bytes = wave({ data: noise(400000) });
  bytes.set(little(0), 40);
  assert.equal(sum(lengths(segmentsOf(bytes))), 100000);
  bytes.set(little(0xffffffff), 40);
  assert.equal(sum(lengths(segmentsOf(bytes))), 100000);
});

test("segments begin with little and go on with much", () => {
  const segments = lengths(segmentsOf(wave({ data: noise(seconds * 44100 * 4) }))).map((length) => length / 44100);
  assert.ok(Math.abs(segments[0] - 4) < 0.1, String(segments));
  assert.ok(
    segments.slice(1, -1).every((length) => Math.abs(length - 16) < 0.1),
    String(segments),
  );
});

test("an MP3 file is cut between frames, and each segment begins some frames early", () => {
  const picture = joined(text("ID3"), [4, 0, 0, 0, 0, 4, 0], noise(512));
  const bytes = joined(picture, ...frames, text("TAG"), noise(125));
  const file = segmentsOf(bytes);
  assert.equal(file.sampleRate, 44100);
  assert.equal(sum(lengths(file)), frames.length * 1152);
  let next = 0;
  for (const segment of file.segments) {
    const lead = segment.lead / 1152;
    assert.ok(next === 0 ? lead === 0 : lead > 3 && lead < 10, String(lead));
    const end = next + segment.length / 1152;
    same(file.fileOf(segment), joined(...frames.slice(next - lead, end)));
    next = end;
  }
});

test("what an encoder says of its padding is left out", () => {
  const [before, after] = [576, 1000];
  const file = segmentsOf(joined(infoFrame(frames.length, before, after), ...frames));
  assert.equal(sum(lengths(file)), frames.length * 1152 - before - after);
  assert.equal(file.segments[0].from, 0, "the decoder has to read it");
  assert.equal(file.segments.at(-1).after, after - 529);
  const shortened = segmentsOf(joined(infoFrame(frames.length, before, after), ...frames.slice(0, -100)));
  assert.equal(shortened.segments.at(-1).after, 0);
});

test("what is damaged in an MP3 file is left out", () => {
  const file = segmentsOf(joined(...frames.slice(0, 600), noise(5000), ...frames.slice(600)));
  assert.equal(sum(lengths(file)), frames.length * 1152);
});

/** A Vorbis stream with so many samples a page. */
function stream(
  pages,
  samples,
  between = (index) => page({ packets: [noise(900, index + 1)], end: (index + 1) * samples }),
) {
  return { head: vorbisHead(), pages: Array.from({ length: pages }, (_, index) => between(index)) };
}

test("an Ogg file is cut between pages, and each segment begins with the head of the stream", () => {
  const { head, pages } = stream(400, 5000);
  const file = segmentsOf(joined(...head, ...pages));
  assert.equal(file.sampleRate, 44100);
  assert.ok(file.segments.length > 2);
  let next = 0;
  for (const segment of file.segments) {
    const isLast = segment === file.segments.at(-1);
    const count = isLast ? pages.length - next : Math.ceil((segment.length || 4 * 44100) / 5000);
    const length = next > 0 ? count * 5000 : 0;
    assert.equal(segment.length, length);
    const lead = next > 0 ? 4 : 0;
    same(file.fileOf(segment), joined(...head, ...pages.slice(next - lead, next + count)));
    if (isLast) {
      same(file.fileOf({ ...segment, to: segment.leadTo }), joined(...head, ...pages.slice(next - lead, next)));
    }
    next += count;
  }
  assert.equal(next, pages.length);
});

test("a packet that takes several pages is not torn apart", () => {
  const { head, pages } = stream(400, 5000, (index) =>
    joined(
      page({ packets: [noise(510, index + 1)], end: -1, open: true }),
      page({ packets: [noise(100, index + 9)], end: (index + 1) * 5000 }),
    ),
  );
  const file = segmentsOf(joined(...head, ...pages));
  const boundaries = file.segments.map(({ to }) => to - joined(...head).length);
  assert.ok(
    boundaries.every((boundary) => boundary % pages[0].length === 0),
    String(boundaries),
  );
});

test("what is damaged in an Ogg file is left out, and time goes on", () => {
  const { head, pages } = stream(400, 5000);
  const file = segmentsOf(joined(...head, ...pages.slice(0, 200), noise(3000), ...pages.slice(203)));
  const whole = segmentsOf(joined(...head, ...pages));
  assert.deepEqual(lengths(file), lengths(whole));
});

test("Ogg files with several streams, or with another codec, are not cut", () => {
  const { head, pages } = stream(20, 5000);
  assert.equal(segmentsOf(joined(...head, ...pages, ...head, ...pages)), null);
  assert.equal(
    segmentsOf(joined(head[0], page({ packets: [noise(90)], end: 0, first: true, stream: 8 }), ...pages)),
    null,
  );
  assert.equal(
    segmentsOf(joined(page({ packets: [joined(text("\x7fFLAC"), noise(40))], end: 0, first: true }), ...pages)),
    null,
  );
  assert.equal(segmentsOf(joined(...head)), null);
});

test("other files are not cut", () => {
  assert.equal(segmentsOf(new Uint8Array()), null);
  assert.equal(segmentsOf(text("fLaC")), null);
  assert.equal(segmentsOf(noise(100000)), null);
  assert.equal(segmentsOf(joined(frames[0], frames[1], noise(80000))), null);
});
