// @ts-check
/**
 * The worker that draws. A module of its own that the page runs before all others: the worker reads alphaTab's code
 * while the page does.
 */
export const drawingWorker = new Worker(new URL("./drawing-worker.js", import.meta.url), { type: "module", name: "drawing" });

/**
 * Kept when the worker hears at once what it is asked. Until the page knows that the worker has run its script, requests
 * wait on the page's side: for as long, too, as the page reads a file that the worker should be reading meanwhile.
 *
 * @type {Promise<void>}
 */
export const drawingWorkerListens = new Promise((resolve) => {
  drawingWorker.addEventListener("message", () => resolve(), { once: true });
  // The renderer, too, hears of the fault, and tells.
  drawingWorker.addEventListener("error", () => resolve(), { once: true });
});
