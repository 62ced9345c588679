// @ts-check
import assert from "node:assert/strict";
import { createRequire } from "node:module";
import { test } from "node:test";
import { setFlagsFromString } from "node:v8";
import { runInNewContext } from "node:vm";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;
const { changePageLayouts } = await import("../src/alphatab/internals/alphatab-internals.js");
const { LayoutRun } = await import("../src/rendering/layout-run.js");
const { makeSystemsReleasable, releaseSystems } = await import("../src/rendering/released-systems.js");

setFlagsFromString("--expose-gc");
const collect = runInNewContext("gc");

/** References from this turn keep what they refer to. */
const nextTurn = () => new Promise((resolve) => setImmediate(resolve));

const view = { left: 0, top: 0, right: 900, bottom: 300 };

const plain = "3.3.4 5.3{h} 7.3{sl} 5.3{h} | -.3.4 7.3{b (0 4)} r.4 5.3.4 | ";
const slow = "3.3.4{legatoOrigin} 5.3{legatoOrigin} 7.3{legatoOrigin} 5.3{legatoOrigin} | ";

/** Notes that lead into the next bar, and a legato and a slur over several lines: what later lines look back at. */
const connected = `\\track "A" \\staff {score tabs} ${plain.repeat(15)}
  3.3{slur far}.4 5.3 7.3 5.3 | ${slow.repeat(28)} 3.3{slur far}.4 5.3 7.3 5.3 | ${plain.repeat(15)}
  \\track "B" \\staff {score} ${"c4.1 | c4{t}.1 | c4{t}.1 | e4.2 e4{t}.2 | ".repeat(22)} c4.1 | c4.1`;

/** What is drawn of each bar and staff. @type {WeakRef<object>[]} */
let drawnBars = [];

function laidOut() {
  const settings = new alphaTab.Settings();
  settings.core.engine = "svg";
  settings.core.enableLazyLoading = true;
  settings.core.logLevel = alphaTab.LogLevel.None;
  const score = alphaTab.importer.ScoreLoader.loadAlphaTex(connected, settings);
  const renderer = new alphaTab.rendering.ScoreRenderer(settings);
  renderer.width = view.right;
  renderer.error.on((error) => assert.fail(error));
  const run = new LayoutRun(renderer, score, [0, 1], view);
  /** @type {Map<string, string>} */
  const pictures = new Map();
  renderer.partialRenderFinished.on((partial) => {
    pictures.set(partial.id, String(partial.renderResult));
    partial.renderResult = undefined;
  });
  return { renderer, run, pictures };
}

/**
 * @param {import("node:test").TestContext} context
 * @param {boolean} releases whether systems are let go of after each step, in which little is laid out
 */
async function drawn(context, releases) {
  context.mock.method(performance, "now", lookedAtEvery(400));
  const { renderer, run, pictures } = laidOut();
  const lines = [];
  const alive = [];
  while (!run.finished) {
    const batch = run.step();
    const fresh = batch?.partials ?? [];
    lines.push(...fresh);
    if (releases) {
      fresh.forEach(({ id }) => pictures.has(id) || renderer.renderResult(id));
      releaseSystems(renderer, (id) => pictures.has(id));
      await nextTurn();
      collect();
      alive.push(drawnBars.filter((bar) => bar.deref()).length);
    }
  }
  lines.forEach(({ id }) => pictures.has(id) || renderer.renderResult(id));
  context.mock.restoreAll();
  return {
    alive,
    lines: lines.map(({ id, y, height, firstMasterBarIndex }) => [y, height, firstMasterBarIndex, pictures.get(id)]),
  };
}

/** @param {number} ms how long each step seems to take */
function lookedAtEvery(ms) {
  let now = 0;
  return () => (now += ms);
}

test("a score whose lines are let go of looks the same", async (context) => {
  const before = await drawn(context, false);
  makeSystemsReleasable();
  changePageLayouts((layout) => {
    const register = layout.registerBarRenderer;
    layout.registerBarRenderer = (staff, bar) => {
      drawnBars.push(new WeakRef(bar));
      register(staff, bar);
    };
  });
  const after = await drawn(context, true);
  assert.ok(after.lines.length > 20);
  assert.deepEqual(
    after.lines.map((line) => line.slice(0, 3)),
    before.lines.map((line) => line.slice(0, 3)),
  );
  after.lines.forEach(([y, , , picture], index) => {
    assert.ok(picture === before.lines[index][3], `the line at ${y} looks different`);
  });
});

test("what is let go of takes no room, neither do lines that were laid out anew", async (context) => {
  drawnBars = [];
  const { alive } = await drawn(context, true);
  assert.ok(Math.max(...alive) > 100 && drawnBars.length > 300);
  assert.ok(Number(alive.at(-1)) < 60);
});
