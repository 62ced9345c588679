// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { Emitter } from "../shared/emitter.js";
import { Loudspeaker } from "./loudspeaker.js";

/**
 * The page's side of the synthesizer: starts its worker, and joins it to the loudspeaker.
 *
 * @typedef {import("@coderline/alphatab").synth.IAlphaSynth} Player
 */

/** @type {Loudspeaker | null} there as soon as something is to sound */
let loudspeaker = null;

/** What alphaTab knows of the loudspeaker, for one synthesizer. */
class SoundOutput {
  /** @type {Emitter<void>} */
  ready = new Emitter();
  /** Never triggered: the audio thread and the synthesizer's worker settle these between themselves. */
  samplesPlayed = new Emitter();
  sampleRequest = new Emitter();
  #loudspeaker;
  #line;

  /**
   * @param {Loudspeaker} loudspeaker
   * @param {MessagePort} line the audio thread's end of the line to the worker
   */
  constructor(loudspeaker, line) {
    this.#loudspeaker = loudspeaker;
    this.#line = line;
  }

  get sampleRate() {
    return this.#loudspeaker.sampleRate;
  }

  open() {
    this.#loudspeaker.connect(this.#line);
    this.ready.trigger();
  }

  activate() {
    this.#loudspeaker.wake(this.#line);
  }

  play() {
    this.#loudspeaker.wake(this.#line);
  }

  pause() {
    this.#loudspeaker.fallAsleep(this.#line);
  }

  destroy() {
    this.#loudspeaker.disconnect(this.#line);
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
 * alphaTab's player for synthesizers that run in a worker, joined to ours. alphaTab exports its class without
 * declaring it.
 */
const WorkerPlayer = /** @type {new (output: unknown, settings: unknown, worker: unknown) => Player} */ (
  /** @type {any} */ (alphaTab.synth).AlphaSynthWebWorkerApi
);

/** @type {Worker | null} for the next synthesizer */
let spare = null;

function newWorker() {
  return new Worker(new URL("./synth-worker.js", import.meta.url), { type: "module" });
}

export class SynthPlayer {
  #talk;

  /** Gets the next synthesizer its worker: to be called while the page has time for that. */
  static prepare() {
    spare ??= newWorker();
  }

  /** @param {import("../shared/alphatab.js").Settings} settings */
  constructor(settings) {
    const worker = spare ?? newWorker();
    spare = null;
    const line = new MessageChannel();
    const talk = new MessageChannel();
    loudspeaker ??= new Loudspeaker();
    const { ring } = loudspeaker;
    worker.postMessage({ cmd: "serve", page: talk.port2, loudspeaker: line.port2, ring }, [talk.port2, line.port2]);
    this.#talk = Object.assign(talk.port1, { terminate: () => worker.terminate() });
    this.player = new WorkerPlayer(new SoundOutput(loudspeaker, line.port1), settings, this.#talk);
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

  /** @returns {Promise<import("../soundfont/sounds-in-use.js").SoundInUse[]>} those that the score plays */
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
   * @param {import("../soundfont/fine-preset.js").FineSound} sound whose samples are handed over and not here any more
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
