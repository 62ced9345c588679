// @ts-check
/** The samples of one channel. They come block by block and stay where they are: adding some copies none. */

const bits = 16;

/** All blocks but the last are of so many samples. */
export const blockLength = 1 << bits;

export class Samples {
  /** @type {Int16Array[]} */
  #blocks = [];
  #length = 0;

  /** @param {Int16Array} samples any number */
  static of(samples) {
    const all = new Samples();
    for (let at = 0; at < samples.length; at += blockLength) {
      all.append(samples.subarray(at, at + blockLength));
    }
    return all;
  }

  get length() {
    return this.#length;
  }

  /** @param {Int16Array} block */
  append(block) {
    this.#blocks.push(block);
    this.#length += block.length;
  }

  /** @returns {ArrayBufferLike[]} where the samples were, of which none are left */
  empty() {
    const memory = this.#blocks.map(({ buffer }) => buffer);
    this.#blocks = [];
    this.#length = 0;
    return memory;
  }

  /**
   * @param {number} frame
   * @returns {number} silence before the first sample and behind the last
   */
  at(frame) {
    return this.#blocks[frame >> bits]?.[frame & (blockLength - 1)] ?? 0;
  }
}
