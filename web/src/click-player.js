// @ts-check
import { clickSamples, sampleRate } from "./click-sounds.js";

/** Plays single clicks beside everything else. */
export class ClickPlayer {
  /** @type {AudioContext | undefined} */
  #context;
  /** @type {Set<AudioBufferSourceNode>} */
  #pending = new Set();

  /**
   * @param {import("./click-sounds.js").SoundName} sound
   * @param {boolean} accent
   * @param {number} volume 1 is full
   * @param {number} [delay] from now, in seconds
   */
  play(sound, accent, volume, delay = 0) {
    // Made with the first click: a context holds a line to the sound system open.
    this.#context ??= new AudioContext();
    const context = this.#context;
    void context.resume();
    const samples = clickSamples(sound, accent);
    const buffer = context.createBuffer(1, samples.length, sampleRate);
    buffer.copyToChannel(samples, 0);
    const source = new AudioBufferSourceNode(context, { buffer });
    source.connect(new GainNode(context, { gain: volume })).connect(context.destination);
    source.onended = () => this.#pending.delete(source);
    this.#pending.add(source);
    source.start(context.currentTime + Math.max(delay, 0));
  }

  /** Takes back every click that is not over. */
  cancel() {
    for (const source of this.#pending) {
      source.stop();
    }
    this.#pending.clear();
  }
}
