// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { Notice } from "../src/score-view/notice.js";
import { standIn } from "./support/stand-in.mjs";

/** A notice on an element that is as much as it needs, and what is put off. @param {import("node:test").TestContext} t */
function noticeOf(t) {
  const held = new Map();
  t.mock.method(globalThis, "setTimeout", (run) => held.set(held.size + 1, run) && held.size);
  t.mock.method(globalThis, "clearTimeout", (id) => held.delete(id));
  const element = { hidden: true, className: "", textContent: "", style: {} };
  const runTimers = () => [...held.values()].forEach((run) => run());
  return { element, notice: new Notice(standIn(element)), runTimers };
}

test("a second problem is said in the place of the first, and goes after a while", (t) => {
  const { element, notice, runTimers } = noticeOf(t);
  notice.tellProblem("The file is empty.");
  notice.tellProblem("The score has no music in it.");
  assert.equal(element.textContent, "The score has no music in it.");
  assert.ok(!element.hidden);
  runTimers();
  assert.ok(element.hidden);
});

test("what lasts is said again after what passes, and goes when it is over", (t) => {
  const { element, notice, runTimers } = noticeOf(t);
  notice.keep("There is no audio output any more. The music goes on when it is back.");
  notice.tellProblem("The file is empty.");
  assert.equal(element.textContent, "The file is empty.");
  runTimers();
  assert.match(element.textContent, /^There is no audio output/);
  assert.ok(!element.hidden);
  notice.keep(null);
  assert.ok(element.hidden);
});
