// @ts-check
/** Samples on their way to the loudspeaker, as blocks of left and right in turn. */
export class SampleQueue {
  /** @type {Float32Array[]} */
  #blocks = [];
  /** Frames of the first block that are gone. */
  #gone = 0;
  #length = 0;

  /** Frames in the queue. */
  get length() {
    return this.#length;
  }

  /** @param {Float32Array} block */
  push(block) {
    if (block.length > 0) {
      this.#blocks.push(block);
      this.#length += block.length / 2;
    }
  }

  clear() {
    this.#blocks = [];
    this.#gone = 0;
    this.#length = 0;
  }

  /**
   * Fills the two channels; where the queue ends first they are left as they were.
   *
   * @param {Float32Array} left
   * @param {Float32Array} right of the same length
   * @returns {number} how many frames were taken
   */
  take(left, right) {
    let at = 0;
    while (at < left.length && this.#blocks.length > 0) {
      const block = this.#blocks[0];
      const count = Math.min(block.length / 2 - this.#gone, left.length - at);
      for (let i = 0; i < count; i++) {
        left[at + i] = block[(this.#gone + i) * 2];
        right[at + i] = block[(this.#gone + i) * 2 + 1];
      }
      at += count;
      this.#gone += count;
      if (this.#gone * 2 >= block.length) {
        this.#blocks.shift();
        this.#gone = 0;
      }
    }
    this.#length -= at;
    return at;
  }
}
