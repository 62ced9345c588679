// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { letterWidths } from "../alphatab/internals/alphatab-internals.js";
import { chooseStrings } from "../score-files/strings/open-fingerings.js";
import { Emitter } from "../shared/emitter.js";
import { WorkerWatch } from "../shared/worker-watch.js";
import { boundsOf } from "./bounds-text.js";
import { rescaleBounds } from "./rescaling.js";
import { anchorIn, viewAt } from "./scroll-anchor.js";

/**
 * The page's end of the render worker, in the shape in which alphaTab knows a renderer. alphaTab's own worker
 * posts when everything is laid out, which takes seconds with a long score; this one posts one layout batch after
 * the other.
 *
 * @typedef {import("../shared/alphatab.js").Score} Score
 * @typedef {import("../bridge/bridge.js").ShownStaves} ShownStaves
 * @typedef {import("./layout-run.js").Partial} Partial
 * @typedef {import("./layout-run.js").LayoutBatch} LayoutBatch
 * @typedef {import("./scroll-anchor.js").View} View
 * @typedef {import("./scroll-anchor.js").ScrollAnchor} ScrollAnchor
 * @typedef {import("@coderline/alphatab").rendering.BoundsLookup} BoundsLookup
 *
 * @typedef {{ anchor: ScrollAnchor, left: number, top: number, cursorBar: number | null }} Return how far the viewport was
 *   scrolled, and where the cursor was
 *
 * Requests are told apart by "cmd", as alphaTab's own workers, which live in the same script, look for it. Their "whole"
 * is the render pass that is on the score page, if all of it is.
 *
 * @typedef {{ cmd: "settings", settings: Map<string, unknown> | null }
 *   | { cmd: "read", file: number, bytes: Uint8Array }
 *   | { cmd: "draw", renderId: number, file: number, score: Map<string, unknown> | null, tracks: number[], width: number,
 *       view: View, anchor: ScrollAnchor | null, textWidths: Map<string, unknown>, remainderTimeoutMs: number, atOnce:
 *       boolean, staves: ShownStaves, whole: number | null }
 *   | { cmd: "resume" }
 *   | { cmd: "stop" }
 *   | { cmd: "paint", id: string }
 *   | { cmd: "ping", number: number }
 *   | { cmd: "collect" }} Request
 *
 * @typedef {{ kind: "drawn", renderId: number, batch: LayoutBatch }
 *   | { kind: "painted", renderId: number, partial: Partial }
 *   | { kind: "missing", renderId: number }
 *   | { kind: "ready" }
 *   | { kind: "pong", number: number }
 *   | { kind: "failed", message: string }} Answer
 */

/** Longer files, which carry backing tracks, are read once: the worker gets the score. In bytes. */
const longestFileReadTwice = 4 << 20;

const tooLong = "The score takes too long to be drawn.";

/** @implements {IScoreRenderer} @typedef {import("@coderline/alphatab").rendering.IScoreRenderer} IScoreRenderer */
export class WorkerRenderer {
  /** @type {Emitter<boolean>} */
  preRender = new Emitter();
  /** @type {Emitter<Partial>} */
  renderFinished = new Emitter();
  /** @type {Emitter<Partial>} */
  partialRenderFinished = new Emitter();
  /** @type {Emitter<Partial>} */
  partialLayoutFinished = new Emitter();
  /** @type {Emitter<void>} */
  postRenderFinished = new Emitter();
  /** @type {Emitter<Error>} */
  error = new Emitter();
  /** @type {Emitter<string>} why the score will not be drawn, in a sentence */
  gaveUp = new Emitter();
  /**
   * @type {Emitter<LayoutBatch>} what can be seen is on the score page (its first layout batch), or all is laid out
   *     (its last)
   */
  batchShown = new Emitter();
  /** @type {Emitter<void>} a layout batch that is not the first is on the score page */
  remainderShown = new Emitter();

  /** @type {BoundsLookup | null} */
  boundsLookup = null;
  width = 0;
  /** @type {ShownStaves} what the next render pass shows of staves with strings */
  staves = "both";

  /** @type {number | null} the bar with the cursor, by its index */
  cursorBar = null;
  /** Whether the score drawn last was on the score page before. */
  drewAgain = false;

  /** Whether the score is to be drawn as nothing on the score page shows it yet. */
  awaited = false;

  /** Whether there is one endless system, whatever the width. */
  #sideways = false;
  /** Whether the score has been requested as it is to be drawn now. */
  #requested = false;

  /** @type {Worker} */
  #worker;
  /** @type {WorkerWatch} */
  #watch;
  #start;
  #viewport;
  /** @type {Map<string, unknown> | null} what the worker was told last */
  #settings = null;
  /** Whether the worker is at a render pass. */
  #inRenderPass = false;
  /** @type {Score | null} what was drawn when the worker was last asked whether it answers */
  #scoreInWork = null;
  #files = 0;
  /** @type {WeakMap<Score, number>} the number of each score's file with the worker */
  #fileOf = new WeakMap();
  #renderId = 0;
  /** @type {number | null} the render pass that is on the score page as a whole */
  #whole = null;
  /** @type {import("@coderline/alphatab").rendering.BeatBounds[]} the beats of folded rests */
  #folded = [];
  /** How long a render pass waits with its remainder, in milliseconds. */
  #remainderTimeoutMs = 0;
  /** @type {Score | null} */
  #score = null;
  /** @type {number[]} */
  #tracks = [];
  /** @type {{ score: Score | null, height: number, sideways: boolean }} what is on the score page */
  #shown = { score: null, height: 0, sideways: false };
  /** @type {ScrollAnchor | null} where readers are to find themselves again */
  #anchor = null;
  /** @type {Return | null} the last time that they did */
  #returned = null;

  /**
   * @param {Worker} worker running render-worker.js
   * @param {import("./scroll-anchor.js").ScrolledView} viewport
   * @param {() => Worker} start makes another such worker, when the one before does not answer any more
   */
  constructor(worker, viewport, start) {
    this.#viewport = viewport;
    this.#start = start;
    this.#worker = worker;
    this.#watch = this.#join(worker);
  }

  /** @param {Worker} worker */
  #join(worker) {
    worker.addEventListener("message", ({ data }) => worker === this.#worker && this.#receive(data));
    worker.addEventListener("error", (event) => this.error.trigger(new Error(event.message)));
    const ping = (/** @type {number} */ number) => {
      this.#scoreInWork = this.#score;
      worker.postMessage({ cmd: "ping", number });
    };
    const isBusy = () => this.#inRenderPass && this.#remainderTimeoutMs === 0;
    return new WorkerWatch(ping, () => this.#replaceWorker(), isBusy);
  }

  /** The worker works on something that takes for ever, or is gone: another one draws what is to be drawn by now. */
  #replaceWorker() {
    const inWork = this.#scoreInWork;
    this.#worker.terminate();
    this.#worker = this.#start();
    this.#watch = this.#join(this.#worker);
    this.#fileOf = new WeakMap();
    this.#post({ cmd: "settings", settings: this.#settings });
    if (this.#score && this.#score !== inWork) {
      this.render();
    } else {
      this.#anchor = null;
      this.#inRenderPass = false;
      this.awaited = false;
      this.error.trigger(new Error(tooLong));
      this.gaveUp.trigger(tooLong);
    }
  }

  /**
   * Has the worker read a file while the page does.
   *
   * @param {Uint8Array} bytes
   * @returns {number | null} what to call it by in recognize(); null for a file that is better read once
   */
  read(bytes) {
    if (bytes.length > longestFileReadTwice) {
      return null;
    }
    this.#watch.hurry();
    this.#post({ cmd: "read", file: ++this.#files, bytes });
    return this.#files;
  }

  /**
   * @param {Score} score
   * @param {number} file that it was read from
   */
  recognize(score, file) {
    this.#fileOf.set(score, file);
  }

  /** Ends the render pass under way: nothing more of it is shown. */
  abandon() {
    this.#renderId++;
    this.awaited = false;
    this.#inRenderPass = false;
    this.#post({ cmd: "stop" });
  }

  /**
   * From now on render passes stop after what can be seen, until resume().
   *
   * @param {number} timeoutMs how long each of them waits for that
   */
  holdRemainder(timeoutMs) {
    this.#remainderTimeoutMs = timeoutMs;
  }

  /** Has the render pass under way go on to its end, and those to come not stop. */
  resume() {
    if (this.#remainderTimeoutMs > 0) {
      this.#remainderTimeoutMs = 0;
      this.#post({ cmd: "resume" });
    }
  }

  /** @param {import("../shared/alphatab.js").Settings} settings */
  updateSettings(settings) {
    const values = alphaTab.model.JsonConverter.settingsToJsObject(settings);
    values?.delete("player");
    this.#sideways = settings.display.layoutMode === alphaTab.LayoutMode.Horizontal;
    this.#settings = values;
    this.#post({ cmd: "settings", settings: values });
  }

  /**
   * Changes the score page for a score that is to be drawn anew. Until it is, what is on the score page stays where it
   * is.
   *
   * @param {() => void} change
   */
  changeScorePage(change) {
    this.#holdAnchor();
    const { view } = this.#viewport;
    change();
    if (this.#anchor) {
      this.#viewport.moveTo(view);
    }
  }

  /**
   * Readers will be where they are now when the score has been drawn anew. Those at the very beginning stay there.
   * Those who have not moved since they scrolled somewhere themselves are still there, even if it is no longer the
   * first thing to be seen: smaller and larger again leads back.
   */
  #holdAnchor() {
    if (this.#anchor || !this.boundsLookup || this.#shown.score !== this.#score) {
      return;
    }
    const { left, top } = this.#viewport.position;
    const before = this.#returned;
    if (before && before.left === left && before.top === top && before.cursorBar === this.cursorBar) {
      this.#anchor = before.anchor;
    } else if (left > 0 || top > 0) {
      this.#anchor = anchorIn(this.boundsLookup, this.#viewport.view, this.cursorBar);
    }
  }

  /**
   * @param {Score | null} score
   * @param {number[] | null} tracks
   */
  renderScore(score, tracks) {
    if (score !== this.#score) {
      this.#anchor = null;
      this.#returned = null;
      this.cursorBar = null;
    }
    this.#score = score;
    this.#tracks = tracks ?? [];
    this.render();
  }

  render() {
    const score = this.#score;
    this.#renderId++;
    this.#requested = score !== null && this.#tracks.length > 0 && this.width > 0;
    this.awaited = this.#requested;
    if (score && this.#requested) {
      this.#holdAnchor();
      this.#inRenderPass = true;
      if (score !== this.#scoreInWork) {
        this.#watch.hurry();
      }
      const file = this.#fileOf.get(score);
      this.#post({
        cmd: "draw",
        renderId: this.#renderId,
        file: file ?? this.#numberFor(score),
        score: file === undefined ? handedOver(score) : null,
        tracks: this.#tracks,
        width: this.width,
        view: this.#viewport.view,
        anchor: this.#anchor,
        // The page measures the fonts, which the worker cannot.
        textWidths: letterWidths(),
        remainderTimeoutMs: this.#remainderTimeoutMs,
        staves: this.staves,
        // A reader far on in the system would be lost with its beginning alone.
        atOnce: this.#sideways && this.#shown.sideways && this.#shown.score === score,
        whole: this.#whole,
      });
    }
  }

  /** The endless system makes the notation container wider itself, and is not drawn again for that. */
  resizeRender() {
    if (!this.#sideways || !this.#requested) {
      this.render();
    }
  }

  /** @param {string} id */
  renderResult(id) {
    this.#post({ cmd: "paint", id });
  }

  /** Has the worker collect its garbage. */
  collectGarbage() {
    this.#post({ cmd: "collect" });
  }

  destroy() {
    this.#watch.end();
    this.#worker.terminate();
  }

  /** @param {Score} score */
  #numberFor(score) {
    const file = ++this.#files;
    this.#fileOf.set(score, file);
    return file;
  }

  /** @param {Request} request */
  #post(request) {
    this.#worker.postMessage(request);
    this.#watch.asked();
  }

  /** @param {Answer} answer */
  #receive(answer) {
    if (answer.kind === "pong") {
      this.#watch.answer(answer.number);
    } else if (answer.kind === "failed") {
      this.#anchor = null;
      this.#inRenderPass = false;
      this.error.trigger(new Error(answer.message));
    } else if (answer.kind === "ready" || answer.renderId !== this.#renderId) {
      // Nothing drawn, or of a render pass that another has replaced.
    } else if (answer.kind === "painted") {
      this.partialRenderFinished.trigger(answer.partial);
    } else if (answer.kind === "drawn") {
      this.#show(answer.batch);
    } else if (this.#score) {
      // Another file has been read in between, and came to nothing.
      this.#fileOf.delete(this.#score);
      this.render();
    }
  }

  /** @param {LayoutBatch} batch */
  #show(batch) {
    this.#whole = batch.last ? this.#renderId : null;
    if (batch.first) {
      this.awaited = false;
      this.preRender.trigger(false);
    }
    if ((batch.first && !batch.rescaling) || batch.allBounds) {
      this.boundsLookup = new alphaTab.rendering.BoundsLookup();
      this.#folded = [];
    }
    for (const partial of batch.partials) {
      this.partialLayoutFinished.trigger(partial);
      if (partial.renderResult) {
        this.partialRenderFinished.trigger(partial);
      }
    }
    if (batch.bounds) {
      batch.bounds.forEach((text) => this.#addBounds(text));
      this.boundsLookup?.finish();
      this.#addFolded(batch.last);
    } else if (batch.rescaling && this.boundsLookup) {
      rescaleBounds(this.boundsLookup, this.#folded, batch.rescaling);
    }
    this.#inRenderPass = !batch.last;
    if (!batch.first) {
      this.remainderShown.trigger();
    }
    if (batch.first || batch.last) {
      this.drewAgain = this.#shown.score === this.#score;
      this.renderFinished.trigger(this.#sizeOf(batch));
      this.#returnToAnchor(batch);
      this.postRenderFinished.trigger();
      this.batchShown.trigger(batch);
    }
  }

  /** @param {LayoutBatch} batch */
  #returnToAnchor({ first, last }) {
    const anchor = first ? this.#anchor : null;
    const view =
      anchor && this.boundsLookup ? viewAt(anchor, this.boundsLookup, this.#viewport.view, this.#sideways) : null;
    if (anchor && view) {
      this.#viewport.moveTo(view);
      this.#returned = { anchor, ...this.#viewport.position, cursorBar: this.cursorBar };
    }
    if (last || !this.#sideways) {
      this.#anchor = null;
    }
  }

  /** @param {LayoutBatch} batch */
  #sizeOf({ last, allPartials, width, height }) {
    // A score drawn anew keeps its length until the new one is known: the reader stays where they are.
    const atLeast = !last && !allPartials && this.#shown.score === this.#score ? this.#shown.height : 0;
    const size = new alphaTab.rendering.RenderFinishedEventArgs();
    size.totalWidth = width;
    size.totalHeight = Math.max(height, atLeast);
    this.#shown = { score: this.#score, height: size.totalHeight, sideways: this.#sideways };
    return size;
  }

  /** @param {string} text the bounds of further staff systems */
  #addBounds(text) {
    const all = this.boundsLookup;
    const more = this.#score && boundsOf(text, this.#score);
    if (!all || !more) {
      return;
    }
    for (const system of more.staffSystems) {
      all.addStaffSystem(system);
      for (const bar of system.bars) {
        all.addMasterBar(bar);
        for (const beat of bar.bars.flatMap((staffBar) => staffBar.beats)) {
          all.addBeat(beat);
        }
      }
    }
  }

  /**
   * alphaTab does not say where the beats of a folded rest are, and then leaves its cursor where it was.
   *
   * @param {boolean} last whether there are no more bars
   */
  #addFolded(last) {
    const all = this.boundsLookup;
    const track = this.#tracks.length === 1 ? this.#score?.tracks[this.#tracks[0]] : null;
    if (!all || !track?.score.stylesheet.perTrackMultiBarRest?.has(track.index)) {
      return;
    }
    const shown = all.staffSystems.flatMap(({ bars }) => bars);
    shown.forEach(({ index, bars: [box] }, position) => {
      const end = shown[position + 1]?.index ?? (last ? track.score.masterBars.length : index);
      const folded = track.staves.flatMap((staff) => staff.bars.slice(index, end));
      const beats = folded.flatMap(({ voices }) => voices.flatMap((voice) => voice.beats));
      if (end <= index + 1 || !box || box.beats.length > 0 || beats.length === 0) {
        return;
      }
      const { visualBounds, realBounds } = box;
      const onNotesX = visualBounds.x + visualBounds.w / 2;
      const boxes = beats.map((beat) =>
        Object.assign(new alphaTab.rendering.BeatBounds(), {
          beat,
          visualBounds,
          realBounds,
          onNotesX,
          barBounds: box,
        }),
      );
      boxes.forEach((beat) => all.addBeat(beat));
      this.#folded.push(...boxes);
      // For the pointer.
      box.beats.push(boxes[0]);
    });
  }
}

/** @param {Score} score */
function handedOver(score) {
  chooseStrings(score);
  const values = alphaTab.model.JsonConverter.scoreToJsObject(score);
  // A backing track is not drawn.
  values?.delete("backingtrack");
  return values;
}
