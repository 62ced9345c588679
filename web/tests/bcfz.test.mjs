// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { unpack } from "../src/score-files/bcfz.js";
import { BitWriter, pack } from "./support/gpx-maker.mjs";

const limit = 1 << 20;
const ascii = (text) => Array.from(text, (letter) => letter.charCodeAt(0));

test("literal bytes come one to three at a time, and none at all", () => {
  const packed = new BitWriter()
    .literals(...ascii("abc"))
    .literals()
    .literals(0xff)
    .literals(0, 0x80)
    .file(6);
  assert.deepEqual([...unpack(packed, limit)], [...ascii("abc"), 0xff, 0, 0x80]);
});

test("a repetition looks back, in numbers of any width", () => {
  const start = new BitWriter().literals(...ascii("abc")).literals(...ascii("d"));
  assert.deepEqual(
    [...unpack(start.repetition(4, 2, 3).repetition(1, 1, 1).repetition(7, 7, 15).file(14), limit)],
    ascii("abcdabbabcdabb"),
  );
});

test("a repetition ends where it began", () => {
  const packed = new BitWriter()
    .literals(...ascii("ab"))
    .repetition(2, 7, 3)
    .literals(...ascii("c"))
    .file(5);
  assert.deepEqual([...unpack(packed, limit)], ascii("ababc"));
});

test("a repetition of nothing changes nothing", () => {
  const packed = new BitWriter()
    .literals(...ascii("a"))
    .repetition(0, 0, 0)
    .repetition(0, 5, 4)
    .repetition(1, 0, 1)
    .literals(...ascii("b"))
    .file(2);
  assert.deepEqual([...unpack(packed, limit)], ascii("ab"));
});

test("nothing comes beyond the length announced", () => {
  const packed = new BitWriter()
    .literals(...ascii("abc"))
    .repetition(3, 3, 2)
    .file(5);
  assert.deepEqual([...unpack(packed, limit)], ascii("abcab"));
  assert.deepEqual([...unpack(new BitWriter().literals(...ascii("abc")).file(2), limit)], ascii("ab"));
});

test("whatever is packed comes out again", () => {
  for (const length of [0, 1, 2, 3, 5, 4095, 100000]) {
    const content = Uint8Array.from({ length }, (_, i) => (i % 7 ? (i * i) >> 8 : i));
    assert.deepEqual(unpack(pack(content), limit), content);
  }
});

test("of a stream that breaks off comes what there is", () => {
  const content = Uint8Array.from({ length: 3000 }, (_, i) => (i * i) >> 6);
  const packed = pack(content);
  for (const length of [8, 9, 10, 11, 12, 500, packed.length - 1]) {
    const unpacked = unpack(packed.subarray(0, length), limit);
    assert.ok(
      unpacked === null || (unpacked.length < content.length && unpacked.every((byte, at) => byte === content[at])),
    );
  }
  assert.ok(unpack(packed.subarray(0, packed.length - 1), limit).length > content.length - 100);
  assert.equal(unpack(packed.subarray(0, 7), limit), null);
});

test("looking back to before the beginning is damage", () => {
  assert.equal(
    unpack(
      new BitWriter()
        .literals(...ascii("abc"))
        .repetition(4, 3, 3)
        .file(6),
      limit,
    ),
    null,
  );
});

test("more than the limit, or than there can be, is not even begun", () => {
  const stream = new BitWriter().literals(...ascii("abc"));
  for (let length = 3; length < 30000; length *= 2) {
    stream.repetition(length, length, 15);
  }
  const packed = stream.file(3 << 14);
  assert.equal(unpack(packed, 3 << 14).length, 3 << 14);
  assert.equal(unpack(packed, (3 << 14) - 1), null);
  assert.equal(unpack(new BitWriter().literals(...ascii("abc")).file(0x7fffffff), Infinity), null);
  assert.equal(unpack(new BitWriter().literals(...ascii("abc")).file(0xffffffff), Infinity), null);
});
