// @ts-check
import { bounded, boundedNumber, lengthOf, quarter } from "./values.js";

/**
 * Reads tempos.
 *
 * @typedef {import("../containers/xml-scanner.js").XmlElement} XmlElement
 */

const slowest = 4;
const fastest = 2000;

/**
 * @param {XmlElement} element a direction, or a sound
 * @returns {number} quarters a minute; 0 where it says nothing
 */
export function tempoOf(element) {
  const sound = element.name === "sound" ? element : element.child("sound");
  const said = boundedNumber(sound?.attributes.get("tempo") ?? "", slowest, fastest, 0);
  if (said > 0) {
    return said;
  }
  for (const type of element.children) {
    const metronome = type.name === "direction-type" ? type.child("metronome") : undefined;
    if (metronome) {
      return tempoOfMetronome(metronome);
    }
  }
  return 0;
}

/** @param {XmlElement} metronome */
function tempoOfMetronome(metronome) {
  const units = metronome.children.filter(({ name }) => name === "beat-unit");
  const perMinute = /\d+(\.\d+)?/.exec(metronome.textOf("per-minute"));
  if (units.length !== 1 || !perMinute) {
    return 0;
  }
  const dots = metronome.children.filter(({ name }) => name === "beat-unit-dot").length;
  const unit = lengthOf({ type: units[0].text, dots: Math.min(dots, 4), actual: 1, normal: 1 });
  return bounded((Number(perMinute[0]) * unit) / quarter, slowest, fastest, 0);
}
