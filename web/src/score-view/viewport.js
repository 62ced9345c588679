// @ts-check
/**
 * What scrolls, with the notation in it.
 *
 * @typedef {import("../rendering/reading-place.js").View} View
 */
export class Viewport {
  #viewport;
  #sheet;

  /**
   * @param {HTMLElement} viewport
   * @param {HTMLElement} sheet
   */
  constructor(viewport, sheet) {
    this.#viewport = viewport;
    this.#sheet = sheet;
    // Keys scroll what has the focus, and nothing else on the page takes any.
    viewport.tabIndex = -1;
    viewport.focus({ preventScroll: true });
  }

  /** What can be seen of the sheet. */
  get view() {
    const view = this.#viewport.getBoundingClientRect();
    const origin = this.#sheet.getBoundingClientRect();
    return {
      left: view.left - origin.left,
      top: view.top - origin.top,
      right: view.right - origin.left,
      bottom: view.bottom - origin.top,
    };
  }

  /** How far it is scrolled. */
  get position() {
    return { left: this.#viewport.scrollLeft, top: this.#viewport.scrollTop };
  }

  /**
   * Scrolls, as far as there is something to scroll.
   *
   * @param {View} view
   */
  moveTo(view) {
    const now = this.view;
    this.#viewport.scrollBy(view.left - now.left, view.top - now.top);
  }
}
