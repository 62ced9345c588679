// @ts-check
import assert from "node:assert/strict";
import { createRequire } from "node:module";
import { test } from "node:test";
import { watchCollections } from "./support/collections.mjs";
import { drawRequest, until } from "./support/render-requests.mjs";
import { standIn } from "./support/stand-in.mjs";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;
const { RenderService } = await import("../src/rendering/render-service.js");
const { makeSystemsReleasable } = await import("../src/rendering/released-systems.js");

makeSystemsReleasable();
let thoroughly = 0;
watchCollections(() => thoroughly++);

const settings = new alphaTab.Settings();
settings.core.engine = "svg";
settings.core.enableLazyLoading = true;
settings.core.logLevel = alphaTab.LogLevel.None;
const { settingsToJsObject, scoreToJsObject } = alphaTab.model.JsonConverter;

/** A service with what it has posted. */
function serving() {
  /** @type {any[]} */
  const answers = [];
  const service = new RenderService((answer) => answers.push(structuredClone(answer)));
  service.answer({ cmd: "settings", settings: settingsToJsObject(settings) });
  const draw = (/** @type {number} */ renderId, /** @type {object} */ changes = {}) => {
    const score = alphaTab.importer.ScoreLoader.loadAlphaTex("c4.4 d4 e4 f4 |".repeat(120), settings);
    service.answer(
      drawRequest({ renderId, score: renderId === 1 ? scoreToJsObject(score) : null, tracks: [0], ...changes }),
    );
  };
  return {
    service,
    answers,
    draw,
    batches: () => answers.filter(({ kind }) => kind === "drawn").map(({ batch }) => batch),
    partials: () => answers.filter(({ kind }) => kind === "drawn").flatMap(({ batch }) => batch.partials),
  };
}

test("a score that is laid out is let go of, and its pictures are there whenever they are asked for", async () => {
  const { service, answers, draw, batches, partials } = serving();
  draw(1);
  assert.ok(service.hasLayout);
  await until(() => !service.hasLayout);
  assert.ok(batches().at(-1).last);
  const unpainted = partials().filter(({ renderResult }) => !renderResult);
  assert.ok(unpainted.length > 3);
  for (const { id } of unpainted) {
    service.answer({ cmd: "paint", id });
  }
  const painted = () => answers.filter(({ kind }) => kind === "painted");
  await until(() => painted().length === unpainted.length);
  for (const { id, y, height, firstMasterBarIndex } of unpainted) {
    const found = painted().find(({ partial }) => partial.id === id);
    assert.equal(found.renderId, 1);
    assert.match(found.partial.renderResult, /^<svg[^]*<\/svg>$/);
    assert.deepEqual(
      [found.partial.y, found.partial.height, found.partial.firstMasterBarIndex],
      [y, height, firstMasterBarIndex],
    );
  }
});

test("a picture from the store is the one that the layout paints", async () => {
  const { service, answers, draw, partials } = serving();
  draw(1);
  await until(() => partials().some(({ renderResult }) => !renderResult));
  const { id } = partials()
    .reverse()
    .find(({ renderResult }) => !renderResult);
  const picture = async () => {
    answers.length = 0;
    service.answer({ cmd: "paint", id });
    await until(() => answers.some((answer) => answer.partial?.id === id));
    return answers.find((answer) => answer.partial?.id === id).partial.renderResult;
  };
  assert.ok(service.hasLayout);
  const fromLayout = await picture();
  await until(() => !service.hasLayout);
  assert.equal(await picture(), fromLayout);
});

test("another zoom is laid out anew after that, with pictures of its own", async () => {
  const { service, answers, draw, batches, partials } = serving();
  draw(1);
  await until(() => !service.hasLayout);
  const before = partials().map(({ id }) => id);
  answers.length = 0;
  draw(2, { width: 500 });
  await until(() => !service.hasLayout);
  assert.ok(batches()[0].first && batches().at(-1).last);
  const { id } = partials().at(-1);
  assert.ok(partials().length > before.length && !before.includes(id));
  service.answer({ cmd: "paint", id });
  await until(() => answers.some((answer) => answer.kind === "painted" && answer.renderId === 2));
});

test("garbage is collected thoroughly after the first layout of a score, not between two zooms", async () => {
  const { service, draw } = serving();
  const before = thoroughly;
  draw(1);
  // Such as another width, before all is there.
  draw(2, { width: 800 });
  await until(() => !service.hasLayout);
  assert.equal(thoroughly - before, 1);
  draw(3, { width: 500 });
  draw(4, { width: 600 });
  await until(() => !service.hasLayout);
  assert.equal(thoroughly - before, 1);
  service.answer({ cmd: "collect" });
  assert.equal(thoroughly - before, 2);
});

test("pictures ahead wait, as the rest of the layout does, until the sound is ready", async () => {
  const { service, draw, batches } = serving();
  draw(1, { remainderTimeoutMs: 1e6, view: { left: 0, top: 0, right: 900, bottom: 1e6 } });
  await until(() => batches().length > 0);
  assert.ok(batches()[0].last);
  for (let turn = 0; turn < 20; turn++) {
    await new Promise((resolve) => setImmediate(resolve));
  }
  assert.ok(service.hasLayout);
  service.answer({ cmd: "resume" });
  await until(() => !service.hasLayout);
});

test("a partial that cannot be painted is told of when it is asked for, and the layout stays", async (context) => {
  const { service, answers, draw, batches, partials } = serving();
  draw(1);
  await until(() => partials().length > 4);
  context.mock.method(alphaTab.rendering.ScoreRenderer.prototype, "renderResult", function () {
    standIn(this).error.trigger(new Error("no ink"));
  });
  await until(() => batches().at(-1).last);
  for (let turn = 0; turn < 50; turn++) {
    await new Promise((resolve) => setImmediate(resolve));
  }
  assert.ok(service.hasLayout);
  const failures = () => answers.filter(({ kind }) => kind === "failed").map(({ message }) => message);
  assert.deepEqual(failures(), []);
  service.answer({
    cmd: "paint",
    id: partials()
      .reverse()
      .find(({ renderResult }) => !renderResult).id,
  });
  await until(() => failures().length > 0);
  assert.deepEqual(failures(), ["no ink"]);
});

test("of a long score what is laid out is painted and let go of before the end is laid out", async (context) => {
  const collected = context.mock.fn();
  globalThis.gc = standIn(collected);
  context.after(() => delete globalThis.gc);
  const { service, answers, draw, batches, partials } = serving();
  const score = alphaTab.importer.ScoreLoader.loadAlphaTex("c4.4 d4 e4 f4 |".repeat(1000), settings);
  const { renderResult } = alphaTab.rendering.ScoreRenderer.prototype;
  let paintedAhead = 0;
  context.mock.method(alphaTab.rendering.ScoreRenderer.prototype, "renderResult", function (id) {
    paintedAhead += batches().length > 1 && !batches().at(-1).last ? 1 : 0;
    renderResult.call(this, id);
  });
  draw(1, { score: scoreToJsObject(score) });
  await until(() => batches().at(-1)?.last);
  assert.ok(paintedAhead > 50);
  assert.ok(collected.mock.callCount() > 0);
  await until(() => !service.hasLayout);
  const [, ...others] = partials();
  for (const { id } of others) {
    service.answer({ cmd: "paint", id });
  }
  const painted = () => answers.filter(({ kind }) => kind === "painted");
  await until(() => painted().length === others.length);
  assert.ok(painted().every(({ partial }) => /^<svg[^]+<\/svg>$/.test(partial.renderResult)));
});

test("nothing is collected while readers wait for a place far on in a long score", async (context) => {
  const collected = context.mock.fn();
  globalThis.gc = standIn(collected);
  context.after(() => delete globalThis.gc);
  const { draw, batches } = serving();
  const score = alphaTab.importer.ScoreLoader.loadAlphaTex("c4.4 d4 e4 f4 |".repeat(1000), settings);
  const anchor = { bar: 900, x: 0, y: 0, left: 0, top: 0 };
  draw(1, { score: scoreToJsObject(score), anchor });
  await until(() => batches().length > 0);
  assert.equal(collected.mock.callCount(), 0);
  await until(() => batches().at(-1).last);
});

test("what reading and the first lines have left is collected when the sound is ready", async (context) => {
  const collected = context.mock.fn();
  globalThis.gc = standIn(collected);
  context.after(() => delete globalThis.gc);
  const { service, draw } = serving();
  draw(1, { remainderTimeoutMs: 1e6 });
  assert.equal(collected.mock.callCount(), 0);
  service.answer({ cmd: "resume" });
  assert.equal(collected.mock.callCount(), 1);
  await until(() => !service.hasLayout);
});
