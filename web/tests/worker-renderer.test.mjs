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
const { boundsText } = await import("../src/rendering/bounds-text.js");
const { WorkerRenderer } = await import("../src/rendering/worker-renderer.js");
const { FakeWorker, batch, scoreOf, view, viewport } = await import("./support/fake-render-worker.mjs");

test("a score that the worker has read is asked for by its number", () => {
  const { worker, renderer } = viewport();
  const bytes = new Uint8Array([1, 2, 3]);
  const file = renderer.read(bytes);
  assert.deepEqual({ ...worker.last }, { cmd: "read", file, bytes });
  const score = scoreOf("c4");
  renderer.recognize(score, file);
  renderer.renderScore(score, [0]);
  const { cmd, file: drawn, score: sent, tracks, width, view: seen } = worker.last;
  assert.deepEqual(
    { cmd, drawn, sent, tracks, width, seen },
    { cmd: "draw", drawn: file, sent: null, tracks: [0], width: 900, seen: view },
  );
});

test("the worker is told how wide letters are, which only the page can measure", () => {
  const { worker, renderer } = viewport();
  standIn(alphaTab.platform).FontSizes.fontSizeLookupTables.set("Measured Serif", [[3, 5, 8]]);
  renderer.renderScore(scoreOf("c4"), [0]);
  assert.deepEqual(worker.last.textWidths.get("Measured Serif"), [[3, 5, 8]]);
});

test("files are numbered one by one, and a long one, with a backing track in it, is not read twice", () => {
  const { worker, renderer } = viewport();
  assert.notEqual(renderer.read(new Uint8Array(9)), renderer.read(new Uint8Array(9)));
  assert.equal(renderer.read(new Uint8Array(5 << 20)), null);
  assert.equal(worker.count("read"), 2);
});

test("any other score is handed over, once, as it is but for its backing track", () => {
  const { worker, renderer } = viewport();
  const score = scoreOf('\\title "Tune" . c4 d4');
  score.backingTrack = new alphaTab.model.BackingTrack();
  score.backingTrack.rawAudioFile = new Uint8Array(1000);
  renderer.renderScore(score, [0]);
  const first = worker.last;
  const arrived = alphaTab.model.JsonConverter.jsObjectToScore(first.score);
  assert.equal(arrived.title, "Tune");
  assert.equal(arrived.tracks[0].staves[0].bars[0].voices[0].beats.length, 2);
  assert.equal(arrived.backingTrack, undefined);
  renderer.render();
  assert.equal(worker.last.score, null);
  assert.equal(worker.last.file, first.file);
  renderer.renderScore(scoreOf("e4"), [0]);
  assert.notEqual(worker.last.file, first.file);
});

test("what the worker no longer has is handed over", () => {
  const { worker, renderer, take } = viewport();
  const score = scoreOf("c4");
  renderer.recognize(score, renderer.read(new Uint8Array(9)));
  renderer.renderScore(score, [0]);
  const before = worker.last;
  renderer.read(new Uint8Array(9)); // comes to nothing
  worker.answer({ kind: "missing", renderId: before.renderId });
  assert.equal(worker.count("draw"), 2);
  assert.ok(worker.last.score);
  assert.notEqual(worker.last.file, before.file);
  worker.answer({ kind: "drawn", renderId: worker.last.renderId, batch: batch(["A"], { first: true, last: true }) });
  assert.equal(take().at(-1), "shown first last");
});

test("without a width, a score or a track there is nothing to draw", () => {
  const { worker, renderer } = viewport();
  renderer.render();
  renderer.renderScore(scoreOf("c4"), []);
  renderer.renderScore(scoreOf("c4"), null);
  renderer.width = 0;
  renderer.renderScore(scoreOf("c4"), [0]);
  assert.equal(worker.count("draw"), 0);
  renderer.width = 500;
  renderer.resizeRender();
  assert.equal(worker.last.width, 500);
});

test("another width draws pages anew, and a line without an end only when it has not been drawn", () => {
  const { worker, renderer } = viewport();
  const settings = new alphaTab.Settings();
  const draws = (act) => {
    const before = worker.count("draw");
    act();
    return worker.count("draw") - before;
  };
  renderer.updateSettings(settings);
  renderer.renderScore(scoreOf("c4"), [0]);
  assert.equal(
    draws(() => renderer.resizeRender()),
    1,
  );
  settings.display.layoutMode = alphaTab.LayoutMode.Horizontal;
  renderer.updateSettings(settings);
  assert.equal(
    draws(() => renderer.render()),
    1,
  );
  assert.equal(
    draws(() => renderer.resizeRender()),
    0,
  );
  renderer.width = 0;
  assert.equal(
    draws(() => renderer.renderScore(scoreOf("d4"), [0])),
    0,
  );
  renderer.width = 500;
  assert.equal(
    draws(() => renderer.resizeRender()),
    1,
  );
  settings.display.layoutMode = alphaTab.LayoutMode.Page;
  renderer.updateSettings(settings);
  assert.equal(
    draws(() => renderer.resizeRender()),
    1,
  );
});

test("a line without an end is drawn anew as a whole, and begins when it is new", () => {
  const { worker, renderer } = viewport();
  const settings = new alphaTab.Settings();
  const drawn = (act) => {
    act();
    const { renderId, atOnce } = worker.last;
    worker.answer({ kind: "drawn", renderId, batch: batch(["A"], { first: true, last: true }) });
    return atOnce;
  };
  const lay = (/** @type {"Horizontal" | "Page"} */ layout) => {
    settings.display.layoutMode = alphaTab.LayoutMode[layout];
    renderer.updateSettings(settings);
    renderer.render();
  };
  assert.equal(
    drawn(() => renderer.renderScore(scoreOf("c4"), [0])),
    false,
  );
  assert.equal(
    drawn(() => renderer.render()),
    false,
  );
  assert.equal(
    drawn(() => lay("Horizontal")),
    false,
  );
  assert.equal(
    drawn(() => renderer.render()),
    true,
  );
  assert.equal(
    drawn(() => renderer.renderScore(scoreOf("d4"), [0])),
    false,
  );
  assert.equal(
    drawn(() => lay("Page")),
    false,
  );
});

/** A score on the score page, five lines of two bars at 200 pixels each, at a viewport that can be scrolled. */
function reading() {
  const scrolled = {
    top: 0,
    get position() {
      return { left: 0, top: this.top };
    },
    get view() {
      return { ...view, top: this.top, bottom: this.top + 600 };
    },
    moveTo({ top }) {
      this.top = Math.max(top, 0);
    },
  };
  const { worker, renderer } = viewport(scrolled);
  const score = scoreOf("c4 | d4 | e4 | f4 | g4 | a4 | b4 | c5 | d5 | e5");
  const linesOf = (height) => {
    const bounds = new alphaTab.rendering.BoundsLookup();
    for (let bar = 0; bar < 10; bar++) {
      const all = { x: (bar % 2) * 450, y: Math.floor(bar / 2) * height, w: 450, h: height };
      const box = () => Object.assign(new alphaTab.rendering.Bounds(), all);
      if (bar % 2 === 0) {
        const system = new alphaTab.rendering.StaffSystemBounds();
        bounds.addStaffSystem(Object.assign(system, { visualBounds: box(), realBounds: box() }));
      }
      const one = new alphaTab.rendering.MasterBarBounds();
      bounds.addMasterBar(
        Object.assign(one, { index: bar, visualBounds: box(), realBounds: box(), lineAlignedBounds: box() }),
      );
    }
    return bounds.staffSystems.map(boundsText);
  };
  const answer = (height) => {
    const { renderId, anchor } = worker.last;
    const all = { ...batch(["A"], { first: true, last: true, height: 5 * height }), bounds: linesOf(height) };
    worker.answer({ kind: "drawn", renderId, batch: all });
    return anchor;
  };
  renderer.renderScore(score, [0]);
  assert.equal(answer(200), null);
  return { worker, scrolled, renderer, answer, linesOf };
}

test("what is shown again has its size at once, so that readers who are led there have not moved", () => {
  const { worker, scrolled, renderer, linesOf } = reading();
  let end = 1000;
  renderer.renderFinished.on(({ totalHeight }) => {
    end = totalHeight - 600;
    scrolled.top = Math.min(scrolled.top, end);
  });
  Object.assign(scrolled, { moveTo: (/** @type {any} */ { top }) => (scrolled.top = Math.min(top, end)) });
  scrolled.top = 400;
  const again = (/** @type {number} */ height) => {
    renderer.render();
    const { renderId, anchor } = worker.last;
    const lines = linesOf(height);
    const first = batch(["A"], { first: true, height: 5 * height });
    worker.answer({
      kind: "drawn",
      renderId,
      batch: { ...first, bounds: lines.slice(2, 4), allPartials: true },
    });
    const rest = batch([], { last: true, height: 5 * height });
    worker.answer({ kind: "drawn", renderId, batch: { ...rest, bounds: lines, allBounds: true } });
    return anchor;
  };
  const anchor = again(140);
  assert.equal(scrolled.top, 100);
  assert.deepEqual(again(200), anchor);
  assert.equal(scrolled.top, 400);
});

test("of what is shown again the bounds in view come first, and then take their place among all", () => {
  const { worker, scrolled, renderer, linesOf } = reading();
  scrolled.top = 390;
  renderer.render();
  const { renderId } = worker.last;
  const bars = () => renderer.boundsLookup.staffSystems.flatMap((system) => system.bars.map(({ index }) => index));
  const lines = linesOf(400);
  const near = { ...batch(["A"], { first: true, height: 2000 }), bounds: lines.slice(2, 3) };
  worker.answer({ kind: "drawn", renderId, batch: near });
  assert.deepEqual(bars(), [4, 5]);
  assert.equal(scrolled.top, 790);
  const rest = { ...batch([], { last: true, height: 2000 }), bounds: lines, allBounds: true };
  worker.answer({ kind: "drawn", renderId, batch: rest });
  assert.deepEqual(bars(), [0, 1, 2, 3, 4, 5, 6, 7, 8, 9]);
  assert.equal(renderer.boundsLookup.findMasterBarByIndex(9).visualBounds.y, 1600);
  assert.equal(scrolled.top, 790);
});

test("readers find themselves again when the score is drawn anew, until they move", () => {
  const { scrolled, renderer, answer } = reading();
  scrolled.top = 390;
  renderer.render();
  assert.equal(answer(400).bar, 4);
  assert.equal(scrolled.top, 790);
  assert.equal(renderer.drewAgain, true);
  // Back to where it was, by the same bar, though another is first in between.
  renderer.render();
  assert.equal(answer(100).bar, 4);
  assert.equal(scrolled.top, 190);
  scrolled.top = 95;
  renderer.render();
  assert.equal(answer(200).bar, 2);
  assert.equal(scrolled.top, 195);
});

test("the place before the score page changed counts, and what is on it stays there until it is drawn anew", () => {
  const { scrolled, renderer, answer } = reading();
  scrolled.top = 390;
  renderer.changeScorePage(() => (scrolled.top = 530));
  assert.equal(scrolled.top, 390);
  scrolled.top = 530;
  renderer.render();
  renderer.render();
  assert.equal(answer(200).bar, 4);
  assert.equal(scrolled.top, 390);
});

test("readers go with the cursor while they see it, and the beginning stays at the top", () => {
  const { scrolled, renderer, answer } = reading();
  renderer.cursorBar = 6;
  renderer.changeScorePage(() => {});
  renderer.render();
  assert.equal(answer(400), null);
  scrolled.top = 900;
  renderer.render();
  assert.equal(answer(200).bar, 6);
  assert.equal(scrolled.top, 300);
  renderer.cursorBar = 2;
  renderer.render();
  assert.equal(answer(200).bar, 2);
});

test("another score is not read where the one before was", () => {
  const { scrolled, renderer, answer } = reading();
  scrolled.top = 390;
  renderer.changeScorePage(() => {});
  renderer.renderScore(scoreOf("c5"), [0]);
  assert.equal(answer(200), null);
  assert.deepEqual([scrolled.top, renderer.drewAgain, renderer.cursorBar], [390, false, null]);
});

test("the first layout batch makes a new notation and shows it, the next ones add to it, the last tells the length", () => {
  const { worker, renderer, take } = viewport();
  renderer.renderScore(scoreOf("c4"), [0]);
  const { renderId } = worker.last;
  worker.answer({ kind: "drawn", renderId, batch: batch(["A", "b"], { first: true, height: 200 }) });
  assert.deepEqual(take(), ["new notation", "bounds of A", "picture of A", "bounds of b", "200 high", "shown first"]);
  worker.answer({ kind: "drawn", renderId, batch: batch(["c"], { height: 300 }) });
  assert.deepEqual(take(), ["bounds of c", "remainder shown"]);
  worker.answer({ kind: "drawn", renderId, batch: batch(["d"], { last: true, height: 400 }) });
  assert.deepEqual(take(), ["bounds of d", "remainder shown", "400 high", "shown last"]);
});

test("a partial that came into view is painted on demand", () => {
  const { worker, renderer, take } = viewport();
  renderer.renderScore(scoreOf("c4"), [0]);
  const { renderId } = worker.last;
  worker.answer({ kind: "drawn", renderId, batch: batch(["a", "b"], { first: true, last: true }) });
  take();
  renderer.renderResult("b");
  assert.deepEqual(worker.last, { cmd: "paint", id: "b" });
  worker.answer({ kind: "painted", renderId, partial: { id: "b", renderResult: "<svg/>" } });
  assert.deepEqual(take(), ["picture of b"]);
});

test("of a render pass that another replaced, nothing is shown any more", () => {
  const { worker, renderer, take } = viewport();
  renderer.renderScore(scoreOf("c4"), [0]);
  const { renderId: old } = worker.last;
  worker.answer({ kind: "drawn", renderId: old, batch: batch(["A"], { first: true }) });
  take();
  renderer.renderScore(scoreOf("d4"), [0]);
  const { renderId } = worker.last;
  const shownBefore = renderer.boundsLookup;
  worker.answer({ kind: "drawn", renderId: old, batch: batch(["B"], { last: true }) });
  worker.answer({ kind: "painted", renderId: old, partial: { id: "A", renderResult: "<svg/>" } });
  worker.answer({ kind: "missing", renderId: old });
  assert.deepEqual(take(), []);
  assert.equal(renderer.boundsLookup, shownBefore);
  assert.equal(worker.count("draw"), 2);
  worker.answer({ kind: "drawn", renderId, batch: batch(["C"], { first: true, last: true }) });
  assert.deepEqual(take(), ["new notation", "bounds of C", "picture of C", "100 high", "shown first last"]);
});

test("a render pass that was given up stops in the worker, and nothing of it is shown", () => {
  const { worker, renderer, take } = viewport();
  const score = scoreOf("c4");
  renderer.renderScore(score, [0]);
  const { renderId } = worker.last;
  renderer.abandon();
  assert.deepEqual(worker.last, { cmd: "stop" });
  worker.answer({ kind: "drawn", renderId, batch: batch(["A"], { first: true }) });
  worker.answer({ kind: "missing", renderId });
  assert.deepEqual(take(), []);
  assert.equal(worker.count("draw"), 1);
});

test("a score drawn anew keeps its length until the new one is known; another score does not get it", () => {
  const { worker, renderer, take } = viewport();
  const draw = (score, ...batches) => {
    renderer.renderScore(score, [0]);
    const { renderId } = worker.last;
    batches.forEach((batch) => worker.answer({ kind: "drawn", renderId, batch }));
    return take().filter((system) => system.endsWith("high"));
  };
  const score = scoreOf("c4");
  assert.deepEqual(draw(score, batch([], { first: true, height: 300 }), batch([], { last: true, height: 5000 })), [
    "300 high",
    "5000 high",
  ]);
  assert.deepEqual(draw(score, batch([], { first: true, height: 300 })), ["5000 high"]);
  assert.deepEqual(draw(score, batch([], { first: true, height: 300 }), batch([], { last: true, height: 900 })), [
    "5000 high",
    "900 high",
  ]);
  assert.deepEqual(draw(scoreOf("d4"), batch([], { first: true, height: 300 })), ["300 high"]);
});

test("what goes wrong in the worker reaches alphaTab, of whichever render pass", () => {
  const { worker, renderer, take } = viewport();
  renderer.renderScore(scoreOf("c4"), [0]);
  worker.answer({ kind: "failed", message: "no such clef" });
  worker.dispatchEvent(Object.assign(new Event("error"), { message: "no such script" }));
  assert.deepEqual(take(), ["error: no such clef", "error: no such script"]);
});

test("settings go to the worker, without the player's, which it has no use for", () => {
  const { worker, renderer } = viewport();
  const settings = new alphaTab.Settings();
  settings.display.scale = 1.25;
  settings.player.scrollElement = "body";
  renderer.updateSettings(settings);
  assert.equal(worker.last.cmd, "settings");
  assert.ok(!worker.last.settings.has("player"));
  assert.equal(alphaTab.model.JsonConverter.jsObjectToSettings(worker.last.settings).display.scale, 1.25);
});

test("render passes stop after their beginning while the remainder is held, until it may go on", () => {
  const { worker, renderer } = viewport();
  renderer.renderScore(scoreOf("c4"), [0]);
  assert.equal(worker.last.remainderTimeoutMs, 0);
  renderer.holdRemainder(1500);
  renderer.renderScore(scoreOf("d4"), [0]);
  assert.equal(worker.last.remainderTimeoutMs, 1500);
  renderer.resume();
  assert.deepEqual({ ...worker.last }, { cmd: "resume" });
  renderer.resume();
  assert.equal(worker.count("resume"), 1);
  renderer.render();
  assert.equal(worker.last.remainderTimeoutMs, 0);
});

test("the worker ends with the renderer", () => {
  const { worker, renderer } = viewport();
  renderer.destroy();
  assert.ok(worker.terminated);
});

/** A renderer whose workers are silent when the test says so, and whose time passes when it does. */
function atWorkers(t) {
  const timers = [];
  const { setTimeout: real } = globalThis;
  globalThis.setTimeout = standIn((work, ms) => timers.push({ work, ms }));
  t.after(() => (globalThis.setTimeout = real));
  const workers = [new FakeWorker()];
  const scrolled = { view, position: { left: 0, top: 0 }, moveTo: () => {} };
  const renderer = new WorkerRenderer(standIn(workers[0]), scrolled, () => {
    workers.push(new FakeWorker());
    return standIn(workers.at(-1));
  });
  renderer.width = 900;
  renderer.updateSettings(new alphaTab.Settings());
  const errors = [];
  renderer.error.on(({ message }) => errors.push(message));
  /** Whoever waits for at most so long has waited in vain. */
  const giveUp = (most) => timers.filter(({ ms }) => ms <= most).forEach(({ work }) => work());
  return { renderer, workers, errors, giveUp };
}

test("a worker that does not answer is replaced, and its score is not tried again", (t) => {
  const { renderer, workers, errors, giveUp } = atWorkers(t);
  workers[0].answersPings = false;
  renderer.renderScore(scoreOf("1.1"), [0]);
  giveUp(20000);
  assert.equal(workers.length, 2);
  assert.ok(workers[0].terminated);
  assert.deepEqual(errors, ["The score takes too long to be drawn."]);
  assert.deepEqual([workers[1].count("settings"), workers[1].count("draw")], [1, 0]);
  // The next one is drawn, by the new worker; what the old one still says is nobody's.
  renderer.renderScore(scoreOf("2.1"), [0]);
  assert.equal(workers[1].last.cmd, "draw");
  workers[0].answer({ kind: "failed", message: "late" });
  assert.equal(errors.length, 1);
});

test("a score that waits behind one that takes for ever is drawn soon, by another worker", (t) => {
  const { renderer, workers, errors, giveUp } = atWorkers(t);
  workers[0].answersPings = false;
  renderer.renderScore(scoreOf("1.1"), [0]);
  giveUp(4000);
  assert.equal(workers.length, 1, "nothing waits yet");
  renderer.renderScore(scoreOf("2.1"), [0]);
  giveUp(4000);
  assert.equal(workers.length, 2);
  assert.deepEqual(errors, []);
  assert.equal(workers[1].last.cmd, "draw");
  assert.notEqual(workers[1].last.score, null, "it has read no file");
});
