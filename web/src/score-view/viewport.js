// @ts-check
/**
 * An element without a size that assistive tools are not told of. Chromium tells them that the element with the page's
 * focus has the focus, or else the page itself, also while a button of the window has it: only with such an element
 * nobody else is named. It lies within the viewport because keys that reach the page meanwhile scroll what is around it.
 *
 * @param {HTMLElement} viewport
 */
function unknownElement(viewport) {
  const element = document.createElement("div");
  element.tabIndex = -1;
  element.setAttribute("aria-hidden", "true");
  element.style.outline = "none";
  viewport.prepend(element);
  return element;
}

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
    this.#followFocus(unknownElement(viewport));
  }

  /**
   * Keeps the focus of the page in the viewport, and in `elsewhere` while the window has it outside the page.
   *
   * @param {HTMLElement} elsewhere
   */
  #followFocus(elsewhere) {
    const follow = () => (document.hasFocus() ? this.#viewport : elsewhere).focus({ preventScroll: true });
    addEventListener("focus", follow);
    addEventListener("blur", follow);
    follow();
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
