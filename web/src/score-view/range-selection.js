// @ts-check
import { Emitter } from "../shared/emitter.js";
import { compare, positionAt, ticksOf, wholeBars, withMovedEnd } from "../timing/marked-range.js";
import { beatSpan } from "./beat-span.js";

/**
 * The range that looping loops: chosen with the mouse or by keys, shown on the score page, and played.
 *
 * @typedef {import("../timing/marked-range.js").MarkedRange} MarkedRange
 * @typedef {import("../timing/marked-range.js").PlayedBar} PlayedBar
 */

export class RangeSelection {
  #api;
  #playback;
  #layer;
  /** @type {MarkedRange | null} */
  #range = null;
  /** @type {Emitter<MarkedRange | null>} another range is chosen, or none */
  changed = new Emitter();

  /**
   * @param {import("../alphatab/page-api.js").PageApi} api
   * @param {import("../playback/playback.js").Playback} playback
   * @param {import("./range-layer.js").RangeLayer} layer
   */
  constructor(api, playback, layer) {
    this.#api = api;
    this.#playback = playback;
    this.#layer = layer;
    // Only now it is known in which order the bars are played.
    api.scorePrepared.on(() => this.#range && this.#playback.setRange(this.ticks));
  }

  /** What is chosen; null for the whole score. */
  get range() {
    return this.#range;
  }

  /** Where it is played; null without one. */
  get ticks() {
    return this.#range && ticksOf(this.#range, this.#played());
  }

  /** @param {MarkedRange | null} range shown while it is being chosen */
  preview(range) {
    this.#layer.show(range);
  }

  /** @param {MarkedRange | null} range null for the whole score */
  choose(range) {
    this.#range = range;
    this.#layer.show(range);
    this.#playback.setRange(this.ticks);
    this.changed.trigger(range);
  }

  /** Chooses the bar and begins with it. @param {number} bar index */
  chooseBar(bar) {
    this.choose(wholeBars({ start: { bar, tick: 0 }, end: { bar, tick: 1 } }));
    this.seekToStart();
  }

  /** Goes to the beginning of the range, or of the score. */
  seekToStart() {
    this.#playback.seekToTick(this.ticks?.startTick ?? 0);
  }

  /** Has the range begin with the beat at the cursor. Without an end behind it, it reaches to the end of the score. */
  setRangeStart() {
    const beat = this.beatAtCursor();
    if (beat) {
      const end = this.#range && compare(beat.start, this.#range.end) < 0 ? this.#range.end : this.#lastEnd();
      this.choose({ start: beat.start, end });
    }
  }

  /** Has the range end behind the beat at the cursor. Without a start before it, it begins with the score. */
  setRangeEnd() {
    const beat = this.beatAtCursor();
    if (beat) {
      const start = this.#range && compare(this.#range.start, beat.end) < 0 ? this.#range.start : { bar: 0, tick: 0 };
      this.choose({ start, end: beat.end });
    }
  }

  /**
   * Moves the end of the range; without one, a move onwards begins one at the cursor.
   *
   * @param {"beat" | "bar"} unit
   * @param {1 | -1} direction
   */
  moveRangeEnd(unit, direction) {
    const begun = direction > 0 ? this.beatAtCursor()?.start : undefined;
    const range = this.#range ?? (begun ? { start: begun, end: begun } : null);
    const moved = range && withMovedEnd(range, unit, direction, this.#writtenBars());
    if (moved && moved !== range) {
      this.choose(moved);
    }
  }

  /** Gives up the range: the whole score is looped. */
  letGo() {
    if (this.#range) {
      this.choose(null);
    }
  }

  /** @returns {MarkedRange | null} the beat at which the music is */
  beatAtCursor() {
    const { tick } = this.#playback;
    const tracks = new Set(this.#api.tracks.map((track) => track.index));
    const beat = this.#api.tickCache?.findBeat(tracks, tick)?.beat;
    if (beat) {
      return beatSpan(this.#api, beat);
    }
    const start = positionAt(tick, this.#played());
    return start && { start, end: { bar: start.bar, tick: Infinity } };
  }

  /** @returns {PlayedBar[]} as they are written as long as it is not known how they are played */
  #played() {
    const known = this.#api.tickCache?.masterBars ?? [];
    if (known.length > 0) {
      return known.map(({ start, end, masterBar }) => ({ index: masterBar.index, start, end }));
    }
    let start = 0;
    return this.#writtenBars().map(({ length }, index) => ({ index, start, end: (start += length) }));
  }

  #writtenBars() {
    const bars = this.#api.score?.masterBars ?? [];
    return bars.map((bar) => ({ length: bar.calculateDuration(), beat: (960 * 4) / bar.timeSignatureDenominator }));
  }

  #lastEnd() {
    return { bar: this.#writtenBars().length - 1, tick: Infinity };
  }
}
