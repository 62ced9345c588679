// @ts-check
import { alphaTab } from "../shared/alphatab.js";

/**
 * Below the notation: whose the score is. The page sets these lines itself, because alphaTab prints them over one
 * another.
 *
 * @typedef {import("../shared/alphatab.js").Score} Score
 */
export class ScoreFooter {
  #element;

  /** @param {HTMLElement} element an empty element below the notation */
  constructor(element) {
    this.#element = element;
  }

  /** To be called before another score is shown: its last system is far from known. */
  clear() {
    this.#element.replaceChildren();
  }

  /** @param {Score} score */
  show(score) {
    this.#element.replaceChildren(
      ...copyrightLines(score).map((text) => {
        const line = document.createElement("p");
        line.textContent = text;
        return line;
      }),
    );
  }
}

/**
 * Both lines as the score's own style wants them; the second one belongs to the first.
 *
 * @param {Score} score
 * @returns {string[]}
 */
export function copyrightLines(score) {
  const { ScoreStyle, ScoreSubElement } = alphaTab.model;
  const lines = [ScoreSubElement.Copyright, ScoreSubElement.CopyrightSecondLine].map((element) => {
    const style = score.style?.headerAndFooter.get(element) ?? ScoreStyle.defaultHeaderAndFooter.get(element);
    return style && style.isVisible !== false ? style.buildText(score).trim() : "";
  });
  return lines[0] ? lines.filter(Boolean) : [];
}
