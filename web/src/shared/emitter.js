// @ts-check

/**
 * An event as alphaTab's interfaces want it: handlers are added, and taken away again by what adding returned.
 *
 * @template T
 */
export class Emitter {
  /** @type {Set<(value: T) => void>} */
  #handlers = new Set();

  /**
   * @param {(value: T) => void} handler
   * @returns {() => void} takes the handler away
   */
  on(handler) {
    this.#handlers.add(handler);
    return () => this.off(handler);
  }

  /** @param {(value: T) => void} handler */
  off(handler) {
    this.#handlers.delete(handler);
  }

  /** @param {T} value */
  trigger(value) {
    for (const handler of [...this.#handlers]) {
      handler(value);
    }
  }
}
