// @ts-check
/**
 * Decides which of several openings under way is shown: the one that was called last of those that can be read, however
 * long each of them takes.
 */
export class CallOrder {
  #called = 0;
  #readable = 0;

  /** @returns {number} the call that begins */
  begin() {
    return ++this.#called;
  }

  /**
   * @param {number} call whose file could be read
   * @returns {boolean} whether it still counts
   */
  succeed(call) {
    this.#readable = Math.max(this.#readable, call);
    return this.counts(call);
  }

  /**
   * @param {number} call
   * @returns {boolean} whether no later one could be read
   */
  counts(call) {
    return call >= this.#readable;
  }
}
