// @ts-check
/**
 * What is played after the staff system that is played now, and how far to scroll so that both are seen.
 *
 * @typedef {{ top: number, height: number }} Extent of a staff system, in CSS pixels, relative to the top of the view
 * @typedef {{ start: number, end: number, masterBar: { index: number }, nextMasterBar: PlayedBar | null }} PlayedBar one
 *   bar in the order of playing, repeats written out; in ticks
 * @typedef {{ startTick: number, endTick: number }} Loop
 */

/** How many bars on another staff system is looked for. */
const farthest = 64;

/**
 * The bar that comes after the staff system of the position.
 *
 * @param {readonly PlayedBar[]} bars in the order of playing
 * @param {number} tick the position
 * @param {Loop | null} loop what is played over and over; null where nothing is
 * @param {(bar: number) => boolean} leaves whether a bar, by its index, is in another staff system
 * @returns {{ bar: number, tick: number } | null} its index, and when the music gets there: the tick at which the bar
 *   before it ends; null when nothing comes, or nothing soon
 */
export function barAfterSystem(bars, tick, loop, leaves) {
  let bar = barAt(bars, tick);
  for (let step = 0; bar && step < farthest; step++) {
    const loops = loop !== null && tick < loop.endTick && (bar.end >= loop.endTick || !bar.nextMasterBar);
    const end = loops ? Math.min(loop.endTick, bar.end) : bar.end;
    bar = loops ? barAt(bars, loop.startTick) : bar.nextMasterBar;
    if (bar && leaves(bar.masterBar.index)) {
      return { bar: bar.masterBar.index, tick: end };
    }
    if (loops) {
      return null;
    }
  }
  return null;
}

/**
 * @param {readonly PlayedBar[]} bars
 * @param {number} tick
 */
function barAt(bars, tick) {
  return bars.find(({ start, end }) => tick >= start && tick < end) ?? null;
}

/**
 * How far to scroll so that the next staff system can be read while the present one is played. Where both have no room,
 * each gets half of the view.
 *
 * @param {Extent} now
 * @param {Extent} next
 * @param {number} viewHeight
 * @param {number} margin room at the edges of the view
 * @returns {number} CSS pixels, negative for up; 0 where the next one is in view, or too far away to be
 */
export function lookAheadStep(now, next, viewHeight, margin) {
  const nextBottom = next.top + next.height;
  const nowBottom = now.top + now.height;
  if (next.top >= 0 && nextBottom <= viewHeight) {
    return 0;
  }
  const top = Math.min(now.top, next.top);
  if (Math.max(nowBottom, nextBottom) - top + 2 * margin <= viewHeight) {
    return top - margin;
  }
  const half = viewHeight / 2;
  if (next.top > now.top) {
    const step = Math.max(Math.min(nextBottom + margin - viewHeight, nowBottom - half), 0);
    return next.top - step < viewHeight - margin ? step : 0;
  }
  const step = Math.min(Math.max(next.top - margin, now.top - half), 0);
  return nextBottom - step > margin ? step : 0;
}
