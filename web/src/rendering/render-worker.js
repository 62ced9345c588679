// @ts-check
import "../../vendor/alphaTab.min.js";
import { alphaTab } from "../shared/alphatab.js";
import { separateSectionMarks } from "./effect-bands.js";
import { leaveOutFoldedBars } from "./folded-line.js";
import { LayoutRun } from "./layout-run.js";
import { makeSystemsReleasable } from "./released-systems.js";
import { RenderService } from "./render-service.js";

/**
 * Draws scores beside the page. It reads a score's file itself, at the same time as the page does: handing the read
 * score over would take longer than reading it again. Both number beats and notes alike, as they read the same bytes.
 */

/** Bars that bring the common code paths into being before the first score arrives. */
const warmUpScore = `\\title "" \\track \\staff {score tabs} :8 3.3 5.3{h} :4 7.2{b (0 4)} (0.1 2.2 2.3) r |
  :16 3.3 5.3{h} 2.4{sl} 4.4 :2 0.6{v} :8 3.5 3.5 | \\track \\staff {score} \\clef F4 :4 c3 :8 e3 g3 :2 c4 | :1 c3`;

separateSectionMarks();
leaveOutFoldedBars();
makeSystemsReleasable();

/** @param {import("./worker-renderer.js").Answer} answer */
function post(answer) {
  postMessage(answer);
}

/** Renders once, so that the code of the first real rendering is compiled. */
function warmUp() {
  const settings = new alphaTab.Settings();
  settings.core.engine = "svg";
  settings.core.logLevel = alphaTab.LogLevel.None;
  const warmUpRenderer = new alphaTab.rendering.ScoreRenderer(settings);
  warmUpRenderer.width = 800;
  const score = alphaTab.importer.ScoreLoader.loadAlphaTex(warmUpScore, settings);
  const firstRun = new LayoutRun(warmUpRenderer, score, [0, 1], { left: 0, top: 0, right: 800, bottom: 800 });
  while (!firstRun.finished) {
    firstRun.step();
  }
  warmUpRenderer.destroy();
}

const service = new RenderService(post);
addEventListener("message", (event) => {
  try {
    service.answer(event.data);
  } catch (reason) {
    service.fail(reason);
  }
});
// In a task of its own: what is posted while the script runs overtakes the news that it has run.
setTimeout(() => {
  post({ kind: "ready" });
  warmUp();
});
