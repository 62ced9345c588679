// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { dividedIntoPages, printedPartials, shrinkage } from "../src/printing/pages.js";

test("the chords' diagrams are printed above the systems, and alphaTab's last line is not", () => {
  const [diagrams, first, second, last] = [-1, 0, 4, -1].map((firstMasterBarIndex) => ({ firstMasterBarIndex }));
  assert.deepEqual(printedPartials([diagrams, first, second, last]), [diagrams, first, second]);
  assert.deepEqual(printedPartials([first, second, last]), [first, second]);
  assert.deepEqual(printedPartials([last]), []);
});

test("systems fill one page after the other, and none is cut", () => {
  assert.deepEqual(dividedIntoPages([100, 100, 100, 100, 100], 250, 0), [[0, 1], [2, 3], [4]]);
  assert.deepEqual(dividedIntoPages([100, 150, 100], 250, 0), [[0, 1], [2]]);
});

test("the header takes its part of the first page alone", () => {
  assert.deepEqual(dividedIntoPages([100, 100, 100], 250, 60), [[0], [1, 2]]);
  assert.deepEqual(dividedIntoPages([100, 100, 100], 250, 50), [[0, 1], [2]]);
});

test("every system is on exactly one page, whatever the heights, and none reaches beyond its page", () => {
  let seed = 7;
  const random = (most) => (seed = (seed * 48271) % 2147483647) % most;
  for (let run = 0; run < 500; run++) {
    const pageHeight = 300 + random(700);
    const header = random(200);
    const heights = Array.from({ length: 1 + random(30) }, () => 20 + random(280));
    const pages = dividedIntoPages(heights, pageHeight, header);
    assert.deepEqual(
      pages.flat(),
      heights.map((_, index) => index),
    );
    pages.forEach((page, number) => {
      const used = page.reduce((sum, index) => sum + heights[index], number === 0 ? header : 0);
      assert.ok(used <= pageHeight, `${used} of ${pageHeight}`);
      assert.ok(page.length > 0 || (number === 0 && header > 0), "an empty page");
    });
  }
});

test("a score without systems has one page", () => {
  assert.deepEqual(dividedIntoPages([], 250, 60), [[]]);
});

test("what is too high for a page, or for the first one below the header, is drawn smaller", () => {
  assert.equal(shrinkage([100, 250], 250, 100), 1);
  assert.equal(shrinkage([100, 500], 250, 0), 0.5);
  assert.equal(shrinkage([200, 100], 250, 150), 0.5);
  assert.equal(shrinkage([200, 100], 250, 240), 1);
});
