// @ts-check
import assert from "node:assert/strict";
import { createRequire } from "node:module";
import { test } from "node:test";
import { drawRequest, until } from "./support/render-requests.mjs";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;
const { boundsOf } = await import("../src/rendering/bounds-text.js");
const { LayoutRun } = await import("../src/rendering/layout-run.js");
const { RenderService } = await import("../src/rendering/render-service.js");
const { rescaleBounds, rescaled, rescaledSize } = await import("../src/rendering/rescaling.js");

const { settingsToJsObject, scoreToJsObject } = alphaTab.model.JsonConverter;
const guitar = ":4 3.3 5.3{h} 7.2{b (0 4)} (0.1 2.2 2.3) | r.1 | :16 3.3{v} 5.3 7.3 5.3 :4 (0.1 2.2) r r |";
const music = `\\title "" \\track \\staff {score tabs} ${guitar.repeat(12)}
  \\track \\staff {score} \\clef F4 ${":2 c2 g5 | :1 g6 | r |".repeat(12)}`;

/** @param {number} scale */
function settingsAt(scale) {
  const settings = new alphaTab.Settings();
  settings.core.engine = "svg";
  settings.core.enableLazyLoading = true;
  settings.core.includeNoteBounds = true;
  settings.core.logLevel = alphaTab.LogLevel.None;
  settings.display.layoutMode = alphaTab.LayoutMode.Horizontal;
  settings.display.padding = [12, 8];
  settings.display.scale = scale;
  return settings;
}

/** What alphaTab lays out at a zoom. @param {number} scale */
function laidOut(scale) {
  const settings = settingsAt(scale);
  const score = alphaTab.importer.ScoreLoader.loadAlphaTex(music, settings);
  const renderer = new alphaTab.rendering.ScoreRenderer(settings);
  renderer.width = 900;
  const run = new LayoutRun(renderer, score, [0, 1], { left: 0, top: 0, right: 1e6, bottom: 1e6 }, null, true);
  const batch = run.step();
  assert.ok(batch?.last && batch.bounds);
  return { ...batch, bounds: boundsOf(batch.bounds[0], score) };
}

/** All boxes, in one order. */
function boxes(bounds) {
  return bounds.staffSystems.flatMap((system) => [
    system.realBounds,
    ...system.bars.flatMap((masterBar) => [
      masterBar.visualBounds,
      masterBar.lineAlignedBounds,
      ...masterBar.bars.flatMap((bar) => [
        bar.realBounds,
        ...bar.beats.flatMap((beat) => [
          beat.visualBounds,
          { x: beat.onNotesX, y: 0, w: 0, h: 0 },
          ...(beat.notes ?? []).map(({ noteHeadBounds }) => noteHeadBounds),
        ]),
      ]),
    ]),
  ]);
}

/** @param {[number, number][]} pairs @param {string} what */
function assertClose(pairs, what) {
  const worst = Math.max(...pairs.map(([one, other]) => Math.abs(one - other)));
  // Heights are whole numbers in lengths of alphaTab.
  assert.ok(worst <= 2, `${what}: ${worst} pixels apart`);
}

/** The first numbers of what is drawn, in pixels of the page. */
function drawnAt(picture) {
  const [, dx, dy, ratio] = /<g transform="translate\(([^ ]+) ([^)]+)\) scale\(([^)]+)\)">/.exec(picture) ?? [
    0, 0, 0, 1,
  ];
  const rects = [...picture.matchAll(/<rect x="([^"]+)" y="([^"]+)" width="([^"]+)" height="([^"]+)"/g)];
  return rects.flatMap(([, x, y, w, h]) => [
    Number(x) * Number(ratio) + Number(dx),
    Number(y) * Number(ratio) + Number(dy),
    Number(w) * Number(ratio),
    Number(h) * Number(ratio),
  ]);
}

for (const [from, to] of [
  [1, 1.5],
  [1.25, 0.5],
]) {
  test(`an endless system at ${from} rescaled to ${to} is the one that alphaTab lays out`, () => {
    const before = laidOut(from);
    const after = laidOut(to);
    const rescaling = { ratio: to / from, left: 12, top: 8 };
    const moved = before.partials.map((partial) => rescaled(partial, rescaling));
    assert.equal(moved.length, after.partials.length);
    for (const name of /** @type {const} */ (["x", "y", "width", "height"])) {
      assertClose(
        moved.map((partial, index) => [partial[name], after.partials[index][name]]),
        name,
      );
    }
    const size = rescaledSize(before, rescaling);
    assertClose(
      [
        [size.width, after.width],
        [size.height, after.height],
      ],
      "size",
    );
    const ends = after.partials.map(({ x, width }) => x + width);
    assertClose([[Math.max(...ends) + 12, after.width]], "the end of the last bar");
    rescaleBounds(before.bounds, [], rescaling);
    const [one, other] = [boxes(before.bounds), boxes(after.bounds)];
    assert.ok(one.length > 300 && one.length === other.length);
    for (const name of /** @type {const} */ (["x", "y", "w", "h"])) {
      assertClose(
        one.map((box, index) => [box[name], other[index][name]]),
        `bounds, ${name}`,
      );
    }
    moved.forEach(({ renderResult }, index) => {
      const [drawn, wanted] = [drawnAt(String(renderResult)), drawnAt(String(after.partials[index].renderResult))];
      assert.equal(drawn.length, wanted.length);
      assertClose(
        drawn.map((value, at) => [value, wanted[at]]),
        `picture ${index}`,
      );
    });
  });
}

/** A service with what it has posted. */
function serving() {
  /** @type {any[]} */
  const answers = [];
  const service = new RenderService((answer) => answers.push(structuredClone(answer)));
  const score = alphaTab.importer.ScoreLoader.loadAlphaTex(music, settingsAt(1));
  const draw = (/** @type {number} */ renderId, /** @type {number} */ scale, /** @type {object} */ changes = {}) => {
    service.answer({ cmd: "settings", settings: settingsToJsObject(settingsAt(scale)) });
    service.answer(
      drawRequest({
        renderId,
        score: renderId === 1 ? scoreToJsObject(score) : null,
        tracks: [0, 1],
        atOnce: renderId > 1,
        whole: renderId > 1 ? renderId - 1 : null,
        ...changes,
      }),
    );
  };
  const batch = (/** @type {number} */ renderId) =>
    answers.find((answer) => answer.kind === "drawn" && answer.renderId === renderId && answer.batch.last)?.batch;
  return { service, answers, draw, batch };
}

test("another zoom of the endless system is neither laid out nor painted", async (context) => {
  const [larger, smaller] = [laidOut(2), laidOut(0.5)];
  const { service, answers, draw, batch } = serving();
  draw(1, 1);
  await until(() => batch(1) && !service.hasLayout);
  const asked = context.mock.method(alphaTab.rendering.ScoreRenderer.prototype, "renderScore");
  const far = batch(1).partials.at(-3);
  draw(2, 2, {
    view: { left: far.x, top: 0, right: far.x + 900, bottom: 600 },
    anchor: { bar: far.firstMasterBarIndex, x: 0, y: 0, left: 30, top: 0 },
  });
  await until(() => batch(2));
  assert.deepEqual([batch(2).first, batch(2).bounds, batch(2).rescaling.ratio], [true, null, 2]);
  assertClose([[batch(2).width, larger.width]], "width");
  const painted = batch(2).partials.filter(({ renderResult }) => renderResult);
  const at = (far.x + 30 - 12) * 2 + 12;
  assert.ok(painted.some(({ x, width }) => x <= at && x + width >= at) && painted.length < batch(2).partials.length);
  draw(3, 0.5);
  await until(() => batch(3));
  assert.equal(batch(3).rescaling.ratio, 0.25);
  const { id } = batch(3).partials.at(-3);
  service.answer({ cmd: "paint", id });
  await until(() => answers.some(({ kind }) => kind === "painted"));
  const { partial } = answers.find(({ kind }) => kind === "painted");
  const original = smaller.partials.at(-3);
  assertClose(
    [
      [partial.x, original.x],
      [partial.width, original.width],
    ],
    "painted later",
  );
  assert.match(partial.renderResult, /scale\(0\.5\)/);
  assert.equal(asked.mock.callCount(), 0);
});

test("it is laid out anew with other tracks, and when not all of it is on the score page", async () => {
  for (const changes of [{ tracks: [0] }, { staves: "tab" }, { whole: null }, { whole: 7 }]) {
    const { service, draw, batch } = serving();
    draw(1, 1);
    await until(() => batch(1) && !service.hasLayout);
    draw(2, 2, changes);
    await until(() => batch(2));
    assert.ok(batch(2).bounds && !batch(2).rescaling, JSON.stringify(changes));
  }
});

test("of two zooms the first of which nobody saw, the second starts from what is on the score page", async () => {
  const { service, draw, batch } = serving();
  draw(1, 1);
  await until(() => batch(1) && !service.hasLayout);
  draw(2, 2);
  draw(3, 3, { whole: 1 });
  await until(() => batch(3));
  assert.equal(batch(2), undefined);
  assert.equal(batch(3).rescaling.ratio, 3);
});

test("a picture that comes meanwhile has the size in which the score is shown", async () => {
  const { service, answers, draw, batch } = serving();
  draw(1, 1);
  await until(() => batch(1) && !service.hasLayout);
  const ids = batch(1).partials.map((/** @type {{ id: string }} */ { id }) => id);
  const paint = async () => {
    answers.length = 0;
    ids.forEach((/** @type {string} */ id) => service.answer({ cmd: "paint", id }));
    await until(() => answers.filter(({ kind }) => kind === "painted").length === ids.length);
  };
  draw(2, 2);
  await paint();
  const shown = answers.findIndex(({ kind }) => kind === "drawn");
  assert.ok(shown >= 0 && shown < answers.length - 1, "some come behind it");
  answers.forEach(({ kind, partial }, index) => {
    if (kind === "painted") {
      assert.equal(/scale\(2\)/.test(partial.renderResult), index > shown, `${index} of ${answers.length}`);
    }
  });
  // Until something else is shown.
  draw(3, 2, { tracks: [0] });
  service.answer({ cmd: "stop" });
  await paint();
  assert.ok(answers.every(({ partial }) => /scale\(2\)/.test(partial.renderResult)));
});
