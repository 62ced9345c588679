// @ts-check
/**
 * By how much later than it is handed over a sample is heard than what is reported of it at that time is seen: a mark
 * on the score has to wait for the one, and to be early for the other.
 */

/** How often the sound system is asked how far it is to the ear, in milliseconds. */
const intervalMs = 1000;

/** From a report of what is heard until the mark is on the screen it takes so long, in seconds. */
const drawingSeconds = 0.018;

/** How far it is to the ear where the sound system does not tell, in seconds. */
const assumedSeconds = 0.04;

/**
 * How much the sound system asks for at a time, in seconds. Chromium's shortest, a hundredth, left a hole each time
 * that the audio thread came to its turn as late as that, about once a minute while the window was scrolled and resized.
 */
export const callbackSeconds = 0.02;

/**
 * @param {AudioContext} context
 * @param {(seconds: number) => void} receive called at once and then every second while there is sound; below zero when
 *     what is reported is seen later than it is heard
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
