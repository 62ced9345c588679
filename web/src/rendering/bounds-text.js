// @ts-check
import { alphaTab } from "../shared/alphatab.js";

/**
 * Where everything of a score is, as text: it is handed from the worker to the page, and kept packed.
 *
 * @typedef {import("@coderline/alphatab").rendering.BoundsLookup} BoundsLookup
 * @typedef {import("../shared/alphatab.js").Score} Score
 */

/**
 * @param {BoundsLookup["staffSystems"][number]} system
 * @returns {string} JSON
 */
export function boundsText(system) {
  const bounds = new alphaTab.rendering.BoundsLookup();
  bounds.staffSystems = [system];
  return JSON.stringify(bounds.toJson(), (_, value) => (value instanceof Map ? Object.fromEntries(value) : value));
}

/**
 * @param {string} text from boundsText()
 * @param {Score} score the one that was laid out, or another reading of its file
 * @returns {BoundsLookup}
 */
export function boundsOf(text, score) {
  const bounds = alphaTab.rendering.BoundsLookup.fromJson(asMaps(JSON.parse(text)), score);
  return bounds ?? new alphaTab.rendering.BoundsLookup();
}

/**
 * alphaTab reads maps only. A reviver would be called for each number, too.
 *
 * @param {unknown} value
 * @returns {any}
 */
function asMaps(value) {
  if (Array.isArray(value)) {
    return value.map(asMaps);
  }
  if (typeof value !== "object" || value === null) {
    return value;
  }
  const map = new Map();
  for (const [name, part] of Object.entries(value)) {
    map.set(name, asMaps(part));
  }
  return map;
}
