// @ts-check
/**
 * The worker that draws. A module of its own that the page runs before all others: the worker reads alphaTab's code
 * while the page does.
 */
export function startRenderWorker() {
  return new Worker(new URL("./render-worker.js", import.meta.url), { type: "module", name: "renderer" });
}

export const renderWorker = startRenderWorker();

/**
 * Resolves when the worker receives requests at once. Until the page knows that the worker has run its script, requests
 * wait on the page's side: for as long, too, as the page reads a file that the worker should be reading meanwhile.
 *
 * @type {Promise<void>}
 */
export const renderWorkerReady = new Promise((resolve) => {
  renderWorker.addEventListener("message", () => resolve(), { once: true });
  // The renderer receives the fault too, and reports it.
  renderWorker.addEventListener("error", () => resolve(), { once: true });
});
