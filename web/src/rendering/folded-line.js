// @ts-check
import { changeEndlessLayouts } from "../alphatab/internals/alphatab-internals.js";

/**
 * alphaTab 1.8.4 folds long rests in the endless line as well, but goes on with the bar behind the first one: the bars
 * that the rest stands for are drawn once more. Here the line leaves them out.
 *
 * A partial of the line is painted by counting its bars, and the line has fewer: the count is told anew.
 *
 * @typedef {import("../alphatab/internals/alphatab-internals.js").EndlessSystem} EndlessSystem
 */
export function leaveOutFoldedBars() {
  changeEndlessLayouts((layout) => {
    const create = layout.createEmptyStaffSystem.bind(layout);
    layout.createEmptyStaffSystem = (index) => leavingOut(create(index));
  });
}

/**
 * @param {EndlessSystem} system
 * @returns {EndlessSystem} the same
 */
function leavingOut(system) {
  const addBars = system.addBars.bind(system);
  const paintPartial = system.paintPartial.bind(system);
  /** @type {Set<number>} */
  const folded = new Set();
  /** For each bar that was handed over, which of those in the line shows it. @type {number[]} */
  const drawnAs = [];
  let drawn = 0;

  system.addBars = (tracks, bar, foldedBehind) => {
    if (folded.has(bar)) {
      drawnAs.push(drawn - 1);
      // Part of what is before it, and without width.
      return { isLinkedToPrevious: true, renderers: [], width: 0 };
    }
    foldedBehind?.forEach((index) => folded.add(index));
    drawnAs.push(drawn++);
    return addBars(tracks, bar, foldedBehind);
  };
  system.paintPartial = (x, y, canvas, start, count) => {
    const first = drawnAs[start];
    const last = drawnAs[start + count - 1];
    paintPartial(x, y, canvas, first, last - first + 1);
  };
  return system;
}
