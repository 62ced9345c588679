// @ts-check
/**
 * Where the hand can be after each event of a score, and the least that it takes to have come there. States in which the
 * same notes sound on at the same places form a group: they go on alike, but for the position of the index finger.
 *
 * All of it lies in arrays of numbers: long scores have hundreds of thousands of states.
 */

const shift = 2.4;
const shiftPerFret = 0.35;
/** With how many groups one goes on: the cheapest. */
const mostGroups = 8;
/** What open strings may still make good for a hand that another one could follow for less. */
const margin = 2;

export class HandStates {
  #strings;
  #width;
  #now;
  #later;
  /** What it takes to move the hand to each position from where it is best moved from, and from where that is. */
  #arrival;
  #mover;
  /** The way that is being added: its number in this event, and the group that it leads to. */
  #way = -1;
  #row = 0;
  /** Of each way of this event and of each string: the note that is played there, or -1. */
  #ways;
  #held;
  /** The same of all ways that were gone on with, and where each of this event's lies there. */
  #kept = new Numbers();
  #keptAt = new Int32Array(1 << 8);
  /** Of all states that were gone on with: the one before, and where its way lies. */
  #before = new Numbers();
  #wayOf = new Numbers();
  /** How many events there were, and of how many of them the way is decided. */
  #event = 0;
  #settled = 0;

  /**
   * @param {number} strings
   * @param {number} frets the highest position
   */
  constructor(strings, frets) {
    this.#strings = strings;
    this.#width = frets + 1;
    this.#now = new Groups(this.#width, strings);
    this.#later = new Groups(this.#width, strings);
    this.#arrival = new Float64Array(mostGroups * this.#width);
    this.#mover = new Int32Array(mostGroups * this.#width);
    this.#ways = new Numbers();
    this.#held = new Int32Array(strings).fill(-1);
    const group = this.#now.of(this.#held);
    this.#now.costs[group * this.#width + 1] = 0;
    this.#now.origins[group * this.#width + 1] = -1;
    this.#findArrivals(this.#now.costs, group, group);
  }

  /** How many groups there are before the event. */
  get groups() {
    return this.#now.count;
  }

  /**
   * @param {number} group
   * @param {number} string
   * @returns {number} the note that sounds on there, or -1
   */
  heldOn(group, string) {
    return this.#now.held[group * this.#strings + string];
  }

  cheapestGroup() {
    let cheapest = 0;
    for (let group = 1; group < this.#now.count; group++) {
      cheapest = this.#now.least(group) < this.#now.least(cheapest) ? group : cheapest;
    }
    return cheapest;
  }

  /** @param {number} group */
  cheapestPosition(group) {
    const row = this.#now.costs.subarray(group * this.#width, (group + 1) * this.#width);
    return row.indexOf(this.#now.least(group));
  }

  /**
   * @param {Int32Array} noteOn which note sounds on each string, -1 for none
   * @param {number} first the first note of the event; those before it are held
   * @param {(note: number) => boolean} soundsOn until the next event
   */
  beginWay(noteOn, first, soundsOn) {
    this.#way++;
    for (let string = 0; string < this.#strings; string++) {
      const note = noteOn[string];
      this.#ways.push(note >= first ? note : -1);
      this.#held[string] = note >= 0 && soundsOn(note) ? note : -1;
    }
    this.#row = this.#later.of(this.#held);
  }

  /**
   * The hand stays where it was and plays the way at this price.
   *
   * @param {number} group
   * @param {number} position
   * @param {number} price
   */
  stay(group, position, price) {
    const at = group * this.#width + position;
    this.#reach(position, this.#now.costs[at] + price, this.#now.origins[at]);
  }

  /**
   * The hand comes to the position, from wherever that takes least, and plays the way at this price.
   *
   * @param {number} group
   * @param {number} position
   * @param {number} price
   */
  arrive(group, position, price) {
    const row = group * this.#width;
    const at = row + position;
    this.#reach(position, this.#arrival[at] + price, this.#now.origins[row + this.#mover[at]]);
  }

  /**
   * @param {number} position
   * @param {number} cost
   * @param {number} origin
   */
  #reach(position, cost, origin) {
    const at = this.#row * this.#width + position;
    const { costs, origins, ways } = this.#later;
    if (cost < costs[at]) {
      costs[at] = cost;
      origins[at] = origin;
      ways[at] = this.#way;
    }
  }

  /** Goes on to the next event with the groups that are worth it. */
  proceed() {
    const later = this.#later;
    const now = this.#now;
    now.count = 0;
    if (this.#way >= this.#keptAt.length) {
      this.#keptAt = new Int32Array(2 * this.#way + 1);
    }
    this.#keptAt.fill(-1, 0, this.#way + 1);
    const worst = later.count > mostGroups ? leastOfGroup(later, mostGroups) : Infinity;
    for (let group = 0; group < later.count && now.count < mostGroups; group++) {
      if (worst === Infinity || later.least(group) <= worst) {
        this.#keep(group);
      }
    }
    later.count = 0;
    this.#ways.length = 0;
    this.#way = -1;
    this.#event++;
  }

  /** @param {number} group of the event, whose states become part of what can be gone back through */
  #keep(group) {
    const width = this.#width;
    const { costs, origins, ways } = this.#later;
    const arrival = this.#arrival;
    const now = this.#now;
    const kept = now.add(this.#later, group);
    this.#findArrivals(costs, group, kept);
    for (let position = 0; position < width; position++) {
      const from = group * width + position;
      const to = kept * width + position;
      const cost = costs[from];
      if (cost === Infinity || cost > arrival[to] + margin) {
        now.costs[to] = Infinity;
      } else {
        this.#before.push(origins[from]);
        this.#wayOf.push(this.#keepWay(ways[from]));
        now.costs[to] = cost;
        now.origins[to] = this.#before.length - 1;
      }
    }
  }

  /**
   * @param {number} way of this event
   * @returns {number} where it lies now
   */
  #keepWay(way) {
    const at = this.#keptAt;
    if (at[way] < 0) {
      at[way] = this.#kept.length;
      for (let string = 0; string < this.#strings; string++) {
        this.#kept.push(this.#ways.values[way * this.#strings + string]);
      }
    }
    return at[way];
  }

  /**
   * @param {Float64Array} costs
   * @param {number} group of these costs
   * @param {number} kept the group to go on with that it becomes
   */
  #findArrivals(costs, group, kept) {
    const width = this.#width;
    const arrival = this.#arrival;
    const mover = this.#mover;
    const from = group * width;
    const to = kept * width;
    let least = Infinity;
    let best = 0;
    for (let position = 0; position < width; position++) {
      const cost = costs[from + position];
      least += shiftPerFret;
      const stays = cost <= least;
      arrival[to + position] = stays ? cost : least;
      mover[to + position] = stays ? position : best;
      if (cost + shift < least) {
        least = cost + shift;
        best = position;
      }
    }
    least = Infinity;
    for (let position = width - 1; position >= 0; position--) {
      const cost = costs[from + position];
      least += shiftPerFret;
      if (least < arrival[to + position]) {
        arrival[to + position] = least;
        mover[to + position] = best;
      }
      if (cost + shift < least) {
        least = cost + shift;
        best = position;
      }
    }
  }

  /**
   * Goes back from every state that the hand may be in by now, event by event, to the one state that all of them come
   * from (Forney 1973, "The Viterbi Algorithm"): whatever follows, what led there stays the cheapest way.
   *
   * @param {boolean} isOver whether nothing follows, so that the cheapest state is the one that counts
   * @param {(string: number, note: number) => void} visit every note up to there that was not visited before
   * @returns {number} how many events are decided
   */
  settle(isOver, visit) {
    let event = this.#event;
    let states = isOver ? new Set([this.#cheapestOrigin()]) : this.#origins();
    while (states.size > 1) {
      states = new Set(Array.from(states, (state) => this.#before.values[state]));
      event--;
    }
    const settled = event;
    for (let [state] = states; event > this.#settled; event--) {
      const way = this.#wayOf.values[state];
      for (let string = 0; string < this.#strings; string++) {
        const note = this.#kept.values[way + string];
        if (note >= 0) {
          visit(string, note);
        }
      }
      state = this.#before.values[state];
    }
    this.#settled = settled;
    return settled;
  }

  #cheapestOrigin() {
    const group = this.cheapestGroup();
    return this.#now.origins[group * this.#width + this.cheapestPosition(group)];
  }

  /** @returns {Set<number>} the states that the hand may be in */
  #origins() {
    const { costs, origins, count } = this.#now;
    const states = new Set();
    for (let at = 0; at < count * this.#width; at++) {
      if (costs[at] < Infinity) {
        states.add(origins[at]);
      }
    }
    return states;
  }
}

/** Numbers in the order in which they come; what does not fit any more gets twice the room. */
class Numbers {
  values = new Int32Array(1 << 12);
  length = 0;

  /** @param {number} value */
  push(value) {
    if (this.length === this.values.length) {
      this.values = enlarged(this.values);
    }
    this.values[this.length++] = value;
  }
}

/** The groups of one event, a row of numbers each. */
class Groups {
  count = 0;
  #width;
  #strings;
  #room = 64;

  /**
   * @param {number} width
   * @param {number} strings
   */
  constructor(width, strings) {
    this.#width = width;
    this.#strings = strings;
    /** What it takes to have the hand in each position; Infinity where it cannot be. */
    this.costs = new Float64Array(this.#room * width);
    /** Of each position: the state before, and the way that led from there. */
    this.origins = new Int32Array(this.#room * width);
    this.ways = new Int32Array(this.#room * width);
    /** Of each string: the note that sounds on there, or -1. */
    this.held = new Int32Array(this.#room * strings);
  }

  /**
   * @param {Int32Array} held
   * @returns {number} the group in which these notes sound on, a new one where there was none
   */
  of(held) {
    const strings = this.#strings;
    const known = this.held;
    for (let group = 0; group < this.count; group++) {
      let string = 0;
      while (string < strings && known[group * strings + string] === held[string]) {
        string++;
      }
      if (string === strings) {
        return group;
      }
    }
    const group = this.#add();
    this.costs.fill(Infinity, group * this.#width, (group + 1) * this.#width);
    this.held.set(held, group * strings);
    return group;
  }

  /**
   * @param {Groups} others
   * @param {number} other
   * @returns {number} a group in which the same notes sound on
   */
  add(others, other) {
    const group = this.#add();
    for (let string = 0; string < this.#strings; string++) {
      this.held[group * this.#strings + string] = others.held[other * this.#strings + string];
    }
    return group;
  }

  #add() {
    if (this.count === this.#room) {
      this.#room *= 2;
      this.costs = enlarged(this.costs);
      this.origins = enlarged(this.origins);
      this.ways = enlarged(this.ways);
      this.held = enlarged(this.held);
    }
    return this.count++;
  }

  /** @param {number} group */
  least(group) {
    let least = Infinity;
    for (let at = group * this.#width; at < (group + 1) * this.#width; at++) {
      least = this.costs[at] < least ? this.costs[at] : least;
    }
    return least;
  }
}

/**
 * @param {Groups} groups
 * @param {number} place
 * @returns {number} what the group in that place takes, when the cheapest is the first
 */
function leastOfGroup(groups, place) {
  const least = new Float64Array(groups.count);
  for (let group = 0; group < groups.count; group++) {
    least[group] = groups.least(group);
  }
  return least.sort()[place - 1];
}

/**
 * @template {Float64Array | Int32Array} Row
 * @param {Row} row
 * @returns {Row}
 */
function enlarged(row) {
  const larger = row instanceof Float64Array ? new Float64Array(2 * row.length) : new Int32Array(2 * row.length);
  larger.set(row);
  return /** @type {Row} */ (larger);
}
