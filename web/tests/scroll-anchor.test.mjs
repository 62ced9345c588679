// @ts-check
import assert from "node:assert/strict";
import { createRequire } from "node:module";
import { test } from "node:test";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;
const { anchorIn, viewAt } = await import("../src/rendering/scroll-anchor.js");

/** A rendering: systems of bars, each bar as wide as given and each system as high. */
function drawn(systems, width, height) {
  const bounds = new alphaTab.rendering.BoundsLookup();
  let index = 0;
  systems.forEach((bars, system) => {
    bounds.addStaffSystem(new alphaTab.rendering.StaffSystemBounds());
    for (let bar = 0; bar < bars; bar++) {
      const box = new alphaTab.rendering.MasterBarBounds();
      box.index = index++;
      box.visualBounds = Object.assign(new alphaTab.rendering.Bounds(), {
        x: bar * width,
        y: system * height,
        w: width,
        h: height,
      });
      bounds.addMasterBar(box);
    }
  });
  return bounds;
}

const view = (left, top) => ({ left, top, right: left + 1000, bottom: top + 500 });

test("what is at the top stays at the top, in larger notation with fewer bars to a line", () => {
  const anchor = anchorIn(drawn([4, 4, 4, 4, 4, 4], 250, 200), view(-40, 560), null);
  assert.deepEqual(anchor, { bar: 12, x: 0, y: 0, left: 40, top: 40 });
  assert.deepEqual(viewAt(anchor, drawn([3, 3, 3, 3, 3, 3], 333, 300), view(-40, 560), false), view(-40, 1160));
});

test("of lines higher than the view the same partial stays in view", () => {
  const anchor = anchorIn(drawn([2, 2, 2], 500, 1600), view(0, 2400), null);
  assert.deepEqual([anchor.bar, anchor.y, anchor.top], [2, 0.5, 0]);
  assert.deepEqual(viewAt(anchor, drawn([2, 2, 2], 500, 3200), view(0, 2400), false), view(0, 4800));
});

test("a line that has all but left the view is not what is looked at", () => {
  assert.equal(anchorIn(drawn([2, 2, 2, 2], 500, 300), view(0, 290), null).bar, 2);
  assert.equal(anchorIn(drawn([2, 2, 2, 2], 500, 300), view(0, 150), null).bar, 0);
});

test("the cursor is looked at while it is seen", () => {
  const score = drawn([4, 4, 4, 4, 4, 4], 250, 200);
  assert.deepEqual(anchorIn(score, view(0, 600), 17), { bar: 17, x: 0, y: 0, left: 250, top: 200 });
  assert.equal(anchorIn(score, view(0, 600), 2).bar, 12);
  assert.equal(anchorIn(score, view(0, 600), 900).bar, 12);
});

test("along an endless line the same bar stays where it is", () => {
  const system = drawn([40], 250, 200);
  const anchor = anchorIn(system, view(5100, -150), null);
  assert.deepEqual(anchor, { bar: 20, x: 0.4, y: 0, left: 0, top: 150 });
  assert.deepEqual(viewAt(anchor, drawn([40], 500, 400), view(5100, -150), true), view(10200, -150));
  const pages = drawn([4, 4, 4, 4, 4, 4, 4, 4, 4, 4], 250, 200);
  assert.deepEqual(viewAt(anchor, pages, view(0, 0), false), view(0, 850));
});

test("where nothing is drawn nobody reads, and a bar that is not laid out is nowhere", () => {
  const score = drawn([4, 4], 250, 200);
  assert.equal(anchorIn(score, view(0, 5000), null), null);
  assert.equal(anchorIn(score, view(0, 5000), 3), null);
  assert.equal(viewAt({ bar: 9, x: 0, y: 0, left: 0, top: 0 }, score, view(0, 0), false), null);
});
