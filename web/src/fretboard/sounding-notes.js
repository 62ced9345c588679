// @ts-check
/**
 * Which notes of a track sound at a position, and which follow: read from alphaTab's lookup of ticks, which has repeats
 * written out and is cut where any beat begins or ends.
 *
 * @typedef {import("../shared/alphatab.js").Beat} Beat
 * @typedef {import("../shared/alphatab.js").Track} Track
 * @typedef {Beat["notes"][number]} Note
 * @typedef {import("@coderline/alphatab").midi.MidiTickLookup} TickLookup
 * @typedef {TickLookup["masterBars"][number]} PlayedBar
 * @typedef {NonNullable<PlayedBar["firstBeat"]>} Slice from one change of beats to the next, in ticks of its bar
 * @typedef {{ startTick: number, endTick: number }} TickRange
 * @typedef {{ sounding: Note[], next: Note[] }} Notes
 */

/** No beat follows that far behind in a score that is sound; a lookup without an end is not walked for ever. */
const mostSlices = 10000;

/**
 * @param {readonly PlayedBar[]} bars in the order of playing
 * @param {number} tick
 * @returns {{ bar: number, slice: Slice } | null} null where no beat lies
 */
export function sliceAt(bars, tick) {
  let low = 0;
  let high = bars.length - 1;
  while (low < high) {
    const middle = (low + high + 1) >> 1;
    if (bars[middle].start <= tick) {
      low = middle;
    } else {
      high = middle - 1;
    }
  }
  const bar = bars[low];
  const inBar = tick - (bar?.start ?? 0);
  for (let slice = bar?.firstBeat ?? null; slice; slice = slice.nextBeat) {
    if (inBar < slice.end) {
      return inBar >= slice.start ? { bar: low, slice } : null;
    }
  }
  return null;
}

/**
 * @param {readonly PlayedBar[]} bars in the order of playing
 * @param {{ bar: number, slice: Slice }} position
 * @param {Track} track
 * @param {TickRange | null} loop what is played over and over: behind its end comes its beginning
 * @returns {Notes} notes that are tied to the one before sound, and are not struck next
 */
export function notesAt(bars, position, track, loop) {
  const sounding = beatsIn(position.slice, track);
  const struck = beatAfter(bars, position, track, new Set(sounding), loop).flatMap(({ notes }) => notes);
  return {
    sounding: sounding.flatMap((beat) => [...beat.notes, ...ringingInto(beat)]),
    next: struck.filter((note) => !note.isTieDestination),
  };
}

/**
 * Notes of earlier beats of the bar that still ring: until their string is played again, or until a rest. What rings on
 * from the bar before is left out; which bar that was depends on repeats.
 *
 * @param {Beat} beat
 */
function ringingInto(beat) {
  /** @type {Note[]} */
  const ringing = [];
  const taken = new Set(beat.notes.map(({ string }) => string));
  let earlier = beat.isRest ? null : beat.previousBeat;
  while (earlier && !earlier.isRest && earlier.voice.bar === beat.voice.bar) {
    const { notes } = earlier;
    ringing.push(...notes.filter((note) => note.isLetRing && note.isStringed && !taken.has(note.string)));
    notes.forEach(({ string }) => taken.add(string));
    earlier = earlier.previousBeat;
  }
  return ringing;
}

/**
 * @param {readonly PlayedBar[]} bars
 * @param {{ bar: number, slice: Slice }} position
 * @param {Track} track
 * @param {Set<Beat>} current
 * @param {TickRange | null} loop
 */
function beatAfter(bars, { bar, slice }, track, current, loop) {
  /** @type {Slice | null} */
  let at = slice.nextBeat;
  let index = bar;
  let wrapped = false;
  for (let steps = 0; steps < mostSlices; steps++) {
    const beyond = !wrapped && loop !== null && at !== null && bars[index].start + at.start >= loop.endTick;
    if (beyond || (!at && index === bars.length - 1)) {
      const start = loop && !wrapped ? sliceAt(bars, loop.startTick) : null;
      if (!start) {
        return [];
      }
      wrapped = true;
      ({ bar: index, slice: at } = start);
      // A loop of one beat comes back to itself.
      current = new Set();
    } else if (!at) {
      index++;
      at = bars[index].firstBeat;
      continue;
    }
    const begun = beatsIn(/** @type {Slice} */ (at), track).filter((beat) => !current.has(beat));
    if (begun.length > 0) {
      return begun;
    }
    at = /** @type {Slice} */ (at).nextBeat;
  }
  return [];
}

/**
 * @param {Slice} slice
 * @param {Track} track the same object: a lookup may still be that of the score before
 */
function beatsIn(slice, track) {
  return slice.highlightedBeats.map(({ beat }) => beat).filter((beat) => beat.voice.bar.staff.track === track);
}
