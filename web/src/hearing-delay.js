// @ts-check
/**
 * By how much later than it is handed over a sample is heard than what is reported of it at that time is seen: a mark
 * on the score has to wait for the one, and to be early for the other.
 */

/** How often the sound system is asked how far it is to the ear, in milliseconds. */
const interval = 1000;

/** From a report of what is heard it takes so many frames until the mark is on the screen. */
const framesToDraw = 3.5;

/** How many frames are timed at a time, and what the longest of them counts as, in seconds. */
const framesTimed = 12;
const longestFrame = 1 / 35;

/** What is assumed before anything was timed, in seconds. */
const assumed = { frame: 1 / 36, output: 0.04 };

/** How much of what was assumed a new timing replaces: a mark that jumps to and fro is worse than one a little off. */
const trust = 0.25;

/** @returns {Promise<number>} how long a frame takes at present, in seconds */
async function frameTime() {
  const nextFrame = () => new Promise((resolve) => requestAnimationFrame(resolve));
  const start = await nextFrame();
  let end = start;
  for (let frame = 0; frame < framesTimed; frame++) {
    end = await nextFrame();
  }
  return Math.min((end - start) / framesTimed / 1000, longestFrame);
}

/**
 * @param {AudioContext} context
 * @param {(seconds: number) => void} tell called at once and whenever it was measured again; below zero when what is
 *     reported is seen later than it is heard
 * @returns {() => void} ends the watch
 */
export function watchHearingDelay(context, tell) {
  let frame = assumed.frame;
  let timing = false;
  const report = () => tell((context.outputLatency || assumed.output) + context.baseLatency - frame * framesToDraw);
  const measure = async () => {
    timing = true;
    frame += trust * ((await frameTime()) - frame);
    report();
    timing = false;
  };
  report();
  const timer = setInterval(() => {
    // A page that nobody sees draws no frames.
    if (context.state === "running" && !timing) {
      void measure();
    }
  }, interval);
  return () => clearInterval(timer);
}
