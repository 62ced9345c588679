// @ts-check
import assert from "node:assert/strict";
import { createRequire } from "node:module";
import { test } from "node:test";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;
const { separateSectionMarks } = await import("../src/rendering/effect-bands.js");
const { arrangeStaffNames } = await import("../src/rendering/staff-names.js");
const { copyrightLines } = await import("../src/score-view/score-footer.js");

const { Horizontal, Vertical } = alphaTab.model.TrackNameOrientation;
const read = (tex) => alphaTab.importer.ScoreLoader.loadAlphaTex(tex, new alphaTab.Settings());

/** Where each text is drawn, in CSS pixels from the top of its partial. */
function heights(score) {
  const settings = new alphaTab.Settings();
  settings.core.engine = "svg";
  settings.core.enableLazyLoading = false;
  const renderer = new alphaTab.rendering.ScoreRenderer(settings);
  renderer.width = 900;
  const found = new Map();
  renderer.partialRenderFinished.on(({ renderResult }) => {
    for (const [, y, text] of String(renderResult).matchAll(/<text[^>]* y="([\d.]+)"[^>]*>([^<]+)<\/text>/g)) {
      found.set(text, Number(y));
    }
  });
  renderer.renderScore(score, [0]);
  return found;
}

test("a chord's name keeps off the mark of a section that begins with it", () => {
  const tex = '\\chord ("Dsus2" 0 3 2 0 0 0) \\section "Refrain" :4 3.3 {ch "Dsus2"} 3.3 3.3 3.3';
  const before = heights(read(tex));
  assert.equal(before.get("Dsus2"), before.get("Refrain"), "alphaTab keeps them apart by itself now");
  separateSectionMarks();
  const after = heights(read(tex));
  assert.ok(after.get("Dsus2") - after.get("Refrain") >= 14, JSON.stringify([...after]));
});

test("names are upright while they are shorter than their staves are high, and lie otherwise", () => {
  const orientation = (names, music = "{score} c4") => {
    const score = read(names.map((name) => `\\track "${name}" \\staff ${music}`).join(" "));
    score.stylesheet.firstSystemTrackNameMode = alphaTab.model.TrackNameMode.FullName;
    arrangeStaffNames(
      score,
      names.map((_, index) => index),
    );
    return score.stylesheet.firstSystemTrackNameOrientation;
  };
  assert.equal(orientation(["Piano", "Harp"]), Vertical);
  assert.equal(orientation(["Piano", "MusicXML Part"]), Horizontal);
  assert.equal(orientation(["MusicXML Part"], "{score tabs} 3.3"), Vertical);
});

test("names of the tracks that are drawn count, and a long one is shortened each time anew", () => {
  const long = "Contrabass Clarinet in B flat, muted";
  const score = read(`\\track "Harp" \\staff {score} c4 \\track "${long}" \\staff {score} c4`);
  score.stylesheet.firstSystemTrackNameMode = alphaTab.model.TrackNameMode.FullName;
  const { stylesheet, tracks } = score;
  arrangeStaffNames(score, [0]);
  assert.equal(stylesheet.firstSystemTrackNameOrientation, Vertical);
  for (let pass = 0; pass < 2; pass++) {
    arrangeStaffNames(score, [0, 1]);
    assert.equal(stylesheet.firstSystemTrackNameOrientation, Horizontal);
    assert.equal(tracks[1].name, "Contrabass Clarinet in…");
  }
  assert.equal(tracks[0].name, "Harp");
});

test("a copyright has two lines, and none is none", () => {
  assert.deepEqual(copyrightLines(read('\\copyright "2026 The Ferry" c4')), [
    "2026 The Ferry",
    "All Rights Reserved - International Copyright Secured",
  ]);
  assert.deepEqual(copyrightLines(read("c4")), []);
});
