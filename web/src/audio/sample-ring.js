// @ts-check
/**
 * Samples on their way from one thread that writes them to one that reads them. Where Chromium lets threads share
 * memory nothing is allocated on the way, so that the reader, which must never be late, has no garbage to collect.
 */

/** How many frames there is room for: a power of two, so that indices follow from counts even when those overflow. */
const capacity = 16384;

/** Where the memory holds how many frames were ever written and read, both modulo 2^32; samples follow. */
const written = 0;
const taken = 1;
const countBytes = 8;
const size = countBytes + capacity * 2 * Float32Array.BYTES_PER_ELEMENT;

export class SampleRing {
  #counts;
  #samples;

  /** @returns {SharedArrayBuffer | null} for the two ends of one ring; null where threads cannot share memory */
  static sharedMemory() {
    return globalThis.SharedArrayBuffer ? new SharedArrayBuffer(size) : null;
  }

  /** @param {SharedArrayBuffer | null} memory null for a ring whose ends are in one thread */
  constructor(memory) {
    this.#counts = new Int32Array(memory ?? new ArrayBuffer(size), 0, 2);
    this.#samples = new Float32Array(this.#counts.buffer, countBytes, capacity * 2);
  }

  /** Frames in the ring. */
  get length() {
    return (Atomics.load(this.#counts, written) - Atomics.load(this.#counts, taken)) | 0;
  }

  /** @param {Float32Array} samples left and right alternately; what there is no room for is lost */
  write(samples) {
    const count = Math.min(samples.length / 2, capacity - this.length);
    const begin = Atomics.load(this.#counts, written);
    const at = begin & (capacity - 1);
    const first = Math.min(count, capacity - at);
    this.#samples.set(samples.subarray(0, first * 2), at * 2);
    this.#samples.set(samples.subarray(first * 2, count * 2), 0);
    Atomics.store(this.#counts, written, begin + count);
  }

  /**
   * Fills the two channels; where the ring is empty first they are left as they were.
   *
   * @param {Float32Array} left
   * @param {Float32Array} right of the same length
   * @returns {number} how many frames were taken
   */
  take(left, right) {
    const count = Math.min(left.length, this.length);
    const begin = Atomics.load(this.#counts, taken);
    for (let i = 0; i < count; i++) {
      const at = ((begin + i) & (capacity - 1)) * 2;
      left[i] = this.#samples[at];
      right[i] = this.#samples[at + 1];
    }
    Atomics.store(this.#counts, taken, begin + count);
    return count;
  }

  /** For the one who reads. */
  clear() {
    Atomics.store(this.#counts, taken, Atomics.load(this.#counts, written));
  }
}
