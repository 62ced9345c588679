// @ts-check
import { alphaTab } from "./alphatab.js";

/**
 * The paper with the notation on it: which tracks it shows, how they are laid out, how large they are drawn.
 */

/** Width of the paper at zoom 1, in CSS pixels: about five bars of guitar to a line. */
const paperWidth = 1180;

/** How much is drawn before the rest, in bars of one track. */
const sampledBars = 90;

/** How long a finished drawing may keep its visible part waiting before it is reported all the same, in milliseconds. */
const patience = 2000;

export class Sheet {
  #api;
  #sampling = false;
  /** Drawings asked for and not finished. */
  #underWay = 0;
  #paper;
  #desk;
  #onRendered;
  #drawing = 0;

  /**
   * @param {import("./engine.js").Engine} api
   * @param {HTMLElement} paper
   * @param {HTMLElement} desk what scrolls
   * @param {() => void} onRendered called when what can be seen of a finished drawing is on the paper
   */
  constructor(api, paper, desk, onRendered) {
    this.#api = api;
    this.#paper = paper;
    this.#desk = desk;
    this.#onRendered = onRendered;
    this.#setPaperWidth(1);
    this.#countDrawings();
    api.renderStarted.on(() => {
      this.#drawing++;
    });
    api.postRenderFinished.on(() => {
      this.#underWay--;
      if (this.#sampling) {
        this.#drawRest();
      } else {
        this.#reportWhenVisible();
      }
    });
  }

  /**
   * To be called before another score is handed to the engine. A drawing under way is abandoned together with its
   * worker: its end would be taken for that of the next score, whose tracks and bars are others.
   */
  leaveScore() {
    if (this.#underWay > 0) {
      this.#sampling = false;
      this.#drawing++;
      // A new worker is given the score that was drawn last at once: that one has to be forgotten first.
      this.#api.renderer.renderScore(null, null);
      this.#underWay = 0;
      const core = this.#api.settings.core;
      core.useWorkers = false;
      this.#api.updateSettings();
      core.useWorkers = true;
      this.#api.updateSettings();
    }
  }

  /**
   * Draws another score with all its tracks. Laying out a long one takes seconds, in which its first lines are on the
   * paper already: they are drawn alone first.
   *
   * @param {import("./alphatab.js").Score} score
   */
  show(score) {
    const sample = Math.max(8, Math.round(sampledBars / score.tracks.length));
    this.#sampling = score.masterBars.length >= 2 * sample;
    this.#limitTo(this.#sampling ? sample : -1);
    this.#api.show(score);
  }

  #countDrawings() {
    const renderer = this.#api.renderer;
    for (const order of /** @type {const} */ (["render", "resizeRender", "renderScore"])) {
      const carryOut = /** @type {(...details: any[]) => void} */ (renderer[order]).bind(renderer);
      renderer[order] = (/** @type {any[]} */ ...details) => {
        this.#underWay++;
        carryOut(...details);
      };
    }
  }

  /** Puts the paper on the desk; it is not there before the first score. */
  lay() {
    this.#paper.classList.remove("empty");
  }

  scrollToTop() {
    this.#desk.scrollTo(0, 0);
  }

  /** @param {number[]} trackIds */
  showTracks(trackIds) {
    const score = this.#api.score;
    const tracks = score ? trackIds.map((id) => score.tracks[id]).filter(Boolean) : [];
    if (tracks.length > 0) {
      this.#endSample();
      this.#api.renderTracks(tracks);
    }
  }

  /** @param {string} layout */
  setLayout(layout) {
    const horizontal = layout === "horizontal";
    this.#paper.classList.toggle("horizontal", horizontal);
    this.#api.settings.display.layoutMode = horizontal ? alphaTab.LayoutMode.Horizontal : alphaTab.LayoutMode.Page;
    this.#redraw();
  }

  /** @param {number} zoom */
  setZoom(zoom) {
    if (Number.isFinite(zoom) && zoom > 0) {
      this.#setPaperWidth(zoom);
      this.#api.settings.display.scale = zoom;
      this.#redraw();
    }
  }

  /**
   * Smaller notation on the same paper would make lines too long to read, larger notation lines of two bars.
   *
   * @param {number} zoom
   */
  #setPaperWidth(zoom) {
    const width = Math.round(paperWidth * Math.min(Math.max(zoom, 0.75), 2));
    this.#paper.style.setProperty("--paper-width", `${width}px`);
  }

  #drawRest() {
    this.#endSample();
    // The lines that are there stay until they are drawn anew.
    this.#api.renderer.render({ reuseViewport: true });
  }

  #endSample() {
    if (this.#sampling) {
      this.#sampling = false;
      this.#limitTo(-1);
    }
  }

  /** @param {number} bars -1 for all */
  #limitTo(bars) {
    const settings = this.#api.settings;
    settings.display.barCount = bars;
    // Parts of a sample are painted at once, parts of a whole score when they come into view.
    settings.core.enableLazyLoading = bars < 0;
    this.#api.renderer.updateSettings(settings);
  }

  #redraw() {
    this.#endSample();
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
      if (this.#visiblePartsPainted() || performance.now() > deadline) {
        this.#onRendered();
      } else {
        setTimeout(check, 15);
      }
    };
    check();
  }

  #visiblePartsPainted() {
    const view = this.#desk.getBoundingClientRect();
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
