// @ts-check
import { alphaTab } from "../shared/alphatab.js";

/**
 * What stands above the staves lies in bands. alphaTab 1.8.4 lets the mark of a section share its band with what begins
 * at the same beat, and prints a chord's name over it: the mark gets a band of its own.
 *
 * @typedef {{ effect: { notationElement: number } }} EffectBand
 */
export function separateSectionMarks() {
  const { defaultRenderers } = /** @type {{ defaultRenderers: { effectBands: EffectBand[] }[] }} */ (
    /** @type {unknown} */ (alphaTab.Environment)
  );
  for (const { effect } of defaultRenderers.flatMap(({ effectBands }) => effectBands)) {
    if (effect.notationElement === alphaTab.NotationElement.EffectMarker) {
      Object.defineProperty(effect, "canShareBand", { value: false });
    }
  }
}
