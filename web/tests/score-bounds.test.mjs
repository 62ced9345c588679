// @ts-check
import assert from "node:assert/strict";
import { createRequire } from "node:module";
import { test } from "node:test";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;
const { readScore } = await import("../src/score-files/score-files.js");

const music = "<note><rest/><duration>4</duration></note>";

/** @param {string} text */
function scoreSaying(text) {
  return new TextEncoder().encode(`<score-partwise><work><work-title>${text}</work-title></work>
<movement-title>${text}</movement-title><identification><creator type="composer">${text}</creator>
<creator type="lyricist">${text}</creator><creator type="artist">${text}</creator><rights>${text}</rights></identification>
<part-list><score-part id="P"><part-name>${text}</part-name></score-part></part-list>
<part id="P"><measure number="1">${music}</measure></part></score-partwise>`);
}

test("texts as long as a book are cut, which the window and the header could not show", () => {
  const { score } = readScore(scoreSaying("Ferry ".repeat(200000)), new alphaTab.Settings());
  assert(score);
  const { title, subTitle, artist, album, words, music, copyright, tracks } = score;
  const texts = [title, subTitle, artist, album, words, music, copyright, tracks[0].name];
  assert(texts.filter((text) => text.startsWith("Ferry Ferry")).length >= 4);
  for (const text of texts) {
    assert(text.length <= 5000, `${text.length}`);
  }
});

test("texts that are no longer than that stay as they are", () => {
  const { score } = readScore(scoreSaying("Ferry"), new alphaTab.Settings());
  assert.equal(score?.title, "Ferry");
});
