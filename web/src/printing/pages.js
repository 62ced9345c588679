// @ts-check
/**
 * What of a drawn score is printed: the staff systems, and the diagrams of its chords above the first one. Below the last
 * one is a line of alphaTab's, and the page has a footer of its own.
 *
 * @template {{ firstMasterBarIndex: number }} Partial
 * @param {readonly Partial[]} partials from top to bottom
 * @returns {Partial[]}
 */
export function printedPartials(partials) {
  const first = partials.findIndex(({ firstMasterBarIndex }) => firstMasterBarIndex >= 0);
  return partials.filter(({ firstMasterBarIndex }, index) => firstMasterBarIndex >= 0 || index < first);
}

/**
 * Which staff systems stand on which printed page. Systems are never cut.
 *
 * @param {readonly number[]} heights of the systems, in their order
 * @param {number} pageHeight
 * @param {number} headerHeight what the header takes of the first page
 * @returns {number[][]} the systems' indices, page by page; at least one page
 */
export function dividedIntoPages(heights, pageHeight, headerHeight) {
  /** @type {number[][]} */
  const pages = [[]];
  let left = pageHeight - headerHeight;
  heights.forEach((height, index) => {
    const isEmpty = (pages.at(-1)?.length ?? 0) === 0 && (pages.length > 1 || headerHeight === 0);
    if (height > left && !isEmpty) {
      pages.push([]);
      left = pageHeight;
    }
    pages.at(-1)?.push(index);
    left -= height;
  });
  return pages;
}

/**
 * By how much the notation has to be smaller, so that its highest system fits onto a page, and the first one below the
 * header. A header that leaves no room for notation stands alone.
 *
 * @param {readonly number[]} heights
 * @param {number} pageHeight
 * @param {number} headerHeight
 * @returns {number} 1 where all of them fit
 */
export function shrinkage(heights, pageHeight, headerHeight) {
  const belowHeader = pageHeight - headerHeight;
  const first = belowHeader > pageHeight / 3 ? belowHeader / Math.max(heights[0] ?? 1, 1) : 1;
  return heights.reduce((factor, height) => Math.min(factor, pageHeight / Math.max(height, 1)), Math.min(1, first));
}
