// @ts-check
import assert from "node:assert/strict";
import { createRequire } from "node:module";
import { test } from "node:test";
import { watchCollections } from "./support/collections.mjs";
import { drawRequest, until } from "./support/render-requests.mjs";
import { standIn } from "./support/stand-in.mjs";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;
const { boundsOf } = await import("../src/rendering/bounds-text.js");
const { KeptLooks } = await import("../src/rendering/kept-looks.js");
const { isIn } = await import("../src/rendering/layout-run.js");
const { RenderService } = await import("../src/rendering/render-service.js");
const { viewAt } = await import("../src/rendering/scroll-anchor.js");

watchCollections(() => {});
const { settingsToJsObject, scoreToJsObject } = alphaTab.model.JsonConverter;

function newSettings() {
  const settings = new alphaTab.Settings();
  settings.core.engine = "svg";
  settings.core.enableLazyLoading = true;
  settings.core.logLevel = alphaTab.LogLevel.None;
  return settings;
}

/** A service with a score, and what it has posted. @param {import("node:test").TestContext} context */
function serving(context) {
  /** @type {any[]} */
  const answers = [];
  const settings = newSettings();
  const service = new RenderService((answer) => answers.push(structuredClone(answer)));
  const score = alphaTab.importer.ScoreLoader.loadAlphaTex("c4.4 d4 e4 f4 |".repeat(120), settings);
  const layouts = context.mock.method(alphaTab.rendering.ScoreRenderer.prototype, "renderScore").mock;
  const tell = () => service.answer({ cmd: "settings", settings: settingsToJsObject(settings) });
  const draw = (/** @type {number} */ renderId, /** @type {object} */ changes = {}) => {
    tell();
    service.answer(
      drawRequest({ renderId, score: renderId === 1 ? scoreToJsObject(score) : null, tracks: [0], ...changes }),
    );
  };
  const batches = (/** @type {number} */ renderId) =>
    answers.filter(({ kind, renderId: id }) => kind === "drawn" && id === renderId).map(({ batch }) => batch);
  const whole = async (/** @type {number} */ renderId, /** @type {object} */ changes = {}) => {
    draw(renderId, changes);
    await until(() => batches(renderId).at(-1)?.last && !service.hasLayout);
  };
  return { service, score, settings, answers, layouts, draw, batches, whole };
}

const placed = (/** @type {any[]} */ batches) =>
  batches.flatMap(({ partials }) => partials).map(({ id, x, y, width, height }) => ({ id, x, y, width, height }));

test("what was drawn before is shown again as it was, without a layout", async (context) => {
  const { service, answers, layouts, draw, batches, whole } = serving(context);
  await whole(1);
  await whole(2, { width: 500 });
  const before = layouts.callCount();
  draw(3);
  await until(() => batches(3).at(-1)?.last);
  assert.equal(layouts.callCount(), before);
  const [batch, rest, ...others] = batches(3);
  assert.deepEqual([batch.first, batch.last, rest.first, rest.last, others.length], [true, false, false, true, 0]);
  assert.deepEqual(placed([batch]), placed(batches(1)));
  assert.deepEqual(
    rest.bounds,
    batches(1).flatMap(({ bounds }) => bounds),
  );
  assert.ok(rest.allBounds && batch.bounds.length < rest.bounds.length / 2);
  const { width, height } = batches(1).at(-1);
  assert.deepEqual([batch.width, batch.height, rest.width, rest.height], [width, height, width, height]);
  assert.match(batch.partials[0].renderResult, /^<svg/);
  const { id } = batch.partials.at(-1);
  service.answer({ cmd: "paint", id });
  await until(() =>
    answers.some(({ kind, renderId, partial }) => kind === "painted" && renderId === 3 && partial.id === id),
  );
});

test("it comes with the pictures of what readers will see", async (context) => {
  const { score, draw, batches, whole } = serving(context);
  await whole(1);
  await whole(2, { width: 500 });
  let renderId = 2;
  for (const bar of [0, 17, 60, 100, 119]) {
    const anchor = { bar, x: 0, y: 0.5, left: 0, top: 100 };
    const view = { left: 0, top: 50, right: 900, bottom: 450 };
    draw(++renderId, { anchor, view });
    await until(() => batches(renderId).length > 0);
    const [{ partials, bounds, height }] = batches(renderId);
    const all = new alphaTab.rendering.BoundsLookup();
    for (const system of bounds.flatMap((/** @type {string} */ text) => boundsOf(text, score).staffSystems)) {
      system.bars.forEach((/** @type {any} */ masterBar) => all.addMasterBar(masterBar));
    }
    const seen = viewAt(anchor, all, view, false);
    const top = Math.min(seen.top, height - 400);
    const wanted = partials.filter((/** @type {any} */ partial) => isIn(partial, { ...seen, top, bottom: top + 400 }));
    assert.ok(wanted.length > 0 && all.findMasterBarByIndex(bar));
    for (const { renderResult, y } of wanted) {
      assert.match(renderResult ?? "", /^<svg/, `bar ${bar}, ${y} down`);
    }
    assert.ok(partials.filter((/** @type {any} */ { renderResult }) => renderResult).length < partials.length / 2);
  }
});

test("the endless system is shown again as a whole, and at another zoom", async (context) => {
  const { settings, layouts, draw, batches, whole } = serving(context);
  settings.display.layoutMode = alphaTab.LayoutMode.Horizontal;
  await whole(1);
  settings.display.layoutMode = alphaTab.LayoutMode.Page;
  await whole(2);
  const before = layouts.callCount();
  settings.display.layoutMode = alphaTab.LayoutMode.Horizontal;
  draw(3, { anchor: { bar: 60, x: 0, y: 0, left: 10, top: 0 } });
  await until(() => batches(3).length > 0);
  assert.ok(batches(3)[0].first && batches(3)[0].last);
  const shown = placed(
    batches(1).slice(
      batches(1)
        .map(({ first }) => first)
        .lastIndexOf(true),
    ),
  );
  assert.deepEqual(placed(batches(3)), shown);
  settings.display.scale = 2;
  draw(4, { whole: 3 });
  await until(() => batches(4).length > 0);
  assert.equal(batches(4)[0].rescaling.ratio, 2);
  assert.equal(layouts.callCount(), before);
});

test("another look of it is laid out", async (context) => {
  const changes = [
    (/** @type {any} */ settings) => (settings.display.scale = 1.5),
    (/** @type {any} */ settings) => (settings.display.resources.mainGlyphColor = new alphaTab.model.Color(1, 2, 3)),
    (/** @type {any} */ settings) => (settings.display.layoutMode = alphaTab.LayoutMode.Horizontal),
  ];
  for (const change of changes) {
    const { settings, layouts, draw, batches, whole } = serving(context);
    await whole(1);
    const before = layouts.callCount();
    change(settings);
    draw(2);
    await until(() => batches(2).length > 0);
    assert.ok(layouts.callCount() > before, String(change));
    layouts.restore();
  }
});

test("of another file nothing is shown again", async (context) => {
  const { score, layouts, draw, batches, whole } = serving(context);
  await whole(1);
  const before = layouts.callCount();
  draw(2, { file: 2, score: scoreToJsObject(score) });
  await until(() => batches(2).length > 0);
  assert.ok(layouts.callCount() > before);
});

test("it is shown again while another look is laid out, and that layout is let go of", async (context) => {
  const { service, draw, batches, whole } = serving(context);
  await whole(1);
  draw(2, { width: 500 });
  await until(() => batches(2).length > 0);
  assert.ok(service.hasLayout);
  draw(3);
  await until(() => batches(3).length > 0 && !service.hasLayout);
  assert.deepEqual(placed(batches(3)), placed(batches(1)));
  await whole(4, { width: 500 });
  const parts = placed(batches(4));
  assert.ok(parts.length > placed(batches(1)).length);
});

test("of two looks that follow each other at once the first is not shown", async (context) => {
  const { draw, batches, whole } = serving(context);
  await whole(1);
  await whole(2, { width: 500 });
  draw(3);
  draw(4, { width: 500 });
  await until(() => batches(4).length > 0);
  assert.equal(batches(3).length, 0);
  assert.deepEqual(placed(batches(4)), placed(batches(2)));
});

test("those that were asked for last are kept, as far as there is room", () => {
  const looks = new KeptLooks();
  const look = (/** @type {number} */ megabytes) =>
    standIn({ pictures: { bytes: megabytes << 20 }, width: 1, height: 1 });
  looks.keep("a", look(3));
  looks.keep("b", look(3));
  assert.ok(looks.find("a"));
  looks.keep("c", look(3));
  assert.deepEqual(
    ["a", "b", "c"].map((key) => looks.find(key) !== null),
    [true, false, true],
  );
  looks.keep("d", look(9));
  assert.deepEqual(
    ["a", "c", "d"].map((key) => looks.find(key) !== null),
    [false, false, false],
  );
  looks.keep("e", look(8));
  assert.ok(looks.find("e"));
  looks.clear();
  assert.equal(looks.find("e"), null);
});
