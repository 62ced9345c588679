// @ts-check
// A thorough collection of garbage is asked for by a buffer that cannot be had.

const RealBuffer = ArrayBuffer;

/** @param {() => void} asked what is done instead, each time */
export function watchCollections(asked) {
  globalThis.ArrayBuffer = class extends RealBuffer {
    constructor(length) {
      if (length > 2 ** 32) {
        asked();
        throw new RangeError("Array buffer allocation failed");
      }
      super(length);
    }
  };
}
