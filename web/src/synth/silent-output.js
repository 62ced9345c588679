// @ts-check

/**
 * @typedef {object} SampleOutput where the samples go
 * @property {() => void} start
 * @property {() => void} stop
 * @property {() => void} clear what was sent and not presented yet is not wanted any more
 */

/** An output as alphaTab's synthesizer wants it, which takes no samples: they are requested by other means. */
export function silentOutput(/** @type {number} */ sampleRate, /** @type {SampleOutput} */ output) {
  const never = { on: () => () => {}, off: () => {} };
  /** @type {(() => void)[]} */
  const waiting = [];
  return /** @type {import("@coderline/alphatab").synth.ISynthOutput} */ (
    /** @type {unknown} */ ({
      sampleRate,
      ready: { on: (/** @type {() => void} */ ready) => waiting.push(ready) },
      samplesPlayed: never,
      sampleRequest: never,
      open: () => waiting.forEach((ready) => ready()),
      destroy: () => output.stop(),
      play: () => output.start(),
      pause: () => output.stop(),
      addSamples: () => {},
      resetSamples: () => output.clear(),
      activate: () => {},
    })
  );
}
