// @ts-check
// Time that passes when it is told to. Takes the place of setTimeout() and Date.now() from the import on.
import { standIn } from "./stand-in.mjs";

let now = 1_700_000_000_000;
let count = 0;
/** @type {Map<number, { due: number, action: () => void }>} */
const waiting = new Map();

globalThis.setTimeout = standIn((action, delay = 0) => {
  waiting.set(++count, { due: now + delay, action });
  return count;
});
globalThis.clearTimeout = standIn((id) => waiting.delete(id));
Date.now = () => now;

/** @param {number} milliseconds that pass, with everything that is due meanwhile */
export function pass(milliseconds) {
  const end = now + milliseconds;
  for (;;) {
    const [next] = [...waiting].filter(([, { due }]) => due <= end).sort(([, one], [, other]) => one.due - other.due);
    if (!next) {
      now = end;
      return;
    }
    const [id, { due, action }] = next;
    waiting.delete(id);
    now = Math.max(now, due);
    action();
  }
}

/** @param {number} milliseconds for which nothing was done, although it was due */
export function standStill(milliseconds) {
  now += milliseconds;
  pass(0);
}
