// @ts-check
/**
 * The viewport: it scrolls, with the notation in it.
 *
 * @typedef {import("../rendering/scroll-anchor.js").View} View
 */
export class Viewport {
  #viewport;
  #notation;

  /**
   * @param {HTMLElement} viewport
   * @param {HTMLElement} notation
   */
  constructor(viewport, notation) {
    this.#viewport = viewport;
    this.#notation = notation;
    // Keys scroll what has the focus, and nothing else on the page takes any.
    viewport.tabIndex = -1;
    viewport.focus({ preventScroll: true });
  }

  /** What can be seen of the notation. */
  get view() {
    const view = this.#viewport.getBoundingClientRect();
    const origin = this.#notation.getBoundingClientRect();
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
