// @ts-check
/**
 * What scrolls, with the sheet on it.
 *
 * @typedef {import("../rendering/reading-place.js").View} View
 */
export class Desk {
  #desk;
  #sheet;

  /**
   * @param {HTMLElement} desk
   * @param {HTMLElement} sheet
   */
  constructor(desk, sheet) {
    this.#desk = desk;
    this.#sheet = sheet;
    // Keys scroll what has the focus, and nothing else on the page takes any.
    desk.tabIndex = -1;
    desk.focus({ preventScroll: true });
  }

  /** What can be seen of the sheet. */
  get view() {
    const view = this.#desk.getBoundingClientRect();
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
    return { left: this.#desk.scrollLeft, top: this.#desk.scrollTop };
  }

  /**
   * Scrolls, as far as there is something to scroll.
   *
   * @param {View} view
   */
  moveTo(view) {
    const now = this.view;
    this.#desk.scrollBy(view.left - now.left, view.top - now.top);
  }
}
