// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { chooseStrings } from "../score-files/strings/open-fingerings.js";
import { boundsText } from "./bounds-text.js";
import { viewAt } from "./scroll-anchor.js";

/**
 * One render pass of a score, laid out a few bars at a time. alphaTab lays out a whole score or, after an edit, all
 * from one bar on; here each step shows it some bars more and has it go on from the last staff system, which was not
 * full yet. The first layout batch covers what can be seen, so that it is on the score page long before the end is
 * known.
 *
 * @typedef {import("@coderline/alphatab").rendering.ScoreRenderer} ScoreRenderer
 * @typedef {import("@coderline/alphatab").rendering.RenderFinishedEventArgs} Partial
 * @typedef {import("../shared/alphatab.js").Score} Score
 * @typedef {import("./scroll-anchor.js").View} View
 * @typedef {import("./scroll-anchor.js").ScrollAnchor} ScrollAnchor
 *
 * @typedef {object} LayoutBatch
 * @property {boolean} first whether what came before is of another render pass
 * @property {boolean} last
 * @property {Partial[]} partials those in view with their picture
 * @property {string[] | null} bounds of the staff systems that the partials show, each in a text that boundsOf() reads;
 *     null for those that the page has, rescaled
 * @property {boolean} [allBounds] whether these are all, and take the place of what came before
 * @property {import("./rescaling.js").Rescaling} [rescaling] of what the page has
 * @property {boolean} [allPartials] whether these are all, though not all bounds: the size will not change
 * @property {number} width of everything laid out until now, in CSS pixels
 * @property {number} height
 */

/** How much the first step lays out, in bars of one track. */
const firstTrackBars = 80;

/** And how many bars at most: that many fill a view of usual size, whatever the music. */
const mostFirstBars = 32;

/** How long a later step should take, in milliseconds. */
const stepMs = 60;

/**
 * How long the beginning of the endless system may wait for the rest of it: higher notes far on move all staves
 * down, which is better not seen.
 */
const endlessSystemMs = 150;

export class LayoutRun {
  #renderer;
  #settings;
  #score;
  #tracks;
  #view;
  #viewBefore;
  #anchor;
  #sideways;
  #stepBars;
  #bars = 0;
  /** @type {Set<string>} */
  #known = new Set();
  /** @type {Partial[]} laid out and not delivered, because they do not fill the view yet */
  #waiting = [];
  #deliveredAny = false;

  finished = false;

  /** How much is laid out and delivered, in bars of one track. */
  get size() {
    return this.#deliveredAny ? this.#bars * this.#tracks.length : 0;
  }

  /**
   * @param {ScoreRenderer} renderer with its width and settings
   * @param {Score} score
   * @param {number[]} tracks
   * @param {View} view
   * @param {ScrollAnchor | null} [anchor] where the view will be; null for where it is
   * @param {boolean} [atOnce] whether nothing is to be shown before all is laid out
   */
  constructor(renderer, score, tracks, view, anchor = null, atOnce = false) {
    this.#renderer = renderer;
    this.#settings = renderer.settings;
    this.#score = score;
    this.#tracks = tracks;
    this.#view = view;
    this.#viewBefore = view;
    this.#anchor = anchor;
    this.#sideways = renderer.settings.display.layoutMode === alphaTab.LayoutMode.Horizontal;
    this.#stepBars = atOnce ? score.masterBars.length : firstStep(tracks.length);
  }

  /**
   * Lays out some bars more.
   *
   * @returns {LayoutBatch | null} null while what is laid out does not fill the view, or is better shown with what
   *     follows
   */
  step() {
    const total = this.#score.masterBars.length;
    const began = performance.now();
    const before = this.#bars;
    // One endless system is laid out as a whole: its beginning for the view, then everything.
    this.#bars = this.#sideways && before > 0 ? total : Math.min(before + this.#stepBars, total);
    this.finished = this.#bars === total;
    // And those of the next bar: ties and slides lead there.
    chooseStrings(this.#score, this.#bars);
    const { partials, width, height } = this.#layOut(before);
    const fresh = this.#takeFresh(partials);
    const took = performance.now() - began;
    this.#stepBars = nextStep(this.#bars - before, took);
    this.#waiting.push(...fresh);
    if (this.#sideways && !this.finished && (took * total) / this.#bars < endlessSystemMs) {
      return null;
    }
    if (!this.#deliveredAny && !this.#findAnchor(width, height) && !this.finished) {
      return null;
    }
    const end = this.#waiting.at(-1);
    if (!this.finished && !this.#sideways && !this.#deliveredAny && (!end || end.y + end.height < this.#view.bottom)) {
      return null;
    }
    return this.#batch(width, this.finished || !end ? height : end.y + end.height);
  }

  /**
   * To be called when a layout batch is on its way: its pictures need not be kept.
   *
   * @param {LayoutBatch} batch
   */
  delivered(batch) {
    for (const partial of batch.partials) {
      partial.renderResult = undefined;
    }
  }

  /** @param {number} before how many bars are laid out already */
  #layOut(before) {
    const renderer = this.#renderer;
    /** @type {Partial[]} */
    const partials = [];
    let size = { width: 0, height: 0 };
    const ends = [
      renderer.partialLayoutFinished.on((partial) => {
        partials.push(partial);
        if (this.#sideways && renderer.boundsLookup) {
          // Positions in the system are known by now, all of them; alphaTab would find them out again with each
          // partial.
          renderer.boundsLookup.isFinished = true;
        }
      }),
      renderer.renderFinished.on(({ totalWidth, totalHeight }) => {
        // alphaTab forgets the zoom in the width of the endless system.
        const { scale } = this.#settings.display;
        size = { width: this.#sideways ? totalWidth * scale : totalWidth, height: totalHeight };
      }),
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
    return { partials, ...size };
  }

  /**
   * alphaTab reports all partials at each step. New ones are taken, up to the last staff system: that is laid out anew
   * by the next step, with the bars that follow it.
   *
   * @param {Partial[]} partials
   */
  #takeFresh(partials) {
    const systems = partials.filter((partial) => partial.firstMasterBarIndex >= 0);
    const end = this.finished || this.#sideways ? partials.length : partials.lastIndexOf(systems[systems.length - 1]);
    if (this.#known.size > 0 && systems.length > 0 && !this.#known.has(systems[0].id)) {
      // alphaTab began again at the first bar: what was reported before does not hold any more.
      this.#known.clear();
      this.#waiting = [];
      this.#deliveredAny = false;
    }
    const fresh = partials.slice(0, Math.max(end, 0)).filter((partial) => !this.#known.has(partial.id));
    for (const partial of fresh) {
      this.#known.add(partial.id);
    }
    return fresh;
  }

  /**
   * @param {number} width
   * @param {number} height
   * @returns {LayoutBatch}
   */
  #batch(width, height) {
    const partials = this.#waiting;
    for (const partial of partials) {
      // What the page has in its place is of another render pass.
      partial.reuseViewport = false;
      if (isIn(partial, this.#view)) {
        this.#renderer.renderResult(partial.id);
      }
    }
    const batch = {
      first: !this.#deliveredAny,
      last: this.finished,
      partials,
      bounds: this.#newBounds(),
      width,
      height,
    };
    this.#waiting = [];
    this.#deliveredAny = true;
    return batch;
  }

  /**
   * Moves the view to where it will be. What is laid out may be too short to scroll there: then more is seen
   * before it or, at the beginning, behind it.
   *
   * @param {number} width of what is laid out
   * @param {number} height
   * @returns {boolean} whether the anchor has been laid out
   */
  #findAnchor(width, height) {
    const anchor = this.#anchor;
    const bounds = this.#renderer.boundsLookup;
    const view = anchor && bounds ? viewAt(anchor, bounds, this.#viewBefore, this.#sideways) : null;
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
    return !anchor || view !== null;
  }

  #newBounds() {
    const all = this.#renderer.boundsLookup?.staffSystems ?? [];
    const systems = this.finished || this.#sideways ? all.length : Math.max(all.length - 1, 0);
    // The page has them now; here they would only take room, and alphaTab would go through all of them at each step.
    this.#renderer.boundsLookup = this.finished ? null : new alphaTab.rendering.BoundsLookup();
    return all.slice(0, systems).map(boundsText);
  }
}

/**
 * @param {Partial} partial
 * @param {View} view
 */
export function isIn(partial, view) {
  const across = partial.x < view.right && partial.x + partial.width > view.left;
  return across && partial.y < view.bottom && partial.y + partial.height > view.top;
}

/**
 * @param {number} tracks that are shown
 * @returns {number} bars for the first step
 */
export function firstStep(tracks) {
  return Math.min(mostFirstBars, Math.max(6, Math.round(firstTrackBars / tracks)));
}

/**
 * @param {number} bars in the last step
 * @param {number} time that they took, in milliseconds
 * @returns {number} bars for the next step
 */
export function nextStep(bars, time) {
  const fitting = (bars * stepMs) / Math.max(time, 1);
  return Math.round(Math.min(Math.max(fitting, bars / 2, 4), bars * 4));
}
