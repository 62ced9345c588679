// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { Emitter } from "../src/shared/emitter.js";
import { IdleCollection } from "../src/session/idle-collection.js";
import { pass } from "./support/clock.mjs";
import { watchCollections } from "./support/collections.mjs";
import { standIn } from "./support/stand-in.mjs";

/** A page at work; what is collected is written down. */
function page() {
  const collected = [];
  globalThis.gc = standIn(() => collected.push("page"));
  watchCollections(() => collected.push("page thoroughly"));
  globalThis.requestIdleCallback = standIn((callback) => callback());
  const api = {
    workerRenderer: { batchShown: new Emitter(), collectGarbage: () => collected.push("renderer") },
    playerReady: new Emitter(),
    playerStateChanged: new Emitter(),
    backingTrackPlayer: { collectGarbage: () => collected.push("sound") },
    synth: { collectGarbage: () => collected.push("synth") },
  };
  const playback = { playing: false };
  const view = new EventTarget();
  const collection = new IdleCollection(standIn(api), playback, view);
  return { collected, api, playback, view, collection };
}

const all = ["renderer", "synth", "sound", "page", "page", "page", "page thoroughly"];

test("the threads collect one after the other when nothing has happened for a while, the page once more after a time without new objects", () => {
  const { collected, api } = page();
  pass(20000);
  assert.deepEqual(collected, []);
  api.workerRenderer.batchShown.trigger();
  pass(5000);
  api.playerReady.trigger();
  pass(5000);
  assert.deepEqual(collected, []);
  pass(1100);
  assert.deepEqual(collected, ["renderer"]);
  pass(2000);
  assert.deepEqual(collected, all.slice(0, 5));
  pass(5000);
  assert.equal(collected.length, 5);
  pass(20000);
  assert.deepEqual(collected, all);
});

test("a reader's hands put it off", () => {
  const { collected, api, view } = page();
  api.workerRenderer.batchShown.trigger();
  for (let second = 0; second < 10; second++) {
    pass(1000);
    view.dispatchEvent(new Event(second % 2 === 0 ? "wheel" : "pointermove"));
  }
  assert.deepEqual(collected, []);
  pass(20000);
  assert.deepEqual(collected, all);
  view.dispatchEvent(new Event("wheel"));
  pass(20000);
  assert.equal(collected.length, all.length);
});

test("while the music plays the threads that sound do not collect; they do when the music stops", () => {
  const { collected, api, playback } = page();
  api.workerRenderer.batchShown.trigger();
  playback.playing = true;
  api.playerStateChanged.trigger();
  pass(20000);
  const others = ["renderer", "page", "page", "page"];
  assert.deepEqual(collected, others);
  playback.playing = false;
  api.playerStateChanged.trigger();
  pass(20000);
  assert.deepEqual(collected.slice(others.length), ["synth", "sound", "page thoroughly"]);
});

test("music that begins before the page has time to collect thoroughly is let play", () => {
  const { collected, api, playback } = page();
  const idleTimeoutMs = [];
  const passIdly = (milliseconds) => {
    pass(milliseconds);
    idleTimeoutMs.splice(0).forEach((callback) => callback());
  };
  globalThis.requestIdleCallback = (callback) => idleTimeoutMs.push(callback);
  api.workerRenderer.batchShown.trigger();
  pass(20000);
  playback.playing = true;
  passIdly(0);
  assert.deepEqual(collected, all.slice(0, -1));
  playback.playing = false;
  api.playerStateChanged.trigger();
  passIdly(20000);
  assert.deepEqual(collected, all);
});

test("the page collects when it has nothing else to do", () => {
  const { collected, api } = page();
  const idleTimeoutMs = [];
  globalThis.requestIdleCallback = (callback) => idleTimeoutMs.push(callback);
  api.workerRenderer.batchShown.trigger();
  pass(8000);
  assert.deepEqual(collected, ["renderer", "synth", "sound"]);
  pass(20000);
  idleTimeoutMs.forEach((callback) => callback());
  assert.deepEqual(collected, all);
});

test("Chromium that does not let the page collect is left alone", () => {
  const { collected, api } = page();
  delete globalThis.gc;
  api.workerRenderer.batchShown.trigger();
  pass(20000);
  assert.deepEqual(
    collected,
    all.filter((who) => who !== "page"),
  );
});
