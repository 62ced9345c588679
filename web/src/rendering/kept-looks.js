// @ts-check
/**
 * What a score looked like before: at another zoom, with other tracks, in the other layout. Readers go back and forth
 * between a few of these, and far on in a long score each of them takes most of a second to lay out. Their pictures and
 * places are packed: 1.4 MB for nine tracks of 224 bars.
 *
 * @typedef {import("./picture-store.js").PictureStore} PictureStore
 * @typedef {{ pictures: PictureStore, width: number, height: number }} Look all packed; its size in CSS pixels
 */

/** In bytes, for all of them: five or six looks of the score above. */
const room = 8 << 20;

export class KeptLooks {
  /** @type {Map<string, Look>} by all that they were drawn with; the one last asked for at the end */
  #looks = new Map();

  /**
   * @param {string} key
   * @returns {Look | null}
   */
  find(key) {
    const look = this.#looks.get(key) ?? null;
    if (look) {
      this.#looks.delete(key);
      this.#looks.set(key, look);
    }
    return look;
  }

  /**
   * Those that were not asked for the longest are let go of, when there is no room for all.
   *
   * @param {string} key
   * @param {Look} look
   */
  keep(key, look) {
    this.#looks.delete(key);
    this.#looks.set(key, look);
    let bytes = 0;
    for (const { pictures } of this.#looks.values()) {
      bytes += pictures.bytes;
    }
    for (const [oldest, { pictures }] of this.#looks) {
      if (bytes <= room) {
        break;
      }
      bytes -= pictures.bytes;
      this.#looks.delete(oldest);
    }
  }

  clear() {
    this.#looks.clear();
  }
}
