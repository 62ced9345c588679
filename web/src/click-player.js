// @ts-check
import { clickSamples, sampleRate } from "./click-sounds.js";

/**
 * A click as it is to sound.
 *
 * @typedef {object} Sounding
 * @property {import("./click-sounds.js").SoundName} sound
 * @property {boolean} accent
 * @property {number} volume 1 is full
 */

/** A click that begins sooner than this is left alone, in seconds. */
const tooLate = 0.02;

/** By how much a click may be off before it is moved, in seconds. */
const tolerance = 0.0005;

/** Plays single clicks beside everything else. */
export class ClickPlayer {
  /** @type {AudioContext | undefined} */
  #context;
  /** @type {Map<unknown, { source: AudioBufferSourceNode, start: number }>} */
  #planned = new Map();

  /** @param {Sounding} sounding what is heard at once */
  play(sounding) {
    const context = this.#open();
    this.#start(context, sounding, context.currentTime);
  }

  /**
   * Has a click heard later, or at another time than planned before.
   *
   * @param {unknown} key tells one click from another
   * @param {Sounding} sounding
   * @param {number} delay from now, in seconds
   */
  plan(key, sounding, delay) {
    const context = this.#open();
    const start = Math.max(heardAt(context) + delay, context.currentTime);
    const before = this.#planned.get(key);
    if (before && (before.start < context.currentTime + tooLate || Math.abs(before.start - start) < tolerance)) {
      return;
    }
    before?.source.stop();
    const source = this.#start(context, sounding, start);
    this.#planned.set(key, { source, start });
    source.onended = () => {
      if (this.#planned.get(key)?.source === source) {
        this.#planned.delete(key);
      }
    };
  }

  /** Takes back every click that has not begun. */
  cancel() {
    const now = this.#context?.currentTime ?? 0;
    for (const [key, { source, start }] of this.#planned) {
      if (start > now) {
        source.stop();
        this.#planned.delete(key);
      }
    }
  }

  /** To be called some time before the first click: the line to the sound system takes a moment to open. */
  wake() {
    this.#open();
  }

  /** No clicks are expected for a while. */
  sleep() {
    this.cancel();
    void this.#context?.suspend();
  }

  #open() {
    this.#context ??= new AudioContext();
    void this.#context.resume();
    return this.#context;
  }

  /**
   * @param {AudioContext} context
   * @param {Sounding} sounding
   * @param {number} start in the context's time
   */
  #start(context, { sound, accent, volume }, start) {
    const samples = clickSamples(sound, accent);
    const buffer = context.createBuffer(1, samples.length, sampleRate);
    buffer.copyToChannel(samples, 0);
    const source = new AudioBufferSourceNode(context, { buffer });
    source.connect(new GainNode(context, { gain: volume })).connect(context.destination);
    source.start(start);
    return source;
  }
}

/**
 * @param {AudioContext} context
 * @returns {number} the time of the context that is heard right now; what is started at its current time is heard later
 */
function heardAt(context) {
  const { contextTime, performanceTime } = context.getOutputTimestamp();
  const handedOver =
    contextTime && performanceTime ? contextTime + (performance.now() - performanceTime) / 1000 : context.currentTime;
  return handedOver - context.baseLatency;
}
