// @ts-check
import { OutputWatch } from "../audio/output-watch.js";
import { clickSamples, sampleRate } from "../clicks/click-sounds.js";

/**
 * A click as it is to sound.
 *
 * @typedef {object} Sounding
 * @property {import("../clicks/click-sounds.js").SoundName} sound
 * @property {boolean} accent
 * @property {number} volume 1 is full
 */

/** How long after a click the audio context is suspended: a running one is asked for samples all the time. */
const suspendDelayMs = 5000;

/** Plays single clicks beside everything else. */
export class ClickPlayer {
  /** @type {{ context: AudioContext, watch: OutputWatch } | undefined} */
  #output;
  /** @type {ReturnType<typeof setTimeout> | undefined} */
  #sleep;

  /** @param {Sounding} sounding the click that sounds at once */
  play({ sound, accent, volume }) {
    const { context, watch } = (this.#output ??= open());
    clearTimeout(this.#sleep);
    this.#sleep = setTimeout(() => watch.sleep(), suspendDelayMs);
    watch.wake();
    const samples = clickSamples(sound, accent);
    const buffer = context.createBuffer(1, samples.length, sampleRate);
    buffer.copyToChannel(samples, 0);
    const source = new AudioBufferSourceNode(context, { buffer });
    source.connect(new GainNode(context, { gain: volume })).connect(context.destination);
    source.start();
  }
}

function open() {
  const context = new AudioContext();
  return { context, watch: new OutputWatch(context) };
}
