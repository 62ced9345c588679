// @ts-check
import assert from "node:assert/strict";
import { createRequire } from "node:module";
import { standIn } from "./stand-in.mjs";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;
const { WorkerRenderer } = await import("../../src/rendering/worker-renderer.js");

export const view = { left: 0, top: 0, right: 900, bottom: 600 };

/** The render worker, without a worker: what it is asked is written down, and the test answers. */
export class FakeWorker extends EventTarget {
  /** @type {any[]} */
  asked = [];
  pings = [];
  answersPings = true;
  terminated = false;

  postMessage(request) {
    if (request.cmd === "ping") {
      this.pings.push(request.number);
      if (this.answersPings) {
        this.answer({ kind: "pong", number: request.number });
      }
      return;
    }
    // What cannot be copied cannot be sent.
    this.asked.push(structuredClone(request));
  }

  terminate() {
    this.terminated = true;
  }

  answer(answer) {
    this.dispatchEvent(new MessageEvent("message", { data: structuredClone(answer) }));
  }

  get last() {
    return this.asked.at(-1);
  }

  count(cmd) {
    return this.asked.filter((request) => request.cmd === cmd).length;
  }
}

/**
 * A renderer at its worker, with everything that it told alphaTab.
 *
 * @param {import("../../src/rendering/scroll-anchor.js").ScrolledView} scrolled
 */
export function viewport(scrolled = { view, position: { left: 0, top: 0 }, moveTo: () => assert.fail("moved") }) {
  const worker = new FakeWorker();
  const renderer = new WorkerRenderer(standIn(worker), scrolled, () => assert.fail("replaced"));
  renderer.width = 900;
  const events = [];
  renderer.preRender.on(() => events.push("new notation"));
  renderer.partialLayoutFinished.on(({ id }) => events.push(`bounds of ${id}`));
  renderer.partialRenderFinished.on(({ id }) => events.push(`picture of ${id}`));
  renderer.renderFinished.on(({ totalHeight }) => events.push(`${totalHeight} high`));
  renderer.batchShown.on(({ first, last }) => events.push(`shown${first ? " first" : ""}${last ? " last" : ""}`));
  renderer.remainderShown.on(() => events.push("remainder shown"));
  renderer.error.on(({ message }) => events.push(`error: ${message}`));
  return { worker, renderer, events, take: () => events.splice(0) };
}

export function scoreOf(text) {
  return alphaTab.importer.ScoreLoader.loadAlphaTex(text, new alphaTab.Settings());
}

const noBounds = [JSON.stringify({ staffSystems: [] })];

/** A layout batch of a render pass, by the names of its partials; those in capitals are painted. */
export function batch(names, { first = false, last = false, height = 100 } = {}) {
  const partials = names.map((id) => ({ id, renderResult: id === id.toUpperCase() ? "<svg/>" : undefined }));
  return { first, last, partials, bounds: noBounds, width: 900, height };
}
