// @ts-check
import { fullScale } from "../audio/full-scale.js";

/**
 * The files that hold one sound of the fine bank each: a description and the samples as Ogg Vorbis streams. They are
 * written when the page is built (tools/split-bank.mjs, where the types are explained).
 *
 * @typedef {[number, number]} Range with its ends
 * @typedef {{ keys: Range, velocities: Range, sample: number, loop: [number, number], generators: [number, number][] }} Zone
 * @typedef {{ at: number, length: number, frames: number, rate: number, root: number, correction: number }} Stream
 * @typedef {{ name: string, bank: number, program: number, zones: Zone[], samples: Stream[] }} Description
 */

/**
 * @param {Uint8Array<ArrayBuffer>} bytes
 * @returns {{ description: Description, streamOf: (sample: number) => Uint8Array<ArrayBuffer> }}
 */
export function readSoundFile(bytes) {
  const head = 4;
  const length = new DataView(bytes.buffer, bytes.byteOffset).getUint32(0, true);
  /** @type {Description} */
  const description = JSON.parse(new TextDecoder().decode(bytes.subarray(head, head + length)));
  const streams = bytes.subarray(head + length);
  return {
    description,
    streamOf: (sample) => {
      const { at, length: size } = description.samples[sample];
      return streams.subarray(at, at + size);
    },
  };
}

/**
 * @param {Zone[]} zones
 * @param {Pick<import("./sounds-in-use.js").SoundInUse, "softest" | "loudest">} notes
 * @returns {Zone[]} those that some of the notes sound from
 */
export function zonesFor(zones, { softest, loudest }) {
  return zones.filter(({ keys, velocities }) => {
    for (let key = keys[0]; key <= keys[1]; key++) {
      // The synthesizer's arithmetic may take one off a velocity.
      if (softest[key] > 0 && velocities[0] <= loudest[key] && velocities[1] >= softest[key] - 1) {
        return true;
      }
    }
    return false;
  });
}

/**
 * @param {Float32Array} samples as decoded; what is beyond -1 and 1 is cut off
 * @param {number} frames how many of them there are in the stream
 * @returns {Int16Array} at half the size
 */
export function to16BitSamples(samples, frames) {
  const narrowed = new Int16Array(Math.min(samples.length, frames));
  for (let at = 0; at < narrowed.length; at++) {
    narrowed[at] = Math.max(-1, Math.min(1, samples[at])) * fullScale;
  }
  return narrowed;
}
