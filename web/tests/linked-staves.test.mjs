// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { attributes, backup, document, note, notesOf, played, read } from "./support/musicxml-maker.mjs";

const { alphaTab } = globalThis;
const { exportGuitarPro } = await import("../src/score-files/guitar-pro/export.js");
const { readScore } = await import("../src/score-files/score-files.js");

const strings = ["E2", "A2", "D3", "G3", "B3", "E4"].map(
  ([step, octave], line) =>
    `<staff-tuning line="${line + 1}"><tuning-step>${step}</tuning-step><tuning-octave>${octave}</tuning-octave></staff-tuning>`,
);
const lines = (more = "") => `<staff-lines>6</staff-lines>${strings.join("")}${more}`;
const treble = (number = "") =>
  `<clef${number}><sign>G</sign><line>2</line><clef-octave-change>-1</clef-octave-change></clef>`;
const tab = (number = "") =>
  `<clef${number}><sign>TAB</sign><line>5</line></clef><staff-details${number}>${lines()}</staff-details>`;
const bothStaves = `<staves>2</staves>${treble(' number="1"')}${tab(' number="2"')}`;

const onStaff = (staff, more = "") => ({ after: `<staff>${staff}</staff>${more}` });
const at = (string, fret, more = "") =>
  `<notations><technical>${more}<string>${string}</string><fret>${fret}</fret></technical></notations>`;
const chord = "<chord/>";
const tie = (type) => `<notations><tied type="${type}"/></notations>`;

/** A melody with a chord, a tie and a second voice, as one staff of two shows it. */
const shown =
  note("E4", 1, onStaff(1)) +
  note("G4", 1, { before: chord, ...onStaff(1) }) +
  note("C4", 1, onStaff(1)) +
  note("F4", 2, onStaff(1, tie("start"))) +
  backup(4) +
  note("C3", 4, { voice: 2, ...onStaff(1) });
const fretted =
  note("E4", 1, { voice: 5, ...onStaff(2, at(2, 5)) }) +
  note("G4", 1, { before: chord, voice: 5, ...onStaff(2, at(1, 3)) }) +
  note("C4", 1, { voice: 5, ...onStaff(2, at(2, 1, '<hammer-on number="1" type="start"/>')) }) +
  note("F4", 2, { voice: 5, ...onStaff(2, at(2, 6, '<hammer-on number="1" type="stop"/>') + tie("start")) }) +
  backup(4) +
  note("C3", 4, { voice: 6, ...onStaff(2, at(5, 3)) });
const shownEnd = note("F4", 4, onStaff(1, tie("stop")));
const frettedEnd = note("F4", 4, { voice: 5, ...onStaff(2, at(2, 6) + tie("stop")) });

const linked = document([
  attributes(1, 4, bothStaves) + shown + backup(4) + fretted,
  shownEnd + backup(4) + frettedEnd,
]);
const without = (text) => text.replace(/<staff>\d<\/staff>/g, "");
const asParts = document([
  [attributes(1, 4, treble()) + without(shown), without(shownEnd)],
  [attributes(1, 4, tab()) + without(fretted), without(frettedEnd)],
]);

const music = "0:48 0:64 0:67 1:60 2:65";
const places = ["2:5", "1:3", "2:1", "2:6", "5:3", "2:6"];

function assertJoined(score) {
  assert.equal(score.tracks.length, 1);
  assert.equal(score.tracks[0].staves.length, 1);
  const [staff] = score.tracks[0].staves;
  assert.ok(staff.showStandardNotation && staff.showTablature);
  const beats = staff.bars.flatMap(({ voices }) => voices.flatMap((voice) => voice.beats));
  const notes = beats.flatMap((beat) => beat.notes);
  assert.deepEqual(
    notes.map(({ string, fret }) => `${7 - string}:${fret}`),
    places,
  );
  assert.equal(
    notesOf(score)
      .map(({ time, key }) => `${time}:${key}`)
      .join(" "),
    music,
  );
  // A guitar's clef: an octave above what it sounds.
  assert.equal(notes[0].displayValue, 76);
  assert.equal(staff.bars[0].clef, alphaTab.model.Clef.G2);
}

for (const [name, file] of [
  ["two staves of a part", linked],
  ["two parts", asParts],
]) {
  test(`notation and tablature in ${name} are one staff that shows both, and sound once`, () => {
    assertJoined(read(file).score);
  });

  test(`exported as Guitar Pro, ${name} stay one staff`, () => {
    const { score } = read(file);
    assertJoined(readScore(exportGuitarPro(score, new alphaTab.Settings()), new alphaTab.Settings()).score);
  });
}

test("what only the tablature says of a note stays with it", () => {
  const [staff] = read(linked).score.tracks[0].staves;
  const [origin, destination] = staff.bars[0].voices[0].beats.slice(1).map(({ notes }) => notes[0]);
  assert.ok(origin.isHammerPullOrigin);
  assert.equal(origin.hammerPullDestination, destination);
});

test("a part of tablature that plays something else stays a part of its own", () => {
  const other = without(fretted.replace(at(5, 3), at(5, 5)));
  const { score } = read(
    document([
      [attributes(1, 4, treble()) + without(shown), without(shownEnd)],
      [attributes(1, 4, tab()) + other, without(frettedEnd)],
    ]),
  );
  assert.equal(score.tracks.length, 2);
});

test("a player in unison with half of another's notes is not taken for his tablature", () => {
  const { score } = read(
    document([
      [attributes(1, 4, treble()) + without(shown), without(shownEnd)],
      [attributes(1, 4, tab()) + without(fretted)],
    ]),
  );
  assert.equal(score.tracks.length, 2);
});

test("tablature alone stays as it is", () => {
  const file = document([attributes(1, 4, tab()) + without(fretted), without(frettedEnd)]);
  assert.equal(played(file), music);
  const [staff] = read(file).score.tracks[0].staves;
  assert.ok(staff.showTablature && !staff.showStandardNotation);
});

test("hammer-ons and pull-offs lead to the next note on their string", () => {
  const pull = '<pull-off number="1" type="start"/>';
  const { score } = read(
    document([
      attributes(1, 4, tab()) +
        note("D4", 1, { after: at(2, 3, pull) }) +
        note("G4", 1, { after: at(1, 3) }) +
        note("C4", 2, { after: at(2, 1, pull.replace("start", "stop")) }),
    ]),
  );
  const [first, , last] = score.tracks[0].staves[0].bars[0].voices[0].beats.map(({ notes }) => notes[0]);
  assert.ok(first.isHammerPullOrigin && !last.isHammerPullOrigin);
  assert.equal(first.hammerPullDestination, last);
});

test("notes that the tablature does not have keep their keys", () => {
  const few = document([
    attributes(1, 4, bothStaves) + shown + backup(4) + fretted,
    shownEnd,
    note("A4", 4, onStaff(1)),
  ]);
  assert.equal(played(few), `${music} 8:69`);
  const [staff] = read(few).score.tracks[0].staves;
  assert.ok(staff.showTablature);
});

const flageolet = (kind) => `<harmonic>${kind}</harmonic>`;
const natural = flageolet("<natural/>");

test("harmonics on strings sound as such, and are exported", () => {
  const notes = [
    note("E5", 1, { after: at(1, 12, natural) }),
    note("B4", 1, { after: at(1, 7, natural) }),
    note("A4", 1, { after: at(1, 5, flageolet("<artificial/><base-pitch/>")) }),
    note("E6", 1, { after: at(1, 5, flageolet("<artificial/><sounding-pitch/>")) }),
  ];
  const { score } = read(document([attributes(1, 4, tab()) + notes.join("")]));
  const keys = (one) => notesOf(one).map(({ key }) => key);
  assert.deepEqual(keys(score), [76, 83, 81, 88]);
  const settings = new alphaTab.Settings();
  assert.deepEqual(keys(readScore(exportGuitarPro(score, settings), settings).score), [76, 83, 81, 88]);
});

test("a harmonic's notation may have the key that sounds, or that of its fret", () => {
  for (const name of ["B4", "B5"]) {
    const harmonic = note("B4", 4, { voice: 5, ...onStaff(2, at(1, 7, natural)) });
    const { score } = read(document([attributes(1, 4, bothStaves) + note(name, 4, onStaff(1)) + backup(4) + harmonic]));
    assert.equal(score.tracks[0].staves.length, 1);
    assert.deepEqual(
      notesOf(score).map(({ key }) => key),
      [83],
    );
  }
});
