// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { letterWidths } from "../alphatab/internals/alphatab-internals.js";
import { notationColors } from "../rendering/notation-colors.js";
import { startRenderWorker } from "../rendering/render-worker-start.js";
import { printedPartials } from "./pages.js";
import { chooseStrings } from "../score-files/strings/open-fingerings.js";

/**
 * Draws a score once for a printer, in a worker of its own that ends with it: the one that draws for the page goes on with
 * what it does.
 *
 * @typedef {import("../shared/alphatab.js").Score} Score
 * @typedef {import("../rendering/worker-renderer.js").Partial} Partial
 * @typedef {{ height: number, picture: string }} System a staff system, or the diagrams of the chords, as SVG; heights in
 *     CSS pixels
 */

/** All of the score is in view. */
const everything = { left: -1e9, top: -1e9, right: 1e9, bottom: 1e9 };

/**
 * @param {Score} score
 * @param {readonly number[]} tracks indices
 * @param {import("../shared/alphatab.js").Settings} settings the page's; they stay as they are
 * @param {{ width: number, scale: number, staves: import("../bridge/bridge.js").ShownStaves }} look the width in CSS pixels
 * @param {AbortSignal} signal ends the render pass; the promise then stays open
 * @returns {Promise<System[]>}
 */
export function systemsFor(score, tracks, settings, { width, scale, staves }, signal) {
  const worker = startRenderWorker();
  signal.addEventListener("abort", () => worker.terminate());
  /** @type {Promise<System[]>} */
  const drawn = new Promise((resolve, reject) => {
    /** @type {Partial[]} */
    let partials = [];
    worker.addEventListener("error", ({ message }) => reject(new Error(message)));
    worker.addEventListener("message", ({ data }) => {
      const answer = /** @type {import("../rendering/worker-renderer.js").Answer} */ (data);
      if (answer.kind === "failed") {
        reject(new Error(answer.message));
      } else if (answer.kind === "drawn") {
        const { first, last } = answer.batch;
        partials = first ? answer.batch.partials : [...partials, ...answer.batch.partials];
        if (last) {
          resolve(printedPartials(partials).map(asSystem));
        }
      }
    });
    /** @param {import("../rendering/worker-renderer.js").Request} request */
    const post = (request) => worker.postMessage(request);
    post({ cmd: "settings", settings: forPrinter(settings, scale) });
    chooseStrings(score);
    const copy = alphaTab.model.JsonConverter.scoreToJsObject(score);
    copy?.delete("backingtrack");
    post({
      cmd: "draw",
      renderId: 1,
      file: 1,
      score: copy,
      tracks: [...tracks],
      width,
      view: everything,
      anchor: null,
      textWidths: letterWidths(),
      remainderTimeoutMs: 0,
      atOnce: false,
      staves,
      whole: null,
    });
  });
  return drawn.finally(() => worker.terminate());
}

/**
 * @param {Partial} partial
 * @returns {System}
 */
function asSystem({ height, renderResult }) {
  return { height, picture: String(renderResult ?? "") };
}

/**
 * @param {import("../shared/alphatab.js").Settings} settings
 * @param {number} scale
 */
function forPrinter(settings, scale) {
  const copy = alphaTab.model.JsonConverter.jsObjectToSettings(
    alphaTab.model.JsonConverter.settingsToJsObject(settings),
  );
  copy.display.layoutMode = alphaTab.LayoutMode.Page;
  copy.display.scale = scale;
  copy.display.padding = [0, 0];
  Object.assign(copy.display.resources, notationColors(false));
  // The header tells of it.
  copy.notation.elements.set(alphaTab.NotationElement.EffectCapo, false);
  const values = alphaTab.model.JsonConverter.settingsToJsObject(copy);
  values?.delete("player");
  return values;
}
