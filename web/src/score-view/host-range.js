// @ts-check
/**
 * A range as the program keeps it, which knows no infinity.
 *
 * @typedef {import("../timing/marked-range.js").MarkedRange} MarkedRange
 * @typedef {import("../bridge/bridge.js").HostRange} HostRange
 */

/**
 * @param {MarkedRange} range
 * @returns {HostRange}
 */
export function toHost({ start, end }) {
  return {
    startBar: start.bar,
    startTick: start.tick,
    endBar: end.bar,
    endTick: Number.isFinite(end.tick) ? end.tick : -1,
  };
}

/**
 * @param {HostRange} range
 * @param {number} bars of the score
 * @returns {MarkedRange | null} null where it is of another score
 */
export function fromHost({ startBar, startTick, endBar, endTick }, bars) {
  return endBar < bars
    ? { start: { bar: startBar, tick: startTick }, end: { bar: endBar, tick: endTick < 0 ? Infinity : endTick } }
    : null;
}
