// @ts-check
import { standIn } from "./stand-in.mjs";

/** What a service is asked, with what matters to a test. @param {object} changes */
export function drawRequest(changes) {
  return standIn({
    cmd: "draw",
    file: 1,
    width: 900,
    view: { left: 0, top: 0, right: 900, bottom: 600 },
    anchor: null,
    textWidths: new Map(),
    remainderTimeoutMs: 0,
    atOnce: false,
    staves: "both",
    whole: null,
    ...changes,
  });
}

/** @param {() => any} isTrue */
export async function until(isTrue) {
  while (!isTrue()) {
    await new Promise((resolve) => setImmediate(resolve));
  }
}
