// @ts-check
import { barAfterSystem, lookAheadStep } from "./look-ahead.js";

/**
 * Keeps what is being played in view while it plays, and lets readers scroll for themselves: from their own scrolling
 * on the page waits a moment before it takes the score along again. The next staff system comes into view before it is
 * played.
 *
 * @typedef {import("@coderline/alphatab").rendering.BeatBounds} BeatBounds
 */

/** How long after the reader's own scrolling the page scrolls again. */
const resumeDelayMs = 2500;

/** How long a glide to the next staff system takes. */
const glideMs = 350;

/** How long before its first note the next staff system comes into view, in milliseconds. */
const lookAheadMs = 1000;

/** Room kept between the edge of the view and what is kept in view, in CSS pixels. */
const margin = 24;

/** In the endless system: where the beat is put, and how far it may move, as shares of the view's width. */
const sidewaysHome = 0.25;
const sidewaysLimit = 0.7;

const scrollKeys = new Set(["ArrowUp", "ArrowDown", "ArrowLeft", "ArrowRight", "PageUp", "PageDown", "Home", "End"]);

/** @implements {Disposable} */
export class AutoScroll {
  #api;
  #playback;
  #viewport;
  #lastOwnScroll = -Infinity;
  /** Whether the reader is choosing something on the score, which then stays where it is. */
  #choosing = false;
  #glide = 0;
  /** @type {{ left: number, top: number } | null} where the glide under way leads */
  #glideTarget = null;
  /** Whether the position was changed otherwise than by playing on while the score is being drawn anew. */
  #jumped = false;
  /** Whether readers have scrolled since the score was opened. */
  #readerScrolled = false;
  /** @type {ReturnType<typeof setTimeout> | undefined} */
  #soon;
  /** @type {ReturnType<typeof setTimeout> | undefined} */
  #lookAheadTimer;
  /**
   * @type {{ system: number, top: number } | null} the staff system that has made room for the next, and where it was
   */
  #madeRoom = null;
  /** @type {{ y: number, h: number } | null} the staff system that was kept in view last */
  #system = null;

  /**
   * @param {import("../alphatab/page-api.js").PageApi} api
   * @param {import("../playback/playback.js").Playback} playback
   * @param {HTMLElement} viewport what scrolls
   */
  constructor(api, playback, viewport) {
    this.#api = api;
    this.#playback = playback;
    this.#viewport = viewport;
    api.customScrollHandler = this;
    for (const gesture of ["wheel", "touchmove", "keydown", "mousedown"]) {
      viewport.ownerDocument.addEventListener(gesture, (event) => this.#noticeGesture(event), {
        capture: true,
        passive: true,
      });
    }
    for (const gesture of ["pointerdown", "pointermove", "pointerup", "pointercancel"]) {
      viewport.ownerDocument.addEventListener(gesture, (event) => this.#noticeChoosing(event), {
        capture: true,
        passive: true,
      });
    }
    api.playerPositionChanged.on(({ isSeek }) => {
      if (isSeek) {
        this.#jumped = api.workerRenderer.awaited;
        this.#showCursorSoon();
      }
    });
    api.scoreLoaded.on(() => {
      this.#readerScrolled = false;
    });
    api.postRenderFinished.on(() => {
      this.#system = null;
      // A long score is laid out to its end long after its first systems are seen: a reader who reads on stays there.
      const opened = !api.workerRenderer.drewAgain && !this.#readerScrolled;
      if (playback.playing || this.#jumped || opened) {
        this.#showCursorSoon();
      }
      this.#jumped = false;
    });
  }

  [Symbol.dispose]() {
    this.#stopGlide();
    clearTimeout(this.#lookAheadTimer);
  }

  /** Whether the score may be scrolled along with the music now. */
  get #mayScroll() {
    return this.#playback.playing && !this.#choosing && performance.now() - this.#lastOwnScroll > resumeDelayMs;
  }

  /**
   * Called when the position was changed otherwise than by playing on.
   *
   * @param {BeatBounds} beat
   */
  forceScrollTo(beat) {
    this.#madeRoom = null;
    this.#reveal(beat, beat.onNotesX, 0);
  }

  /**
   * Called by alphaTab at each beat while playing, and when it has put its cursor into a new render pass.
   *
   * @param {BeatBounds} beat
   * @param {BeatBounds | undefined} _next
   * @param {number} _mode
   * @param {number} _from
   * @param {number} endX where the cursor will be when the beat ends
   */
  onBeatCursorUpdating(beat, _next, _mode, _from, endX) {
    clearTimeout(this.#lookAheadTimer);
    if (this.#mayScroll) {
      if (this.#madeRoom?.system !== systemOf(beat)) {
        this.#reveal(beat, endX, glideMs);
      }
      this.#lookAhead(beat);
    }
  }

  /** Put off a little, as one change often follows another. */
  #showCursorSoon() {
    clearTimeout(this.#soon);
    clearTimeout(this.#lookAheadTimer);
    this.#soon = setTimeout(() => {
      if (this.#choosing) {
        return;
      }
      if (this.#playback.atStart && !this.#playback.playing) {
        // The title belongs to the beginning.
        this.#system = null;
        this.#glideTo(0, 0, 0);
      } else {
        this.#showPosition();
      }
    }, 80);
  }

  /** Shows the beat at the position. alphaTab's own cursor gets there some frames later, on a busy machine many. */
  #showPosition() {
    const api = this.#api;
    const tracks = new Set(api.tracks.map((track) => track.index));
    const beat = api.tickCache?.findBeat(tracks, this.#playback.tick)?.beat;
    const bounds = beat && api.boundsLookup?.findBeat(beat);
    if (bounds) {
      this.forceScrollTo(bounds);
    } else {
      // It is shown when it has been laid out.
      this.#jumped = true;
    }
  }

  /** To be called before readers scroll otherwise than by what their page hears of itself. */
  noticeReader() {
    this.#lastOwnScroll = performance.now();
    this.#readerScrolled = true;
    this.#madeRoom = null;
    clearTimeout(this.#soon);
    this.#stopGlide();
  }

  /** @param {Event} event */
  #noticeGesture(event) {
    // A press on the score itself chooses a position; one on the viewport's edge is the scroll bar being taken.
    const scrolls =
      event instanceof KeyboardEvent
        ? scrollKeys.has(event.key)
        : event.type !== "mousedown" || event.target === this.#viewport;
    if (scrolls) {
      this.noticeReader();
    }
  }

  /** @param {Event} event */
  #noticeChoosing(event) {
    // From the buttons as they are, so that a release that goes elsewhere is noticed with the next movement.
    const { buttons, target } = /** @type {PointerEvent} */ (event);
    this.#choosing = (buttons & 1) === 1 && target instanceof Node && this.#api.notation.contains(target);
  }

  /**
   * @param {BeatBounds} beat
   * @param {number} endX where the cursor will be when the beat ends
   * @param {number} duration of the glide in milliseconds
   */
  #reveal(beat, endX, duration) {
    const viewport = this.#viewport;
    const system = beat.barBounds.masterBarBounds.visualBounds;
    const target = this.#target;
    // A system that is higher than the view keeps to the top that the one before had before it made room.
    const top = isTooHigh(system.h, viewport.clientHeight) ? (this.#madeRoom?.top ?? target.top) : target.top;
    this.#madeRoom = null;
    const { x, y } = this.#notationAt({ left: target.left, top });
    const before = this.#system && { top: y + this.#system.y, height: this.#system.h };
    this.#system = system;
    const sideways = sidewaysStep(x + beat.onNotesX, viewport.clientWidth, x + endX);
    const down = systemStep({ top: y + system.y, height: system.h }, before, viewport.clientHeight);
    const seen = this.#notationAt({ left: viewport.scrollLeft, top: viewport.scrollTop });
    const unseen =
      seen.y + system.y + system.h <= 0 ||
      seen.y + system.y >= viewport.clientHeight ||
      seen.x + beat.onNotesX <= 0 ||
      seen.x + beat.onNotesX >= viewport.clientWidth;
    this.#glideTo(target.left + sideways, top + down, unseen ? 0 : duration);
  }

  /** How far the viewport is scrolled when the glide under way has ended. */
  get #target() {
    return this.#glideTarget ?? { left: this.#viewport.scrollLeft, top: this.#viewport.scrollTop };
  }

  /**
   * Where the notation begins, relative to the view, when the viewport is scrolled.
   *
   * @param {{ left: number, top: number }} scrolled how far
   */
  #notationAt({ left, top }) {
    const viewport = this.#viewport;
    const origin = this.#api.notation.getBoundingClientRect();
    const view = viewport.getBoundingClientRect();
    return {
      x: origin.left - view.left + viewport.scrollLeft - left,
      y: origin.top - view.top + viewport.scrollTop - top,
    };
  }

  /**
   * Brings the staff system that comes next into view before it is played.
   *
   * @param {BeatBounds} beat that is played now
   */
  #lookAhead(beat) {
    const bounds = this.#api.boundsLookup;
    const bars = this.#api.tickCache?.masterBars ?? [];
    const now = systemOf(beat);
    const next = barAfterSystem(bars, this.#playback.tick, this.#playback.loop, (bar) => {
      const system = bounds?.findMasterBarByIndex(bar)?.staffSystemBounds?.index;
      return system !== undefined && system !== now;
    });
    const box = next && bounds?.findMasterBarByIndex(next.bar)?.visualBounds;
    if (next && box && now !== undefined) {
      const delay = Math.max(this.#playback.msUntil(next.tick) - lookAheadMs, 0);
      this.#lookAheadTimer = setTimeout(
        () => this.#makeRoom(now, beat.barBounds.masterBarBounds.visualBounds, box),
        delay,
      );
    }
  }

  /**
   * @param {number} system that is played now
   * @param {{ y: number, h: number }} now
   * @param {{ y: number, h: number }} next
   */
  #makeRoom(system, now, next) {
    if (!this.#mayScroll || this.#madeRoom?.system === system) {
      return;
    }
    const target = this.#target;
    const { y } = this.#notationAt(target);
    const step = lookAheadStep(
      { top: y + now.y, height: now.h },
      { top: y + next.y, height: next.h },
      this.#viewport.clientHeight,
      margin,
    );
    if (step !== 0) {
      this.#madeRoom = { system, top: target.top };
      this.#glideTo(target.left, target.top + step, glideMs);
    }
  }

  /**
   * @param {number} left
   * @param {number} top
   * @param {number} duration
   */
  #glideTo(left, top, duration) {
    const viewport = this.#viewport;
    const target = {
      left: Math.min(Math.max(left, 0), viewport.scrollWidth - viewport.clientWidth),
      top: Math.min(Math.max(top, 0), viewport.scrollHeight - viewport.clientHeight),
    };
    const goal = this.#target;
    if (
      Math.abs(target.left - goal.left) < 1 &&
      Math.abs(target.top - goal.top) < 1 &&
      (duration > 0 || !this.#glideTarget)
    ) {
      return;
    }
    const start = { left: viewport.scrollLeft, top: viewport.scrollTop };
    this.#stopGlide();
    const began = performance.now();
    const step = () => {
      const progress = duration > 0 ? Math.min((performance.now() - began) / duration, 1) : 1;
      const eased = progress < 0.5 ? 2 * progress * progress : 1 - 2 * (1 - progress) * (1 - progress);
      viewport.scrollTo(start.left + (target.left - start.left) * eased, start.top + (target.top - start.top) * eased);
      this.#glideTarget = progress < 1 ? target : null;
      if (progress < 1) {
        this.#glide = requestAnimationFrame(step);
      }
    };
    step();
  }

  #stopGlide() {
    cancelAnimationFrame(this.#glide);
    this.#glideTarget = null;
  }
}

/** @param {BeatBounds} beat */
function systemOf(beat) {
  return beat.barBounds.masterBarBounds.staffSystemBounds?.index;
}

/**
 * @param {number} height of a staff system
 * @param {number} viewHeight
 */
function isTooHigh(height, viewHeight) {
  return height + 2 * margin > viewHeight;
}

/**
 * How far to scroll down so that a staff system is in view; nothing while it is. A system that is higher than the
 * view is moved on by whole systems: who watches its last track goes on watching it.
 *
 * @typedef {{ top: number, height: number }} Extent relative to the view
 *
 * @param {Extent} system
 * @param {Extent | null} before the staff system kept in view before
 * @param {number} viewHeight
 * @returns {number} CSS pixels, negative for up
 */
export function systemStep(system, before, viewHeight) {
  if (!isTooHigh(system.height, viewHeight)) {
    return system.top >= 0 && system.top + system.height <= viewHeight ? 0 : system.top - margin;
  }
  if (fillsMiddle(system, viewHeight)) {
    return 0;
  }
  return before && fillsMiddle(before, viewHeight) ? system.top - before.top : system.top - margin;
}

/**
 * @param {Extent} system
 * @param {number} viewHeight
 */
function fillsMiddle(system, viewHeight) {
  return system.top <= viewHeight / 2 && system.top + system.height >= viewHeight / 2;
}

/**
 * How far to scroll sideways so that a beat and the one after it have room; nothing while they have.
 *
 * @param {number} beatX relative to the view
 * @param {number} viewWidth
 * @param {number} nextX where the cursor goes from there; left of the beat where the music jumps back
 * @returns {number} CSS pixels, negative for left
 */
export function sidewaysStep(beatX, viewWidth, nextX = beatX) {
  if (beatX >= margin && beatX <= viewWidth * sidewaysLimit && nextX <= viewWidth - margin) {
    return 0;
  }
  const home = beatX - viewWidth * sidewaysHome;
  // A beat wider than what is left of the view goes further to the left, yet not out of it.
  return Math.max(home, Math.min(nextX - viewWidth + margin, beatX - margin));
}
