// @ts-check
/**
 * When what is on the page can be seen. A hidden page paints nothing, and nobody waits for it; one that is only covered
 * by other windows may have no frames either.
 */

/**
 * Calls back when what is on the page by now has been handed over to be painted.
 *
 * @param {() => void} callback
 */
export function afterPaint(callback) {
  if (document.hidden) {
    setTimeout(callback);
  } else {
    requestAnimationFrame(() => setTimeout(callback));
  }
}

/**
 * Calls back when what was put on the page by now can be seen: the frame after the one with it in begins when that has
 * been painted.
 *
 * @param {() => void} callback
 */
export function afterSight(callback) {
  if (document.hidden) {
    setTimeout(callback);
  } else {
    requestAnimationFrame(() => requestAnimationFrame(() => setTimeout(callback)));
  }
}
