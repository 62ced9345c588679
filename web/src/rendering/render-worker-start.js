// @ts-check
/**
 * The worker that draws. A module of its own that the page runs before all others: the worker reads alphaTab's code
 * while the page does.
 */
export const renderWorker = new Worker(new URL("./render-worker.js", import.meta.url), { type: "module", name: "renderer" });

/**
 * Kept when the worker hears at once what it is asked. Until the page knows that the worker has run its script, requests
 * wait on the page's side: for as long, too, as the page reads a file that the worker should be reading meanwhile.
 *
 * @type {Promise<void>}
 */
export const renderWorkerReady = new Promise((resolve) => {
  renderWorker.addEventListener("message", () => resolve(), { once: true });
  // The renderer, too, hears of the fault, and tells.
  renderWorker.addEventListener("error", () => resolve(), { once: true });
});
