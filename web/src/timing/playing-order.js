// @ts-check
import { findRepeats } from "./repeats.js";

/**
 * In which order the bars of a score are played: repeats, endings, and the directions that jump.
 *
 * The rules are those that players keep to:
 * - Repeats nest. An end sign closes the start sign opened last; without one it closes at the bar behind the last
 *   closed
 *   repeat. The number of an ending says in which passes it is played, whether it is closed by a sign or not.
 * - A jump (D.C., D.S. and their kin) is taken once, when the repeats around it have been played out.
 * - After a jump no repeat is taken up to where it started, and of several endings the last one is played. Behind that,
 *   and from the coda on, repeats are played again.
 * - "To Coda" and "Fine" are heeded only after a jump that asks for them. A plain jump asks for those between its
 *   target
 *   and itself which no other jump asks for.
 *
 * @typedef {"Fine" | "Segno" | "SegnoSegno" | "Coda" | "DoubleCoda"} Mark
 * @typedef {"" | "AlCoda" | "AlDoubleCoda" | "AlFine"} Aim
 * @typedef {Mark | `${"DaCapo" | "DalSegno" | "DalSegnoSegno"}${Aim}` | "ToCoda" | "ToDoubleCoda"} Direction
 *
 * @typedef {object} WrittenBar
 * @property {boolean} [repeatStart]
 * @property {number} [repeatCount] how often what its end sign closes is played in all; 0 without an end sign
 * @property {number} [endings] bit 0 for the first pass, and so on; 0 outside of endings, and in their later bars
 * @property {Iterable<Direction>} [directions] Fine and what jumps count at the bar's end, the others at its beginning
 * @property {number} [weight] how much there is to play in it, such as its notes
 *
 * @typedef {{ bars: number[], tooLong: boolean }} PlayingOrder indices of the bars; as they are written when their order
 *     would be too long
 *
 * @typedef {import("./repeats.js").Repeat} Repeat
 * @typedef {{ from: number, once: boolean, coda: Mark | null, fine: boolean }} Journey what a jump asks
 *     for; `once` while no repeat is taken
 * @typedef {{ repeat: Repeat, pass: number, last: number }} Round a repeat that is being played, its passes counted from 1
 */

/** So many more bars than are written may be played. */
export const mostBars = 10000;

/** So much more may be played than is written, by the bars' weights. */
export const mostWeight = 500000;

const jumpPattern = /^(DaCapo|DalSegnoSegno|DalSegno)(.*)$/;

/** @type {{ word: string, mark: Direction, coda: Mark | null }[]} what a jump may ask for: to go on from the mark */
const aims = [
  { word: "AlDoubleCoda", mark: "ToDoubleCoda", coda: "DoubleCoda" },
  { word: "AlCoda", mark: "ToCoda", coda: "Coda" },
  { word: "AlFine", mark: "Fine", coda: null },
];

/**
 * @param {WrittenBar[]} bars
 * @returns {PlayingOrder}
 */
export function playingOrder(bars) {
  const played = new Player(bars).play();
  return { bars: played ?? bars.map((_, index) => index), tooLong: played === null };
}

/** Goes through a score from its first bar to its end. */
class Player {
  #bars;
  #directions;
  /** Those around each bar, from the outermost on; null where they nest too deeply. */
  #repeats;
  /** What is written anywhere in the score. */
  #written;
  /** What jumps ask for anywhere in it. */
  #asked;
  /** @type {Round[]} from the outermost on */
  #rounds = [];
  /** @type {Set<string>} */
  #taken = new Set();
  /** @type {Journey | null} */
  #journey = null;

  /** @param {WrittenBar[]} bars */
  constructor(bars) {
    this.#bars = bars;
    this.#directions = bars.map(({ directions }) => new Set(directions ?? []));
    /** @type {(index: number) => boolean} */
    const jumpsAt = (index) => [...this.#directions[index]].some((direction) => jumpPattern.test(direction));
    this.#repeats = findRepeats(bars, jumpsAt);
    this.#written = new Set(this.#directions.flatMap((directions) => [...directions]));
    this.#asked = new Set([...this.#written].map((direction) => jumpPattern.exec(direction)?.[2] ?? ""));
  }

  /** @returns {number[] | null} null when there is no end to it */
  play() {
    const bars = this.#bars;
    const played = [];
    if (!this.#repeats) {
      return null;
    }
    let room = mostWeight + bars.reduce((sum, { weight = 0 }) => sum + weight, 0);
    for (let index = 0; index < bars.length;) {
      this.#enter(this.#repeats[index], index);
      const past = this.#pastOtherEnding(index);
      if (past !== null) {
        index = past;
        continue;
      }
      played.push(index);
      room -= bars[index].weight ?? 0;
      if (played.length > mostBars + bars.length || room < 0) {
        return null;
      }
      index = this.#after(index);
    }
    return played;
  }

  /**
   * Leaves the repeats that end before a bar, and takes up those around it.
   *
   * @param {Repeat[]} around
   * @param {number} index
   */
  #enter(around, index) {
    if (
      around.length !== this.#rounds.length ||
      around.some((repeat, depth) => this.#rounds[depth].repeat !== repeat)
    ) {
      this.#rounds = around.map(
        (repeat) => this.#rounds.find((round) => round.repeat === repeat) ?? this.#begin(repeat, index),
      );
    }
  }

  /**
   * @param {Repeat} repeat
   * @param {number} index where it is entered
   * @returns {Round}
   */
  #begin(repeat, index) {
    const journey = this.#journey;
    const { first, last } = repeat;
    if (index === repeat.start && !(journey?.once && repeat.start <= journey.from)) {
      return { repeat, pass: first, last };
    }
    const wanted = journey && repeat.endings.find(({ from, to }) => this.#hasGoal(from, to))?.passes[0];
    return { repeat, pass: wanted ?? last, last: wanted ?? last };
  }

  /**
   * @param {number} from
   * @param {number} to
   */
  #hasGoal(from, to) {
    for (let index = from; index <= to; index++) {
      if (this.#isGoal(this.#directions[index])) {
        return true;
      }
    }
    return false;
  }

  /** @param {Set<Direction>} directions */
  #isGoal(directions) {
    const { fine = false, coda = null } = this.#journey ?? {};
    return (
      (fine && directions.has("Fine")) || (coda !== null && directions.has(coda === "Coda" ? "ToCoda" : "ToDoubleCoda"))
    );
  }

  /**
   * @param {number} index
   * @returns {number | null} where it goes on when the bar is in an ending for other passes; null when it is to be
   *     played
   */
  #pastOtherEnding(index) {
    for (const round of this.#rounds) {
      const { repeat, pass } = round;
      const ending = repeat.endings.find(({ from, to }) => from <= index && index <= to);
      if (ending && !ending.passes.includes(pass)) {
        const comes =
          ending === repeat.endings.at(-1) &&
          repeat.returns.has(ending.to) &&
          ending.passes.some((later) => later > pass);
        return comes ? this.#beginAnew(round) : ending.to + 1;
      }
    }
    return null;
  }

  /**
   * @param {number} index of the bar played last
   * @returns {number} the next one, or a number behind the last one
   */
  #after(index) {
    const directions = this.#directions[index];
    if (this.#journey?.fine && directions.has("Fine")) {
      return this.#bars.length;
    }
    const goal = this.#journey?.coda && this.#isGoal(directions) ? this.#find(this.#journey.coda, index, false) : null;
    if (goal !== null) {
      this.#journey = null;
      this.#rounds = [];
      return goal;
    }
    return this.#jump(index) ?? this.#back(index) ?? this.#onward(index);
  }

  /** @param {number} index */
  #onward(index) {
    if (this.#journey && index >= this.#journey.from) {
      this.#journey.once = false;
    }
    return index + 1;
  }

  /**
   * @param {number} index
   * @returns {number | null} where a repeat begins anew
   */
  #back(index) {
    const round = this.#rounds.filter(({ repeat }) => repeat.returns.has(index)).at(-1);
    return round && round.pass < round.last ? this.#beginAnew(round) : null;
  }

  /**
   * @param {Round} round
   * @returns {number} its first bar
   */
  #beginAnew(round) {
    round.pass = round.repeat.passes.find((pass) => pass > round.pass) ?? round.pass + 1;
    this.#rounds.length = this.#rounds.indexOf(round) + 1;
    return round.repeat.start;
  }

  /**
   * @param {number} index
   * @returns {number | null} where a jump at the end of that bar leads
   */
  #jump(index) {
    if (this.#rounds.some(({ repeat, pass, last }) => repeat.returns.size > 0 && pass < last)) {
      return null;
    }
    for (const direction of this.#directions[index]) {
      const jump = jumpPattern.exec(direction);
      if (!jump || this.#taken.has(`${index} ${direction}`)) {
        continue;
      }
      const target =
        jump[1] === "DaCapo" ? 0 : this.#find(jump[1] === "DalSegno" ? "Segno" : "SegnoSegno", index, true);
      if (target !== null) {
        this.#taken.add(`${index} ${direction}`);
        this.#journey = this.#journeyFor(jump[2], target, index);
        this.#rounds = [];
        return target;
      }
    }
    return null;
  }

  /**
   * @param {string} aim
   * @param {number} target
   * @param {number} from
   * @returns {Journey}
   */
  #journeyFor(aim, target, from) {
    const asks = aims.find(({ word }) => word === aim) ?? this.#unaskedBetween(target, from);
    return { from, once: true, coda: asks?.coda ?? null, fine: asks?.word === "AlFine" };
  }

  /**
   * @param {number} from
   * @param {number} to
   * @returns {typeof aims[number] | null} what is marked between two bars though no jump asks for it
   */
  #unaskedBetween(from, to) {
    for (const aim of aims.filter(({ word }) => !this.#asked.has(word))) {
      for (let index = from; index <= to; index++) {
        if (this.#directions[index].has(aim.mark)) {
          return aim;
        }
      }
    }
    return null;
  }

  /**
   * @param {Mark} mark
   * @param {number} from
   * @param {boolean} backwards in which direction it is looked for first
   * @returns {number | null} the nearest bar with the mark
   */
  #find(mark, from, backwards) {
    if (!this.#written.has(mark)) {
      return null;
    }
    let before = from;
    while (before >= 0 && !this.#directions[before].has(mark)) {
      before--;
    }
    let behind = from + 1;
    while (behind < this.#directions.length && !this.#directions[behind].has(mark)) {
      behind++;
    }
    const found = (backwards ? [before, behind] : [behind, before]).find(
      (index) => index >= 0 && index < this.#bars.length,
    );
    return found ?? null;
  }
}
