// @ts-check
import { alphaTab } from "./alphatab.js";
import { Emitter } from "./emitter.js";
import { turnOfSound, watchHearingDelay } from "./hearing-delay.js";
import { SampleRing } from "./sample-ring.js";

/**
 * The page's side of the synthesizer: starts its worker and its place in the audio thread, and joins the two.
 *
 * @typedef {import("@coderline/alphatab").synth.IAlphaSynth} Player
 */

/** How long after the last sound the line to the sound system is kept open, in milliseconds. */
const patience = 15000;

/** What announces that the page will be busy drawing, and for how long more sound is kept ahead then, in seconds. */
const busySigns = ["resize", "wheel"];
const busyTime = 2;

/** Where the synthesizer sounds: an audio context that sleeps when there is nothing to hear. */
class SoundOutput {
  /** @type {Emitter<void>} */
  ready = new Emitter();
  /** Never triggered: the audio thread and the synthesizer's worker settle these between themselves. */
  samplesPlayed = new Emitter();
  sampleRequest = new Emitter();
  #context = new AudioContext({ latencyHint: turnOfSound });
  #loudspeaker;
  #ring;
  #sleep = 0;
  #endWatch = () => {};
  #busyListening = new AbortController();

  /**
   * @param {MessagePort} loudspeaker the audio thread's end of the line to the worker
   * @param {SharedArrayBuffer | null} ring where the worker puts the samples
   */
  constructor(loudspeaker, ring) {
    this.#loudspeaker = loudspeaker;
    this.#ring = ring;
  }

  get sampleRate() {
    return this.#context.sampleRate;
  }

  open() {
    void this.#connect();
    this.ready.trigger();
  }

  async #connect() {
    const context = this.#context;
    await context.audioWorklet.addModule("src/sound-processor.js");
    const node = new AudioWorkletNode(context, "quaverly-sound", { numberOfInputs: 0, outputChannelCount: [2] });
    node.port.postMessage({ port: this.#loudspeaker, ring: this.#ring }, [this.#loudspeaker]);
    node.connect(context.destination);
    for (const sign of busySigns) {
      const brace = () => node.port.postMessage({ brace: Math.round(busyTime * context.sampleRate) });
      addEventListener(sign, brace, { passive: true, signal: this.#busyListening.signal });
    }
    this.#endWatch = watchHearingDelay(context, (seconds) => {
      node.port.postMessage({ latency: Math.round(seconds * context.sampleRate) });
    });
    this.#fallAsleep();
  }

  activate() {
    clearTimeout(this.#sleep);
    void this.#context.resume();
  }

  play() {
    this.activate();
  }

  pause() {
    this.#fallAsleep();
  }

  #fallAsleep() {
    clearTimeout(this.#sleep);
    this.#sleep = setTimeout(() => void this.#context.suspend(), patience);
  }

  destroy() {
    clearTimeout(this.#sleep);
    this.#endWatch();
    this.#busyListening.abort();
    void this.#context.close();
  }

  addSamples() {}

  resetSamples() {}

  async enumerateOutputDevices() {
    return [];
  }

  async setOutputDevice() {}

  async getOutputDevice() {
    return null;
  }
}

/**
 * The engine's player for synthesizers that run in a worker, joined to ours. The engine exports its class without
 * declaring it.
 */
const WorkerPlayer = /** @type {new (output: unknown, settings: unknown, worker: unknown) => Player} */ (
  /** @type {any} */ (alphaTab.synth).AlphaSynthWebWorkerApi
);

/** @type {Worker | null} for the next synthesizer */
let spare = null;

function newWorker() {
  return new Worker("src/synth-worker.js", { type: "module" });
}

export class SynthPlayer {
  #talk;

  /** Gets the next synthesizer its worker: to be called while the page has time for that. */
  static prepare() {
    spare ??= newWorker();
  }

  /** @param {import("./alphatab.js").Settings} settings */
  constructor(settings) {
    const worker = spare ?? newWorker();
    spare = null;
    const line = new MessageChannel();
    const talk = new MessageChannel();
    const ring = SampleRing.sharedMemory();
    worker.postMessage({ cmd: "serve", page: talk.port2, loudspeaker: line.port2, ring }, [talk.port2, line.port2]);
    this.#talk = Object.assign(talk.port1, { terminate: () => worker.terminate() });
    this.player = new WorkerPlayer(new SoundOutput(line.port1, ring), settings, this.#talk);
    this.#talk.start();
  }

  /**
   * @param {Uint8Array<ArrayBuffer>[]} banks in place of those before, handed over and not here any more; of two with the
   *     same sound the later one's is heard
   */
  loadBanks(banks) {
    const buffers = banks.map((bank) => bank.buffer);
    this.#talk.postMessage({ cmd: "alphaSynth.loadBanks", banks }, buffers);
  }

  /** @returns {Promise<import("./sounds-in-use.js").SoundInUse[]>} those that the score plays */
  soundsInUse() {
    const { port1, port2 } = new MessageChannel();
    this.#talk.postMessage({ cmd: "alphaSynth.tellSoundsInUse", answer: port2 }, [port2]);
    return new Promise((resolve) => {
      port1.onmessage = ({ data }) => {
        port1.close();
        resolve(data);
      };
    });
  }

  /**
   * Notes that begin from now on have another sound.
   *
   * @param {number} index as soundsInUse() told, of the same score
   * @param {import("./fine-preset.js").FineSound} sound whose samples are handed over and not here any more
   */
  replaceSound(index, sound) {
    const samples = sound.samples.map((sample) => sample.samples.buffer);
    this.#talk.postMessage({ cmd: "alphaSynth.replaceSound", index, sound }, samples);
  }

  /** Has the worker collect its garbage. */
  tidy() {
    this.#talk.postMessage({ cmd: "alphaSynth.tidy" });
  }

  /** @param {import("./practice-synth.js").CountIn | null} countIn what the next start begins with */
  setCountIn(countIn) {
    this.#talk.postMessage({ cmd: "alphaSynth.setCountIn", countIn });
  }
}
