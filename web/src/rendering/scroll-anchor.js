// @ts-check
/**
 * Where readers are in a score. Drawn anew, larger or in other staff systems, it is put so that they look at the same
 * notes, at the same point of the screen. Lengths are CSS pixels.
 *
 * @typedef {import("@coderline/alphatab").rendering.BoundsLookup} BoundsLookup
 * @typedef {{ x: number, y: number, w: number, h: number }} Box
 * @typedef {{ left: number, top: number, right: number, bottom: number }} View relative to the notation
 *
 * @typedef {object} ScrolledView what scrolls, with the notation in it
 * @property {View} view what can be seen of the notation
 * @property {{ left: number, top: number }} position how far it is scrolled
 * @property {(view: View) => void} moveTo scrolls, as far as there is something to scroll
 *
 * @typedef {object} ScrollAnchor a point of a bar, and where in the view it is
 * @property {number} bar its index
 * @property {number} x from 0 for the bar's left end to 1 for its right end
 * @property {number} y from 0 for the top of its staff system to 1 for the bottom
 * @property {number} left from the left edge of the view
 * @property {number} top from the top edge of the view
 */

/** A bar counts as seen with this share of what could be seen of it. */
const seenShare = 1 / 3;

/**
 * @param {BoundsLookup} bounds
 * @param {View} view
 * @param {number | null} cursorBar the bar with the cursor, which is what readers look at while they see it
 * @returns {ScrollAnchor | null} null when nothing is seen of the score
 */
export function anchorIn(bounds, view, cursorBar) {
  const box = seenBox(bounds, view, cursorBar) ?? firstSeenBox(bounds, view);
  return (
    box && {
      bar: box.bar,
      x: Math.max(view.left - box.x, 0) / box.w,
      y: Math.max(view.top - box.y, 0) / box.h,
      left: Math.max(box.x - view.left, 0),
      top: Math.max(box.y - view.top, 0),
    }
  );
}

/**
 * @param {ScrollAnchor} anchor
 * @param {BoundsLookup} bounds of the new render pass
 * @param {View} view as it is
 * @param {boolean} sideways whether there is one endless system; on pages only the height counts
 * @returns {View | null} as it is to be; null while the bar has not been laid out
 */
export function viewAt(anchor, bounds, view, sideways) {
  const box = bounds.findMasterBarByIndex(anchor.bar)?.visualBounds;
  if (!box) {
    return null;
  }
  const left = sideways ? box.x + anchor.x * box.w - anchor.left : view.left;
  const top = box.y + anchor.y * box.h - anchor.top;
  return { left, top, right: left + view.right - view.left, bottom: top + view.bottom - view.top };
}

/**
 * @param {BoundsLookup} bounds
 * @param {View} view
 * @param {number | null} bar
 */
function seenBox(bounds, view, bar) {
  const box = bar === null ? null : bounds.findMasterBarByIndex(bar)?.visualBounds;
  return bar !== null && box && isSeen(box, view) ? { bar, x: box.x, y: box.y, w: box.w, h: box.h } : null;
}

/**
 * @param {BoundsLookup} bounds
 * @param {View} view
 */
function firstSeenBox(bounds, view) {
  for (const { bars } of bounds.staffSystems) {
    for (const { index } of bars) {
      const box = seenBox(bounds, view, index);
      if (box) {
        return box;
      }
    }
  }
  return null;
}

/**
 * @param {Box} box
 * @param {View} view
 */
function isSeen(box, view) {
  return enough(box.x, box.x + box.w, view.left, view.right) && enough(box.y, box.y + box.h, view.top, view.bottom);
}

/**
 * @param {number} from
 * @param {number} to
 * @param {number} first
 * @param {number} last
 */
function enough(from, to, first, last) {
  return Math.min(to, last) - Math.max(from, first) >= seenShare * Math.min(to - from, last - first);
}
