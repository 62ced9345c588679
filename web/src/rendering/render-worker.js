// @ts-check
import "../../vendor/alphaTab.min.js";
import { alphaTab } from "../shared/alphatab.js";
import { letterWidths } from "../alphatab/internals/alphatab-internals.js";
import { separateSectionMarks } from "./effect-bands.js";
import { leaveOutFoldedBars } from "./folded-line.js";
import { LayoutRun } from "./layout-run.js";
import { showStaves } from "./shown-staves.js";
import { arrangeStaffNames } from "./staff-names.js";
import { foldLongRests } from "../score-files/guitar-pro/long-rests.js";
import { readScore } from "../score-files/score-files.js";
import { collectThoroughly } from "../shared/garbage.js";

/**
 * Draws scores beside the page. It reads a score's file itself, at the same time as the page does: handing the read
 * score over would take longer than reading it again. Both number beats and notes alike, as they read the same bytes.
 *
 * Between two steps of a render pass the worker receives what the page requests next: partials that came into view, or
 * another render pass, which replaces the one under way.
 *
 * @typedef {import("./worker-renderer.js").Request} Request
 * @typedef {import("./worker-renderer.js").Answer} Answer
 * @typedef {import("../shared/alphatab.js").Score} Score
 */

/** Bars that bring the common code paths into being before the first score arrives. */
const warmUpScore = `\\title "" \\track \\staff {score tabs} :8 3.3 5.3{h} :4 7.2{b (0 4)} (0.1 2.2 2.3) r |
  :16 3.3 5.3{h} 2.4{sl} 4.4 :2 0.6{v} :8 3.5 3.5 | \\track \\staff {score} \\clef F4 :4 c3 :8 e3 g3 :2 c4 | :1 c3`;

separateSectionMarks();
leaveOutFoldedBars();

/** The page's settings; a render pass under way keeps those it began with. */
let settings = new alphaTab.Settings();
const renderer = new alphaTab.rendering.ScoreRenderer(settings);
/** @typedef {{ file: number, score: Score }} ReadFile @type {ReadFile | null} what is drawn */
let held = null;
/** @type {ReadFile | null} what may be drawn next */
let read = null;
/** @type {LayoutRun | null} */
let run = null;
let renderId = 0;
/** How long the render pass waits with its remainder for "resume". */
let remainderTimeoutMs = 0;
let next = 0;

/** @param {Answer} answer */
function post(answer) {
  postMessage(answer);
}

/** @param {Request} request */
function answer(request) {
  switch (request.cmd) {
    case "settings":
      settings = alphaTab.model.JsonConverter.jsObjectToSettings(request.settings);
      break;
    case "read": {
      const reading = readScore(request.bytes, settings);
      read = reading.score ? { file: request.file, score: reading.score } : null;
      break;
    }
    case "draw":
      draw(request);
      break;
    case "resume":
      remainderTimeoutMs = 0;
      proceed();
      break;
    case "stop":
      run = null;
      break;
    case "paint":
      paint(request.id);
      break;
    case "ping":
      post({ kind: "pong", number: request.number });
      break;
    case "collect":
      collectThoroughly();
      break;
  }
}

/** @param {Extract<Request, { cmd: "draw" }>} request */
function draw(request) {
  if (request.score) {
    read = { file: request.file, score: alphaTab.model.JsonConverter.jsObjectToScore(request.score, settings) };
  }
  if (read?.file === request.file) {
    held = read;
    read = null;
  }
  run = null;
  renderId = request.renderId;
  remainderTimeoutMs = request.remainderTimeoutMs;
  if (held?.file !== request.file) {
    post({ kind: "missing", renderId });
    return;
  }
  setTextWidths(request.textWidths);
  renderer.updateSettings(settings);
  renderer.width = request.width;
  foldLongRests(held.score);
  showStaves(held.score, request.staves);
  arrangeStaffNames(held.score, request.tracks);
  run = new LayoutRun(renderer, held.score, request.tracks, request.view, request.anchor, request.atOnce);
  if (request.atOnce) {
    // Another zoom may have been requested already.
    clearTimeout(next);
    next = setTimeout(proceed);
  } else {
    proceed();
  }
}

/**
 * Takes one step of the render pass, and the next one after the messages that wait, or when the page has time for it.
 */
function proceed() {
  clearTimeout(next);
  const current = run;
  if (!current) {
    return;
  }
  let wait = 0;
  try {
    const batch = current.step();
    if (batch) {
      post({ kind: "drawn", renderId, batch });
      current.delivered(batch);
      wait = batch.first ? remainderTimeoutMs : 0;
    }
    run = current.finished ? null : current;
  } catch (reason) {
    run = null;
    fail(reason);
  }
  next = setTimeout(proceed, wait);
}

/** @param {string} id of a partial that was laid out */
function paint(id) {
  const unsubscribe = renderer.partialRenderFinished.on((partial) => {
    post({ kind: "painted", renderId, partial });
    partial.renderResult = undefined;
  });
  renderer.renderResult(id);
  unsubscribe();
}

/** @param {Map<string, unknown>} widths */
function setTextWidths(widths) {
  const known = letterWidths();
  for (const [family, table] of widths) {
    known.set(family, table);
  }
}

/** @param {unknown} reason */
function fail(reason) {
  post({ kind: "failed", message: reason instanceof Error ? reason.message : String(reason) });
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

renderer.error.on(fail);
addEventListener("message", (event) => {
  try {
    answer(event.data);
  } catch (reason) {
    fail(reason);
  }
});
// In a task of its own: what is posted while the script runs overtakes the news that it has run.
setTimeout(() => {
  post({ kind: "ready" });
  warmUp();
});
