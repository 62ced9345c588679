// @ts-check
// The audio thread, without an audio output: what it would play is returned.
import { findOnsets } from "../../src/backing-track/decode/onsets.js";
import { blocksOf, sampleRate } from "./sounds.mjs";

let Processor;
globalThis.sampleRate = sampleRate;
globalThis.AudioWorkletProcessor = class {
  reports = [];
  port = { postMessage: (report) => this.reports.push(report) };
};
globalThis.registerProcessor = (_, processor) => (Processor = processor);
await import("../../src/backing-track/backing-track-processor.js");

export class AudioThread {
  #processor = new Processor();

  /** What the page was told so far. */
  get reports() {
    return this.#processor.reports;
  }

  /** @param {object} message as the page sends it */
  post(message) {
    this.#processor.port.onmessage({ data: structuredClone(message) });
  }

  /** @param {Int16Array[]} channels of a whole backing track */
  load(...channels) {
    this.add(channels, { first: true, last: true });
  }

  /**
   * @param {Int16Array[]} channels of what comes next, in whole blocks
   * @param {{ first?: boolean, last?: boolean, onsets?: Int32Array }} chunk
   */
  add(channels, { first = false, last = false, onsets = findOnsets(channels, sampleRate) }) {
    this.post({ chunk: { first, blocks: channels.map(blocksOf), onsets, last } });
  }

  /** A call for a node that is not connected. */
  callDisconnected() {
    return this.#processor.process([], [[]]);
  }

  /** @returns {Float32Array[]} left and right, of whole blocks */
  render(seconds) {
    const blocks = Math.round((seconds * sampleRate) / 128);
    const [left, right] = [new Float32Array(blocks * 128), new Float32Array(blocks * 128)];
    for (let at = 0; at < left.length; at += 128) {
      this.#processor.process([], [[left.subarray(at, at + 128), right.subarray(at, at + 128)]]);
    }
    return [left, right];
  }
}
