// @ts-check
/**
 * Another zoom of the endless system, out of what is there. alphaTab lays a score out in lengths that do not know the
 * zoom; only the space around it is the same at every zoom, in CSS pixels. So no bar has to be laid out or painted
 * again: places are moved, and pictures are shown larger or smaller. On pages this does not hold, as another zoom fills
 * the lines with other bars.
 *
 * @typedef {import("./layout-run.js").Partial} Partial
 * @typedef {import("./scroll-anchor.js").View} View
 * @typedef {import("./scroll-anchor.js").ScrollAnchor} ScrollAnchor
 * @typedef {import("@coderline/alphatab").rendering.BoundsLookup} BoundsLookup
 *
 * @typedef {object} Rescaling
 * @property {number} ratio of the new zoom to the one before
 * @property {number} left the space on the left, which stays, in CSS pixels
 * @property {number} top
 */

/**
 * @param {Partial} partial
 * @param {Rescaling} rescaling
 * @returns {Partial} where it is now, with its picture if it has one
 */
export function rescaled(partial, rescaling) {
  const { ratio, left, top } = rescaling;
  const begins = partial.x === 0;
  const x = begins ? 0 : across(partial.x, rescaling);
  const y = partial.y === 0 ? 0 : down(partial.y, rescaling);
  const width = begins ? across(partial.width, rescaling) : partial.width * ratio;
  const height = partial.y === 0 ? down(partial.height, rescaling) : partial.height * ratio;
  const renderResult =
    typeof partial.renderResult === "string"
      ? rescaledPicture(partial.renderResult, {
          ratio,
          left: begins ? left * (1 - ratio) : 0,
          top: partial.y === 0 ? top * (1 - ratio) : 0,
          width,
          height,
        })
      : partial.renderResult;
  return {
    ...partial,
    x,
    y,
    width,
    height,
    renderResult,
  };
}

/**
 * @param {{ width: number, height: number }} size of everything, with the space on both sides
 * @param {Rescaling} rescaling
 */
export function rescaledSize({ width, height }, { ratio, left, top }) {
  return { width: (width - 2 * left) * ratio + 2 * left, height: (height - 2 * top) * ratio + 2 * top };
}

/**
 * @param {View} view
 * @param {ScrollAnchor | null} anchor what stays at its point of the view; null for the view's corner at the beginning
 * @param {Rescaling} rescaling
 * @param {number} width of all that is laid out by then
 * @returns {View} what is to be seen afterwards
 */
export function rescaledView(view, anchor, rescaling, width) {
  const room = view.right - view.left;
  const wanted = anchor ? across(view.left + anchor.left, rescaling) - anchor.left : view.left;
  const left = Math.min(wanted, Math.max(width - room, 0));
  const top = anchor ? down(view.top + anchor.top, rescaling) - anchor.top : view.top;
  return { left, top, right: left + room, bottom: top + view.bottom - view.top };
}

/**
 * Moves all places, in the object itself.
 *
 * @param {BoundsLookup} bounds
 * @param {import("@coderline/alphatab").rendering.BeatBounds[]} folded beats that belong to no bar that is drawn
 * @param {Rescaling} rescaling
 */
export function rescaleBounds(bounds, folded, rescaling) {
  const done = new Set();
  const move = (/** @type {import("@coderline/alphatab").rendering.Bounds} */ box) => {
    if (!done.has(box)) {
      done.add(box);
      box.x = across(box.x, rescaling);
      box.y = down(box.y, rescaling);
      box.w *= rescaling.ratio;
      box.h *= rescaling.ratio;
    }
  };
  const moveBoth = (/** @type {{ visualBounds: any, realBounds: any }} */ { visualBounds, realBounds }) => {
    move(visualBounds);
    move(realBounds);
  };
  const beats = new Set(folded);
  for (const system of bounds.staffSystems) {
    moveBoth(system);
    for (const masterBar of system.bars) {
      moveBoth(masterBar);
      move(masterBar.lineAlignedBounds);
      for (const bar of masterBar.bars) {
        moveBoth(bar);
        bar.beats.forEach((beat) => beats.add(beat));
      }
    }
  }
  for (const beat of beats) {
    moveBoth(beat);
    beat.onNotesX = across(beat.onNotesX, rescaling);
    for (const { noteHeadBounds } of beat.notes ?? []) {
      move(noteHeadBounds);
    }
  }
}

/**
 * @param {string} picture as SVG
 * @param {{ ratio: number, left: number, top: number, width: number, height: number }} change
 */
function rescaledPicture(picture, { ratio, left, top, width, height }) {
  const begin = picture.indexOf(">") + 1;
  const end = picture.lastIndexOf("</svg>");
  const head = picture
    .slice(0, begin)
    .replace(/ width="[^"]*"/, ` width="${Math.trunc(width)}px"`)
    .replace(/ height="[^"]*"/, ` height="${Math.trunc(height)}px"`);
  const content = picture.slice(begin, end);
  return `${head}<g transform="translate(${left} ${top}) scale(${ratio})">${content}</g></svg>`;
}

/**
 * @param {number} x
 * @param {Rescaling} rescaling
 */
function across(x, { ratio, left }) {
  return (x - left) * ratio + left;
}

/**
 * @param {number} y
 * @param {Rescaling} rescaling
 */
function down(y, { ratio, top }) {
  return (y - top) * ratio + top;
}
