// @ts-check
/**
 * The keys that the page answers for, named as the program names them: modifiers first, joined by plus signs. The menus
 * of the program have an item for each; choosing one arrives here as its key.
 *
 * @typedef {Record<string, () => void>} KeyTable
 */

/**
 * @param {object} parts
 * @param {import("./movement.js").Movement} parts.movement
 * @param {import("./range-selection.js").RangeSelection} parts.ranges
 * @param {import("./paging.js").Paging} parts.paging
 * @returns {KeyTable}
 */
export function keyTable({ movement, ranges, paging }) {
  return {
    Home: () => movement.toStart(),
    Left: () => movement.byBeat(-1),
    Right: () => movement.byBeat(1),
    "Ctrl+Left": () => movement.byBar(-1),
    "Ctrl+Right": () => movement.byBar(1),
    "Alt+Left": () => movement.bySection(-1),
    "Alt+Right": () => movement.bySection(1),
    "[": () => ranges.setRangeStart(),
    "]": () => ranges.setRangeEnd(),
    "Shift+Left": () => ranges.moveRangeEnd("beat", -1),
    "Shift+Right": () => ranges.moveRangeEnd("beat", 1),
    "Ctrl+Shift+Left": () => ranges.moveRangeEnd("bar", -1),
    "Ctrl+Shift+Right": () => ranges.moveRangeEnd("bar", 1),
    Esc: () => ranges.letGo(),
    PgUp: () => paging.turn(-1),
    PgDown: () => paging.turn(1),
  };
}
