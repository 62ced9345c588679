// @ts-check
/**
 * The worker that draws. A module of its own that the page runs before all others: the worker reads the engine's code
 * while the page does.
 */
export const drawingWorker = new Worker(new URL("./drawing-worker.js", import.meta.url), { type: "module", name: "drawing" });
