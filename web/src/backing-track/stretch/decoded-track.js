// @ts-check
import { Samples } from "../../audio/samples.js";

/**
 * A backing track that is still being decoded while it is played already.
 *
 * @typedef {object} Chunk what comes next of it
 * @property {boolean} first whether another backing track begins with it
 * @property {Int16Array[][]} blocks of each channel, one or two, as Samples takes them
 * @property {Int32Array} onsets frames of the backing track, in rising order; all but those of the last moments
 * @property {boolean} last
 */

/** How far behind what is known an onset may still be found, in seconds. More than onsets.js looks around. */
const unsure = 0.25;

export class DecodedTrack {
  /** One or two, of equal length. */
  channels;
  /** Frames, in rising order. @type {number[]} */
  onsets = [];
  sampleRate;
  #complete = false;

  /**
   * @param {number} channelCount
   * @param {number} sampleRate samples a second
   */
  constructor(channelCount, sampleRate) {
    this.channels = Array.from({ length: channelCount }, () => new Samples());
    this.sampleRate = sampleRate;
  }

  /** How many frames there are; unbounded as long as nobody knows. */
  get length() {
    return this.#complete ? this.channels[0].length : Infinity;
  }

  /**
   * @param {number} position in frames
   * @returns {boolean} whether everything is known that may be played there next, or may be looked at for it
   */
  reaches(position) {
    return this.#complete || position < this.channels[0].length - unsure * this.sampleRate;
  }

  /** @param {Chunk} chunk */
  add({ blocks, onsets, last }) {
    this.channels.forEach((samples, channel) => {
      for (const block of blocks[channel]) {
        samples.append(block);
      }
    });
    for (const onset of onsets) {
      this.onsets.push(onset);
    }
    this.#complete = last;
  }

  /** @returns {ArrayBufferLike[]} where the samples were, of which none are left */
  empty() {
    return this.channels.flatMap((samples) => samples.empty());
  }
}
