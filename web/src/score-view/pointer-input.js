// @ts-check
import { compare, wholeBars } from "../timing/marked-range.js";
import { beatSpan } from "./beat-span.js";

/**
 * Reads the mouse on the score: a click on a beat goes there and clears the range, a drag over beats chooses the range
 * that looping loops, a double click the bar. The range's ends are dragged by their handles.
 *
 * @typedef {import("../shared/alphatab.js").Beat} Beat
 * @typedef {import("../timing/marked-range.js").MarkedRange} MarkedRange
 */

/** A press becomes a drag when the mouse has moved this far, in CSS pixels. */
const dragThreshold = 4;

/** A drag within one beat chooses it when it is this long, in CSS pixels: a hand that shakes means a click. */
const oneBeatDrag = 14;

/** Dragging this near to the edge of the view scrolls, in CSS pixels. */
const edge = 36;

/** How fast at most, in CSS pixels a second. */
const edgeSpeed = 900;

/**
 * @typedef {object} Press
 * @property {Beat | null} beat that was pressed; null on a handle
 * @property {import("./range-layer.js").RangeEnd | null} handle
 * @property {number} x in the view
 * @property {number} y
 * @property {boolean} dragging
 * @property {boolean} extending whether the range is extended from where it was begun
 * @property {boolean} exact whether a range over several bars ends at beats
 */

export class PointerInput {
  #api;
  #playback;
  #selection;
  #reportLoopWanted;
  #notation;
  #viewport;
  /** @type {Press | null} */
  #press = null;
  /** Whether the last press became a drag. */
  #dragged = false;
  /** Where the pointer is while it is pressed. */
  #pointer = { x: 0, y: 0 };
  /** When the view was scrolled last because the pointer is at its edge; null while it is not. @type {number | null} */
  #scrolledAt = null;
  /** What is being chosen. @type {MarkedRange | null} */
  #range = null;
  /** The beat at which the range was begun. @type {MarkedRange | null} */
  #anchor = null;

  /**
   * @param {import("../alphatab/page-api.js").PageApi} api
   * @param {import("../playback/playback.js").Playback} playback
   * @param {HTMLElement} viewport what scrolls
   * @param {import("./range-selection.js").RangeSelection} selection
   * @param {() => void} reportLoopWanted what is chosen now is to be looped
   */
  constructor(api, playback, viewport, selection, reportLoopWanted) {
    this.#api = api;
    this.#playback = playback;
    this.#selection = selection;
    this.#reportLoopWanted = reportLoopWanted;
    this.#notation = api.notation;
    this.#viewport = viewport;
    // alphaTab takes a press for a drag of its own. It does not scroll until that ends on its surface, and a captured
    // pointer is released on the notation.
    this.#notation.addEventListener("mousedown", (event) => event.stopPropagation(), { capture: true });
    this.#notation.addEventListener("pointerdown", (event) => this.#onPress(event));
    this.#notation.addEventListener("pointermove", (event) => this.#onMove(event));
    this.#notation.addEventListener("pointerup", (event) => this.#onRelease(event));
    this.#notation.addEventListener("pointercancel", () => this.#cancel());
    this.#notation.addEventListener("dblclick", (event) => this.#onDoubleClick(event));
    // The wheel takes another beat under a pointer that stays.
    viewport.addEventListener("scroll", () => this.#extend(), { passive: true });
  }

  /** To be called before another score is handed to alphaTab. */
  leaveScore() {
    this.#press = null;
    this.#anchor = null;
    this.#selection.choose(null);
  }

  /** @param {PointerEvent} event */
  #onPress(event) {
    const handle = event.button === 0 ? handleAt(event) : null;
    const beat = event.button === 0 && !handle ? this.#beatAt(event.clientX, event.clientY) : null;
    if (!beat && !handle) {
      return;
    }
    const extending = event.shiftKey && !handle;
    this.#press = { beat, handle, x: event.clientX, y: event.clientY, dragging: false, extending, exact: exact(event) };
    this.#pointer = { x: event.clientX, y: event.clientY };
    this.#range = this.#selection.range;
    if (beat && !extending) {
      this.#anchor = beatSpan(this.#api, beat);
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
      press.exact = exact(event);
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
      const span = beatSpan(this.#api, beat);
      this.#range = press.handle ? this.#withEndAt(press.handle, span) : this.#rangeTo(span, press);
      this.#selection.preview(this.#range);
    }
  }

  /**
   * @param {import("./range-layer.js").RangeEnd} end
   * @param {MarkedRange} beat at which the range is to begin or to end
   * @returns {MarkedRange | null}
   */
  #withEndAt(end, beat) {
    const moved =
      this.#range && (end === "start" ? { ...this.#range, start: beat.start } : { ...this.#range, end: beat.end });
    return moved && compare(moved.start, moved.end) < 0 ? moved : this.#range;
  }

  /**
   * @param {MarkedRange} beat under the pointer
   * @param {Press} press
   * @returns {MarkedRange | null} from where it was begun to there
   */
  #rangeTo(beat, press) {
    const anchor = this.#anchor ?? this.#selection.beatAtCursor() ?? beat;
    this.#anchor = anchor;
    if (compare(beat.start, anchor.start) === 0 && !press.extending && this.#distance(press) < oneBeatDrag) {
      return null;
    }
    const [first, last] = compare(anchor.start, beat.start) <= 0 ? [anchor, beat] : [beat, anchor];
    const range = { start: first.start, end: last.end };
    const snaps = first.start.bar !== last.start.bar && !press.extending && !press.exact;
    return snaps ? wholeBars(range) : range;
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
    this.#dragged = press?.dragging ?? false;
    if (!press) {
      return;
    }
    this.#notation.releasePointerCapture(event.pointerId);
    if (press.handle) {
      if (press.dragging) {
        this.#selection.choose(this.#range);
      }
    } else if (this.#range && (press.dragging || press.extending)) {
      this.#selection.choose(this.#range);
      this.#selection.seekToStart();
    } else if (press.beat) {
      this.#selection.choose(null);
      this.#playback.seekToTick(this.#startOf(press.beat));
    }
  }

  /** The clicks before it went to the beat and cleared the range. @param {MouseEvent} event */
  #onDoubleClick(event) {
    // A drag right after a click counts as a double click where it ends.
    const beat = this.#dragged || handleAt(event) ? null : this.#beatAt(event.clientX, event.clientY);
    if (beat) {
      this.#anchor = beatSpan(this.#api, beat);
      this.#selection.chooseBar(beat.voice.bar.index);
      this.#reportLoopWanted();
    }
  }

  #cancel() {
    this.#press = null;
    this.#scrolledAt = null;
    this.#range = this.#selection.range;
    this.#selection.preview(this.#range);
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
}

/** @param {MouseEvent} event */
function handleAt(event) {
  const { rangeEnd } = /** @type {Partial<HTMLElement>} */ (event.target ?? {}).dataset ?? {};
  return rangeEnd === "start" || rangeEnd === "end" ? rangeEnd : null;
}

/** Window managers keep one key or the other to themselves. @param {MouseEvent} event */
function exact({ altKey, ctrlKey }) {
  return altKey || ctrlKey;
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
