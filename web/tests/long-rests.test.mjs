// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { alphaTab, scoreOf } from "./support/played-score.mjs";

const { foldLongRests, writtenFolding } = await import("../src/score-files/guitar-pro/long-rests.js");
const { exportGuitarPro } = await import("../src/score-files/guitar-pro/export.js");

const settings = new alphaTab.Settings();
const rests = "r.1 | r.1 | r.1 | c4.1";
const notes = "c4.1 | c4.1 | c4.1 | c4.1";
const two = () => scoreOf(`\\track "a" ${rests} \\track "b" ${notes}`);

/** The bars that alphaTab does not draw, because the rest before them says how many they are. */
function folded(score, tracks) {
  const drawn = new alphaTab.Settings();
  drawn.core.engine = "svg";
  drawn.core.enableLazyLoading = false;
  const renderer = new alphaTab.rendering.ScoreRenderer(drawn);
  renderer.width = 900;
  renderer.renderScore(score, tracks);
  return score.masterBars.map(({ index }) => index).filter((bar) => !renderer.boundsLookup.findMasterBarByIndex(bar));
}

test("the long rests of a track that is shown alone are folded, and those of several are not", () => {
  const score = two();
  foldLongRests(score, true);
  assert.deepEqual(folded(score, [0]), [1, 2]);
  assert.deepEqual(folded(score, [1]), []);
  assert.deepEqual(folded(score, [0, 1]), []);
  foldLongRests(score, false);
  assert.deepEqual(folded(score, [0]), [], "the endless line");
});

test("a score with one track stays as its file has it", () => {
  const score = scoreOf(rests);
  foldLongRests(score, true);
  assert.deepEqual(folded(score, [0]), []);
});

test("an exported score has the folding of its file", () => {
  const read = (score) => alphaTab.importer.ScoreLoader.loadScoreFromBytes(exportGuitarPro(score, settings), settings);
  const plain = two();
  foldLongRests(plain, true);
  assert.equal(writtenFolding(plain), null);
  assert.ok(!read(plain).stylesheet.perTrackMultiBarRest?.size);
  const listed = two();
  listed.stylesheet.perTrackMultiBarRest = new Set([1]);
  foldLongRests(listed, true);
  foldLongRests(listed, false);
  assert.deepEqual([...read(listed).stylesheet.perTrackMultiBarRest], [1]);
});
