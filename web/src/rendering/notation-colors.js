// @ts-check
import { alphaTab } from "../shared/alphatab.js";

/**
 * The colours of the notation, to be assigned to alphaTab's rendering resources.
 *
 * @param {boolean} dark whether the score page is dark (page.css has its colours)
 */
export function notationColors(dark) {
  /** @type {(red: number, green: number, blue: number) => import("@coderline/alphatab").model.Color} */
  const color = (red, green, blue) => new alphaTab.model.Color(red, green, blue, 255);
  return dark
    ? {
        mainGlyphColor: color(232, 230, 224),
        // Second voices are told apart by their stems; alphaTab's own light gray is hard to read.
        secondaryGlyphColor: color(184, 182, 176),
        scoreInfoColor: color(232, 230, 224),
        staffLineColor: color(112, 112, 118),
        barSeparatorColor: color(196, 194, 188),
        barNumberColor: color(240, 120, 110),
      }
    : {
        mainGlyphColor: color(0, 0, 0),
        secondaryGlyphColor: color(74, 74, 82),
        scoreInfoColor: color(0, 0, 0),
        staffLineColor: color(165, 165, 165),
        barSeparatorColor: color(34, 34, 17),
        barNumberColor: color(200, 0, 0),
      };
}
