// @ts-check
/**
 * What the repeat signs and endings of a score enclose.
 *
 * An end sign closes the start sign opened last, or begins where the last repeat ended. Behind an ending that is
 * closed, an ending for another pass belongs to the same repeat. An ending reaches up to its end sign, to the next
 * ending or to the next start sign: in some files only its first bar carries its number. Where an ending for a pass that
 * was written already comes later, it reaches no further than its numbers: a repeat without a start sign begins behind.
 *
 * @typedef {import("./playing-order.js").WrittenBar} WrittenBar
 *
 * @typedef {object} Repeat
 * @property {number} start
 * @property {number} end its last bar
 * @property {Set<number>} returns the bars behind which it begins anew, as long as there are passes left
 * @property {{ from: number, to: number, passes: number[] }[]} endings bars, the last one included
 * @property {number[]} passes those that the endings are for, in rising order; none where they leave it open
 * @property {number} first pass
 * @property {number} last pass
 *
 * @typedef {object} DraftEnding
 * @property {number} from
 * @property {number} to
 * @property {number} numbered the last bar that carries its number
 * @property {number} mask
 * @property {boolean} open
 *
 * @typedef {{ start: number, signed: boolean, closings: Map<number, number>, endings: DraftEnding[] }} Draft
 */

/** Whoever nests deeper plays each bar more than a million times. */
const deepest = 20;

/**
 * @param {WrittenBar[]} bars
 * @param {(index: number) => boolean} jumpsAt whether a jump is written at the end of a bar
 * @returns {Repeat[][] | null} those around each bar, from the outermost on; null where they nest too deeply
 */
export function findRepeats(bars, jumpsAt) {
  /** @type {Repeat[]} */
  const found = [];
  /** @type {Draft[]} */
  const open = [];
  let behindLast = 0;
  /** @param {number} end */
  const finish = (end) => {
    const repeat = repeatOf(/** @type {Draft} */ (open.pop()), end, jumpsAt);
    if (repeat) {
      found.push(repeat);
      behindLast = end + 1;
    }
  };
  for (const [index, bar] of bars.entries()) {
    const last = open.at(-1);
    const before = last && endBefore(last, bar);
    if (before) {
      before.to = before.numbered;
      finish(before.to);
    } else if (last && last.closings.size > 0 && !goesOn(last, bar, open.at(-2)?.signed ?? false)) {
      finish(index - 1);
    }
    const { repeatStart = false, repeatCount = 0, endings = 0 } = bar;
    if (repeatStart) {
      if (open.at(-1)?.signed === false) {
        finish(index - 1);
      }
      open.push({ start: index, signed: true, closings: new Map(), endings: [] });
    } else if (open.length === 0 && (repeatCount > 0 || endings !== 0)) {
      open.push({ start: behindLast, signed: false, closings: new Map(), endings: [] });
    }
    const draft = open.at(-1);
    if (draft) {
      const ofOuter =
        endings !== 0 &&
        open
          .slice(-deepest)
          .some((outer) => outer !== draft && outer.endings.at(-1)?.open && outer.endings.at(-1)?.mask === endings);
      writeEnding(draft, index, ofOuter ? 0 : endings);
      if (repeatCount > 0) {
        writeClosing(draft, index, repeatCount);
        if (draft.endings.length === 0) {
          finish(index);
        }
      }
    }
  }
  while (open.length > 0) {
    finish(bars.length - 1);
  }
  return around(found, bars.length);
}

/**
 * @param {Draft} draft that is closed
 * @param {WrittenBar} bar behind
 * @param {boolean} within whether another start sign before it is still to be closed
 */
function goesOn({ endings }, { repeatStart = false, repeatCount = 0, endings: mask = 0 }, within) {
  const written = endings.reduce((all, ending) => all | ending.mask, 0);
  const inEnding = endings.at(-1)?.open && !(within && mask === 0 && repeatCount > 0);
  return !repeatStart && (inEnding || (mask & ~written) !== 0);
}

/**
 * @param {Draft} draft
 * @param {WrittenBar} bar behind
 * @returns {DraftEnding | null} the draft's last ending, if the bar belongs to one of a repeat that has begun behind it
 */
function endBefore({ closings, endings }, { endings: mask = 0 }) {
  const last = endings.at(-1);
  const again = endings.some((ending) => ending !== last && (ending.mask & mask) !== 0);
  return last?.open && again && closings.size > 0 && last.to > last.numbered ? last : null;
}

/**
 * @param {Draft} draft
 * @param {number} index
 * @param {number} mask
 */
function writeEnding({ endings }, index, mask) {
  const last = endings.at(-1);
  if (last?.open && (mask === 0 || mask === last.mask)) {
    last.to = index;
    last.numbered = mask === 0 ? last.numbered : index;
  } else if (mask !== 0) {
    if (last) {
      last.open = false;
    }
    endings.push({ from: index, to: index, numbered: index, mask, open: true });
  }
}

/**
 * @param {Draft} draft
 * @param {number} index
 * @param {number} count
 */
function writeClosing({ closings, endings }, index, count) {
  closings.set(index, count);
  const ending = endings.at(-1);
  if (ending) {
    ending.open = false;
  }
}

/**
 * @param {Draft} draft
 * @param {number} end
 * @param {(index: number) => boolean} jumpsAt
 * @returns {Repeat | null} null when nothing of it is played again
 */
function repeatOf({ start, closings, endings: drafts }, end, jumpsAt) {
  const endings = drafts.map(({ from, to, mask }) => ({ from, to, passes: passesIn(mask) }));
  const inEndings = [...new Set(endings.flatMap(({ passes }) => passes))].sort((a, b) => a - b);
  const [first, last] = [inEndings[0] ?? 1, inEndings.at(-1) ?? 1];
  if (closings.size === 0) {
    // A jump may take the place of the sign.
    const jumps = endings.slice(0, -1).some(({ to }) => jumpsAt(to));
    return jumps ? { start, end, returns: new Set(), endings, passes: inEndings, first, last } : null;
  }
  if (endings.length > 1) {
    const returns = new Set([...closings.keys(), ...endings.map(({ to }) => to)]);
    return { start, end, returns, endings, passes: inEndings, first, last };
  }
  return {
    start,
    end,
    returns: new Set(closings.keys()),
    endings,
    passes: [],
    first: 1,
    last: Math.max(...closings.values(), last),
  };
}

/** @param {number} mask */
function passesIn(mask) {
  return Array.from({ length: 31 }, (_, bit) => bit)
    .filter((bit) => mask & (1 << bit))
    .map((bit) => bit + 1);
}

/**
 * @param {Repeat[]} repeats
 * @param {number} count of bars
 */
function around(repeats, count) {
  const sorted = repeats.sort((a, b) => a.start - b.start);
  /** @type {Repeat[][]} */
  const lists = [];
  /** @type {Repeat[]} */
  let current = [];
  for (let index = 0, next = 0; index < count; index++) {
    if (current.some(({ end }) => end < index)) {
      current = current.filter(({ end }) => end >= index);
    }
    for (; next < sorted.length && sorted[next].start === index; next++) {
      current = [...current, sorted[next]];
    }
    if (current.length > deepest) {
      return null;
    }
    lists.push(current);
  }
  return lists;
}
