// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { workerPlayerClass } from "../alphatab/internals/alphatab-internals.js";
import { Emitter } from "../shared/emitter.js";
import { WorkerWatch } from "../shared/worker-watch.js";
import { inParts } from "./midi-parts.js";
import { AudioOutput } from "./audio-output.js";

/**
 * The page's side of the synthesizer: starts its worker, and joins it to the audio output.
 */

/** How long the synthesizer may take for one thing: to read all its sounds is the longest. */
const answerTimeoutMs = 30000;

/** @type {AudioOutput | null} there as soon as something is to sound */
let audioOutput = null;

/** What alphaTab knows of the audio output, for one synthesizer. */
class SynthOutput {
  /** @type {Emitter<void>} */
  ready = new Emitter();
  /** Never triggered: the audio thread and the synthesizer's worker settle these between themselves. */
  samplesPlayed = new Emitter();
  sampleRequest = new Emitter();
  #audioOutput;
  #port;

  /**
   * @param {AudioOutput} audioOutput
   * @param {MessagePort} port the audio thread's end of the channel to the worker
   */
  constructor(audioOutput, port) {
    this.#audioOutput = audioOutput;
    this.#port = port;
  }

  get sampleRate() {
    return this.#audioOutput.sampleRate;
  }

  open() {
    this.#audioOutput.connect(this.#port);
    this.ready.trigger();
  }

  activate() {
    this.#audioOutput.wake(this.#port);
  }

  play() {
    this.#audioOutput.wake(this.#port);
  }

  pause() {
    this.#audioOutput.fallAsleep(this.#port);
  }

  destroy() {
    this.#audioOutput.disconnect(this.#port);
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

/** @type {Worker | null} for the next synthesizer */
let spare = null;

function newWorker() {
  return new Worker(new URL("./synth-worker.js", import.meta.url), { type: "module" });
}

export class SynthPlayer {
  /** @type {Emitter<void>} the worker does not answer any more: it is gone, or works on something that takes for ever */
  static lost = new Emitter();

  #worker;
  #playing = false;
  /** How many scores the worker has not answered for. */
  #loading = 0;

  /** Gets the next synthesizer its worker: to be called while the page has time for that. */
  static prepare() {
    spare ??= newWorker();
  }

  /** @param {import("../shared/alphatab.js").Settings} settings */
  constructor(settings) {
    const worker = spare ?? newWorker();
    spare = null;
    const toAudioThread = new MessageChannel();
    const toPage = new MessageChannel();
    audioOutput ??= new AudioOutput();
    const { ring } = audioOutput;
    worker.postMessage({ cmd: "serve", page: toPage.port2, audioThread: toAudioThread.port2, ring }, [
      toPage.port2,
      toAudioThread.port2,
    ]);
    const watch = this.#watch(toPage.port1.postMessage.bind(toPage.port1));
    this.#worker = Object.assign(toPage.port1, {
      terminate: () => {
        watch.end();
        worker.terminate();
      },
      postMessage: watched(toPage.port1, watch),
    });
    this.player = new (workerPlayerClass())(new SynthOutput(audioOutput, toAudioThread.port1), settings, this.#worker);
    this.player.loadMidiFile = (midi) => this.#loadMidi(midi);
    const answered = () => this.#loading--;
    this.player.midiLoaded.on(answered);
    this.player.midiLoadFailed.on(answered);
    this.#worker.start();
    this.player.stateChanged.on(({ state }) => (this.#playing = state === alphaTab.synth.PlayerState.Playing));
  }

  /** @param {(message: unknown, transfer: Transferable[]) => void} post */
  #watch(post) {
    /** @type {(number: number) => void} */
    const ping = (number) => {
      const { port1, port2 } = new MessageChannel();
      port1.onmessage = () => {
        port1.close();
        watch.answer(number);
      };
      post({ cmd: "alphaSynth.ping", answer: port2 }, [port2]);
    };
    const watch = new WorkerWatch(
      ping,
      () => SynthPlayer.lost.trigger(),
      () => this.#playing,
      answerTimeoutMs,
    );
    return watch;
  }

  /** Whether a score is on its way to the worker: what it says of loading may be about the one before. */
  get isLoading() {
    return this.#loading > 0;
  }

  /** @param {import("../shared/alphatab.js").MidiFile} midi */
  #loadMidi(midi) {
    this.#loading++;
    for (const part of inParts(midi)) {
      this.#worker.postMessage({ cmd: "alphaSynth.loadMidiPart", part });
    }
  }

  /**
   * @param {Uint8Array<ArrayBuffer>[]} banks in place of those before, handed over and not here any more; of two with
   *     the same sound the later one's sounds
   */
  loadBanks(banks) {
    const buffers = banks.map((bank) => bank.buffer);
    this.#worker.postMessage({ cmd: "alphaSynth.loadBanks", banks }, buffers);
  }

  /** @returns {Promise<import("../soundfont/sounds-in-use.js").SoundInUse[]>} those that the score plays */
  soundsInUse() {
    const { port1, port2 } = new MessageChannel();
    this.#worker.postMessage({ cmd: "alphaSynth.postSoundsInUse", answer: port2 }, [port2]);
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
   * @param {number} index as soundsInUse() has it, of the same score
   * @param {import("../soundfont/fine-preset.js").FineSound} sound whose samples are handed over and not here any more
   */
  replaceSound(index, sound) {
    const samples = sound.samples.map((sample) => sample.samples.buffer);
    this.#worker.postMessage({ cmd: "alphaSynth.replaceSound", index, sound }, samples);
  }

  /** Has the worker collect its garbage. */
  collectGarbage() {
    this.#worker.postMessage({ cmd: "alphaSynth.collect" });
  }

  /** @param {import("./practice-synth.js").CountIn | null} countIn what the next start begins with */
  setCountIn(countIn) {
    this.#worker.postMessage({ cmd: "alphaSynth.setCountIn", countIn });
  }

  /** @param {import("./practice-synth.js").CountIn | null} countIn what each pass of a loop but the first one begins with */
  setPassCountIn(countIn) {
    this.#worker.postMessage({ cmd: "alphaSynth.setPassCountIn", countIn });
  }
}

/**
 * @param {MessagePort} port
 * @param {WorkerWatch} watch
 * @returns {MessagePort["postMessage"]} which the watch hears of
 */
function watched(port, watch) {
  const post = /** @type {(message: unknown, options: any) => void} */ (port.postMessage.bind(port));
  return (/** @type {unknown} */ message, /** @type {any} */ options = []) => {
    post(message, options);
    watch.asked();
  };
}
