// @ts-check
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";
import { callNames, messageTypes } from "../src/bridge/bridge.js";

/** The names that the program's own half of the bridge is written with, in the order of the source. */
function names(file, pattern) {
  const source = readFileSync(new URL(`../../engine_host/bridge/${file}`, import.meta.url), "utf8");
  return Array.from(source.matchAll(pattern), (match) => match[1]);
}

test("the program makes exactly the calls that the page answers", () => {
  assert.deepEqual(names("BridgeCalls.cpp", /\bcall\("(\w+)"_L1/g), [...callNames]);
});

test("each call has its function in the program's catalogue", () => {
  const declared = names("BridgeCalls.h", /^QString (\w+)\(/gm).filter((name) => name !== "formatReal");
  assert.deepEqual(declared, [...callNames]);
});

test("the program reads exactly the messages that the page posts", () => {
  assert.deepEqual(names("BridgeMessages.cpp", /\btype == "(\w+)"_L1/g), [...messageTypes]);
});
