// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { decodeBase64, encodeBase64 } from "../src/bridge/base64.js";

test("every byte value survives the way there and back", () => {
  const all = Uint8Array.from({ length: 256 * 300 }, (_, i) => (i * 7) & 0xff);
  assert.deepEqual(decodeBase64(encodeBase64(all)), all);
});

test("no bytes are an empty text", () => {
  assert.equal(encodeBase64(new Uint8Array()), "");
  assert.deepEqual(decodeBase64(""), new Uint8Array());
});

test("texts of every length, across the boundaries of blocks, become what they stand for", () => {
  for (const length of [1, 2, 3, 4, 5, 12287, 12288, 12289, 12290, 24576, 40000]) {
    const bytes = Uint8Array.from({ length }, (_, i) => (i * 31 + (i >> 8)) & 0xff);
    const text = Buffer.from(bytes).toString("base64");
    assert.deepEqual(decodeBase64(text), bytes);
    assert.deepEqual(decodeBase64(text.replace(/=+$/, "")), bytes, "without padding");
  }
});

test("a foreign character anywhere makes a text nothing", () => {
  const text = Buffer.alloc(30000, 7).toString("base64");
  for (const at of [0, 1, 16383, 16384, 20001, text.length - 1]) {
    for (const foreign of ["-", "=", " ", "\n", "\u00e9", "\u0141", "\u{1f3b8}"]) {
      const changed = text.slice(0, at) + foreign + text.slice(at + foreign.length);
      const ending = foreign === "=" && at === text.length - 1;
      assert.equal(decodeBase64(changed) === null, !ending, `${foreign} at ${at}`);
    }
  }
  for (const ending of ["A", "A===", "AB=", "ABCD=", "ABC=="]) {
    assert.equal(decodeBase64(ending), null, ending);
  }
});

test("a text that is not base64 is nothing", () => {
  assert.equal(decodeBase64("*** not base64 ***"), null);
  assert.equal(decodeBase64("Q"), null);
});
