// @ts-check
import { Fretboard } from "./fretboard.js";

/**
 * Whether there is a fretboard, and for which hand. While there is none, nothing of it exists.
 */
export class FretboardSwitch {
  #dependencies;
  #body;
  /** @type {Fretboard | null} */
  #fretboard = null;

  /**
   * @param {import("./fretboard.js").Dependencies} dependencies
   * @param {HTMLElement} body
   */
  constructor(dependencies, body) {
    this.#dependencies = dependencies;
    this.#body = body;
  }

  /** @param {{ shown: boolean, leftHanded: boolean }} state */
  set({ shown, leftHanded }) {
    if (!shown) {
      this.#fretboard?.remove();
      this.#fretboard = null;
    } else if (this.#fretboard) {
      this.#fretboard.setLeftHanded(leftHanded);
    } else {
      this.#fretboard = new Fretboard(this.#dependencies, this.#body, leftHanded);
    }
  }
}
