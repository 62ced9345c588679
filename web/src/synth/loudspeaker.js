// @ts-check
import { turnOfSound, watchHearingDelay } from "../audio/hearing-delay.js";
import { SampleRing } from "../audio/sample-ring.js";

/**
 * The page's side of the place where synthesizers sound, one after the other: an audio context that sleeps when there is
 * nothing to hear. There is one for all of them, as a closed context keeps part of its memory.
 */

/** How long after the last sound the line to the sound system is kept open, in milliseconds. */
const patience = 15000;

/** What announces that the page will be busy drawing, and for how long more sound is kept ahead then, in seconds. */
const busySigns = ["resize", "wheel"];
const busyTime = 2;

export class Loudspeaker {
  /** Where the synthesizer puts its samples; null where threads cannot share memory. */
  ring = SampleRing.sharedMemory();
  #context = new AudioContext({ latencyHint: turnOfSound });
  #node = this.#build();
  /** @type {MessagePort | null} to the synthesizer that is heard; what another one wishes no longer counts */
  #line = null;
  #sleep = 0;

  /** In samples a second. */
  get sampleRate() {
    return this.#context.sampleRate;
  }

  /** @param {MessagePort} line the audio thread's end of the line to a synthesizer, handed over: that one is heard now */
  connect(line) {
    this.#line = line;
    void this.#tell({ port: line }, [line]);
    this.fallAsleep(line);
  }

  /** @param {MessagePort} line */
  disconnect(line) {
    if (line === this.#line) {
      this.fallAsleep(line);
      this.#line = null;
      void this.#tell({ port: null });
    }
  }

  /** @param {MessagePort} line of the synthesizer that is about to sound */
  wake(line) {
    if (line === this.#line) {
      clearTimeout(this.#sleep);
      void this.#context.resume();
    }
  }

  /** @param {MessagePort} line of the synthesizer that is silent for now */
  fallAsleep(line) {
    if (line === this.#line) {
      clearTimeout(this.#sleep);
      this.#sleep = setTimeout(() => void this.#context.suspend(), patience);
    }
  }

  async #build() {
    const context = this.#context;
    await context.audioWorklet.addModule(new URL("./sound-processor.js", import.meta.url));
    const node = new AudioWorkletNode(context, "quaverly-sound", { numberOfInputs: 0, outputChannelCount: [2] });
    node.connect(context.destination);
    node.port.postMessage({ ring: this.ring });
    for (const sign of busySigns) {
      addEventListener(sign, () => void this.#tell({ brace: Math.round(busyTime * context.sampleRate) }), { passive: true });
    }
    watchHearingDelay(context, (seconds) => {
      node.port.postMessage({ latency: Math.round(seconds * context.sampleRate) });
    });
    return node;
  }

  /**
   * @param {import("./sound-processor.js").FromPage} message
   * @param {Transferable[]} [transfer]
   */
  async #tell(message, transfer = []) {
    (await this.#node).port.postMessage(message, transfer);
  }
}
