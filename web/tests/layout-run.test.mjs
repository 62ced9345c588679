import assert from "node:assert/strict";
import { createRequire } from "node:module";
import { test } from "node:test";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;
const { LayoutRun, nextStep } = await import("../src/rendering/layout-run.js");

const width = 900;
const view = { left: 0, top: 0, right: width, bottom: 600 };
const bar = "c4.4 d4 e4 f4 |";

function drawing() {
  const settings = new alphaTab.Settings();
  settings.core.engine = "svg";
  settings.core.enableLazyLoading = true;
  const score = alphaTab.importer.ScoreLoader.loadAlphaTex(bar.repeat(120), settings);
  const renderer = new alphaTab.rendering.ScoreRenderer(settings);
  renderer.width = width;
  return { settings, score, renderer };
}

/** All pieces of a run, with what they were when they were delivered. */
function pieces(run) {
  const all = [];
  while (!run.finished) {
    const piece = run.step();
    if (piece) {
      all.push({ ...piece, painted: piece.parts.filter((part) => part.renderResult) });
      run.delivered(piece);
    }
  }
  return all;
}

const lines = (parts) => parts.filter((part) => part.firstMasterBarIndex >= 0).map((part) => [part.firstMasterBarIndex, part.lastMasterBarIndex]);

test("each bar is laid out once, in the lines of a layout in one go", () => {
  const { score, renderer } = drawing();
  const inPieces = pieces(new LayoutRun(renderer, score, [0], view)).flatMap((piece) => lines(piece.parts));
  const whole = drawing();
  const parts = [];
  whole.renderer.partialLayoutFinished.on((part) => parts.push(part));
  whole.renderer.renderScore(whole.score, [0]);
  assert.deepEqual(inPieces, lines(parts));
  assert.equal(inPieces.at(-1)[1], 119);
});

test("the first piece fills the view and is painted there, and what lies below is not painted", () => {
  const { score, renderer } = drawing();
  const all = pieces(new LayoutRun(renderer, score, [0], view));
  assert.ok(all.length > 1);
  const [first, ...others] = all;
  assert.ok(first.height >= view.bottom);
  assert.ok(first.painted.length > 3 && first.painted.every((part) => part.y < view.bottom));
  assert.ok(first.parts.every((part) => part.y >= view.bottom || first.painted.includes(part)));
  assert.ok(others.every((piece) => piece.painted.length === 0));
});

test("the pieces say which is the first and which the last, and their places cover all lines", () => {
  const { score, renderer } = drawing();
  const all = pieces(new LayoutRun(renderer, score, [0], view));
  assert.deepEqual(all.map((piece) => piece.first), all.map((_, index) => index === 0));
  assert.deepEqual(all.map((piece) => piece.last), all.map((_, index) => index === all.length - 1));
  const places = all.map((piece) => alphaTab.rendering.BoundsLookup.fromJson(piece.bounds, score).staffSystems.length);
  assert.equal(places.reduce((sum, count) => sum + count), all.flatMap((piece) => lines(piece.parts)).length);
  assert.ok(all.every((piece, index) => index === 0 || piece.height >= all[index - 1].height));
});

test("the first piece reaches as far as readers are to find themselves, and is painted there", () => {
  const there = { bar: 40, x: 0, y: 0, left: 0, top: 40 };
  const { score, renderer } = drawing();
  const [first, ...others] = pieces(new LayoutRun(renderer, score, [0], view, there));
  const line = (parts) => parts.find((part) => part.firstMasterBarIndex <= 40 && part.lastMasterBarIndex >= 40);
  assert.ok(first.first && line(first.painted) && others.length > 0);
  const wanted = line(first.parts).y - 40;
  assert.ok(wanted > view.bottom && first.height >= wanted + view.bottom);
  assert.ok(first.painted.every((part) => part.y + part.height > wanted - 50 && part.y < wanted + view.bottom + 50));
});

test("before a place near the end, and after one near the beginning, there is more to be seen", () => {
  const painted = (bar, top) => {
    const { score, renderer } = drawing();
    const all = pieces(new LayoutRun(renderer, score, [0], view, { bar, x: 0, y: 0, left: 0, top }));
    const end = all.at(-1).height;
    return { end, parts: all.filter((piece) => piece.first).at(-1).painted };
  };
  const atEnd = painted(119, 0);
  assert.ok(Math.min(...atEnd.parts.map((part) => part.y)) <= atEnd.end - view.bottom);
  const atBeginning = painted(8, 500);
  assert.ok(Math.max(...atBeginning.parts.map((part) => part.y + part.height)) >= view.bottom);
});

test("a place far on in an endless line is shown with all of it", (context) => {
  const [line, ...others] = lineOf(context, 1000, false, { bar: 100, x: 0, y: 0, left: 0, top: 40 });
  assert.deepEqual([others.length, line.first, line.last], [0, true, true]);
  assert.ok(line.painted.some((part) => part.firstMasterBarIndex <= 100 && part.lastMasterBarIndex >= 100));
  assert.ok(line.painted.every((part) => part.x > 2 * view.right));
});

test("what was not in view is painted later, without the places of its beats being kept", () => {
  const { score, renderer } = drawing();
  const last = pieces(new LayoutRun(renderer, score, [0], view)).at(-1).parts.at(-1);
  assert.equal(renderer.boundsLookup, null);
  const painted = [];
  renderer.partialRenderFinished.on((part) => painted.push(part));
  renderer.error.on((error) => assert.fail(error));
  renderer.renderResult(last.id);
  assert.deepEqual(painted.map(({ id }) => id), [last.id]);
  assert.ok(painted[0].renderResult);
});

test("a score that fits the view is one piece", () => {
  const { score, renderer } = drawing();
  const all = pieces(new LayoutRun(renderer, score, [0], { ...view, bottom: 100000 }));
  assert.equal(all.length, 1);
  assert.equal(all[0].painted.length, all[0].parts.length);
});

/** The pieces of the endless line, where every look at the clock takes so many milliseconds. */
function lineOf(context, look, atOnce, place = null) {
  let now = 0;
  context.mock.method(performance, "now", () => (now += look));
  const { settings, score, renderer } = drawing();
  settings.display.layoutMode = alphaTab.LayoutMode.Horizontal;
  const all = pieces(new LayoutRun(renderer, score, [0], view, place, atOnce));
  return all.map((piece) => ({
    ...piece,
    systems: alphaTab.rendering.BoundsLookup.fromJson(piece.bounds, score).staffSystems.map(({ bars }) => bars.length),
    ends: lines(piece.parts).at(-1)[1],
  }));
}

test("the places of an endless line are told of once, whatever the number of its parts", (context) => {
  const [line] = lineOf(context, 0.01, false);
  assert.ok(line.parts.length > 5);
  assert.deepEqual(line.systems, [120]);
  const [beginning, whole] = lineOf(context, 1000, false);
  assert.deepEqual([beginning.systems, whole.systems], [[beginning.ends + 1], [120]]);
});

test("an endless line that takes long begins before its end is known, as a notation of its own", (context) => {
  const [beginning, whole, ...others] = lineOf(context, 1000, false);
  assert.deepEqual(others, []);
  assert.ok(beginning.first && !beginning.last && beginning.width >= view.right && beginning.ends < 119);
  assert.ok(whole.first && whole.last && whole.width > beginning.width && whole.ends === 119);
  assert.ok(whole.painted.length > 0 && whole.painted.every((part) => part.x < view.right));
});

test("an endless line is shown as a whole when that is soon, or when it is asked for", (context) => {
  assert.deepEqual(lineOf(context, 0.01, false).map(({ first, last, ends }) => [first, last, ends]), [[true, true, 119]]);
  assert.deepEqual(lineOf(context, 1000, true).map(({ first, last, ends }) => [first, last, ends]), [[true, true, 119]]);
});

test("steps grow where bars are quick to lay out, shrink where they are slow, and never come to a stop", () => {
  assert.ok(nextStep(20, 15) > 20);
  assert.ok(nextStep(20, 240) < 20);
  assert.equal(nextStep(20, 0.01), 80);
  assert.ok(nextStep(4, 10000) >= 4);
});
