// @ts-check
import assert from "node:assert/strict";
import { createRequire } from "node:module";
import { test } from "node:test";
import { backup, forward, note, part, recognised } from "./support/recognised.mjs";
import { zipOf } from "./support/zip-maker.mjs";
globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;
const { readScore } = await import("../src/score-files/score-files.js");

const settings = new alphaTab.Settings();
const standard = [64, 59, 55, 50, 45, 40];

function read(xml) {
  const reading = readScore(new TextEncoder().encode(xml), settings);
  assert.ok(reading.score, reading.problem);
  return reading.score;
}

const notesOf = (track) =>
  track.staves[0].bars.flatMap(({ voices }) => voices.flatMap(({ beats }) => beats.flatMap(({ notes }) => notes)));
const heard = (track) => notesOf(track).map(({ beat, realValue }) => `${beat.absolutePlaybackStart}:${realValue}`);
const tab = (track) => notesOf(track).map(({ string, fret }) => `${string}:${fret}`);
const programs = (track) =>
  track.staves[0].bars.flatMap(({ voices }) =>
    voices.flatMap(({ beats }) =>
      beats.flatMap(({ automations }) =>
        automations.filter(({ type }) => type === alphaTab.model.AutomationType.Instrument).map(({ value }) => value),
      ),
    ),
  );

/** Written as guitarists read it: the low E under the third ledger line. */
const study = part([
  note("E3", { duration: 2 }) + note("G4") + note("B4"),
  note("C4") +
    note("E4", { chord: true }) +
    note("G4", { chord: true }) +
    note("C5", { chord: true }) +
    note("E5", { chord: true }) +
    note("F#5") +
    note("D5", { duration: 2 }),
]);

test("a part of one staff becomes a guitar's, with its sound, octave, tuning and tablature", () => {
  const [track] = read(recognised([study])).tracks;
  assert.equal(track.name, "Guitar");
  assert.equal(track.playbackInfo.program, 25);
  assert.deepEqual(programs(track), [25]);
  const [staff] = track.staves;
  assert.deepEqual(staff.tuning, standard);
  assert.ok(staff.showTablature && staff.showStandardNotation);
  const keys = notesOf(track).map((n) => n.realValue);
  assert.deepEqual(keys, [40, 55, 59, 48, 52, 55, 60, 64, 66, 62]);
  // The score page looks as it did.
  assert.deepEqual(
    notesOf(track).map((n) => n.displayValue),
    keys.map((key) => key + 12),
  );
  assert.deepEqual(tab(track).slice(0, 8), ["1:0", "4:0", "5:0", "2:3", "3:2", "4:0", "5:1", "6:0"]);
});

test("what another program wrote is left alone", () => {
  const [track] = read(recognised([study], { software: "Some Editor 2" })).tracks;
  assert.equal(track.name, "Voice");
  assert.ok(!track.staves[0].showTablature);
  assert.equal(notesOf(track)[0].realValue, 52);
});

test("a clef that says the octave counts, in the bars where it was seen", () => {
  const low = "<clef><sign>G</sign><line>2</line><clef-octave-change>-1</clef-octave-change></clef>";
  const measures = [note("E3", { duration: 4 }), `<attributes>${low}</attributes>` + note("E2", { duration: 4 })];
  const [track] = read(recognised([part(measures)])).tracks;
  assert.deepEqual(
    notesOf(track).map((n) => n.realValue),
    [40, 40],
  );
  assert.deepEqual(
    notesOf(track).map((n) => n.displayValue),
    [52, 52],
  );
});

test("a part that goes lower than a guitar is written sounds as it was read", () => {
  const [track] = read(recognised([part([note("A2", { duration: 4 })])])).tracks;
  assert.equal(track.name, "Guitar");
  assert.equal(notesOf(track)[0].realValue, 45);
  assert.equal(notesOf(track)[0].displayValue, 45);
});

test("a low D has the lowest string tuned down", () => {
  const [track] = read(recognised([part([note("D3", { duration: 4 })])])).tracks;
  assert.deepEqual(track.staves[0].tuning, [64, 59, 55, 50, 45, 38]);
  assert.deepEqual(tab(track), ["1:0"]);
});

test("a song's voice stays a voice beside its guitar", () => {
  const voice = part(["la", "la"].map((syllable) => note("G4", { duration: 4, syllable })));
  const { tracks } = read(recognised([voice, study]));
  assert.deepEqual(
    tracks.map(({ name }) => name),
    ["Voice", "Guitar"],
  );
  assert.equal(tracks[0].playbackInfo.program, 53);
  assert.equal(notesOf(tracks[0])[0].realValue, 67);
});

test("a stray mark that was read as a syllable makes no song", () => {
  const measures = Array.from(
    { length: 4 },
    (_, i) => note("E4", { syllable: i === 0 ? "3" : "" }) + note("G4") + note("B4") + note("E5"),
  );
  assert.equal(read(recognised([part(measures)])).tracks[0].name, "Guitar");
});

test("several guitars are counted, a bass has four strings", () => {
  const bass = part([note("E2", { duration: 2 }) + note("G2", { duration: 2 })], {
    clef: "<sign>F</sign><line>4</line>",
  });
  const { tracks } = read(recognised([study, study, bass]));
  assert.deepEqual(
    tracks.map(({ name }) => name),
    ["Guitar 1", "Guitar 2", "Bass"],
  );
  assert.deepEqual(tracks[2].staves[0].tuning, [43, 38, 33, 28]);
  assert.deepEqual(
    notesOf(tracks[2]).map((n) => n.realValue),
    [28, 31],
  );
  assert.equal(tracks[2].playbackInfo.program, 33);
});

test("keyboards, parts with names of their own and parts beyond a guitar's reach are left alone", () => {
  const piano = part([note("C4", { duration: 4 })], { staves: 2, clef: "<sign>G</sign><line>2</line>" });
  const flute = recognised([study], { name: "Flute" });
  const high = part([note("C8", { duration: 4 })]);
  for (const xml of [recognised([piano]), flute, recognised([high])]) {
    const [track] = read(xml).tracks;
    assert.ok(!track.name.startsWith("Guitar"), track.name);
    assert.equal(track.staves[0].tuning.length, 0);
  }
});

test("bars without a note stay as they are", () => {
  const [track] = read(recognised([part([note("r", { duration: 4 })])])).tracks;
  assert.equal(track.name, "Voice");
});

test("tied notes stay on their string, and voices share the hand", () => {
  const first =
    note("E5", { duration: 2 }) +
    note("E5", { duration: 2, tie: "start" }) +
    backup(4) +
    note("E3", { duration: 4, voice: 2 });
  const second =
    note("E5", { duration: 2, tie: "stop" }) +
    note("C5", { duration: 2 }) +
    backup(4) +
    note("A3", { duration: 4, voice: 2 });
  const [track] = read(recognised([part([first, second])])).tracks;
  const tied = notesOf(track).find((n) => n.isTieDestination);
  assert.equal(tied.string, tied.tieOrigin.string);
  assert.equal(tied.fret, tied.tieOrigin.fret);
  assert.ok(notesOf(track).every((n) => n.isStringed));
});

test("a bar that was read with too much in it disturbs none of the next", () => {
  const full = note("E4") + note("G4") + note("B4") + note("E5") + note("B4");
  const chord = note("D4") + note("A4", { chord: true }) + note("D5", { chord: true }) + note("F#5", { chord: true });
  const [track] = read(recognised([part([full, chord + note("r") + note("r", { duration: 2 })])])).tracks;
  assert.deepEqual(tab(track).slice(5), ["3:0", "4:2", "5:3", "6:2"]);
});

test("exported as Guitar Pro and opened again it is the same", () => {
  const voices =
    note("E5") +
    note("G5") +
    note("r", { duration: 2 }) +
    backup(4) +
    forward(2, 2) +
    note("C4", { duration: 2, voice: 2 });
  const score = read(recognised([study, part([voices, note("E4", { duration: 4 })])]));
  const file = new alphaTab.exporter.Gp7Exporter().export(score, settings);
  const again = readScore(file, settings).score;
  assert.equal(again.tracks.length, 2);
  again.tracks.forEach((track, index) => {
    const before = score.tracks[index];
    assert.equal(track.name, before.name);
    assert.equal(track.playbackInfo.program, 25);
    assert.deepEqual(track.staves[0].tuning, standard);
    assert.ok(track.staves[0].showTablature);
    assert.equal(track.staves[0].displayTranspositionPitch, -12);
    assert.deepEqual(tab(track), tab(before));
    assert.deepEqual(
      notesOf(track).map((n) => n.realValue),
      notesOf(before).map((n) => n.realValue),
    );
  });
  assert.deepEqual(heard(again.tracks[0]), heard(score.tracks[0]));
});

test("a compressed file is read like any other", () => {
  const container = '<container><rootfiles><rootfile full-path="song.xml"/></rootfiles></container>';
  const text = recognised([part([note("A4") + note("C5") + note("E5") + note("A5")])]);
  const { score, problem } = readScore(zipOf({ "META-INF/container.xml": container, "song.xml": text }), settings);
  assert.equal(problem, undefined);
  assert.equal(score?.tracks[0].name, "Guitar");
  assert.deepEqual(score?.tracks[0].staves[0].tuning, standard);
});
