// @ts-check
// An audio context without sound: what the audio thread is told is written down.
import { standIn } from "./stand-in.mjs";

export const contexts = { made: 0, state: "suspended" };
/** The messages of all nodes, in order. */
export const told = [];

globalThis.AudioContext = standIn(
  class {
    sampleRate = 48000;
    baseLatency = 0;
    outputLatency = 0;
    audioWorklet = { addModule: async () => {} };
    constructor() {
      contexts.made++;
    }
    get state() {
      return contexts.state;
    }
    async resume() {
      contexts.state = "running";
    }
    async suspend() {
      contexts.state = "suspended";
    }
  },
);
globalThis.AudioWorkletNode = standIn(
  class {
    port = { postMessage: (message) => told.push(message) };
    connect() {}
  },
);
/** What was done to the volume, in order: set at once, or approached. */
export const volumes = [];
globalThis.GainNode = standIn(
  class {
    gain = {
      set value(volume) {
        volumes.push({ set: volume });
      },
      cancelScheduledValues() {},
      setTargetAtTime(volume) {
        volumes.push({ approached: volume });
      },
    };
    constructor(_, { gain }) {
      volumes.push({ set: gain });
    }
    connect() {}
  },
);
globalThis.addEventListener = () => {};
globalThis.setInterval = standIn(() => 0);

/** Until promises that wait for nothing else have been kept. */
export const settled = () => new Promise((resolve) => setImmediate(resolve));
