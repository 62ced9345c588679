// @ts-check
/**
 * Reads the mouse on the score: a click on a beat goes there and clears the range, a drag over beats chooses the range
 * that looping loops. The range is drawn here and not by alphaTab, which stumbles over a range whose tracks are
 * hidden or whose score is gone.
 *
 * @typedef {import("../shared/alphatab.js").Beat} Beat
 * @typedef {{ x: number, y: number, w: number, h: number }} Box
 */

/** A press becomes a drag when the mouse has moved this far, in CSS pixels. */
const dragThreshold = 4;

/** A range ends this many ticks before the beat after it, so that the note there is not struck. */
const endMargin = 50;

/** A drag within one beat chooses it when it is this long, in CSS pixels: a hand that shakes means a click. */
const oneBeatDrag = 14;

/** Dragging this near to the edge of the view scrolls, in CSS pixels. */
const edge = 36;

/** How fast at most, in CSS pixels a second. */
const edgeSpeed = 900;

/**
 * @typedef {{ beat: Beat, x: number, y: number, dragging: boolean, extending: boolean }} Press where it was, in the
 *     view
 */

export class PointerInput {
  #api;
  #playback;
  #notation;
  #viewport;
  #layer = document.createElement("div");
  /** @type {Press | null} */
  #press = null;
  /** Where the pointer is while it is pressed. */
  #pointer = { x: 0, y: 0 };
  /** When the view was scrolled last because the pointer is at its edge; null while it is not. @type {number | null} */
  #scrolledAt = null;
  /** @type {{ first: Beat, last: Beat } | null} */
  #range = null;
  /** The range before the press, which stays when that comes to nothing. @type {{ first: Beat, last: Beat } | null} */
  #rangeBefore = null;
  /** The beat at which the range was begun. @type {Beat | null} */
  #anchor = null;

  /**
   * @param {import("../alphatab/page-api.js").PageApi} api
   * @param {import("../playback/playback.js").Playback} playback
   * @param {HTMLElement} viewport what scrolls
   */
  constructor(api, playback, viewport) {
    this.#api = api;
    this.#playback = playback;
    this.#notation = api.notation;
    this.#viewport = viewport;
    this.#notation.append(this.#layer);
    this.#layer.className = "ranges";
    // alphaTab takes a press for a drag of its own. It does not scroll until that ends on its surface, and a captured
    // pointer is released on the notation.
    this.#notation.addEventListener("mousedown", (event) => event.stopPropagation(), { capture: true });
    this.#notation.addEventListener("pointerdown", (event) => this.#onPress(event));
    this.#notation.addEventListener("pointermove", (event) => this.#onMove(event));
    this.#notation.addEventListener("pointerup", (event) => this.#onRelease(event));
    this.#notation.addEventListener("pointercancel", () => this.#cancel());
    // The wheel takes another beat under a pointer that stays.
    viewport.addEventListener("scroll", () => this.#extend(), { passive: true });
    api.postRenderFinished.on(() => this.#draw());
  }

  /** To be called before another score is handed to alphaTab. */
  leaveScore() {
    this.#press = null;
    this.#anchor = null;
    this.#choose(null);
  }

  /** @param {PointerEvent} event */
  #onPress(event) {
    const beat = event.button === 0 ? this.#beatAt(event.clientX, event.clientY) : null;
    if (!beat) {
      return;
    }
    const extending = event.shiftKey;
    this.#press = { beat, x: event.clientX, y: event.clientY, dragging: false, extending };
    this.#pointer = { x: event.clientX, y: event.clientY };
    this.#rangeBefore = this.#range;
    if (!extending) {
      this.#anchor = beat;
    }
    this.#notation.setPointerCapture(event.pointerId);
    this.#extend();
  }

  /** @param {PointerEvent} event */
  #onMove(event) {
    const press = this.#press;
    if (press && (event.buttons & 1) === 0) {
      // Released where the page does not notice it.
      this.#cancel();
    } else if (press) {
      this.#pointer = { x: event.clientX, y: event.clientY };
      press.dragging ||= this.#distance(press) >= dragThreshold;
      this.#extend();
      this.#scrollAtEdge();
    }
  }

  /** @param {Press} press */
  #distance(press) {
    return Math.hypot(this.#pointer.x - press.x, this.#pointer.y - press.y);
  }

  /** Shows the range from where it was begun to where the pointer is. */
  #extend() {
    const press = this.#press;
    if (!press || !(press.dragging || press.extending)) {
      return;
    }
    const view = this.#viewport.getBoundingClientRect();
    const x = Math.min(Math.max(this.#pointer.x, view.left), view.left + this.#viewport.clientWidth - 1);
    const y = Math.min(Math.max(this.#pointer.y, view.top), view.top + this.#viewport.clientHeight - 1);
    const beat = this.#beatAt(x, y);
    if (beat) {
      const anchor = this.#anchor ?? this.#beatPlayed() ?? press.beat;
      this.#anchor = anchor;
      const chosen = beat !== anchor || press.extending || this.#distance(press) >= oneBeatDrag;
      this.#range = chosen ? this.#inOrder(anchor, beat) : null;
      this.#draw();
    }
  }

  /** Scrolls on for as long as a drag is held at the edge of the view. */
  #scrollAtEdge() {
    const press = this.#press;
    const speed = press?.dragging ? this.#edgeSpeed() : { x: 0, y: 0 };
    if (speed.x === 0 && speed.y === 0) {
      this.#scrolledAt = null;
    } else if (this.#scrolledAt === null) {
      this.#scrolledAt = performance.now();
      requestAnimationFrame(() => this.#scrollOn());
    }
  }

  #scrollOn() {
    if (this.#scrolledAt === null) {
      return;
    }
    const now = performance.now();
    // A frame that comes late does not jump.
    const seconds = Math.min(now - this.#scrolledAt, 50) / 1000;
    const speed = this.#press?.dragging ? this.#edgeSpeed() : { x: 0, y: 0 };
    if (speed.x === 0 && speed.y === 0) {
      this.#scrolledAt = null;
      return;
    }
    this.#scrolledAt = now;
    this.#viewport.scrollBy(speed.x * seconds, speed.y * seconds);
    requestAnimationFrame(() => this.#scrollOn());
  }

  #edgeSpeed() {
    const view = this.#viewport.getBoundingClientRect();
    return {
      x: edgeSpeed * edgePart(this.#pointer.x - view.left, this.#viewport.clientWidth),
      y: edgeSpeed * edgePart(this.#pointer.y - view.top, this.#viewport.clientHeight),
    };
  }

  /** @param {PointerEvent} event */
  #onRelease(event) {
    const press = this.#press;
    this.#press = null;
    this.#scrolledAt = null;
    if (!press) {
      return;
    }
    this.#notation.releasePointerCapture(event.pointerId);
    if (this.#range && (press.dragging || press.extending)) {
      this.#choose(this.#range);
      this.#playback.seekToTick(this.#startOf(this.#range.first));
    } else {
      this.#choose(null);
      this.#playback.seekToTick(this.#startOf(press.beat));
    }
  }

  #cancel() {
    this.#press = null;
    this.#scrolledAt = null;
    this.#range = this.#rangeBefore;
    this.#draw();
  }

  /** The beat at which the music is. */
  #beatPlayed() {
    const tracks = new Set(this.#api.tracks.map((track) => track.index));
    return this.#api.tickCache?.findBeat(tracks, this.#playback.tick)?.beat ?? null;
  }

  /** @param {{ first: Beat, last: Beat } | null} range */
  #choose(range) {
    this.#range = range;
    this.#draw();
    this.#playback.setRange(
      range && {
        startTick: this.#startOf(range.first),
        endTick: this.#startOf(range.last) + range.last.playbackDuration - endMargin,
      },
    );
  }

  /**
   * @param {number} x in the view
   * @param {number} y
   * @returns {Beat | null}
   */
  #beatAt(x, y) {
    const origin = this.#notation.getBoundingClientRect();
    return this.#api.boundsLookup?.getBeatAtPos(x - origin.left, y - origin.top) ?? null;
  }

  /**
   * @param {Beat} one
   * @param {Beat} other
   */
  #inOrder(one, other) {
    return this.#startOf(one) <= this.#startOf(other) ? { first: one, last: other } : { first: other, last: one };
  }

  /**
   * In a bar that is never played, such as an ending that a jump skips, the next one that is.
   *
   * @param {Beat} beat
   */
  #startOf(beat) {
    const ticks = this.#api.tickCache;
    const { index } = beat.voice.bar;
    const played = ticks?.masterBars ?? [];
    if (!ticks || played.some(({ masterBar }) => masterBar.index === index)) {
      return ticks?.getBeatStart(beat) ?? beat.absolutePlaybackStart;
    }
    const later = played.filter(({ masterBar }) => masterBar.index > index).map(({ start }) => start);
    return later.length > 0 ? Math.min(...later) : (played.at(-1)?.start ?? 0);
  }

  #draw() {
    const boxes = this.#range ? this.#boxesOf(this.#range.first, this.#range.last) : [];
    this.#notation.classList.toggle("with-range", boxes.length > 0);
    this.#layer.replaceChildren(
      ...boxes.map(({ x, y, w, h }) => {
        const box = document.createElement("div");
        box.className = "range";
        Object.assign(box.style, { left: `${x}px`, top: `${y}px`, width: `${w}px`, height: `${h}px` });
        return box;
      }),
    );
  }

  /**
   * One box for each staff system that the range covers.
   *
   * @param {Beat} first
   * @param {Beat} last
   * @returns {Box[]}
   */
  #boxesOf(first, last) {
    const lookup = this.#api.boundsLookup;
    const start = lookup?.findBeat(first);
    const end = lookup?.findBeat(last);
    const systems = lookup?.staffSystems ?? [];
    const from = start?.barBounds.masterBarBounds.staffSystemBounds?.index;
    const to = end?.barBounds.masterBarBounds.staffSystemBounds?.index;
    if (!start || !end || from === undefined || to === undefined) {
      return [];
    }
    const startX = first.index === 0 ? start.barBounds.masterBarBounds.visualBounds.x : start.realBounds.x;
    const endX = end.realBounds.x + end.realBounds.w;
    return systems.slice(from, to + 1).map((system, offset) => {
      const box = system.visualBounds;
      const left = offset === 0 ? startX : box.x;
      const right = from + offset === to ? endX : box.x + box.w;
      const { y, h } = system.bars[0]?.visualBounds ?? box;
      return { x: left, y, w: right - left, h };
    });
  }
}

/**
 * How far into the edge of the view a point is.
 *
 * @param {number} point from the view's beginning
 * @param {number} length of the view
 * @returns {number} -1 at its beginning and beyond, 1 at its end and beyond, 0 away from both
 */
export function edgePart(point, length) {
  if (point < edge) {
    return Math.max(point - edge, -edge) / edge;
  }
  return point > length - edge ? Math.min(point - length + edge, edge) / edge : 0;
}
