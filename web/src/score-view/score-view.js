// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { foldLongRests } from "../score-files/guitar-pro/long-rests.js";
import { notationColors } from "../rendering/notation-colors.js";

/**
 * The score page with the notation on it: which tracks it shows, how they are laid out, how large they are drawn.
 */

/** Width of the score page at zoom 1, in CSS pixels: about five bars of guitar to a system. */
const pageWidth = 1180;

/** How long a finished rendering waits for its visible partials before it is reported all the same. */
const paintTimeoutMs = 2000;

export class ScoreView {
  #api;
  #scorePage;
  #viewport;
  #scoreHeader;
  #scoreFooter;
  #onRendered;
  #renderId = 0;
  #dark = false;

  /**
   * @param {import("../alphatab/page-api.js").PageApi} api
   * @param {HTMLElement} scorePage
   * @param {HTMLElement} viewport what scrolls
   * @param {import("./score-header.js").ScoreHeader} scoreHeader
   * @param {import("./score-footer.js").ScoreFooter} scoreFooter
   * @param {() => void} onRendered called when what can be seen of a finished rendering is on the score page
   */
  constructor(api, scorePage, viewport, scoreHeader, scoreFooter, onRendered) {
    this.#api = api;
    this.#scorePage = scorePage;
    this.#viewport = viewport;
    this.#scoreHeader = scoreHeader;
    this.#scoreFooter = scoreFooter;
    this.#onRendered = onRendered;
    this.#sizeScorePage(1);
    api.renderStarted.on(() => {
      this.#renderId++;
    });
    api.workerRenderer.batchShown.on(({ first, last }) => {
      if (first && api.score) {
        scoreFooter.show(api.score);
      }
      if (last) {
        this.#reportWhenVisible();
      }
    });
  }

  /** To be called before another score is handed to alphaTab: what is being drawn of this one is abandoned. */
  leaveScore() {
    this.#renderId++;
    this.#scoreFooter.clear();
    this.#api.workerRenderer.abandon();
  }

  /**
   * Draws another score with all its tracks.
   *
   * @param {import("../shared/alphatab.js").Score} score
   */
  show(score) {
    foldLongRests(score);
    this.#scoreHeader.show(score, score.tracks);
    this.#api.show(score);
  }

  /** Shows the score page, which is hidden before the first score. */
  showPage() {
    this.#scorePage.classList.remove("empty");
  }

  scrollToTop() {
    this.#viewport.scrollTo(0, 0);
  }

  /** @param {number[]} trackIds */
  showTracks(trackIds) {
    const score = this.#api.score;
    const tracks = score ? trackIds.map((id) => score.tracks[id]).filter(Boolean) : [];
    if (score && tracks.length > 0) {
      foldLongRests(score);
      this.#api.workerRenderer.changeScorePage(() =>
        this.#scoreHeader.show(/** @type {import("../shared/alphatab.js").Score} */ (score), tracks),
      );
      this.#api.renderTracks(tracks);
    }
  }

  /** @param {string} layout */
  setLayout(layout) {
    const horizontal = layout === "horizontal";
    this.#api.workerRenderer.changeScorePage(() => this.#scorePage.classList.toggle("horizontal", horizontal));
    // One endless system has no score header to tell of the capo.
    this.#api.settings.notation.elements.set(alphaTab.NotationElement.EffectCapo, horizontal);
    this.#api.settings.display.layoutMode = horizontal ? alphaTab.LayoutMode.Horizontal : alphaTab.LayoutMode.Page;
    this.#redraw();
  }

  /** @param {number} zoom */
  setZoom(zoom) {
    if (Number.isFinite(zoom) && zoom > 0) {
      this.#api.workerRenderer.changeScorePage(() => this.#sizeScorePage(zoom));
      this.#api.settings.display.scale = zoom;
      this.#redraw();
    }
  }

  /** @param {import("../bridge/bridge.js").Look} look */
  setLook({ dark, staves }) {
    const renderer = this.#api.workerRenderer;
    if (dark === this.#dark && staves === renderer.staves) {
      return;
    }
    renderer.staves = staves;
    if (dark !== this.#dark) {
      this.#dark = dark;
      Object.assign(this.#api.settings.display.resources, notationColors(dark));
      renderer.changeScorePage(() => document.documentElement.classList.toggle("dark", dark));
    }
    this.#redraw();
  }

  /**
   * Smaller notation on the same page would make systems too long to read, larger notation systems of two bars.
   *
   * @param {number} zoom
   */
  #sizeScorePage(zoom) {
    const width = Math.round(pageWidth * Math.min(Math.max(zoom, 0.75), 2));
    this.#scorePage.style.setProperty("--page-width", `${width}px`);
    this.#scorePage.style.setProperty("--zoom", String(zoom));
  }

  #redraw() {
    this.#api.updateSettings();
    if (this.#api.score) {
      this.#api.render();
    }
  }

  /** A layout is finished before its systems are painted: they are painted as they come into view. */
  #reportWhenVisible() {
    const renderId = this.#renderId;
    const deadline = performance.now() + paintTimeoutMs;
    const check = () => {
      if (renderId !== this.#renderId) {
        return;
      }
      if ((this.#visiblePartialsPainted() && this.#api.hasPrepared) || performance.now() > deadline) {
        this.#onRendered();
      } else {
        setTimeout(check, 15);
      }
    };
    check();
  }

  #visiblePartialsPainted() {
    const view = this.#viewport.getBoundingClientRect();
    for (const partial of this.#scorePage.querySelectorAll(".at-surface > div")) {
      const box = partial.getBoundingClientRect();
      const visible = box.bottom > view.top && box.top < view.bottom && box.right > view.left && box.left < view.right;
      if (visible && partial.childElementCount === 0) {
        return false;
      }
    }
    return true;
  }
}
