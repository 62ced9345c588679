// @ts-check
import { alphaTab } from "../shared/alphatab.js";

/**
 * The paper with the notation on it: which tracks it shows, how they are laid out, how large they are drawn.
 */

/** Width of the paper at zoom 1, in CSS pixels: about five bars of guitar to a line. */
const paperWidth = 1180;

/** How long a finished drawing may keep its visible part waiting before it is reported all the same, in milliseconds. */
const patience = 2000;

export class Sheet {
  #api;
  #paper;
  #viewport;
  #heading;
  #onRendered;
  #drawing = 0;

  /**
   * @param {import("../alphatab/engine.js").Engine} api
   * @param {HTMLElement} paper
   * @param {HTMLElement} viewport what scrolls
   * @param {import("./heading.js").Heading} heading
   * @param {() => void} onRendered called when what can be seen of a finished drawing is on the paper
   */
  constructor(api, paper, viewport, heading, onRendered) {
    this.#api = api;
    this.#paper = paper;
    this.#viewport = viewport;
    this.#heading = heading;
    this.#onRendered = onRendered;
    this.#sizePaper(1);
    api.renderStarted.on(() => {
      this.#drawing++;
    });
    api.drawing.pieceShown.on(({ last }) => {
      if (last) {
        this.#reportWhenVisible();
      }
    });
  }

  /** To be called before another score is handed to the engine: what is being drawn of this one is abandoned. */
  leaveScore() {
    this.#drawing++;
    this.#api.drawing.abandon();
  }

  /**
   * Draws another score with all its tracks.
   *
   * @param {import("../shared/alphatab.js").Score} score
   */
  show(score) {
    this.#heading.show(score, score.tracks);
    this.#api.show(score);
  }

  /** Puts the paper on the viewport; it is not there before the first score. */
  lay() {
    this.#paper.classList.remove("empty");
  }

  scrollToTop() {
    this.#viewport.scrollTo(0, 0);
  }

  /** @param {number[]} trackIds */
  showTracks(trackIds) {
    const score = this.#api.score;
    const tracks = score ? trackIds.map((id) => score.tracks[id]).filter(Boolean) : [];
    if (tracks.length > 0) {
      this.#api.drawing.changePaper(() =>
        this.#heading.show(/** @type {import("../shared/alphatab.js").Score} */ (score), tracks),
      );
      this.#api.renderTracks(tracks);
    }
  }

  /** @param {string} layout */
  setLayout(layout) {
    const horizontal = layout === "horizontal";
    this.#api.drawing.changePaper(() => this.#paper.classList.toggle("horizontal", horizontal));
    this.#api.settings.display.layoutMode = horizontal ? alphaTab.LayoutMode.Horizontal : alphaTab.LayoutMode.Page;
    this.#redraw();
  }

  /** @param {number} zoom */
  setZoom(zoom) {
    if (Number.isFinite(zoom) && zoom > 0) {
      this.#api.drawing.changePaper(() => this.#sizePaper(zoom));
      this.#api.settings.display.scale = zoom;
      this.#redraw();
    }
  }

  /**
   * Smaller notation on the same paper would make lines too long to read, larger notation lines of two bars.
   *
   * @param {number} zoom
   */
  #sizePaper(zoom) {
    const width = Math.round(paperWidth * Math.min(Math.max(zoom, 0.75), 2));
    this.#paper.style.setProperty("--paper-width", `${width}px`);
    this.#paper.style.setProperty("--zoom", String(zoom));
  }

  #redraw() {
    this.#api.updateSettings();
    if (this.#api.score) {
      this.#api.render();
    }
  }

  /** A layout is finished before its lines are painted: they are painted as they come into view. */
  #reportWhenVisible() {
    const drawing = this.#drawing;
    const deadline = performance.now() + patience;
    const check = () => {
      if (drawing !== this.#drawing) {
        return;
      }
      if ((this.#visiblePartsPainted() && this.#api.hasPrepared) || performance.now() > deadline) {
        this.#onRendered();
      } else {
        setTimeout(check, 15);
      }
    };
    check();
  }

  #visiblePartsPainted() {
    const view = this.#viewport.getBoundingClientRect();
    for (const part of this.#paper.querySelectorAll(".at-surface > div")) {
      const box = part.getBoundingClientRect();
      const visible =
        box.bottom > view.top && box.top < view.bottom && box.right > view.left && box.left < view.right;
      if (visible && part.childElementCount === 0) {
        return false;
      }
    }
    return true;
  }
}
