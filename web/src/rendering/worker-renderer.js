// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { Emitter } from "../shared/emitter.js";
import { placeIn, viewAt } from "./reading-place.js";

/**
 * The page's end of the drawing worker, in the shape in which alphaTab knows a renderer. alphaTab's own worker
 * tells of a drawing when all of it is laid out, which takes seconds with a long score; this one tells of it piece by
 * piece.
 *
 * @typedef {import("../shared/alphatab.js").Score} Score
 * @typedef {import("./layout-run.js").Part} Part
 * @typedef {import("./layout-run.js").Piece} Piece
 * @typedef {import("./reading-place.js").View} View
 * @typedef {import("./reading-place.js").Place} Place
 * @typedef {import("@coderline/alphatab").rendering.BoundsLookup} BoundsLookup
 *
 * @typedef {{ place: Place, left: number, top: number, marked: number | null }} Return how far the viewport was scrolled, and
 *   what was marked
 *
 * Requests are told apart by "cmd", as alphaTab's own workers, which live in the same script, look for it.
 *
 * @typedef {{ cmd: "settings", settings: Map<string, unknown> | null }
 *   | { cmd: "read", file: number, bytes: Uint8Array }
 *   | { cmd: "draw", drawing: number, file: number, score: Map<string, unknown> | null, tracks: number[], width: number,
 *       view: View, place: Place | null, textWidths: Map<string, unknown>, restHeld: boolean, atOnce: boolean }
 *   | { cmd: "goOn" }
 *   | { cmd: "stop" }
 *   | { cmd: "paint", id: string }
 *   | { cmd: "tidy" }} Request
 *
 * @typedef {{ kind: "drawn", drawing: number, piece: Piece }
 *   | { kind: "painted", drawing: number, part: Part }
 *   | { kind: "missing", drawing: number }
 *   | { kind: "listening" }
 *   | { kind: "failed", message: string }} Answer
 */

/** Longer files, which carry recordings, are read once: the worker gets the score. In bytes. */
const longestFileReadTwice = 4 << 20;

/** @implements {IScoreRenderer} @typedef {import("@coderline/alphatab").rendering.IScoreRenderer} IScoreRenderer */
export class WorkerRenderer {
  /** @type {Emitter<boolean>} */
  preRender = new Emitter();
  /** @type {Emitter<Part>} */
  renderFinished = new Emitter();
  /** @type {Emitter<Part>} */
  partialRenderFinished = new Emitter();
  /** @type {Emitter<Part>} */
  partialLayoutFinished = new Emitter();
  /** @type {Emitter<void>} */
  postRenderFinished = new Emitter();
  /** @type {Emitter<Error>} */
  error = new Emitter();
  /** @type {Emitter<Piece>} what can be seen is on the score page (its first piece), or all is laid out (its last) */
  pieceShown = new Emitter();

  /** @type {BoundsLookup | null} */
  boundsLookup = null;
  width = 0;

  /** @type {number | null} the bar that is marked on the score page, by its index */
  markedBar = null;
  /** Whether the score drawn last was on the score page before. */
  drewAgain = false;

  /** Whether the score is to be drawn as nothing on the score page shows it yet. */
  awaited = false;

  /** Whether lines go on for ever, whatever the width. */
  #sideways = false;
  /** Whether the worker has been asked for the score as it is to be drawn now. */
  #asked = false;

  #worker;
  #viewport;
  #files = 0;
  /** @type {WeakMap<Score, number>} the number of each score's file with the worker */
  #fileOf = new WeakMap();
  #drawing = 0;
  #restHeld = false;
  /** @type {Score | null} */
  #score = null;
  /** @type {number[]} */
  #tracks = [];
  /** @type {{ score: Score | null, height: number, sideways: boolean }} what is on the score page */
  #shown = { score: null, height: 0, sideways: false };
  /** @type {Place | null} where readers are to find themselves again */
  #place = null;
  /** @type {Return | null} the last time that they did */
  #returned = null;

  /**
   * @param {Worker} worker running drawing-worker.js
   * @param {import("./reading-place.js").ScrolledView} viewport
   */
  constructor(worker, viewport) {
    this.#worker = worker;
    this.#viewport = viewport;
    worker.addEventListener("message", ({ data }) => this.#hear(data));
    worker.addEventListener("error", (event) => this.error.trigger(new Error(event.message)));
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
    this.#ask({ cmd: "read", file: ++this.#files, bytes });
    return this.#files;
  }

  /**
   * @param {Score} score
   * @param {number} file that it was read from
   */
  recognize(score, file) {
    this.#fileOf.set(score, file);
  }

  /** Nothing more will be heard of the drawing under way. */
  abandon() {
    this.#drawing++;
    this.awaited = false;
    this.#ask({ cmd: "stop" });
  }

  /** From now on drawings stop after what can be seen, until goOn(). */
  holdRest() {
    this.#restHeld = true;
  }

  /** Has the drawing under way go on to its end, and those to come not stop. */
  goOn() {
    if (this.#restHeld) {
      this.#restHeld = false;
      this.#ask({ cmd: "goOn" });
    }
  }

  /** @param {import("../shared/alphatab.js").Settings} settings */
  updateSettings(settings) {
    const values = alphaTab.model.JsonConverter.settingsToJsObject(settings);
    values?.delete("player");
    this.#sideways = settings.display.layoutMode === alphaTab.LayoutMode.Horizontal;
    this.#ask({ cmd: "settings", settings: values });
  }

  /**
   * Changes the score page for a score that is to be drawn anew. Until it is, what is on the score page stays where it is.
   *
   * @param {() => void} change
   */
  changeScorePage(change) {
    this.#holdPlace();
    const { view } = this.#viewport;
    change();
    if (this.#place) {
      this.#viewport.moveTo(view);
    }
  }

  /**
   * Readers will be where they are now when the score has been drawn anew. Those at the very beginning stay there. Those
   * who have not moved since they came to a place by themselves are still at that place, even if it is no longer the first
   * thing to be seen: smaller and larger again leads back.
   */
  #holdPlace() {
    if (this.#place || !this.boundsLookup || this.#shown.score !== this.#score) {
      return;
    }
    const { left, top } = this.#viewport.position;
    const before = this.#returned;
    if (before && before.left === left && before.top === top && before.marked === this.markedBar) {
      this.#place = before.place;
    } else if (left > 0 || top > 0) {
      this.#place = placeIn(this.boundsLookup, this.#viewport.view, this.markedBar);
    }
  }

  /**
   * @param {Score | null} score
   * @param {number[] | null} tracks
   */
  renderScore(score, tracks) {
    if (score !== this.#score) {
      this.#place = null;
      this.#returned = null;
      this.markedBar = null;
    }
    this.#score = score;
    this.#tracks = tracks ?? [];
    this.render();
  }

  render() {
    const score = this.#score;
    this.#drawing++;
    this.#asked = score !== null && this.#tracks.length > 0 && this.width > 0;
    this.awaited = this.#asked;
    if (score && this.#asked) {
      this.#holdPlace();
      const file = this.#fileOf.get(score);
      this.#ask({
        cmd: "draw",
        drawing: this.#drawing,
        file: file ?? this.#numberFor(score),
        score: file === undefined ? handedOver(score) : null,
        tracks: this.#tracks,
        width: this.width,
        view: this.#viewport.view,
        place: this.#place,
        textWidths: textWidths(),
        restHeld: this.#restHeld,
        // Who reads far on in the line would be lost with its beginning alone.
        atOnce: this.#sideways && this.#shown.sideways && this.#shown.score === score,
      });
    }
  }

  /** A line that goes on for ever makes the notation wider itself, and is not drawn again for that. */
  resizeRender() {
    if (!this.#sideways || !this.#asked) {
      this.render();
    }
  }

  /** @param {string} id */
  renderResult(id) {
    this.#ask({ cmd: "paint", id });
  }

  /** Has the worker collect its garbage. */
  tidy() {
    this.#ask({ cmd: "tidy" });
  }

  destroy() {
    this.#worker.terminate();
  }

  /** @param {Score} score */
  #numberFor(score) {
    const file = ++this.#files;
    this.#fileOf.set(score, file);
    return file;
  }

  /** @param {Request} request */
  #ask(request) {
    this.#worker.postMessage(request);
  }

  /** @param {Answer} answer */
  #hear(answer) {
    if (answer.kind === "failed") {
      this.#place = null;
      this.error.trigger(new Error(answer.message));
    } else if (answer.kind === "listening" || answer.drawing !== this.#drawing) {
      // Nothing drawn, or of a drawing that another has taken the place of.
    } else if (answer.kind === "painted") {
      this.partialRenderFinished.trigger(answer.part);
    } else if (answer.kind === "drawn") {
      this.#show(answer.piece);
    } else if (this.#score) {
      // Another file has been read in between, and came to nothing.
      this.#fileOf.delete(this.#score);
      this.render();
    }
  }

  /** @param {Piece} piece */
  #show(piece) {
    if (piece.first) {
      this.awaited = false;
      this.boundsLookup = new alphaTab.rendering.BoundsLookup();
      this.preRender.trigger(false);
    }
    for (const part of piece.parts) {
      this.partialLayoutFinished.trigger(part);
      if (part.renderResult) {
        this.partialRenderFinished.trigger(part);
      }
    }
    this.#addBounds(piece.bounds);
    if (piece.first || piece.last) {
      this.drewAgain = this.#shown.score === this.#score;
      this.renderFinished.trigger(this.#sizeOf(piece));
      this.#returnToPlace(piece);
      this.postRenderFinished.trigger();
      this.pieceShown.trigger(piece);
    }
  }

  /** @param {Piece} piece */
  #returnToPlace({ first, last }) {
    const place = first ? this.#place : null;
    const view = place && this.boundsLookup ? viewAt(place, this.boundsLookup, this.#viewport.view, this.#sideways) : null;
    if (place && view) {
      this.#viewport.moveTo(view);
      this.#returned = { place, ...this.#viewport.position, marked: this.markedBar };
    }
    if (last || !this.#sideways) {
      this.#place = null;
    }
  }

  /** @param {Piece} piece */
  #sizeOf({ last, width, height }) {
    // A score drawn anew keeps its length until the new one is known: the reader stays at the same place.
    const atLeast = !last && this.#shown.score === this.#score ? this.#shown.height : 0;
    const size = new alphaTab.rendering.RenderFinishedEventArgs();
    size.totalWidth = width;
    size.totalHeight = Math.max(height, atLeast);
    this.#shown = { score: this.#score, height: size.totalHeight, sideways: this.#sideways };
    return size;
  }

  /** @param {Map<string, unknown>} bounds of further lines */
  #addBounds(bounds) {
    const all = this.boundsLookup;
    const more = this.#score && alphaTab.rendering.BoundsLookup.fromJson(bounds, this.#score);
    if (!all || !more) {
      return;
    }
    for (const line of more.staffSystems) {
      all.addStaffSystem(line);
      for (const bar of line.bars) {
        all.addMasterBar(bar);
        for (const beat of bar.bars.flatMap((staffBar) => staffBar.beats)) {
          all.addBeat(beat);
        }
      }
    }
    all.finish();
  }
}

/** @param {Score} score */
function handedOver(score) {
  const values = alphaTab.model.JsonConverter.scoreToJsObject(score);
  // A recording is not drawn.
  values?.delete("backingtrack");
  return values;
}

/** How wide letters are: the page measures the fonts, which the worker cannot. */
function textWidths() {
  const platform = /** @type {{ FontSizes: { fontSizeLookupTables: Map<string, unknown> } }} */ (
    /** @type {unknown} */ (alphaTab.platform)
  );
  return platform.FontSizes.fontSizeLookupTables;
}
