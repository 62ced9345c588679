// @ts-check
import assert from "node:assert/strict";
import { createRequire } from "node:module";
import { test } from "node:test";
import { standIn } from "./support/stand-in.mjs";

// What is waited for must not keep the tests from ending.
const { setTimeout: systemTimeout } = globalThis;
globalThis.setTimeout = standIn((work, ms) => systemTimeout(work, ms).unref());

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;
const { LayoutRun } = await import("../src/rendering/layout-run.js");
const { scoreOf, view, viewport } = await import("./support/fake-render-worker.mjs");

/** A render pass by the real layout, taken apart into layout batches as the worker sends them. */
function batches(score) {
  const settings = new alphaTab.Settings();
  settings.core.engine = "svg";
  settings.core.enableLazyLoading = true;
  const layout = new alphaTab.rendering.ScoreRenderer(settings);
  layout.width = view.right;
  const run = new LayoutRun(layout, score, [0], view);
  const all = [];
  while (!run.finished) {
    const next = run.step();
    if (next) {
      all.push(structuredClone(next));
      run.delivered(next);
    }
  }
  return all;
}

test("every beat of the layout batches that came can be found, and a click on it finds it, while the rest is on its way", () => {
  const { worker, renderer } = viewport();
  const score = scoreOf("c4.4 d4 e4 f4 |".repeat(120));
  renderer.renderScore(score, [0]);
  const { renderId } = worker.last;
  const all = batches(score);
  assert.ok(all.length > 1);
  const beats = score.tracks[0].staves[0].bars.flatMap((bar) => bar.voices[0].beats);
  let foundBefore = 0;
  for (const batch of all) {
    worker.answer({ kind: "drawn", renderId, batch });
    const found = beats.filter((beat) => renderer.boundsLookup.findBeat(beat));
    assert.ok(found.length > foundBefore);
    assert.deepEqual(found, beats.slice(0, found.length));
    for (const beat of found) {
      const { x, y, w, h } = renderer.boundsLookup.findBeat(beat).visualBounds;
      assert.equal(renderer.boundsLookup.getBeatAtPos(x + w / 2, y + h / 2), beat);
    }
    foundBefore = found.length;
  }
  assert.equal(foundBefore, beats.length);
});

test("a new notation knows nothing of the places of the one before", () => {
  const { worker, renderer } = viewport();
  const [before, after] = ["c4.4 d4 e4 f4 |", "g4.4 a4 |"].map((bar) => scoreOf(bar.repeat(4)));
  for (const score of [before, after]) {
    renderer.renderScore(score, [0]);
    const { renderId } = worker.last;
    batches(score).forEach((batch) => worker.answer({ kind: "drawn", renderId, batch }));
  }
  const [old, current] = [before, after].map((score) => score.tracks[0].staves[0].bars[0].voices[0].beats[0]);
  assert.ok(renderer.boundsLookup.findBeat(current));
  assert.equal(renderer.boundsLookup.staffSystems.flatMap((system) => system.bars).length, 4);
  assert.notEqual(renderer.boundsLookup.findBeat(current).beat, old);
});

test("the places of a whole notation are moved for another zoom, and the worker knows of which it is whole", () => {
  const { worker, renderer } = viewport();
  const score = scoreOf("c4.4 d4 e4 f4 |".repeat(120));
  renderer.renderScore(score, [0]);
  const all = batches(score);
  const draw = () => worker.asked.filter(({ cmd }) => cmd === "draw").at(-1);
  assert.equal(draw().whole, null);
  const { renderId } = draw();
  worker.answer({ kind: "drawn", renderId, batch: all[0] });
  renderer.render();
  assert.equal(draw().whole, null, "the rest of the first render pass will not come");
  all.forEach((batch) => worker.answer({ kind: "drawn", renderId: draw().renderId, batch }));
  renderer.render();
  assert.equal(draw().whole, renderId + 1);
  const beats = score.tracks[0].staves[0].bars.flatMap((bar) => bar.voices[0].beats);
  const places = () => beats.map((beat) => ({ ...renderer.boundsLookup.findBeat(beat).visualBounds }));
  const before = places();
  const rescaling = { ratio: 2, left: 12, top: 8 };
  const { partials, width, height } = all[0];
  const answer = { first: true, last: true, partials, bounds: null, rescaling, width, height };
  worker.answer({ kind: "drawn", renderId: draw().renderId, batch: answer });
  places().forEach(({ x, y, w, h }, index) => {
    const { x: left, y: top, w: across, h: down } = before[index];
    assert.deepEqual([x, y, w, h], [2 * left - 12, 2 * top - 8, 2 * across, 2 * down]);
    assert.equal(renderer.boundsLookup.getBeatAtPos(x + w / 2, y + h / 2), beats[index]);
  });
  renderer.render();
  assert.equal(draw().whole, renderId + 2);
});
