// @ts-check
import assert from "node:assert/strict";
import { createRequire } from "node:module";
import { test } from "node:test";
import { backup, note, part, recognised } from "./support/recognised.mjs";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;
const { readForFirstScreen, readScore } = await import("../src/score-files/score-files.js");
const { chooseStrings, hasAllStrings } = await import("../src/score-files/strings/open-fingerings.js");
const { exportGuitarPro } = await import("../src/score-files/guitar-pro/export.js");
const { viewport } = await import("./support/fake-render-worker.mjs");
const { LayoutRun } = await import("../src/rendering/layout-run.js");

const settings = new alphaTab.Settings();
settings.core.engine = "svg";
settings.core.enableLazyLoading = true;

/**
 * What a converted sheet has: two voices, chords, ties, notes that both voices share, bars that are empty and bars that
 * were read with too much in them.
 */
function study(bars = 200) {
  const keys = ["E3", "A3", "C4", "D4", "F#4", "G4", "B4", "C5", "E5", "F#5", "A5", "B5", "D6"];
  const key = (/** @type {number} */ i) => keys[i % keys.length];
  const measures = Array.from({ length: bars }, (_, bar) => {
    if (bar % 11 === 6) {
      return note("r", { duration: 4 });
    }
    const run = [0, 1, 2, 3].map((i) => note(key(bar * bar + 3 * i), { duration: 0.5 })).join("");
    const chord = note(key(bar + 2)) + note(key(bar + 4), { chord: true }) + note(key(bar + 6), { chord: true });
    const last = note(key(3 * bar), { tie: bar % 5 === 0 ? "start" : undefined });
    const tooMuch = bar % 13 === 4 ? note(key(bar)) : "";
    const low = bar % 3 === 0 ? "" : backup(4) + note(key(bar % 4), { duration: 4, voice: 2 });
    const tie = bar % 5 === 1 ? note(key(3 * (bar - 1)), { tie: "stop" }) : note("r");
    return (bar % 2 === 0 ? run + chord + last : tie + run + last) + tooMuch + low;
  });
  return new TextEncoder().encode(recognised([part(measures), part(measures.map((_, i) => measures[i ^ 1]))]));
}

const scoreFrom = (/** @type {typeof readScore} */ read, /** @type {Uint8Array} */ bytes) => {
  const { score, problem } = read(bytes, settings);
  assert.ok(score, problem);
  return score;
};
const notesIn = (score, first = 0, end = Infinity) =>
  score.tracks.flatMap(({ staves }) =>
    staves[0].bars
      .slice(first, end)
      .flatMap(({ voices }) => voices.flatMap(({ beats }) => beats.flatMap(({ notes }) => notes))),
  );
const tab = (score, first = 0, end = Infinity) =>
  notesIn(score, first, end).map(({ string, fret, realValue }) => `${string}:${fret}:${realValue}`);

test("strings that are chosen bit by bit are those that are chosen at once", () => {
  const whole = scoreFrom(readScore, study());
  assert.ok(hasAllStrings(whole) && notesIn(whole).every(({ isStringed }) => isStringed));
  for (const step of [1, 7, 50, 1000]) {
    const score = scoreFrom(readForFirstScreen, study());
    for (let bar = 0; !hasAllStrings(score); bar += step) {
      chooseStrings(score, bar);
      assert.deepEqual(tab(score, 0, bar + 1), tab(whole, 0, bar + 1));
    }
    assert.deepEqual(tab(score), tab(whole));
  }
});

test("for the first lines hardly more is worked out than they show", () => {
  const score = scoreFrom(readForFirstScreen, study());
  assert.ok(notesIn(score).every(({ isStringed }) => !isStringed));
  chooseStrings(score, 40);
  assert.ok(notesIn(score, 0, 41).every(({ isStringed }) => isStringed));
  assert.ok(notesIn(score, 80).every(({ isStringed }) => !isStringed));
  assert.ok(!hasAllStrings(score));
});

test("bars are laid out with their strings, and the first screen does not wait for those of the rest", () => {
  const score = scoreFrom(readForFirstScreen, study(600));
  const renderer = new alphaTab.rendering.ScoreRenderer(settings);
  renderer.width = 900;
  const run = new LayoutRun(renderer, score, [0, 1], { left: 0, top: 0, right: 900, bottom: 600 });
  let batch = run.step();
  while (!batch) {
    batch = run.step();
  }
  const shown = batch.partials.at(-1).lastMasterBarIndex;
  assert.ok(notesIn(score, 0, shown + 1).every(({ isStringed }) => isStringed));
  assert.ok(notesIn(score, 400).every(({ isStringed }) => !isStringed));
  while (!run.finished) {
    run.step();
  }
  assert.deepEqual(tab(score), tab(scoreFrom(readScore, study(600))));
});

test("a worker that is handed the score gets all strings", () => {
  const { worker, renderer } = viewport();
  renderer.renderScore(scoreFrom(readForFirstScreen, study(20)), [0]);
  const arrived = alphaTab.model.JsonConverter.jsObjectToScore(worker.last.score);
  assert.deepEqual(tab(arrived), tab(scoreFrom(readScore, study(20))));
  renderer.destroy();
});

test("an export has all strings, whenever it is asked for", () => {
  const score = scoreFrom(readForFirstScreen, study(20));
  const again = readScore(exportGuitarPro(score, settings), settings).score;
  assert.deepEqual(tab(again), tab(scoreFrom(readScore, study(20))));
});
