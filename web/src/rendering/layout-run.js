// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { viewAt } from "./reading-place.js";

/**
 * One drawing of a score, laid out a few bars at a time. alphaTab lays out a whole score or, after an edit, all from
 * one bar on; here each step shows it some bars more and has it go on from the last line, which was not full yet. The
 * first piece covers what can be seen, so that it is on the score page long before the end is known.
 *
 * @typedef {import("@coderline/alphatab").rendering.ScoreRenderer} ScoreRenderer
 * @typedef {import("@coderline/alphatab").rendering.RenderFinishedEventArgs} Part
 * @typedef {import("../shared/alphatab.js").Score} Score
 * @typedef {import("./reading-place.js").View} View
 * @typedef {import("./reading-place.js").Place} Place
 *
 * @typedef {object} Piece
 * @property {boolean} first whether what came before is of another drawing
 * @property {boolean} last
 * @property {Part[]} parts those in view with their picture
 * @property {Map<string, unknown>} bounds of the lines that the parts show
 * @property {number} width of everything laid out until now, in CSS pixels
 * @property {number} height
 */

/** How much the first step lays out, in bars of one track. */
const firstBars = 80;

/** How long a later step should take, in milliseconds. */
const stepTime = 60;

/**
 * How long the beginning of an endless line may wait for the rest, in milliseconds: higher notes far on move all staves
 * down, which is better not seen.
 */
const lineTime = 150;

export class LayoutRun {
  #renderer;
  #settings;
  #score;
  #tracks;
  #view;
  #viewBefore;
  #place;
  #sideways;
  #stepBars;
  #bars = 0;
  /** @type {Set<string>} */
  #known = new Set();
  /** @type {Part[]} laid out and not delivered, because they do not fill the view yet */
  #waiting = [];
  #lines = 0;
  #deliveredAny = false;

  finished = false;

  /**
   * @param {ScoreRenderer} renderer with its width and settings
   * @param {Score} score
   * @param {number[]} tracks
   * @param {View} view
   * @param {Place | null} [place] where the view will be; null for where it is
   * @param {boolean} [atOnce] whether nothing is to be shown before all is laid out
   */
  constructor(renderer, score, tracks, view, place = null, atOnce = false) {
    this.#renderer = renderer;
    this.#settings = renderer.settings;
    this.#score = score;
    this.#tracks = tracks;
    this.#view = view;
    this.#viewBefore = view;
    this.#place = place;
    this.#sideways = renderer.settings.display.layoutMode === alphaTab.LayoutMode.Horizontal;
    this.#stepBars = atOnce ? score.masterBars.length : Math.max(6, Math.round(firstBars / tracks.length));
  }

  /**
   * Lays out some bars more.
   *
   * @returns {Piece | null} null while what is laid out does not fill the view, or is better shown with what follows
   */
  step() {
    const total = this.#score.masterBars.length;
    const began = performance.now();
    const before = this.#bars;
    // One endless line is laid out as a whole: its beginning for the view, then everything.
    this.#bars = this.#sideways && before > 0 ? total : Math.min(before + this.#stepBars, total);
    this.finished = this.#bars === total;
    const { parts, width, height } = this.#layOut(before);
    const fresh = this.#takeFresh(parts);
    const took = performance.now() - began;
    this.#stepBars = nextStep(this.#bars - before, took);
    this.#waiting.push(...fresh);
    if (this.#sideways && !this.finished && (took * total) / this.#bars < lineTime) {
      return null;
    }
    if (!this.#deliveredAny && !this.#findPlace(width, height) && !this.finished) {
      return null;
    }
    const end = this.#waiting.at(-1);
    if (!this.finished && !this.#sideways && !this.#deliveredAny && (!end || end.y + end.height < this.#view.bottom)) {
      return null;
    }
    return this.#piece(width, this.finished || !end ? height : end.y + end.height);
  }

  /**
   * To be called when a piece is on its way: its pictures need not be kept.
   *
   * @param {Piece} piece
   */
  delivered(piece) {
    for (const part of piece.parts) {
      part.renderResult = undefined;
    }
  }

  /** @param {number} before how many bars are laid out already */
  #layOut(before) {
    const renderer = this.#renderer;
    /** @type {Part[]} */
    const parts = [];
    let size = { width: 0, height: 0 };
    const ends = [
      renderer.partialLayoutFinished.on((part) => {
        parts.push(part);
        if (this.#sideways && renderer.boundsLookup) {
          // Places in the line are known by now, all of them; alphaTab would find them out again with each part.
          renderer.boundsLookup.isFinished = true;
        }
      }),
      renderer.renderFinished.on(({ totalWidth, totalHeight }) => (size = { width: totalWidth, height: totalHeight })),
    ];
    this.#settings.display.barCount = this.finished ? -1 : this.#bars;
    if (before === 0) {
      renderer.renderScore(this.#score, this.#tracks);
    } else {
      renderer.render(this.#sideways ? {} : { reuseViewport: true, firstChangedMasterBar: before - 1 });
    }
    for (const end of ends) {
      end();
    }
    return { parts, ...size };
  }

  /**
   * alphaTab tells of all parts at each step. New ones are taken, up to the last line: that is laid out anew by the
   * next step, with the bars that follow it.
   *
   * @param {Part[]} parts
   */
  #takeFresh(parts) {
    const lines = parts.filter((part) => part.firstMasterBarIndex >= 0);
    const cut = this.finished || this.#sideways ? parts.length : parts.lastIndexOf(lines[lines.length - 1]);
    if (this.#known.size > 0 && lines.length > 0 && !this.#known.has(lines[0].id)) {
      // alphaTab began again at the first bar: what was told of before is no more.
      this.#known.clear();
      this.#waiting = [];
      this.#lines = 0;
      this.#deliveredAny = false;
    }
    const fresh = parts.slice(0, Math.max(cut, 0)).filter((part) => !this.#known.has(part.id));
    for (const part of fresh) {
      this.#known.add(part.id);
    }
    return fresh;
  }

  /**
   * @param {number} width
   * @param {number} height
   * @returns {Piece}
   */
  #piece(width, height) {
    const parts = this.#waiting;
    for (const part of parts) {
      // What the page has in its place is of another drawing.
      part.reuseViewport = false;
      if (this.#inView(part)) {
        this.#renderer.renderResult(part.id);
      }
    }
    const piece = { first: !this.#deliveredAny, last: this.finished, parts, bounds: this.#newBounds(), width, height };
    this.#waiting = [];
    this.#deliveredAny = true;
    return piece;
  }

  /**
   * Moves the view to the place where it will be. What is laid out may be too short to scroll there: then more is seen
   * before it or, at the beginning, behind it.
   *
   * @param {number} width of what is laid out
   * @param {number} height
   * @returns {boolean} whether the place is known
   */
  #findPlace(width, height) {
    const place = this.#place;
    const bounds = this.#renderer.boundsLookup;
    const view = place && bounds ? viewAt(place, bounds, this.#viewBefore, this.#sideways) : null;
    if (view) {
      const across = view.right - view.left;
      const down = view.bottom - view.top;
      this.#view = {
        left: this.#sideways ? Math.min(view.left, Math.max(width - across, 0)) : view.left,
        top: this.finished ? Math.min(view.top, Math.max(height - down, 0)) : view.top,
        right: Math.max(view.right, across),
        bottom: Math.max(view.bottom, down),
      };
    }
    return !place || view !== null;
  }

  /** @param {Part} part */
  #inView(part) {
    const view = this.#view;
    const across = part.x < view.right && part.x + part.width > view.left;
    return across && part.y < view.bottom && part.y + part.height > view.top;
  }

  #newBounds() {
    const all = this.#renderer.boundsLookup?.staffSystems ?? [];
    const lines = this.finished || this.#sideways ? all.length : Math.max(all.length - 1, 0);
    const bounds = new alphaTab.rendering.BoundsLookup();
    bounds.staffSystems = all.slice(this.#lines, lines);
    this.#lines = lines;
    if (this.finished) {
      // The page has them now; here they would only take room.
      this.#renderer.boundsLookup = null;
    }
    return bounds.toJson();
  }
}

/**
 * @param {number} bars in the last step
 * @param {number} time that they took, in milliseconds
 * @returns {number} bars for the next step
 */
export function nextStep(bars, time) {
  const fitting = (bars * stepTime) / Math.max(time, 1);
  return Math.round(Math.min(Math.max(fitting, bars / 2, 4), bars * 4));
}
