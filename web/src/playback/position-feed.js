// @ts-check
/**
 * Thins alphaTab's stream of positions to what a display can use.
 *
 * @typedef {{ currentTime: number, endTime: number }} Position milliseconds of score time
 */

/** Shortest time between two positions while playing, in milliseconds: 15 a second at most. */
export const shortestGap = 1000 / 15;

export class PositionFeed {
  #deliver;
  #now;
  #last = -Infinity;

  /**
   * @param {(position: Position) => void} deliver
   * @param {() => number} now milliseconds of a clock that never goes back
   */
  constructor(deliver, now) {
    this.#deliver = deliver;
    this.#now = now;
  }

  /**
   * A position reached by playing on. Dropped when the last one was delivered only just now: the next follows at once.
   *
   * @param {Position} position
   */
  flow(position) {
    if (this.#now() - this.#last >= shortestGap) {
      this.jump(position);
    }
  }

  /**
   * A position reached by a seek or a stop, which nothing may hold back.
   *
   * @param {Position} position
   */
  jump(position) {
    this.#last = this.#now();
    this.#deliver(position);
  }
}
