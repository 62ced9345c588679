// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { alphaTab, scoreOf } from "./support/played-score.mjs";

const { foldLongRests, writtenFolding } = await import("../src/score-files/guitar-pro/long-rests.js");
const { leaveOutFoldedBars } = await import("../src/rendering/folded-line.js");
const { exportGuitarPro } = await import("../src/score-files/guitar-pro/export.js");

leaveOutFoldedBars();
const settings = new alphaTab.Settings();
const rests = "r.1 | r.1 | r.1 | c4.1";
const notes = "c4.1 | c4.1 | c4.1 | c4.1";
const two = () => scoreOf(`\\track "a" ${rests} \\track "b" ${notes}`);

function drawn(score, tracks, layoutMode = alphaTab.LayoutMode.Page) {
  const looks = new alphaTab.Settings();
  looks.core.engine = "svg";
  looks.core.enableLazyLoading = false;
  looks.display.layoutMode = layoutMode;
  const renderer = new alphaTab.rendering.ScoreRenderer(looks);
  renderer.width = 900;
  const partials = [];
  renderer.partialRenderFinished.on((partial) => partial.firstMasterBarIndex >= 0 && partials.push(partial));
  renderer.renderScore(score, tracks);
  return { bounds: renderer.boundsLookup, partials };
}

/** The bars that alphaTab does not draw, because the rest before them says how many they are. */
function folded(score, tracks, layoutMode) {
  const { bounds } = drawn(score, tracks, layoutMode);
  return score.masterBars.map(({ index }) => index).filter((bar) => !bounds.findMasterBarByIndex(bar));
}

test("the long rests of a track that is shown alone are folded, and those of several are not", () => {
  const score = two();
  foldLongRests(score);
  assert.deepEqual(folded(score, [0]), [1, 2]);
  assert.deepEqual(folded(score, [1]), []);
  assert.deepEqual(folded(score, [0, 1]), []);
  const { Horizontal } = alphaTab.LayoutMode;
  assert.deepEqual(folded(score, [0], Horizontal), [1, 2], "the endless line");
  assert.deepEqual(folded(score, [0, 1], Horizontal), []);
});

test("the endless line shows each bar in its place, and no bar twice", () => {
  const rest = "r.1 |";
  // Rests at the beginning, over the end of a partial, and at the end of the line.
  const bars = `${rest.repeat(4)} ${"c4.1 |".repeat(7)} ${rest.repeat(9)} ${"d4.1 |".repeat(12)} ${rest.repeat(3)}`;
  const score = scoreOf(`\\track "a" ${bars.slice(0, -1)} \\track "b" ${"c4.1 |".repeat(35).slice(0, -1)}`);
  foldLongRests(score);
  const { bounds, partials } = drawn(score, [0], alphaTab.LayoutMode.Horizontal);
  const written = [0, 4, 5, 6, 7, 8, 9, 10, 11, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32];
  // alphaTab finds the places anew for each partial.
  const shown = bounds.staffSystems.at(-1).bars;
  assert.deepEqual(
    shown.map(({ index }) => index),
    written,
  );
  const lefts = shown.map(({ visualBounds }) => visualBounds.x);
  assert.deepEqual(
    lefts,
    [...lefts].sort((a, b) => a - b),
  );
  assert.ok(partials.length > 1);
  assert.equal(partials[0].firstMasterBarIndex, 0);
  assert.equal(partials.at(-1).lastMasterBarIndex, 34);
  partials.slice(1).forEach((partial, index) => {
    assert.equal(partial.firstMasterBarIndex, partials[index].lastMasterBarIndex + 1);
  });
  const isNote = (index) => !score.tracks[0].staves[0].bars[index].isRestOnly;
  for (const { firstMasterBarIndex: from, lastMasterBarIndex: to, renderResult } of partials) {
    const notes = score.masterBars.map(({ index }) => index).filter((bar) => bar >= from && bar <= to && isNote(bar));
    // A whole note in each bar: SMuFL's noteheadWhole.
    assert.equal(String(renderResult).split("&#57506;").length - 1, notes.length, `${from} to ${to}`);
  }
});

test("a score with one track stays as its file has it", () => {
  const score = scoreOf(rests);
  foldLongRests(score);
  assert.deepEqual(folded(score, [0]), []);
});

test("an exported score has the folding of its file", () => {
  const read = (score) => alphaTab.importer.ScoreLoader.loadScoreFromBytes(exportGuitarPro(score, settings), settings);
  const plain = two();
  foldLongRests(plain);
  assert.equal(writtenFolding(plain), null);
  assert.ok(!read(plain).stylesheet.perTrackMultiBarRest?.size);
  const listed = two();
  listed.stylesheet.perTrackMultiBarRest = new Set([1]);
  foldLongRests(listed);
  assert.deepEqual([...read(listed).stylesheet.perTrackMultiBarRest], [1]);
});
