// @ts-check
import assert from "node:assert/strict";
import { existsSync, readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join } from "node:path";
import { test } from "node:test";
import { attributes, document, note, notesOf, read } from "./support/musicxml-maker.mjs";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;
const { readScore } = await import("../src/score-files/score-files.js");
const { playInOrder } = await import("../src/alphatab/play-through.js");
const { scoreOrder } = await import("../src/playback/score-order.js");

const settings = new alphaTab.Settings();
const shared = process.env.QUAVERLY_SHARED ?? "";

const texScore = (text) => alphaTab.importer.ScoreLoader.loadAlphaTex(text, settings);

const readFile = (path) => readScore(new Uint8Array(readFileSync(path)), settings).score;

/** Scores that others made; none of those that are not here. */
function foreign(...names) {
  const here = names.filter((name) => existsSync(join(shared, name)));
  return Object.fromEntries(here.map((name) => [name, readFile(join(shared, name))]));
}

/** What alphaTab makes of a score: everything that the page goes by. */
function play(score) {
  const midi = new alphaTab.midi.MidiFile();
  const generator = new alphaTab.midi.MidiFileGenerator(
    score,
    settings,
    new alphaTab.midi.AlphaSynthMidiFileHandler(midi),
  );
  generator.generate();
  /** @type {any[]} */
  const events = midi.events;
  const points = (list) =>
    list.map(({ synthTick, synthTime, syncTime }) => [synthTick, Math.round(synthTime), Math.round(syncTime)]);
  return {
    bars: generator.tickLookup.masterBars.map(({ masterBar }) => masterBar.index + 1),
    starts: generator.tickLookup.masterBars.map(({ start }) => start),
    ends: generator.tickLookup.masterBars.map(({ end }) => end),
    // Metres excepted: alphaTab goes by the bar before, also when that is not played.
    events: events
      .filter(({ type }) => type !== alphaTab.midi.MidiEventType.TimeSignature)
      .map(({ tick, type, noteKey, noteDuration, beatsPerMinute }) => [
        tick,
        type,
        noteKey,
        noteDuration,
        beatsPerMinute,
      ]),
    notes: midi.events.filter((event) => event instanceof alphaTab.midi.NoteOnEvent).map(({ tick }) => tick),
    syncPoints: points(generator.syncPoints),
    ownSyncPoints: points(alphaTab.midi.MidiFileGenerator.generateSyncPoints(score)),
    newSyncPoints: points(alphaTab.midi.MidiFileGenerator.generateSyncPoints(score, true)),
    endTick: midi.events.at(-1).tick,
  };
}

/** Scores in which alphaTab's own order is right. */
const plain = {
  repeats: texScore(
    "\\tempo 100 \\ro :4 c4 d4 e4 f4 | \\ae (1) \\ts 3 4 \\rc 2 c4 d4 e4 | \\ae (2) \\tempo 140 c4 d4 e4{tempo 90} | \\ts 5 4 c4 d4 e4 f4 g4",
  ),
  "the demo": readFile(join(process.env.QUAVERLY_SCORES, "ferry.gp5")),
  ...foreign("samples/canon.gp5", "samples/canon-audio-track.gp", "samples/serenade.gp"),
};
const byAlphaTab = Object.fromEntries(Object.entries(plain).map(([name, score]) => [name, play(score)]));

playInOrder((score) => scoreOrder(score).bars);

for (const [name, score] of Object.entries(plain)) {
  test(`what alphaTab plays right is played as before: ${name}`, () => {
    const played = play(score);
    for (const part of ["bars", "starts", "ends", "events", "endTick"]) {
      assert.deepEqual(played[part], byAlphaTab[name][part], part);
    }
    for (const part of ["syncPoints", "ownSyncPoints"]) {
      const [ours, theirs] = [played[part], byAlphaTab[name][part]].map((points) => points.slice(0, -1));
      assert.deepEqual(
        ours.map(([tick, , syncTime]) => [tick, syncTime]),
        theirs.map(([tick, , syncTime]) => [tick, syncTime]),
      );
      // alphaTab counts whole milliseconds from point to point, which adds up.
      assert.ok(ours.every(([, time], index) => Math.abs(time - theirs[index][1]) <= index + 15));
    }
  });
}

test("notes, bars and tempos follow the order", () => {
  const score = texScore("\\tempo 60 \\ro :1 c4 | \\tempo 120 \\ae (1) \\rc 2 d4 | \\ae (2) \\rc 2 e4 | f4");
  const { bars, starts, notes, newSyncPoints, endTick } = play(score);
  assert.deepEqual(bars, [1, 2, 1, 3, 4]);
  const wanted = [0, 3840, 7680, 11520, 15360];
  assert.deepEqual(starts, wanted);
  assert.deepEqual(notes, wanted);
  assert.equal(endTick, 19200);
  // A whole note of 4 s, of 2 s, of 4 s, and twice of 4 s, as the second ending has no tempo of its own.
  assert.deepEqual(newSyncPoints, [
    [0, 0, 0],
    [3840, 4000, 4000],
    [7680, 6000, 6000],
    [19200, 18000, 18000],
  ]);
});

test("turns and mordents go to the neighbours in the key of their bar", () => {
  const keys = (score) => {
    const midi = new alphaTab.midi.MidiFile();
    new alphaTab.midi.MidiFileGenerator(score, settings, new alphaTab.midi.AlphaSynthMidiFileHandler(midi)).generate();
    const notes = midi.events.filter((event) => event instanceof alphaTab.midi.NoteOnEvent);
    return notes.map((/** @type {any} */ { noteKey }) => noteKey - 60);
  };
  const music = ":4 d4 {lmordent} d4 {umordent} g4 {turn} b4 {iturn}";
  // A bar in E flat major, where B is no note of the key, and one in D major.
  assert.deepEqual(keys(texScore(`\\ks Eb ${music} | \\ks D ${music}`)), [
    ...[2, 0, 2, 2, 3, 2, 8, 7, 5, 7, 10, 11, 12, 11],
    ...[2, 1, 2, 2, 4, 2, 9, 7, 6, 7, 9, 11, 13, 11],
  ]);
  // The sound of a transposing instrument is in another key than its staff.
  const clarinet = texScore(`\\staff {score} \\displayTranspose 2 \\ks F ${music}`);
  assert.equal(clarinet.tracks[0].staves[0].displayTranspositionPitch, -2);
  assert.deepEqual(keys(clarinet).slice(0, 3), [2, 0, 2]);
});

test("the points of a backing track are where their bars are played", () => {
  const score = texScore("\\tempo 60 \\ro :1 c4 | \\rc 2 \\jump DaCapo d4 | e4");
  const points = [
    [0, 0, 0],
    [1, 1, 13000],
    [0, 2, 17000],
    [2, 0, 40000],
    [2, 9, 99000],
  ];
  score.applyFlatSyncPoints(
    points.map(([barIndex, barOccurence, millisecondOffset]) => ({
      barIndex,
      barOccurence,
      barPosition: 0,
      millisecondOffset,
    })),
  );
  assert.deepEqual(play(score).bars, [1, 2, 1, 2, 1, 2, 3]);
  assert.deepEqual(play(score).syncPoints, [
    [0, 0, 0],
    [11520, 12000, 13000],
    [15360, 16000, 17000],
    [23040, 24000, 40000],
    [26880, 28000, 51500],
  ]);
  // A point for a pass that never comes is no reason not to write the file.
  assert.ok(new alphaTab.exporter.Gp7Exporter().export(score, settings).length > 0);
});

const orders = {
  "scores/endings-both-closed.gp": [1, 2, 1, 3, 4],
  "scores/da-capo-on-repeat.gp": [1, 2, 3, 2, 3, 1, 2, 3, 4],
  "scores/split-bar-repeats.xml": [1, 2, 3, 1, 2, 3, 4, 5, 6, 4, 5, 6],
  "hostile/endless-coda.gp": [1, 2, 3, 4, 1, 3, 4, 5],
};
for (const [name, score] of Object.entries(foreign(...Object.keys(orders)))) {
  test(`the order of a file: ${name}`, () => {
    assert.deepEqual(play(score).bars, orders[name]);
    assert.equal(scoreOrder(score).tooLong, false);
  });
}

test("repeats without end play straight through", () => {
  const signs =
    Array.from({ length: 30 }, () => "\\ro :1 c4 |").join(" ") +
    Array.from({ length: 30 }, () => "\\rc 100 :1 c4 |").join(" ");
  const [name, shape] = Object.entries({ "our own": texScore(signs), ...foreign("hostile/nested-repeats-30.xml") }).at(
    -1,
  );
  assert.equal(scoreOrder(shape).tooLong, true, name);
  assert.deepEqual(
    play(shape).bars,
    shape.masterBars.map(({ index }) => index + 1),
    name,
  );
});

test("notes that are heard and not seen are played, and remain unseen", () => {
  const hidden = (name) => note(name, 1).replace("<note>", '<note print-object="no">');
  const { score } = read(document([attributes() + hidden("C4") + note("D4", 1) + hidden("E4") + note("F4", 1)]));
  assert.deepEqual(
    notesOf(score).map(({ time, key }) => `${time}:${key}`),
    ["0:60", "1:62", "2:64", "3:65"],
  );
  const { beats } = score.tracks[0].staves[0].bars[0].voices[0];
  assert.deepEqual(
    beats.map(({ isEmpty }) => isEmpty),
    [true, false, true, false],
  );
});
