// @ts-check
import assert from "node:assert/strict";
import { createRequire } from "node:module";
import { test } from "node:test";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;
const { changePageLayouts } = await import("../src/alphatab/internals/alphatab-internals.js");
const { fullestBar, layOutSample } = await import("../src/rendering/sample-layout.js");

/** @type {Map<object, number[]>} the bars that each renderer has laid out on a page */
const laidOut = new Map();
changePageLayouts((layout, renderer) => {
  const bars = [];
  laidOut.set(renderer, bars);
  const { registerBarRenderer } = layout;
  layout.registerBarRenderer = (staff, /** @type {any} */ bar) => {
    bars.push(bar.bar.index);
    registerBarRenderer.call(layout, staff, bar);
  };
});

const settings = new alphaTab.Settings();
settings.core.engine = "svg";
settings.core.logLevel = alphaTab.LogLevel.None;
const tex = `\\track \\staff {score} r.1 | r.1 | c4.4 (d4 e4) f4 g4 | r.1 | c4.1 |
  \\track \\staff {score} c4.16 d4 e4 f4 g4 a4 b4 c5 r.2 | r.1 | r.1 | r.1 | r.1`;
const score = alphaTab.importer.ScoreLoader.loadAlphaTex(tex, settings);

test("the fullest bar is that with the most notes of the tracks that are shown", () => {
  assert.equal(fullestBar(score, score.tracks), 0);
  assert.equal(fullestBar(score, [score.tracks[0]]), 2);
});

for (const layoutMode of [alphaTab.LayoutMode.Page, alphaTab.LayoutMode.Horizontal]) {
  test(`the sample of a score in layout ${layoutMode} is the fullest bar and the next, with its renderer unchanged`, () => {
    settings.display.layoutMode = layoutMode;
    const renderer = new alphaTab.rendering.ScoreRenderer(settings);
    renderer.width = 800;
    renderer.renderScore(score, [0]);
    const sample = layOutSample(renderer);
    assert.deepEqual([...new Set(laidOut.get(sample))], [2, 3]);
    assert.deepEqual([settings.display.startBar, settings.display.barCount], [1, -1]);
  });
}
