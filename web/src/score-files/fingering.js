// @ts-check
/**
 * Chooses strings and frets for notes, as a guitarist would: by dynamic programming over hand positions, for the whole
 * piece (Sayegh 1989, "Fingering for String Instruments with the Optimum Path Paradigm"), with costs for shifts,
 * stretches, high positions, open strings and chords (Radisavljevic and Driessen 2004, "Path Difference Learning for
 * Guitar Fingering Problem"). Notes that sound on keep their string and their fret; all voices share the one hand.
 *
 * @typedef {{ start: number, end: number, key: number }} SoundingNote
 *   `start` and `end` in ticks, `key` as a MIDI key. In the order of their starts.
 * @typedef {{ string: number, fret: number }} Placement
 *   `string` counts from 0, in the order of the tuning.
 *
 * @typedef {object} State one way to have played everything so far
 * @property {number} cost
 * @property {number} position the fret of the index finger, 1 at least
 * @property {(Placement | null)[]} placements of the notes of the event, in its order
 * @property {Held[]} held notes that still sounded at the event, with what began there
 * @property {State | null} previous
 *
 * @typedef {{ note: number, string: number, fret: number }} Held `note` is its index
 * @typedef {{ indices: number[], start: number }} Event notes that begin together
 */

/** Frets from the index finger to the little finger, without a stretch. */
const handSpan = 3;
/** A stretch of the hand reaches one fret farther. */
const widestSpan = 4;
const fingers = 4;

const costs = {
  shift: 2.4,
  shiftPerFret: 0.35,
  stretch: 1.2,
  perPosition: 0.06,
  /** For each fret beyond the twelfth. */
  high: 0.4,
  /** An open string in the midst of a high position sounds unlike its neighbours. */
  openInHighPosition: 0.5,
  openInLowPosition: -0.15,
  barre: 0.4,
  /** To let go of a note before its time. */
  release: 4,
  unplayable: 40,
};

/** Positions up to which open strings come naturally. */
const lowPosition = 5;
/** Ways to go on with that are kept at each event. */
const mostStates = 48;

/**
 * @param {SoundingNote[]} notes
 * @param {number[]} tuning the keys of the open strings, in any order
 * @param {number} frets the highest fret there is
 * @returns {(Placement | null)[]} in the order of the notes; null for a note that no string is left for
 */
export function chooseFingering(notes, tuning, frets = 24) {
  /** @type {State[]} */
  let states = [{ cost: 0, position: 1, placements: [], held: [], previous: null }];
  const events = eventsOf(notes);
  for (const event of events) {
    states = advance(states, event, notes, tuning, frets);
  }
  /** @type {(Placement | null)[]} */
  const chosen = new Array(notes.length).fill(null);
  /** @type {State | null} */
  let state = states[0];
  for (let i = events.length - 1; i >= 0 && state; i--) {
    const { placements } = state;
    events[i].indices.forEach((note, n) => (chosen[note] = placements[n]));
    state = state.previous;
  }
  return chosen;
}

/**
 * @param {SoundingNote[]} notes
 * @returns {Event[]}
 */
function eventsOf(notes) {
  /** @type {Event[]} */
  const events = [];
  notes.forEach(({ start }, index) => {
    const last = events[events.length - 1];
    if (last?.start === start) {
      last.indices.push(index);
    } else {
      events.push({ indices: [index], start });
    }
  });
  return events;
}

/**
 * @param {State[]} states
 * @param {Event} event
 * @param {SoundingNote[]} notes
 * @param {number[]} tuning
 * @param {number} frets
 * @returns {State[]} the cheapest first; never empty
 */
function advance(states, event, notes, tuning, frets) {
  /** @type {Map<number, State>} */
  const best = new Map();
  for (const { held, byPosition } of groupsOf(states, event.start, notes)) {
    const found = extend(best, event, held, byPosition, 0, widestSpan, notes, tuning, frets);
    if (!found && held.length > 0) {
      extend(best, event, [], byPosition, costs.release * held.length, widestSpan, notes, tuning, frets);
    }
  }
  if (best.size === 0) {
    const byPosition = new Map(states.map((state) => [state.position, state]));
    extend(best, event, [], byPosition, costs.unplayable, frets, notes, tuning, frets);
  }
  if (best.size === 0) {
    return [leaveOut(states[0], event, notes, tuning, frets)];
  }
  return [...best.values()].sort((a, b) => a.cost - b.cost).slice(0, mostStates);
}

/**
 * States in which the same notes sound on at the same places go on alike, but for where the hand is.
 *
 * @param {State[]} states
 * @param {number} start
 * @param {SoundingNote[]} notes
 */
function groupsOf(states, start, notes) {
  /** @type {Map<string, { held: Held[], byPosition: Map<number, State> }>} */
  const groups = new Map();
  for (const state of states) {
    const held = state.held.filter(({ note }) => notes[note].end > start);
    const name = held.map(({ note, string }) => note * 16 + string).join();
    let group = groups.get(name);
    if (!group) {
      groups.set(name, (group = { held, byPosition: new Map() }));
    }
    const known = group.byPosition.get(state.position);
    if (!known || state.cost < known.cost) {
      group.byPosition.set(state.position, state);
    }
  }
  return groups.values();
}

/**
 * Adds every way to play the event's notes beside those that are held to `best`.
 *
 * @param {Map<number, State>} best by position and by the strings in use
 * @param {Event} event
 * @param {Held[]} held
 * @param {Map<number, State>} byPosition
 * @param {number} price of what was given up before
 * @param {number} span the farthest that two fingers may be apart, in frets; beyond a hand's reach, fingers are not counted
 * @param {SoundingNote[]} notes
 * @param {number[]} tuning
 * @param {number} frets
 * @returns {boolean} whether there is any way
 */
function extend(best, event, held, byPosition, price, span, notes, tuning, frets) {
  let found = false;
  const base = [...held];
  /** @type {Placement[]} */
  const placements = [];
  const { indices } = event;

  /** @param {number} next @param {number} used strings, a bit each @param {number} low @param {number} high */
  const place = (next, used, low, high) => {
    if (next === indices.length) {
      const sounding = base.concat(placements.map(({ string, fret }, n) => ({ note: indices[n], string, fret })));
      const strained = span > widestSpan && low < high ? price + high - low : price;
      if (span > widestSpan || gripCost(sounding, low) < Infinity) {
        addStates(best, sounding, placements.slice(), low, high, byPosition, strained);
        found = true;
      }
      return;
    }
    const { key } = notes[indices[next]];
    for (let string = 0; string < tuning.length; string++) {
      const fret = key - tuning[string];
      if (fret < 0 || fret > frets || used & (1 << string)) {
        continue;
      }
      const lower = fret > 0 ? Math.min(low, fret) : low;
      const higher = fret > 0 ? Math.max(high, fret) : high;
      if (higher - lower > span) {
        continue;
      }
      placements.push({ string, fret });
      place(next + 1, used | (1 << string), lower, higher);
      placements.pop();
    }
  };

  let used = 0;
  let low = Infinity;
  let high = -Infinity;
  for (const { string, fret } of held) {
    used |= 1 << string;
    if (fret > 0) {
      low = Math.min(low, fret);
      high = Math.max(high, fret);
    }
  }
  place(0, used, low, high);
  return found;
}

/**
 * @param {Map<number, State>} best
 * @param {Held[]} sounding
 * @param {Placement[]} placements
 * @param {number} low the lowest fret that is pressed; Infinity when none is
 * @param {number} high
 * @param {Map<number, State>} byPosition
 * @param {number} price
 */
function addStates(best, sounding, placements, low, high, byPosition, price) {
  const grip = Math.min(gripCost(sounding, low), costs.unplayable);
  let strings = 0;
  for (const { string } of sounding) {
    strings |= 1 << string;
  }
  /** @param {State} previous @param {number} position @param {number} cost */
  const add = (previous, position, cost) => {
    // What distinguishes ways to go on: the hand, and the strings in use with the lowest of the frets on them.
    const name = (strings * 32 + position) * 32 + (low === Infinity ? 0 : low);
    const known = best.get(name);
    if (!known || cost < known.cost) {
      best.set(name, { cost, position, placements, held: sounding, previous });
    }
  };
  if (low === Infinity) {
    for (const state of byPosition.values()) {
      add(state, state.position, state.cost + price + openCost(placements, state.position));
    }
    return;
  }
  const stretched = high - low > handSpan;
  for (let position = stretched ? low : Math.max(1, high - handSpan); position <= low; position++) {
    const here =
      grip + price + (stretched ? costs.stretch : 0) + positionCost(position) + openCost(placements, position);
    let cheapest = null;
    let least = Infinity;
    for (const state of byPosition.values()) {
      const distance = Math.abs(state.position - position);
      const cost = state.cost + (distance === 0 ? 0 : costs.shift + costs.shiftPerFret * distance);
      if (cost < least) {
        least = cost;
        cheapest = state;
      }
    }
    if (cheapest) {
      add(cheapest, position, least + here);
    }
  }
}

/** @param {number} position */
function positionCost(position) {
  return costs.perPosition * position + costs.high * Math.max(0, position - 12);
}

/**
 * @param {Placement[]} placements
 * @param {number} position
 */
function openCost(placements, position) {
  const open = placements.reduce((count, { fret }) => count + (fret === 0 ? 1 : 0), 0);
  return open * (position <= lowPosition ? costs.openInLowPosition : costs.openInHighPosition);
}

/**
 * What the fingers have to do: one finger can lie across strings at the lowest fret, the others press one string each.
 *
 * @param {Held[]} sounding
 * @param {number} low
 */
function gripCost(sounding, low) {
  let pressed = 0;
  let atLowest = 0;
  for (const { fret } of sounding) {
    if (fret > 0) {
      pressed++;
      atLowest += fret === low ? 1 : 0;
    }
  }
  if (pressed <= fingers) {
    return 0;
  }
  return pressed - atLowest < fingers ? costs.barre : Infinity;
}

/**
 * For what no hand can hold: each note gets the string that serves it best of those that are left.
 *
 * @param {State} state
 * @param {Event} event
 * @param {SoundingNote[]} notes
 * @param {number[]} tuning
 * @param {number} frets
 * @returns {State}
 */
function leaveOut(state, event, notes, tuning, frets) {
  let used = 0;
  const order = event.indices
    .map((note, place) => ({ note, place }))
    .sort((a, b) => choices(notes[a.note].key) - choices(notes[b.note].key));
  /** @type {(Placement | null)[]} */
  const placements = new Array(order.length).fill(null);
  /** @type {Held[]} */
  const held = [];

  /** @param {number} key */
  function choices(key) {
    return tuning.filter((open) => key >= open && key - open <= frets).length;
  }

  for (const { note, place } of order) {
    let string = -1;
    tuning.forEach((open, candidate) => {
      const fret = notes[note].key - open;
      const free = fret >= 0 && fret <= frets && !(used & (1 << candidate));
      if (free && (string < 0 || open > tuning[string])) {
        string = candidate;
      }
    });
    if (string >= 0) {
      used |= 1 << string;
      placements[place] = { string, fret: notes[note].key - tuning[string] };
      held.push({ note, string, fret: notes[note].key - tuning[string] });
    }
  }
  const pressed = held.filter(({ fret }) => fret > 0).map(({ fret }) => fret);
  const position = pressed.length > 0 ? Math.min(...pressed) : state.position;
  return { cost: state.cost + costs.unplayable, position, placements, held: [], previous: state };
}
