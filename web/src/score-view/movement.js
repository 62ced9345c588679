// @ts-check
import { barTicks, beatTicks, sectionsOf, stepFrom } from "./steps.js";

/**
 * Goes through the score by beats, bars and sections, from wherever the music is.
 *
 * @typedef {import("./steps.js").PlayedBar} PlayedBar
 */

/** Ticks that lie closer to one another are the same position: alphaTab rounds between ticks and milliseconds. */
const sameTick = 8;

/** While music plays, going back within this time of a beat leads to the one before: nobody presses a key faster. */
const lateMs = 350;

/** How long a new position may take to be reported; until then the next step starts from the position asked for. */
const reportTimeoutMs = 1000;

export class Movement {
  #api;
  #playback;
  /** @type {{ tick: number, since: number } | null} a position that is asked for and not yet reported */
  #asked = null;

  /**
   * @param {import("../alphatab/page-api.js").PageApi} api
   * @param {import("../playback/playback.js").Playback} playback
   */
  constructor(api, playback) {
    this.#api = api;
    this.#playback = playback;
    api.playerPositionChanged.on(({ isSeek, currentTick }) => {
      if (isSeek && this.#asked && Math.abs(currentTick - this.#asked.tick) <= sameTick) {
        this.#asked = null;
      }
    });
    api.scoreLoaded.on(() => {
      this.#asked = null;
    });
  }

  /** To the beginning of the range, or else of the score. */
  toStart() {
    this.#goTo(this.#playback.range?.startTick ?? 0);
  }

  /** @param {number} direction 1 or -1 */
  byBeat(direction) {
    const tracks = new Set(this.#api.tracks.map((track) => track.index));
    this.#step((bars) => beatTicks(bars, tracks), direction);
  }

  /** @param {number} direction 1 or -1 */
  byBar(direction) {
    this.#step(barTicks, direction);
  }

  /** @param {number} direction 1 or -1; before the first section there is the beginning */
  bySection(direction) {
    this.#step((bars) => [...new Set([0, ...sectionsOf(bars).map(({ tick }) => tick)])], direction);
  }

  /**
   * @param {(bars: PlayedBar[]) => number[]} ticksOf where one can go, in order
   * @param {number} direction
   */
  #step(ticksOf, direction) {
    const playback = this.#playback;
    const late = playback.playing ? Math.max(playback.ticksIn(lateMs), sameTick) : sameTick;
    const { masterBars = [], multiBarRestInfo = null } = this.#api.tickCache ?? {};
    const folded = new Set([...(multiBarRestInfo?.values() ?? [])].flat());
    const ticks = ticksOf(masterBars.filter(({ masterBar }) => !folded.has(masterBar.index)));
    const target = stepFrom(ticks, this.#tick, direction, sameTick, late);
    if (target !== null) {
      this.#goTo(target);
    }
  }

  /** Where the music is, or will be in a moment. */
  get #tick() {
    const asked = this.#asked;
    return asked && performance.now() - asked.since < reportTimeoutMs ? asked.tick : this.#playback.tick;
  }

  /** @param {number} tick */
  #goTo(tick) {
    if (this.#api.score) {
      this.#asked = { tick, since: performance.now() };
      this.#playback.seekToTick(tick);
    }
  }
}
