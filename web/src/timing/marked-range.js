// @ts-check
/**
 * A range as it is marked on the score page, and the ticks at which it sounds. A marked range knows bars as they are
 * written; a bar may be played often, or never, and the bars of a range in another order than they are written.
 *
 * @typedef {object} WrittenPosition
 * @property {number} bar index of the bar as it is written
 * @property {number} tick from the bar's beginning
 *
 * @typedef {{ start: WrittenPosition, end: WrittenPosition }} MarkedRange without what is at its end; never empty
 *
 * @typedef {object} PlayedBar a bar in the order of playing, repeats written out
 * @property {number} index of the bar as it is written
 * @property {number} start tick
 * @property {number} end tick
 *
 * @typedef {{ startTick: number, endTick: number }} TickRange
 * @typedef {{ from: number, to: number, marked: number, unmarked: number }} Stretch of played bars, the last one
 *     included, with how many different bars of the range sound in it, and how many ticks that are not marked
 */

/** A bar that is played more often is looked for in so many of its passes. */
const mostPasses = 200;

/**
 * @param {WrittenPosition} one
 * @param {WrittenPosition} other
 * @returns {number} below 0 when `one` is written before `other`
 */
export function compare(one, other) {
  return one.bar - other.bar || one.tick - other.tick;
}

/**
 * The ticks between which a range sounds: a stretch of the playing order from the range's start to its end. Of all
 * those there are it is the one in which
 *
 * 1. most of the marked bars sound,
 * 2. least sounds that is not marked (to get from a first ending to a second one there is no other way), and
 * 3. repeats that are marked as a whole are played. What is only the same over again is played once: a loop repeats it.
 *
 * Where the last bar is only played before the first one, all passes through the range sound.
 *
 * @param {MarkedRange} range
 * @param {PlayedBar[]} played in the order of playing
 * @returns {TickRange | null} null where nothing is ever played
 */
export function ticksOf(range, played) {
  const part = playedPart(range, played);
  if (!part) {
    return null;
  }
  const { start, end } = part;
  const stretch = bestStretch(part, played);
  if (!stretch) {
    const sounding = played.filter(({ index }) => index >= start.bar && index <= end.bar);
    return { startTick: sounding[0].start, endTick: sounding[sounding.length - 1].end };
  }
  const { from, to } = withoutRepetition(stretch, played);
  return {
    startTick: Math.min(played[from].start + start.tick, played[from].end),
    endTick: Math.min(played[to].start + end.tick, played[to].end),
  };
}

/**
 * @param {number} tick
 * @param {PlayedBar[]} played in the order of playing
 * @returns {WrittenPosition | null} null where nothing is ever played
 */
export function positionAt(tick, played) {
  const bar = played.filter(({ start }) => start <= tick).at(-1) ?? played[0];
  return bar ? { bar: bar.index, tick: Math.min(Math.max(tick - bar.start, 0), bar.end - bar.start) } : null;
}

/**
 * @param {MarkedRange} range
 * @param {PlayedBar[]} played
 * @returns {MarkedRange | null} from the first to the last of its bars that are ever played; where none is, the next
 *     one that is
 */
function playedPart({ start, end }, played) {
  const indices = new Set(played.map(({ index }) => index));
  const bars = [...indices].sort((a, b) => a - b);
  const inside = bars.filter((bar) => bar >= start.bar && bar <= end.bar);
  const first = inside[0] ?? bars.find((bar) => bar > end.bar) ?? bars.at(-1);
  const last = inside.at(-1) ?? first;
  if (first === undefined || last === undefined) {
    return null;
  }
  return {
    start: first === start.bar ? start : { bar: first, tick: 0 },
    end: last === end.bar ? end : { bar: last, tick: Infinity },
  };
}

/**
 * @param {MarkedRange} range whose first and last bar are played
 * @param {PlayedBar[]} played
 * @returns {Stretch | null} null when the end is played before the start only
 */
function bestStretch(range, played) {
  /** @type {Stretch | null} */
  let best = null;
  const all = new Set(played.map(({ index }) => index).filter((bar) => bar >= range.start.bar && bar <= range.end.bar));
  const starts = [...played.keys()].filter((at) => played[at].index === range.start.bar).slice(0, mostPasses);
  for (const from of starts) {
    const marked = new Set();
    let unmarked = 0;
    for (let to = from; to < played.length; to++) {
      const bar = played[to];
      if (bar.index >= range.start.bar && bar.index <= range.end.bar) {
        marked.add(bar.index);
      }
      if (bar.index === range.end.bar) {
        const stretch = {
          from,
          to,
          marked: marked.size,
          unmarked: unmarked + unmarkedAt(range, bar, to > from, false),
        };
        best = best && !isBetter(stretch, best, played) ? best : stretch;
      }
      unmarked += unmarkedAt(range, bar, to > from, true);
      if (best && best.marked === all.size && unmarked > best.unmarked) {
        break;
      }
    }
  }
  return best;
}

/**
 * @param {MarkedRange} range
 * @param {PlayedBar} bar
 * @param {boolean} fromBeginning whether the bar is played from its beginning, and not from the range's start
 * @param {boolean} toEnd whether it is played to its end, and not to the range's end
 * @returns {number} how many ticks of it sound that are not marked
 */
function unmarkedAt({ start, end }, bar, fromBeginning, toEnd) {
  const length = bar.end - bar.start;
  if (bar.index < start.bar || bar.index > end.bar) {
    return length;
  }
  const before = fromBeginning && bar.index === start.bar ? start.tick : 0;
  const behind = toEnd && bar.index === end.bar ? Math.max(length - end.tick, 0) : 0;
  return Math.min(before + behind, length);
}

/**
 * @param {Stretch} one
 * @param {Stretch} other
 * @param {PlayedBar[]} played
 */
function isBetter(one, other, played) {
  /** @type {(stretch: Stretch) => number} */
  const length = ({ from, to }) => played[to].end - played[from].start;
  return (
    (one.marked - other.marked ||
      other.unmarked - one.unmarked ||
      length(one) - length(other) ||
      other.from - one.from) > 0
  );
}

/**
 * @param {Stretch} stretch
 * @param {PlayedBar[]} played
 * @returns {{ from: number, to: number }} the part of it that is played over and over in it
 */
function withoutRepetition({ from, to }, played) {
  const count = to - from + 1;
  for (let period = 1; period <= count / 2; period++) {
    const repeats = () => {
      for (let at = from + period; at <= to; at++) {
        if (played[at].index !== played[at - period].index) {
          return false;
        }
      }
      return true;
    };
    if (count % period === 0 && played[from + period - 1].index === played[to].index && repeats()) {
      return { from, to: from + period - 1 };
    }
  }
  return { from, to };
}

/**
 * @param {MarkedRange} range
 * @returns {MarkedRange} all of the bars that it touches
 */
export function wholeBars({ start, end }) {
  const last = end.tick > 0 || end.bar === start.bar ? end.bar : end.bar - 1;
  return { start: { bar: start.bar, tick: 0 }, end: { bar: last, tick: Infinity } };
}

/**
 * @param {MarkedRange} range
 * @param {"beat" | "bar"} unit
 * @param {1 | -1} direction
 * @param {{ length: number, beat: number }[]} bars as they are written: how many ticks each has, and each of its beats
 * @returns {MarkedRange} with its end at the next beat or bar line; the same where there is none, or nothing would be
 *     left
 */
export function withMovedEnd(range, unit, direction, bars) {
  const { bar, tick } = range.end;
  const now = { bar, tick: Math.min(tick, bars[bar].length) };
  const around = [bar - 1, bar, bar + 1].filter((index) => index >= 0 && index < bars.length);
  const ends = around.flatMap((index) => endsIn(bars[index], unit).map((at) => ({ bar: index, tick: at })));
  const end =
    direction > 0 ? ends.find((one) => compare(one, now) > 0) : ends.filter((one) => compare(one, now) < 0).at(-1);
  return end && compare(range.start, end) < 0 ? { start: range.start, end } : range;
}

/**
 * @param {{ length: number, beat: number }} bar
 * @param {"beat" | "bar"} unit
 * @returns {number[]} where a range may end in it, in ticks from its beginning
 */
function endsIn({ length, beat }, unit) {
  const beats = unit === "beat" ? Math.ceil(length / beat) : 1;
  return [...Array.from({ length: beats - 1 }, (_, index) => (index + 1) * beat), length];
}
