// @ts-check
/**
 * Output latency minus drawing time: how long to delay a cursor update so that it appears when its sample is audible.
 * Negative if drawing is slower.
 */

/** How often the latency of the sound system is read. */
const intervalMs = 1000;

/** Time from a report of the presented frame until the cursor is on the screen. */
const drawingSeconds = 0.018;

/** The latency where the sound system reports none. */
const assumedSeconds = 0.04;

/**
 * Length of an audio callback. Chromium's shortest, 0.01 s, gave a dropout each time that the audio thread was as late
 * as that, about once a minute while the window was scrolled and resized.
 */
export const callbackSeconds = 0.02;

/**
 * @param {AudioContext} context
 * @param {(seconds: number) => void} receive called at once and then every second while there is sound; below zero when
 *     drawing takes longer than the sound system
 * @returns {() => void} ends the watch
 */
export function watchOutputLatency(context, receive) {
  const report = () => receive((context.outputLatency || assumedSeconds) + context.baseLatency - drawingSeconds);
  report();
  const timer = setInterval(() => {
    if (context.state === "running") {
      report();
    }
  }, intervalMs);
  return () => clearInterval(timer);
}
