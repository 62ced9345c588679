// @ts-check
import { translated } from "../shared/texts.js";

/**
 * One line over the score, for what the reader waits for or has to know: that a score is being opened, and that a file
 * could not be.
 */

/** How long a file may take before the page says that it is being opened. */
const openingDelayMs = 300;

/** How long a problem stays to be read. */
const problemTimeMs = 9000;

export class Notice {
  #element;
  /** @type {ReturnType<typeof setTimeout> | undefined} */
  #timer;
  #openedAt = 0;
  #opening = false;
  /** @type {string | null} what is true for longer than the other things that are said */
  #kept = null;

  /** @param {HTMLElement} element an empty element over the score, hidden */
  constructor(element) {
    this.#element = element;
  }

  /** A file is about to be read, which holds up the page: what appears late is faded in, which needs no script. */
  beginOpening() {
    this.#openedAt = performance.now();
    this.#opening = true;
    this.#show("Opening the score…", "opening", openingDelayMs);
  }

  /** The file has been read, and its score is being drawn. */
  continueOpening() {
    if (this.#opening) {
      const left = openingDelayMs - (performance.now() - this.#openedAt);
      this.#show("Opening the score…", "opening", Math.max(left, 0));
    }
  }

  /** What was opened can be seen. */
  endOpening() {
    if (this.#opening) {
      this.#hide();
    }
  }

  /** @param {string} sentence why a file could not be opened */
  tellProblem(sentence) {
    this.#show(sentence, "problem", 0);
    this.#timer = setTimeout(() => this.#hide(), problemTimeMs);
  }

  /** @param {string | null} sentence that stays while nothing else is said; null when it is not true any more */
  keep(sentence) {
    const isSaid = this.#element.className === "kept" && !this.#element.hidden;
    this.#kept = sentence;
    if (isSaid || this.#element.hidden) {
      this.#hide();
    }
  }

  /**
   * @param {string} text
   * @param {string} kind
   * @param {number} delay in milliseconds
   */
  #show(text, kind, delay) {
    clearTimeout(this.#timer);
    this.#opening = kind === "opening";
    const element = this.#element;
    const sentence = translated(text);
    // Set anew it would be faded in anew.
    if (element.hidden || element.className !== kind || element.textContent !== sentence) {
      element.hidden = false;
      element.className = kind;
      element.textContent = sentence;
    }
    element.style.animationDelay = `${delay}ms`;
  }

  #hide() {
    clearTimeout(this.#timer);
    this.#opening = false;
    this.#element.hidden = true;
    if (this.#kept !== null) {
      this.#show(this.#kept, "kept", 0);
    }
  }
}
