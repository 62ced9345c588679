// @ts-check
import { decodingContext } from "../audio/decoding-context.js";

/**
 * The backing tracks that some scores carry: which of them can be played.
 *
 * @typedef {import("../shared/alphatab.js").Score} Score
 */

/**
 * How much of a backing track is decoded to see whether the rest can be, in bytes. What comes later in a file does not
 * change its kind.
 */
const taste = 1 << 18;

/** An audio file that is decoded once. Its score keeps it, so that it can be written out again. */
export class BackingTrack {
  #score;

  /** @param {Score} score whose backing track it is */
  constructor(score) {
    this.#score = score;
  }

  /** The file as it is. */
  get file() {
    return /** @type {Uint8Array<ArrayBuffer>} */ (this.#score.backingTrack?.rawAudioFile ?? new Uint8Array());
  }
}

export class BackingTracks {
  /** @type {WeakMap<Score, BackingTrack | null>} null for a backing track that cannot be played */
  #playable = new WeakMap();

  /**
   * @param {Score} score
   * @returns {boolean} whether prepare() has work to do
   */
  isWaiting(score) {
    return (score.backingTrack?.rawAudioFile?.length ?? 0) > 0 && !this.#playable.has(score);
  }

  /**
   * Finds out whether the score's backing track can be played. Never fails: a score whose backing track nobody can read
   * has none.
   *
   * @param {Score} score
   */
  async prepare(score) {
    const bytes = /** @type {Uint8Array<ArrayBuffer>} */ (score.backingTrack?.rawAudioFile ?? new Uint8Array());
    this.#playable.set(score, (await canBeDecoded(bytes)) ? new BackingTrack(score) : null);
  }

  /** @param {Score} score whose backing track cannot be played after all */
  giveUp(score) {
    this.#playable.set(score, null);
  }

  /**
   * @param {Score} score
   * @returns {BackingTrack | null} null without a playable backing track
   */
  of(score) {
    return this.#playable.get(score) ?? null;
  }
}

/** @param {Uint8Array<ArrayBuffer>} bytes */
async function canBeDecoded(bytes) {
  // Some files keep at their end what is needed to read them.
  return (await decodes(bytes.slice(0, taste))) || (bytes.length > taste && (await decodes(bytes.slice())));
}

/** @param {Uint8Array<ArrayBuffer>} bytes are lost */
async function decodes(bytes) {
  try {
    await decodingContext(44100).decodeAudioData(bytes.buffer);
    return true;
  } catch {
    return false;
  }
}
