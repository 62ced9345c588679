// @ts-check
import { callbackSeconds, watchOutputLatency } from "../audio/output-latency.js";
import { OutputWatch } from "../audio/output-watch.js";
import { SampleRing } from "../audio/sample-ring.js";

/**
 * The page's side of the audio output, which synthesizers use one after the other: an audio context that is suspended
 * when nothing sounds. There is one for all of them, as a closed context keeps part of its memory.
 */

/** How long after the last sound the audio context is suspended. */
const suspendDelayMs = 15000;

/** What announces that the page will be busy rendering, and for how long the look-ahead is longer then. */
const busySigns = ["resize", "wheel"];
const busySeconds = 2;

export class AudioOutput {
  /** Where the synthesizer puts its samples; null where threads cannot share memory. */
  ring = SampleRing.sharedMemory();
  #context = new AudioContext({ latencyHint: callbackSeconds });
  #watch = new OutputWatch(this.#context);
  #node = this.#build();
  /** @type {MessagePort | null} to the synthesizer that sounds; posts of another one no longer count */
  #port = null;
  /** @type {ReturnType<typeof setTimeout> | undefined} */
  #sleep;

  /** In samples a second. */
  get sampleRate() {
    return this.#context.sampleRate;
  }

  /**
   * @param {MessagePort} port the audio thread's end of a channel to a synthesizer, handed over: that one sounds now
   */
  connect(port) {
    this.#port = port;
    void this.#post({ port }, [port]);
    this.fallAsleep(port);
  }

  /** @param {MessagePort} port */
  disconnect(port) {
    if (port === this.#port) {
      this.fallAsleep(port);
      this.#port = null;
      void this.#post({ port: null });
    }
  }

  /** @param {MessagePort} port of the synthesizer that is about to sound */
  wake(port) {
    if (port === this.#port) {
      clearTimeout(this.#sleep);
      this.#watch.wake();
    }
  }

  /** @param {MessagePort} port of the synthesizer that is silent for now */
  fallAsleep(port) {
    if (port === this.#port) {
      clearTimeout(this.#sleep);
      this.#sleep = setTimeout(() => this.#watch.sleep(), suspendDelayMs);
    }
  }

  async #build() {
    const context = this.#context;
    await context.audioWorklet.addModule(new URL("./sound-processor.js", import.meta.url));
    const node = new AudioWorkletNode(context, "quaverly-sound", { numberOfInputs: 0, outputChannelCount: [2] });
    node.connect(context.destination);
    node.port.postMessage({ ring: this.ring });
    for (const sign of busySigns) {
      addEventListener(sign, () => void this.#post({ busyFrames: Math.round(busySeconds * context.sampleRate) }), {
        passive: true,
      });
    }
    watchOutputLatency(context, (seconds) => {
      node.port.postMessage({ latency: Math.round(seconds * context.sampleRate) });
    });
    return node;
  }

  /**
   * @param {import("./sound-processor.js").FromPage} message
   * @param {Transferable[]} [transfer]
   */
  async #post(message, transfer = []) {
    (await this.#node).port.postMessage(message, transfer);
  }
}
