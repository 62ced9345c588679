// @ts-check
/**
 * Where a score's ticks lie in time, at the score's own tempo.
 *
 * @typedef {{ tick: number, bpm: number }} TempoChange quarter notes a minute from that tick on
 */

/** Before its first tempo change a score runs at this many quarter notes a minute. */
const initialTempo = 120;

export class TempoMap {
  /** @type {{ tick: number, ms: number, ticksPerMinute: number }[]} */
  #stretches;
  #endTick;

  /**
   * @param {TempoChange[]} changes in rising order of tick
   * @param {number} endTick
   * @param {number} ticksPerQuarter
   */
  constructor(changes, endTick, ticksPerQuarter) {
    this.#endTick = endTick;
    this.#stretches = [{ tick: 0, ms: 0, ticksPerMinute: initialTempo * ticksPerQuarter }];
    for (const { tick, bpm } of changes) {
      const ms = this.msAt(tick);
      this.#stretches.push({ tick, ms, ticksPerMinute: Math.max(bpm, 1) * ticksPerQuarter });
    }
  }

  /** Length of the whole score with its repeats, in milliseconds. */
  get endMs() {
    return this.msAt(this.#endTick);
  }

  /**
   * @param {number} tick
   * @returns {number} milliseconds
   */
  msAt(tick) {
    const stretch = this.#stretchAt("tick", tick);
    return stretch.ms + ((tick - stretch.tick) * 60000) / stretch.ticksPerMinute;
  }

  /**
   * @param {number} ms
   * @returns {number} the tick at that time, not rounded
   */
  tickAt(ms) {
    const stretch = this.#stretchAt("ms", ms);
    return stretch.tick + ((ms - stretch.ms) * stretch.ticksPerMinute) / 60000;
  }

  /**
   * @param {number} tick
   * @returns {number} milliseconds that a tick lasts there
   */
  msPerTickAt(tick) {
    return 60000 / this.#stretchAt("tick", tick).ticksPerMinute;
  }

  /**
   * @param {"tick" | "ms"} measure
   * @param {number} value
   */
  #stretchAt(measure, value) {
    const stretches = this.#stretches;
    let low = 0;
    let high = stretches.length - 1;
    while (low < high) {
      const middle = (low + high + 1) >> 1;
      if (stretches[middle][measure] <= value) {
        low = middle;
      } else {
        high = middle - 1;
      }
    }
    return stretches[low];
  }
}
