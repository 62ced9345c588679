// @ts-check
import { markedSections } from "./steps.js";

/**
 * Shows where in the score its sections are: a strip along the top of the view stands for everything that can be scrolled,
 * with a mark for each section at its share of that. A click on a mark goes there.
 *
 * @typedef {{ title: string, tick: number, at: number }} PlacedSection `at` in CSS pixels of what scrolls
 * @typedef {{ title: string, tick: number, left: number, width: number }} Mark shares of the strip
 */

export class SectionMarks {
  #api;
  #playback;
  #viewport;
  #strip;

  /**
   * @param {import("../alphatab/page-api.js").PageApi} api
   * @param {import("../playback/playback.js").Playback} playback
   * @param {HTMLElement} viewport what scrolls
   * @param {HTMLElement} strip an empty element
   */
  constructor(api, playback, viewport, strip) {
    this.#api = api;
    this.#playback = playback;
    this.#viewport = viewport;
    this.#strip = strip;
    api.scoreLoaded.on(() => strip.replaceChildren());
    api.scorePrepared.on(() => this.#draw());
    api.workerRenderer.batchShown.on(() => this.#draw());
    addEventListener("resize", () => this.#draw());
  }

  #draw() {
    const viewport = this.#viewport;
    const lookup = this.#api.boundsLookup;
    const origin = this.#api.notation.getBoundingClientRect();
    const view = viewport.getBoundingClientRect();
    const sideways = viewport.scrollWidth > viewport.clientWidth && lookup?.staffSystems.length === 1;
    const begin = sideways ? origin.left - view.left + viewport.scrollLeft : origin.top - view.top + viewport.scrollTop;
    const placed = markedSections(this.#api.tickCache?.masterBars ?? []).flatMap(({ title, tick, bar }) => {
      const box = lookup?.findMasterBarByIndex(bar)?.visualBounds;
      return box ? [{ title, tick, at: begin + (sideways ? box.x : box.y) }] : [];
    });
    const marks = placeMarks(placed, sideways ? viewport.scrollWidth : viewport.scrollHeight);
    this.#strip.replaceChildren(...marks.map((mark) => this.#element(mark)));
  }

  /** @param {Mark} mark */
  #element({ title, tick, left, width }) {
    const element = document.createElement("span");
    element.textContent = title;
    element.title = title;
    element.style.left = `${left * 100}%`;
    element.style.maxWidth = `calc(${width * 100}% - 4px)`;
    element.addEventListener("click", () => this.#playback.seekToTick(tick));
    return element;
  }
}

/**
 * Of sections in the same line, the first one is marked.
 *
 * @param {readonly PlacedSection[]} sections
 * @param {number} range everything that scrolls, in CSS pixels
 * @returns {Mark[]} each as wide as there is room up to the next one
 */
export function placeMarks(sections, range) {
  const places = [...sections].sort((one, other) => one.at - other.at);
  const apart = places.filter(({ at }, index) => index === 0 || at > places[index - 1].at);
  return apart.map(({ title, tick, at }, index) => {
    const next = apart[index + 1]?.at ?? range;
    return { title, tick, left: at / range, width: Math.max(next - at, 0) / range };
  });
}
