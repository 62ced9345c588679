// @ts-check
import assert from "node:assert/strict";
import { createRequire } from "node:module";
import { test } from "node:test";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;
const { boundsOf } = await import("../src/rendering/bounds-text.js");
const { LayoutRun, nextStep } = await import("../src/rendering/layout-run.js");

const systemsOf = (batch, score) => batch.bounds.flatMap((text) => boundsOf(text, score).staffSystems);

const width = 900;
const view = { left: 0, top: 0, right: width, bottom: 600 };
const bar = "c4.4 d4 e4 f4 |";

function renderId() {
  const settings = new alphaTab.Settings();
  settings.core.engine = "svg";
  settings.core.enableLazyLoading = true;
  const score = alphaTab.importer.ScoreLoader.loadAlphaTex(bar.repeat(120), settings);
  const renderer = new alphaTab.rendering.ScoreRenderer(settings);
  renderer.width = width;
  return { settings, score, renderer };
}

/** All layout batches of a run, with what they were when they were delivered. */
function batches(run) {
  const all = [];
  while (!run.finished) {
    const batch = run.step();
    if (batch) {
      all.push({ ...batch, painted: batch.partials.filter((partial) => partial.renderResult) });
      run.delivered(batch);
    }
  }
  return all;
}

const systems = (partials) =>
  partials
    .filter((partial) => partial.firstMasterBarIndex >= 0)
    .map((partial) => [partial.firstMasterBarIndex, partial.lastMasterBarIndex]);

test("each bar is laid out once, in the lines of a layout in one go", () => {
  const { score, renderer } = renderId();
  const inPieces = batches(new LayoutRun(renderer, score, [0], view)).flatMap((batch) => systems(batch.partials));
  const whole = renderId();
  const partials = [];
  whole.renderer.partialLayoutFinished.on((partial) => partials.push(partial));
  whole.renderer.renderScore(whole.score, [0]);
  assert.deepEqual(inPieces, systems(partials));
  assert.equal(inPieces.at(-1)[1], 119);
});

test("the first layout batch fills the view and is painted there, and what lies below is not painted", () => {
  const { score, renderer } = renderId();
  const all = batches(new LayoutRun(renderer, score, [0], view));
  assert.ok(all.length > 1);
  const [first, ...others] = all;
  assert.ok(first.height >= view.bottom);
  assert.ok(first.painted.length > 3 && first.painted.every((partial) => partial.y < view.bottom));
  assert.ok(first.partials.every((partial) => partial.y >= view.bottom || first.painted.includes(partial)));
  assert.ok(others.every((batch) => batch.painted.length === 0));
});

test("the first step lays out some lines of one track, a few bars of many, and no more", (context) => {
  const { settings, score, renderer } = renderId();
  const first = (tracks) => {
    const asked = context.mock.method(renderer, "renderScore", () => {});
    new LayoutRun(renderer, score, tracks, view).step();
    asked.mock.restore();
    return settings.display.barCount;
  };
  assert.ok(first([0]) <= 40, "strings are chosen for all of them before anything is seen");
  assert.ok(first(Array(20).fill(0)) < first([0]));
});

test("the layout batches say which is the first and which the last, and their places cover all lines", () => {
  const { score, renderer } = renderId();
  const all = batches(new LayoutRun(renderer, score, [0], view));
  assert.deepEqual(
    all.map((batch) => batch.first),
    all.map((_, index) => index === 0),
  );
  assert.deepEqual(
    all.map((batch) => batch.last),
    all.map((_, index) => index === all.length - 1),
  );
  const places = all.map((batch) => systemsOf(batch, score).length);
  assert.equal(
    places.reduce((sum, count) => sum + count),
    all.flatMap((batch) => systems(batch.partials)).length,
  );
  assert.ok(all.every((batch, index) => index === 0 || batch.height >= all[index - 1].height));
});

test("a layout batch has the places of its own staff systems, not of one that is laid out anew", () => {
  const { score, renderer } = renderId();
  const all = batches(new LayoutRun(renderer, score, [0], view));
  assert.ok(all.length > 1);
  for (const batch of all) {
    const places = systemsOf(batch, score);
    assert.deepEqual(
      places.map(({ bars }) => [bars[0].index, bars.at(-1).index]),
      systems(batch.partials),
    );
  }
});

test("the first layout batch reaches as far as readers are to find themselves, and is painted there", (context) => {
  let now = 0;
  context.mock.method(performance, "now", () => (now += 60));
  const there = { bar: 40, x: 0, y: 0, left: 0, top: 40 };
  const { score, renderer } = renderId();
  const [first, ...others] = batches(new LayoutRun(renderer, score, [0], view, there));
  const system = (partials) =>
    partials.find((partial) => partial.firstMasterBarIndex <= 40 && partial.lastMasterBarIndex >= 40);
  assert.ok(first.first && system(first.painted) && others.length > 0);
  const wanted = system(first.partials).y - 40;
  assert.ok(wanted > view.bottom && first.height >= wanted + view.bottom);
  assert.ok(
    first.painted.every((partial) => partial.y + partial.height > wanted - 50 && partial.y < wanted + view.bottom + 50),
  );
});

test("before a place near the end, and after one near the beginning, there is more to be seen", () => {
  const painted = (bar, top) => {
    const { score, renderer } = renderId();
    const all = batches(new LayoutRun(renderer, score, [0], view, { bar, x: 0, y: 0, left: 0, top }));
    const end = all.at(-1).height;
    return { end, partials: all.filter((batch) => batch.first).at(-1).painted };
  };
  const atEnd = painted(119, 0);
  assert.ok(Math.min(...atEnd.partials.map((partial) => partial.y)) <= atEnd.end - view.bottom);
  const atBeginning = painted(8, 500);
  assert.ok(Math.max(...atBeginning.partials.map((partial) => partial.y + partial.height)) >= view.bottom);
});

test("a place far on in an endless line is shown with all of it", (context) => {
  const [system, ...others] = lineOf(context, 1000, false, { bar: 100, x: 0, y: 0, left: 0, top: 40 });
  assert.deepEqual([others.length, system.first, system.last], [0, true, true]);
  assert.ok(system.painted.some((partial) => partial.firstMasterBarIndex <= 100 && partial.lastMasterBarIndex >= 100));
  assert.ok(system.painted.every((partial) => partial.x > 2 * view.right));
});

test("what was not in view is painted later, without the places of its beats being kept", () => {
  const { score, renderer } = renderId();
  const last = batches(new LayoutRun(renderer, score, [0], view))
    .at(-1)
    .partials.at(-1);
  assert.equal(renderer.boundsLookup, null);
  const painted = [];
  renderer.partialRenderFinished.on((partial) => painted.push(partial));
  renderer.error.on((error) => assert.fail(error));
  renderer.renderResult(last.id);
  assert.deepEqual(
    painted.map(({ id }) => id),
    [last.id],
  );
  assert.ok(painted[0].renderResult);
});

test("a score that fits the view is one layout batch", () => {
  const { score, renderer } = renderId();
  const all = batches(new LayoutRun(renderer, score, [0], { ...view, bottom: 100000 }));
  assert.equal(all.length, 1);
  assert.equal(all[0].painted.length, all[0].partials.length);
});

/** The layout batches of the endless line, where every look at the clock takes so many milliseconds. */
function lineOf(context, look, atOnce, anchor = null) {
  let now = 0;
  context.mock.method(performance, "now", () => (now += look));
  const { settings, score, renderer } = renderId();
  settings.display.layoutMode = alphaTab.LayoutMode.Horizontal;
  const all = batches(new LayoutRun(renderer, score, [0], view, anchor, atOnce));
  return all.map((batch) => ({
    ...batch,
    systems: systemsOf(batch, score).map(({ bars }) => bars.length),
    ends: systems(batch.partials).at(-1)[1],
  }));
}

test("the places of an endless line are told of once, whatever the number of its partials", (context) => {
  const [system] = lineOf(context, 0.01, false);
  assert.ok(system.partials.length > 5);
  assert.deepEqual(system.systems, [120]);
  const [beginning, whole] = lineOf(context, 1000, false);
  assert.deepEqual([beginning.systems, whole.systems], [[beginning.ends + 1], [120]]);
});

test("an endless line that takes long begins before its end is known, as a notation of its own", (context) => {
  const [beginning, whole, ...others] = lineOf(context, 1000, false);
  assert.deepEqual(others, []);
  assert.ok(beginning.first && !beginning.last && beginning.width >= view.right && beginning.ends < 119);
  assert.ok(whole.first && whole.last && whole.width > beginning.width && whole.ends === 119);
  assert.ok(whole.painted.length > 0 && whole.painted.every((partial) => partial.x < view.right));
});

test("an endless line is shown as a whole when that is soon, or when it is asked for", (context) => {
  assert.deepEqual(
    lineOf(context, 0.01, false).map(({ first, last, ends }) => [first, last, ends]),
    [[true, true, 119]],
  );
  assert.deepEqual(
    lineOf(context, 1000, true).map(({ first, last, ends }) => [first, last, ends]),
    [[true, true, 119]],
  );
});

test("steps grow where bars are quick to lay out, shrink where they are slow, and never come to a stop", () => {
  assert.ok(nextStep(20, 15) > 20);
  assert.ok(nextStep(20, 240) < 20);
  assert.equal(nextStep(20, 0.01), 80);
  assert.ok(nextStep(4, 10000) >= 4);
});
