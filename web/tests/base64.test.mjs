import assert from "node:assert/strict";
import { test } from "node:test";
import { decodeBase64, encodeBase64 } from "../src/base64.js";

test("every byte value survives the way there and back", () => {
  const all = Uint8Array.from({ length: 256 * 300 }, (_, i) => (i * 7) & 0xff);
  assert.deepEqual(decodeBase64(encodeBase64(all)), all);
});

test("no bytes are an empty text", () => {
  assert.equal(encodeBase64(new Uint8Array()), "");
  assert.deepEqual(decodeBase64(""), new Uint8Array());
});

test("a text that is not base64 is nothing", () => {
  assert.equal(decodeBase64("*** not base64 ***"), null);
  assert.equal(decodeBase64("Q"), null);
});
