// @ts-check
/**
 * The keys that the page answers for, named as the program names them: modifiers first, joined by plus signs. The menus
 * of the program have an item for each; choosing one arrives here as its key.
 *
 * @typedef {Record<string, () => void>} KeyTable
 */

/**
 * @param {{ movement: import("./movement.js").Movement }} parts
 * @returns {KeyTable}
 */
export function keyTable({ movement }) {
  return {
    Home: () => movement.toStart(),
    Left: () => movement.byBeat(-1),
    Right: () => movement.byBeat(1),
    "Ctrl+Left": () => movement.byBar(-1),
    "Ctrl+Right": () => movement.byBar(1),
    "Alt+Left": () => movement.bySection(-1),
    "Alt+Right": () => movement.bySection(1),
  };
}
