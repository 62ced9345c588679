// @ts-check
import { findAttacks } from "./attacks.js";

/**
 * The worker that prepares a decoded recording for being played: samples of 16 bits take half the memory, and attacks
 * are looked for once.
 *
 * @typedef {{ channels: Float32Array[], sampleRate: number }} Decoded
 */

/** @param {Float32Array} samples */
function narrow(samples) {
  const narrowed = new Int16Array(samples.length);
  for (let i = 0; i < samples.length; i++) {
    narrowed[i] = Math.round(Math.max(-1, Math.min(1, samples[i])) * 32767);
  }
  return narrowed;
}

addEventListener("message", (/** @type {MessageEvent<Decoded>} */ { data }) => {
  const channels = data.channels.map(narrow);
  const attacks = findAttacks(channels, data.sampleRate);
  /** @type {import("./time-stretch.js").Sound} */
  const sound = { channels, attacks, sampleRate: data.sampleRate };
  postMessage(sound, { transfer: [attacks.buffer, ...channels.map(({ buffer }) => buffer)] });
});
