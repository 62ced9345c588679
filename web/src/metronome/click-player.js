// @ts-check
import { clickSamples, sampleRate } from "../clicks/click-sounds.js";

/**
 * A click as it is to sound.
 *
 * @typedef {object} Sounding
 * @property {import("../clicks/click-sounds.js").SoundName} sound
 * @property {boolean} accent
 * @property {number} volume 1 is full
 */

/** Plays single clicks beside everything else. */
export class ClickPlayer {
  /** @type {AudioContext | undefined} */
  #context;

  /** @param {Sounding} sounding the click that sounds at once */
  play({ sound, accent, volume }) {
    this.#context ??= new AudioContext();
    const context = this.#context;
    void context.resume();
    const samples = clickSamples(sound, accent);
    const buffer = context.createBuffer(1, samples.length, sampleRate);
    buffer.copyToChannel(samples, 0);
    const source = new AudioBufferSourceNode(context, { buffer });
    source.connect(new GainNode(context, { gain: volume })).connect(context.destination);
    source.start();
  }
}
