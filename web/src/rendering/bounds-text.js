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
  return json(bounds.toJson());
}

/**
 * @param {string} text from boundsText()
 * @param {Score} score the one that was laid out, or another reading of its file
 * @returns {BoundsLookup}
 */
export function boundsOf(text, score) {
  const read = /** @type {any} */ (new Fields(JSON.parse(text)));
  return alphaTab.rendering.BoundsLookup.fromJson(read, score) ?? new alphaTab.rendering.BoundsLookup();
}

/**
 * alphaTab writes maps, and a copy of each as an object would be as large as all of them.
 *
 * @param {unknown} value
 * @returns {string}
 */
function json(value) {
  if (value instanceof Map) {
    return `{${[...value].map(([name, part]) => `"${name}":${json(part)}`).join(",")}}`;
  }
  return Array.isArray(value) ? `[${value.map(json).join(",")}]` : JSON.stringify(value ?? null);
}

/** alphaTab reads maps. A map takes several times the room of an object, and these are read once. */
class Fields {
  #fields;

  /** @param {Record<string, unknown>} fields */
  constructor(fields) {
    this.#fields = fields;
  }

  /**
   * @param {string} name
   * @returns {unknown}
   */
  get(name) {
    return wrapped(this.#fields[name]);
  }

  /** @param {string} name */
  has(name) {
    return Object.hasOwn(this.#fields, name);
  }
}

/**
 * @param {unknown} value
 * @returns {unknown}
 */
function wrapped(value) {
  if (Array.isArray(value)) {
    return value.map(wrapped);
  }
  return typeof value === "object" && value !== null
    ? new Fields(/** @type {Record<string, unknown>} */ (value))
    : value;
}
