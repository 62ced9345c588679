// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { alphaTab, scoreOf } from "./support/played-score.mjs";
import { barTicks, beatTicks, markedSections, sectionsOf, stepFrom } from "../src/score-view/steps.js";
import { standIn } from "./support/stand-in.mjs";

/** The bars of a score as alphaTab plays them. */
function played(text) {
  const score = scoreOf(text);
  const file = new alphaTab.midi.MidiFile();
  const generator = new alphaTab.midi.MidiFileGenerator(
    score,
    new alphaTab.Settings(),
    new alphaTab.midi.AlphaSynthMidiFileHandler(file),
  );
  generator.generate();
  return generator.tickLookup.masterBars;
}

const quarter = 960;
const song = `
  \\section ("Intro") c4.4 c4.2 c4.4 |
  \\section ("V" "Verse") \\ro c4.1 | \\rc 2 c4.2 c4.2 |
  \\section (" ") c4.1`;

test("beats are the notes and rests of the tracks that are shown, each time they are played", () => {
  const bars = played(`\\track "a" c4.4 r.4 c4.2 | \\ro \\rc 2 c4.1 \\track "b" c4.2 c4.2 | c4.2 c4.2`);
  const inQuarters = (tracks) => beatTicks(bars, new Set(tracks)).map((tick) => tick / quarter);
  assert.deepEqual(inQuarters([0]), [0, 1, 2, 4, 8]);
  assert.deepEqual(inQuarters([1]), [0, 2, 4, 6, 8, 10]);
  assert.deepEqual(inQuarters([0, 1]), [0, 1, 2, 4, 6, 8, 10]);
  assert.deepEqual(inQuarters([]), []);
});

test("bars count each time they are played", () => {
  assert.deepEqual(
    barTicks(played(song)).map((tick) => tick / quarter),
    [0, 4, 8, 12, 16, 20],
  );
});

test("a section is found each time the music comes to it, and is told once", () => {
  const once = played(song);
  const bars = [...once, ...once.map((bar) => standIn({ ...bar, start: bar.start + 24 * quarter }))];
  assert.deepEqual(
    sectionsOf(bars).map(({ title, tick }) => [title, tick / quarter]),
    [
      ["Intro", 0],
      ["V Verse", 4],
      ["Intro", 24],
      ["V Verse", 28],
    ],
  );
  assert.deepEqual(
    markedSections(bars).map(({ title, tick }) => [title, tick / quarter]),
    [
      ["Intro", 0],
      ["V Verse", 4],
    ],
  );
});

test("a step leads to the next one in its direction, from between two and from one of them", () => {
  const ticks = [0, 960, 1920];
  assert.equal(stepFrom(ticks, 0, 1, 8), 960);
  assert.equal(stepFrom(ticks, 955, 1, 8), 1920, "rounded, it is at the second already");
  assert.equal(stepFrom(ticks, 1200, 1, 8), 1920);
  assert.equal(stepFrom(ticks, 1920, 1, 8), null);
  assert.equal(stepFrom(ticks, 1920, -1, 8), 960);
  assert.equal(stepFrom(ticks, 965, -1, 8), 0);
  assert.equal(stepFrom(ticks, 1200, -1, 8), 960);
  assert.equal(stepFrom(ticks, 3, -1, 8), null);
});

test("while music plays, going back shortly behind a beat leads to the one before", () => {
  assert.equal(stepFrom([0, 960, 1920], 1200, -1, 8, 300), 0);
  assert.equal(stepFrom([0, 960, 1920], 1300, -1, 8, 300), 960);
});
