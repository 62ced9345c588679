// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { PlayedScore, scoreOf } from "./support/played-score.mjs";

const { instrumentOf, trackToShow } = await import("../src/fretboard/instrument.js");
const { boardLayout, dotsOf, keyboardLayout } = await import("../src/fretboard/layout.js");
const { notesAt, sliceAt } = await import("../src/fretboard/sounding-notes.js");

/** @returns what sounds and what follows at a tick, as "fret.string" in tablature's count: 1 is the highest string */
function lookUp(score, { track = 0, loop = null } = {}) {
  const bars = new PlayedScore(score).api.tickCache.masterBars;
  const text = (notes) => notes.map(({ fret, string }) => `${fret}.${7 - string}`).join(" ");
  return (tick) => {
    const position = sliceAt(bars, tick);
    if (!position) {
      return null;
    }
    const { sounding, next } = notesAt(bars, position, score.tracks[track], loop);
    return `${text(sounding)} > ${text(next)}`;
  };
}

test("the notes of a beat sound from its beginning to its end, with those of the next one to come", () => {
  const at = lookUp(scoreOf(":4 3.3 (0.1 2.2) r 5.6 | 1.1.1"));
  assert.equal(at(0), "3.3 > 0.1 2.2");
  assert.equal(at(959), "3.3 > 0.1 2.2");
  assert.equal(at(960), "0.1 2.2 > ");
  assert.equal(at(1920), " > 5.6");
  assert.equal(at(2880), "5.6 > 1.1");
  assert.equal(at(3840), "1.1 > ");
  assert.equal(at(-1), null);
  assert.equal(at(1e6), null);
});

test("a note that is tied goes on and is not struck next", () => {
  const at = lookUp(scoreOf(":2 3.3 -.3 | 5.3.1"));
  assert.equal(at(0), "3.3 > ");
  assert.equal(at(1920), "3.3 > 5.3");
});

test("a note rings on until its string is played again or a rest comes", () => {
  const at = lookUp(scoreOf(":4 3.3{lr} 0.1{lr} 5.3 r | 2.2{lr} 1.1 r 3.3"));
  assert.equal(at(960), "0.1 3.3 > 5.3");
  assert.equal(at(1920), "5.3 0.1 > ");
  assert.equal(at(2880), " > 2.2");
  assert.equal(at(3840 + 960), "1.1 2.2 > ");
  assert.equal(at(3840 + 2880), "3.3 > ");
});

test("voices sound together, each as long as its own beats", () => {
  const at = lookUp(scoreOf("\\voice :4 1.1 2.1 3.1 4.1 \\voice :2 0.6 0.5"));
  assert.equal(at(0), "1.1 0.6 > 2.1");
  assert.equal(at(960), "2.1 0.6 > 3.1 0.5");
  assert.equal(at(1920), "3.1 0.5 > 4.1");
});

test("other tracks do not show, and do not cut a beat short", () => {
  const score = scoreOf('\\track "A" :1 3.3 | 5.3 \\track "B" :8 1.1 2.1 3.1 4.1 5.1 6.1 7.1 8.1 | 9.1.1');
  const at = lookUp(score);
  assert.equal(at(0), "3.3 > 5.3");
  assert.equal(at(2000), "3.3 > 5.3");
  assert.equal(lookUp(score, { track: 1 })(480), "2.1 > 3.1");
});

test("in a repeat comes what is played next, and at the end of a loop its beginning", () => {
  const score = scoreOf("\\ro \\rc 2 1.1.2 2.1 | 3.1.2 4.1");
  const at = lookUp(score);
  assert.equal(at(1920), "2.1 > 1.1");
  assert.equal(at(3840 + 1920), "2.1 > 3.1");
  assert.equal(at(2 * 3840 + 1920), "4.1 > ");
  const loop = { startTick: 1920, endTick: 2 * 3840 - 50 };
  assert.equal(lookUp(score, { loop })(3840 + 1920), "2.1 > 2.1");
  const whole = { startTick: 0, endTick: Infinity };
  assert.equal(lookUp(score, { loop: whole })(2 * 3840 + 1920), "4.1 > 1.1");
  const oneBeat = { startTick: 1920, endTick: 3790 };
  assert.equal(lookUp(score, { loop: oneBeat })(1920), "2.1 > 2.1");
});

test("a track of the score before has no notes in this one", () => {
  const [before, now] = [scoreOf(":1 3.3"), scoreOf(":1 5.3")];
  const bars = new PlayedScore(now).api.tickCache.masterBars;
  assert.deepEqual(notesAt(bars, sliceAt(bars, 0), before.tracks[0], null), { sounding: [], next: [] });
});

test("a guitar has its tuning, its capo and as many frets as the score needs", () => {
  const facts = (text) => {
    const instrument = instrumentOf(scoreOf(text).tracks[0]);
    return instrument.kind === "strings" ? [instrument.tuning, instrument.capo, instrument.frets] : instrument.kind;
  };
  assert.deepEqual(facts(":1 3.3"), [[64, 59, 55, 50, 45, 40], 0, 12]);
  assert.deepEqual(facts(":1 21.1"), [[64, 59, 55, 50, 45, 40], 0, 22]);
  assert.deepEqual(facts("\\capo 3 \\tuning (d4 a3 d3 a2) :1 11.1"), [[62, 57, 50, 45], 3, 15]);
});

test("a track without strings has whole octaves of keys, and percussion has nothing", () => {
  const piano = instrumentOf(scoreOf("\\tuning piano :2 c3 e6").tracks[0]);
  assert.equal(piano.kind, "keys");
  assert.ok(piano.low % 12 === 0 && (piano.high + 1) % 12 === 0 && piano.high - piano.low >= 35);
  assert.ok(piano.low <= 48 && piano.high >= 76);
  assert.equal(instrumentOf(scoreOf("\\instrument percussion :4 36 38").tracks[0]).kind, "percussion");
});

test("shown is the track that stands alone, else the first that is soloed, else the first with strings", () => {
  const score = scoreOf(
    '\\track "P" \\instrument percussion :1 36 \\track "K" \\tuning piano :1 c4 \\track "G" :1 3.3 \\track "B" :1 3.3',
  );
  const [drums, keys, guitar, second] = score.tracks;
  const all = score.tracks;
  assert.equal(trackToShow(all, all, []), guitar);
  assert.equal(trackToShow(all, all, [3, 1]), keys);
  assert.equal(trackToShow(all, [second], [1]), second);
  assert.equal(trackToShow(all, [drums], []), drums);
  assert.equal(trackToShow([drums, keys], [drums, keys], []), keys);
  assert.equal(trackToShow([drums], [drums], []), drums);
  assert.equal(trackToShow([], [], []), null);
});

test("strings and frets lie in order within the strip, mirrored for the left hand", () => {
  for (const size of [
    { width: 1180, height: 150 },
    { width: 420, height: 104 },
  ]) {
    for (const [strings, frets] of [
      [6, 24],
      [4, 12],
      [8, 36],
    ]) {
      const right = boardLayout({ strings, frets, leftHanded: false }, size);
      const left = boardLayout({ strings, frets, leftHanded: true }, size);
      let before = 0;
      for (let fret = 0; fret <= frets; fret++) {
        assert.ok(right.fingerX(fret) > before + 3 && right.fingerX(fret) < size.width, `fret ${fret}`);
        assert.ok(Math.abs(left.fingerX(fret) + right.fingerX(fret) - size.width) < 1e-6);
        before = right.fingerX(fret);
      }
      assert.ok(right.stringY(0) - right.radius >= 0);
      assert.ok(right.stringY(strings - 1) + right.radius <= size.height - 16);
    }
  }
});

test("dots are where instruments have them", () => {
  assert.deepEqual(
    dotsOf(24).map(({ fret }) => fret),
    [3, 5, 7, 9, 12, 15, 17, 19, 21, 24],
  );
  assert.deepEqual(
    dotsOf(24)
      .filter(({ twice }) => twice)
      .map(({ fret }) => fret),
    [12, 24],
  );
});

test("a keyboard's white keys lie side by side, the black ones over where two meet", () => {
  const keys = keyboardLayout({ low: 48, high: 83 }, { width: 900, height: 150 });
  const white = keys.filter(({ black }) => !black);
  assert.equal(white.length, 21);
  white.slice(1).forEach(({ x }, index) => assert.ok(Math.abs(x - white[index].x - white[index].width) < 1e-6));
  const cSharp = keys.find(({ key }) => key === 49);
  const meeting = keys.find(({ key }) => key === 50).x;
  assert.ok(cSharp.black && cSharp.x < meeting && cSharp.x + cSharp.width > meeting);
  // The black ones lie on the white ones.
  assert.ok(keys.slice(keys.findIndex(({ black }) => black)).every(({ black }) => black));
});
