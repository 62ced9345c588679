// @ts-check
import assert from "node:assert/strict";
import { existsSync, readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join } from "node:path";
import { test } from "node:test";
import { Fingering } from "../src/score-files/strings/fingering.js";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;

const tuning = [64, 59, 55, 50, 45, 40];
const frets = 24;

/** The placements of the notes, in their order; null for a note that no string is left for. */
function chooseFingering(notes, strings) {
  const fingering = new Fingering(notes, strings, frets);
  const placements = new Array(notes.length).fill(null);
  fingering.play(Infinity);
  assert.equal(
    fingering.settle(true, (note, placement) => (placements[note] = placement)),
    notes.length,
  );
  return placements;
}

/** Keys one after the other; an array is a chord. */
const line = (...steps) =>
  steps.flatMap((step, index) => [step].flat().map((key) => ({ start: index * 960, end: (index + 1) * 960, key })));

/** A chord as guitarists write it: frets from the lowest string to the highest. */
function shape(keys) {
  const frets = ["x", "x", "x", "x", "x", "x"];
  for (const placement of chooseFingering(line(keys), tuning)) {
    frets[5 - placement.string] = String(placement.fret);
  }
  return frets.join(" ");
}

test("the chords that everybody learns first come in their shapes", () => {
  assert.equal(shape([40, 47, 52, 55, 59, 64]), "0 2 2 0 0 0");
  assert.equal(shape([48, 52, 55, 60, 64]), "x 3 2 0 1 0");
  assert.equal(shape([43, 47, 50, 55, 59, 67]), "3 2 0 0 0 3");
  assert.equal(shape([50, 57, 62, 66]), "x x 0 2 3 2");
  assert.equal(shape([41, 48, 53, 57, 60, 65]), "1 3 3 2 1 1");
});

test("a scale stays in the first position, with its open strings", () => {
  const keys = [40, 41, 43, 45, 47, 48, 50, 52, 53, 55, 57, 59, 60, 62, 64, 65, 67];
  const frets = chooseFingering(line(...keys), tuning).map(({ fret }) => fret);
  assert.deepEqual(frets, [0, 1, 3, 0, 2, 3, 0, 2, 3, 0, 2, 0, 1, 3, 0, 1, 3]);
});

test("the hand stays where high notes have it, for a note that it could reach below as well", () => {
  const frets = chooseFingering(line(81, 79, 76, 81, 76, 81), tuning).map(({ fret }) => fret);
  assert.ok(Math.max(...frets) - Math.min(...frets) <= 4, frets.join());
});

test("a note that sounds on keeps its string for itself", () => {
  const bass = { start: 0, end: 3840, key: 45 };
  const melody = [57, 52, 48, 57].map((key, i) => ({ start: i * 960, end: (i + 1) * 960, key }));
  const [held, ...others] = chooseFingering([bass, ...melody], tuning);
  assert.ok(others.every(({ string }) => string !== held.string));
});

test("of two notes that one string alone can play, one is left out", () => {
  const placements = chooseFingering(line([40, 41]), tuning);
  assert.deepEqual(
    placements.filter((placement) => placement !== null).map(({ string }) => string),
    [5],
  );
  // And what comes after is not.
  assert.ok(chooseFingering(line([40, 41], 60), tuning)[2]);
});

test("keys that the instrument does not have get no place", () => {
  assert.deepEqual(chooseFingering(line(30, 110), tuning), [null, null]);
});

test("nothing gives nothing", () => assert.deepEqual(chooseFingering([], tuning), []));

test("what is decided early is what is chosen in the end, and it is decided soon", () => {
  const keys = Array.from({ length: 600 }, (_, i) => 45 + ((i * i + (i >> 3)) % 29));
  const notes = keys.flatMap((key, i) => {
    const melody = { start: i * 480, end: (i + 1) * 480, key };
    return i % 4 === 0 ? [{ start: i * 480, end: (i + 4) * 480, key: 40 + ((i >> 2) % 5) }, melody] : [melody];
  });
  const whole = chooseFingering(notes, tuning);
  const fingering = new Fingering(notes, tuning, frets);
  const early = new Array(notes.length).fill(null);
  let farthest = 0;
  for (let known = 1; known <= notes.length; known++) {
    fingering.play(known);
    const decided = fingering.settle(false, (note, placement) => {
      assert.equal(early[note], null, "handed over twice");
      early[note] = placement;
    });
    farthest = Math.max(farthest, known - decided);
    assert.deepEqual(early.slice(0, decided), whole.slice(0, decided));
  }
  assert.ok(farthest < 100, `${farthest} notes ahead`);
});

/** How often the hand has to move for these frets, if it moves as late as it can; open strings leave it where it is. */
function shifts(events) {
  let reach = null;
  let count = 0;
  for (const frets of events) {
    const pressed = frets.filter((fret) => fret > 0);
    if (pressed.length === 0) {
      continue;
    }
    const low = Math.min(...pressed);
    const from = Math.min(low, Math.max(1, Math.max(...pressed) - 3));
    const both = reach && [Math.max(reach[0], from), Math.min(reach[1], low)];
    if (both && both[0] <= both[1]) {
      reach = both;
    } else {
      count += reach ? 1 : 0;
      reach = [from, low];
    }
  }
  return count;
}

/** Some of the bars hold more than fits; what is too much sounds within them all the same. */
function spanOf({ beat }) {
  const { masterBar } = beat.voice.bar;
  const last = beat.voice.beats[beat.voice.beats.length - 1];
  const faster = Math.min(1, masterBar.calculateDuration() / (last.playbackStart + last.playbackDuration));
  const start = masterBar.start + beat.playbackStart * faster;
  return { start, end: start + beat.playbackDuration * faster };
}

const samples = ["canon.gp5", "serenade.gp", "effects.gp4"].map((name) =>
  join(process.env.QUAVERLY_SAMPLES ?? "", name),
);
const present = samples.filter((file) => existsSync(file));

if (present.length > 0) {
  test("for pieces that guitarists wrote down, chords can be gripped, keys stay, and the hand moves less than theirs", (t) => {
    let theirs = 0;
    let ours = 0;
    let chords = 0;
    let ungrippable = 0;
    for (const file of present) {
      const settings = new alphaTab.Settings();
      const { tracks } = alphaTab.importer.ScoreLoader.loadScoreFromBytes(new Uint8Array(readFileSync(file)), settings);
      for (const { staves, playbackInfo } of tracks) {
        const [staff] = staves;
        if (staff.isPercussion || !staff.isStringed || playbackInfo.program < 24 || playbackInfo.program > 31) {
          continue;
        }
        const open = staff.tuning.map((key) => key + staff.capo);
        const beats = staff.bars.flatMap(({ voices }) => voices.flatMap((voice) => voice.beats));
        const notes = beats
          .filter(({ graceType }) => graceType === alphaTab.model.GraceType.None)
          .flatMap((beat) => beat.notes.filter((note) => note.isStringed && !note.isTieDestination && !note.isDead))
          .map((note) => ({ ...spanOf(note), key: note.fret + note.stringTuning, fret: note.fret }))
          .sort((a, b) => a.start - b.start);
        const chosen = chooseFingering(notes, open);
        const events = new Map();
        notes.forEach(({ start, key, fret }, i) => {
          assert.equal(open[chosen[i].string] + chosen[i].fret, key);
          const event = events.get(start) ?? { theirs: [], ours: [], strings: new Set() };
          event.theirs.push(fret);
          event.ours.push(chosen[i].fret);
          event.strings.add(chosen[i].string);
          events.set(start, event);
        });
        const all = [...events.values()];
        theirs += shifts(all.map((event) => event.theirs));
        ours += shifts(all.map((event) => event.ours));
        for (const event of all.filter((e) => e.ours.length > 1)) {
          const pressed = event.ours.filter((fret) => fret > 0);
          const wide = pressed.length > 0 && Math.max(...pressed) - Math.min(...pressed) > 4;
          chords++;
          ungrippable += wide || event.strings.size < event.ours.length ? 1 : 0;
        }
      }
    }
    t.diagnostic(`${ours} shifts for ${theirs}, ${ungrippable} of ${chords} chords cannot be gripped`);
    assert.ok(chords > 100);
    assert.ok(ungrippable <= chords / 1000, `${ungrippable} of ${chords}`);
    assert.ok(ours <= 1.2 * theirs, `${ours} for ${theirs}`);
  });
}
