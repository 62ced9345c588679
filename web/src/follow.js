// @ts-check
/**
 * Keeps what is being played in view while it plays, and lets readers scroll for themselves: from their own scrolling
 * on the page waits a moment before it takes the score along again.
 *
 * @typedef {import("@coderline/alphatab").rendering.BeatBounds} BeatBounds
 */

/** How long the reader's own scrolling is left alone, in milliseconds. */
const courtesy = 2500;

/** How long a glide to the next line takes, in milliseconds. */
const glideTime = 350;

/** Room kept between the edge of the view and what is followed, in CSS pixels. */
const margin = 24;

/** In one endless line: where the beat is put, and how far it may wander, as parts of the view's width. */
const sidewaysHome = 0.25;
const sidewaysLimit = 0.7;

const scrollKeys = new Set(["ArrowUp", "ArrowDown", "ArrowLeft", "ArrowRight", "PageUp", "PageDown", "Home", "End"]);

/** @implements {Disposable} */
export class Follow {
  #api;
  #playback;
  #desk;
  #lastOwnScroll = -Infinity;
  #glide = 0;
  #soon = 0;
  /** @type {{ y: number, h: number } | null} the line of the score that was followed last */
  #line = null;

  /**
   * @param {import("./engine.js").Engine} api
   * @param {import("./playback.js").Playback} playback
   * @param {HTMLElement} desk what scrolls
   */
  constructor(api, playback, desk) {
    this.#api = api;
    this.#playback = playback;
    this.#desk = desk;
    api.customScrollHandler = this;
    for (const gesture of ["wheel", "touchmove", "keydown", "mousedown"]) {
      desk.ownerDocument.addEventListener(gesture, (event) => this.#noticeReader(event), { capture: true, passive: true });
    }
    api.playerPositionChanged.on(({ isSeek }) => {
      if (isSeek) {
        this.#showPlaceSoon();
      }
    });
    api.postRenderFinished.on(() => {
      this.#line = null;
      if (playback.playing || !api.drawing.drewAgain) {
        this.#showPlaceSoon();
      }
    });
  }

  [Symbol.dispose]() {
    cancelAnimationFrame(this.#glide);
  }

  /**
   * Called when the place was changed otherwise than by playing on.
   *
   * @param {BeatBounds} beat
   */
  forceScrollTo(beat) {
    this.#reveal(beat, 0);
  }

  /**
   * Called by the engine at each beat while playing, and when it has put its cursor into a new drawing.
   *
   * @param {BeatBounds} beat
   */
  onBeatCursorUpdating(beat) {
    if (this.#playback.playing && performance.now() - this.#lastOwnScroll > courtesy) {
      this.#reveal(beat, glideTime);
    }
  }

  /** The engine puts its cursor to a new place within the next frames. */
  #showPlaceSoon() {
    clearTimeout(this.#soon);
    this.#soon = setTimeout(() => {
      if (this.#playback.atStart && !this.#playback.playing) {
        // The title belongs to the beginning.
        this.#line = null;
        this.#glideTo(0, 0, 0);
      } else {
        this.#api.scrollToCursor();
      }
    }, 80);
  }

  /** @param {Event} event */
  #noticeReader(event) {
    // A press on the score itself chooses a place; one on the desk's edge is the scroll bar being taken.
    const scrolls =
      event instanceof KeyboardEvent ? scrollKeys.has(event.key) : event.type !== "mousedown" || event.target === this.#desk;
    if (scrolls) {
      this.#lastOwnScroll = performance.now();
      cancelAnimationFrame(this.#glide);
    }
  }

  /**
   * @param {BeatBounds} beat
   * @param {number} duration of the glide in milliseconds
   */
  #reveal(beat, duration) {
    const desk = this.#desk;
    const origin = this.#api.sheet.getBoundingClientRect();
    const view = desk.getBoundingClientRect();
    const system = beat.barBounds.masterBarBounds.visualBounds;
    const offset = origin.top - view.top;
    const line = { top: offset + system.y, height: system.h };
    const before = this.#line && { top: offset + this.#line.y, height: this.#line.h };
    this.#line = system;
    const beatX = origin.left - view.left + beat.onNotesX;
    const left = desk.scrollLeft + sidewaysStep(beatX, desk.clientWidth);
    const top = desk.scrollTop + lineStep(line, before, desk.clientHeight);
    this.#glideTo(left, top, duration);
  }

  /**
   * @param {number} left
   * @param {number} top
   * @param {number} duration
   */
  #glideTo(left, top, duration) {
    const desk = this.#desk;
    const target = {
      left: Math.min(Math.max(left, 0), desk.scrollWidth - desk.clientWidth),
      top: Math.min(Math.max(top, 0), desk.scrollHeight - desk.clientHeight),
    };
    const start = { left: desk.scrollLeft, top: desk.scrollTop };
    if (Math.abs(target.left - start.left) < 1 && Math.abs(target.top - start.top) < 1) {
      return;
    }
    cancelAnimationFrame(this.#glide);
    const began = performance.now();
    const step = () => {
      const progress = duration > 0 ? Math.min((performance.now() - began) / duration, 1) : 1;
      const eased = progress < 0.5 ? 2 * progress * progress : 1 - 2 * (1 - progress) * (1 - progress);
      desk.scrollTo(start.left + (target.left - start.left) * eased, start.top + (target.top - start.top) * eased);
      if (progress < 1) {
        this.#glide = requestAnimationFrame(step);
      }
    };
    step();
  }
}

/**
 * How far to scroll down so that a line of the score is in view; nothing while it is. A line that is higher than the
 * view is moved on by whole lines: who watches its last track goes on watching it.
 *
 * @typedef {{ top: number, height: number }} Line relative to the view
 *
 * @param {Line} line
 * @param {Line | null} before the line followed before
 * @param {number} viewHeight
 * @returns {number} CSS pixels, negative for up
 */
export function lineStep(line, before, viewHeight) {
  if (line.height + 2 * margin <= viewHeight) {
    return line.top >= 0 && line.top + line.height <= viewHeight ? 0 : line.top - margin;
  }
  if (fillsMiddle(line, viewHeight)) {
    return 0;
  }
  return before && fillsMiddle(before, viewHeight) ? line.top - before.top : line.top - margin;
}

/**
 * @param {Line} line
 * @param {number} viewHeight
 */
function fillsMiddle(line, viewHeight) {
  return line.top <= viewHeight / 2 && line.top + line.height >= viewHeight / 2;
}

/**
 * How far to scroll sideways so that a beat has room before it; nothing while it has.
 *
 * @param {number} beatX relative to the view
 * @param {number} viewWidth
 * @returns {number} CSS pixels, negative for left
 */
export function sidewaysStep(beatX, viewWidth) {
  return beatX < margin || beatX > viewWidth * sidewaysLimit ? beatX - viewWidth * sidewaysHome : 0;
}
