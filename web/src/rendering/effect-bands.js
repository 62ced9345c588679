// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { effectBands } from "../alphatab/internals/alphatab-internals.js";

/**
 * What stands above the staves lies in bands. alphaTab 1.8.4 lets the mark of a section share its band with what begins
 * at the same beat, and prints a chord's name over it: the mark gets a band of its own.
 */
export function separateSectionMarks() {
  for (const { effect } of effectBands()) {
    if (effect.notationElement === alphaTab.NotationElement.EffectMarker) {
      Object.defineProperty(effect, "canShareBand", { value: false });
    }
  }
}
