// @ts-check
/**
 * Reads the mouse on the score: a click on a beat goes there and clears the range, a drag over beats chooses the range
 * that looping loops. The range is drawn here and not by the engine, which stumbles over a range whose tracks are
 * hidden or whose score is gone.
 *
 * @typedef {import("./alphatab.js").Beat} Beat
 * @typedef {{ x: number, y: number, w: number, h: number }} Box
 */

/** A press becomes a drag when the mouse has moved this far, in CSS pixels. */
const dragThreshold = 4;

/** A range ends this many ticks before the beat after it, so that the note there is not struck. */
const endMargin = 50;

export class Selection {
  #api;
  #playback;
  #sheet;
  #layer = document.createElement("div");
  /** @type {{ beat: Beat, x: number, y: number, pointer: number, dragging: boolean } | null} */
  #press = null;
  /** @type {{ first: Beat, last: Beat } | null} */
  #range = null;

  /**
   * @param {import("./engine.js").Engine} api
   * @param {import("./playback.js").Playback} playback
   */
  constructor(api, playback) {
    this.#api = api;
    this.#playback = playback;
    this.#sheet = api.sheet;
    this.#sheet.append(this.#layer);
    this.#layer.className = "ranges";
    this.#sheet.addEventListener("pointerdown", (event) => this.#onPress(event));
    this.#sheet.addEventListener("pointermove", (event) => this.#onMove(event));
    this.#sheet.addEventListener("pointerup", (event) => this.#onRelease(event));
    this.#sheet.addEventListener("pointercancel", () => this.#cancel());
    api.postRenderFinished.on(() => this.#draw());
  }

  /** To be called before another score is handed to the engine. */
  leaveScore() {
    this.#press = null;
    this.#choose(null);
  }

  /** @param {PointerEvent} event */
  #onPress(event) {
    const beat = event.button === 0 ? this.#beatAt(event) : null;
    if (beat) {
      this.#press = { beat, x: event.clientX, y: event.clientY, pointer: event.pointerId, dragging: false };
      this.#sheet.setPointerCapture(event.pointerId);
    }
  }

  /** @param {PointerEvent} event */
  #onMove(event) {
    const press = this.#press;
    if (!press) {
      return;
    }
    press.dragging ||= Math.hypot(event.clientX - press.x, event.clientY - press.y) >= dragThreshold;
    const beat = press.dragging ? this.#beatAt(event) : null;
    if (beat && beat !== press.beat) {
      this.#range = this.#inOrder(press.beat, beat);
      this.#draw();
    } else if (beat) {
      this.#range = null;
      this.#draw();
    }
  }

  /** @param {PointerEvent} event */
  #onRelease(event) {
    const press = this.#press;
    this.#press = null;
    if (!press) {
      return;
    }
    this.#sheet.releasePointerCapture(event.pointerId);
    if (this.#range && press.dragging) {
      this.#choose(this.#range);
      this.#playback.seekToTick(this.#startOf(this.#range.first));
    } else {
      this.#choose(null);
      this.#playback.seekToTick(this.#startOf(press.beat));
    }
  }

  #cancel() {
    this.#press = null;
    this.#choose(null);
  }

  /** @param {{ first: Beat, last: Beat } | null} range */
  #choose(range) {
    this.#range = range;
    this.#draw();
    this.#playback.setRange(
      range && { startTick: this.#startOf(range.first), endTick: this.#startOf(range.last) + range.last.playbackDuration - endMargin },
    );
  }

  /**
   * @param {MouseEvent} event
   * @returns {Beat | null}
   */
  #beatAt(event) {
    const origin = this.#sheet.getBoundingClientRect();
    return this.#api.boundsLookup?.getBeatAtPos(event.clientX - origin.left, event.clientY - origin.top) ?? null;
  }

  /**
   * @param {Beat} one
   * @param {Beat} other
   */
  #inOrder(one, other) {
    return this.#startOf(one) <= this.#startOf(other) ? { first: one, last: other } : { first: other, last: one };
  }

  /** @param {Beat} beat */
  #startOf(beat) {
    return this.#api.tickCache?.getBeatStart(beat) ?? beat.absolutePlaybackStart;
  }

  #draw() {
    const boxes = this.#range ? this.#boxesOf(this.#range.first, this.#range.last) : [];
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
   * One box for each line of the score that the range covers.
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
