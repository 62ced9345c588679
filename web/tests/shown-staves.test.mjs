// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { scoreOf } from "./support/played-score.mjs";
import { showStaves } from "../src/rendering/shown-staves.js";

const score = () =>
  scoreOf(`\\track "guitar" \\staff {score tabs} 3.3.1 \\track "bass" \\staff {tabs} \\tuning (G2 D2 A1 E1) 3.3.1
    \\track "piano" \\staff {score} \\tuning (none) \\clef F4 c3.1`);

/** "n" for notation and "t" for tablature, of each track's first staff. */
const shown = ({ tracks }) =>
  tracks.map(({ staves: [staff] }) => (staff.showStandardNotation ? "n" : "") + (staff.showTablature ? "t" : ""));

test("staves with strings show one or the other, and what the file says again", () => {
  const drawn = score();
  const written = shown(drawn);
  assert.deepEqual(written, ["nt", "t", "n"]);
  showStaves(drawn, "both");
  assert.deepEqual(shown(drawn), written);
  showStaves(drawn, "tablature");
  assert.deepEqual(shown(drawn), ["t", "t", "n"]);
  showStaves(drawn, "notation");
  assert.deepEqual(shown(drawn), ["n", "n", "n"]);
  showStaves(drawn, "both");
  assert.deepEqual(shown(drawn), written);
});
