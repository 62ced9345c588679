import assert from "node:assert/strict";
import { test } from "node:test";
import { Emitter } from "../src/emitter.js";
import { Tidying } from "../src/tidying.js";
import { pass } from "./support/clock.mjs";

/** A page at work; what is collected is written down. */
function page() {
  const collected = [];
  globalThis.gc = () => collected.push("page");
  const api = {
    drawing: { pieceShown: new Emitter(), tidy: () => collected.push("drawing") },
    playerReady: new Emitter(),
    playerStateChanged: new Emitter(),
    synth: { tidy: () => collected.push("synth") },
  };
  const playback = { playing: false };
  const view = new EventTarget();
  const tidying = new Tidying(api, playback, view);
  return { collected, api, playback, view, tidying };
}

const all = ["drawing", "synth", "page", "drawing", "synth", "page"];

test("each thread collects twice, one after the other, when nothing has happened for a while", () => {
  const { collected, api } = page();
  pass(20000);
  assert.deepEqual(collected, []);
  api.drawing.pieceShown.trigger();
  pass(5000);
  api.playerReady.trigger();
  pass(5000);
  assert.deepEqual(collected, []);
  pass(1100);
  assert.deepEqual(collected, ["drawing"]);
  pass(20000);
  assert.deepEqual(collected, all);
});

test("a reader's hands put it off", () => {
  const { collected, api, view } = page();
  api.drawing.pieceShown.trigger();
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

test("while the music plays only the drawing worker collects; the others do when it stops", () => {
  const { collected, api, playback } = page();
  api.drawing.pieceShown.trigger();
  playback.playing = true;
  api.playerStateChanged.trigger();
  pass(20000);
  assert.deepEqual(collected, ["drawing", "drawing"]);
  playback.playing = false;
  api.playerStateChanged.trigger();
  pass(20000);
  assert.deepEqual(collected.slice(2), ["synth", "page", "synth", "page"]);
});

test("a web engine that does not let the page collect is left alone", () => {
  const { collected, api } = page();
  delete globalThis.gc;
  api.drawing.pieceShown.trigger();
  pass(20000);
  assert.deepEqual(collected, all.filter((who) => who !== "page"));
});
