// @ts-check
/**
 * Where one can go in a score from where the music is: the beats, bars and sections in the order of playing.
 *
 * @typedef {import("@coderline/alphatab").midi.MasterBarTickLookup} PlayedBar
 * @typedef {{ title: string, tick: number, bar: number }} Section `bar` by its index in the score
 */

/**
 * @param {readonly PlayedBar[]} bars in the order of playing
 * @param {Set<number>} tracks indices of those whose beats count
 * @returns {number[]} ticks
 */
export function beatTicks(bars, tracks) {
  const ticks = [];
  for (const bar of bars) {
    for (let beat = bar.firstBeat; beat; beat = beat.nextBeat) {
      if (beat.getVisibleBeatAtStart(tracks)) {
        ticks.push(bar.start + beat.start);
      }
    }
  }
  return ticks;
}

/** @param {readonly PlayedBar[]} bars */
export function barTicks(bars) {
  return bars.map(({ start }) => start);
}

/**
 * @param {readonly PlayedBar[]} bars
 * @returns {Section[]} one for each time that the music comes to a section from another one
 */
export function sectionsOf(bars) {
  /** @type {PlayedBar | null} */
  let before = null;
  return bars.flatMap((bar) => {
    const title = titleOf(bar);
    if (!title || bar.masterBar === before?.masterBar) {
      return [];
    }
    before = bar;
    return [{ title, tick: bar.start, bar: bar.masterBar.index }];
  });
}

/**
 * @param {readonly PlayedBar[]} bars
 * @returns {Section[]} one for each section that the score marks, where it is played for the first time
 */
export function markedSections(bars) {
  const first = new Map([...bars].reverse().map((bar) => [bar.masterBar, bar]));
  return sectionsOf(bars.filter((bar) => first.get(bar.masterBar) === bar));
}

/** @param {PlayedBar} bar */
function titleOf({ masterBar: { section } }) {
  const texts = [section?.marker, section?.text].map((text) => text?.trim()).filter(Boolean);
  return [...new Set(texts)].join(" ");
}

/**
 * @param {readonly number[]} ticks in order
 * @param {number} from
 * @param {number} direction 1 or -1
 * @param {number} slack ticks that still count as being at a tick of the list
 * @param {number} [late] ticks behind one of the list at which going back still leads to the one before
 * @returns {number | null} the next one in that direction
 */
export function stepFrom(ticks, from, direction, slack, late = slack) {
  const found =
    direction > 0 ? ticks.find((tick) => tick > from + slack) : ticks.filter((tick) => tick < from - late).at(-1);
  return found ?? null;
}
