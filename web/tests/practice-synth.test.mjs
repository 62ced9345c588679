import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { dirname, join } from "node:path";
import { test } from "node:test";
import { buildClickBank } from "../src/clicks/click-bank.js";
import { PresentationTimeMap } from "../src/timing/presentation-time-map.js";
import { Rehearsal, onsets, sampleRate, scoreOf } from "./support/rehearsal.mjs";

// The tracks are silent here: no instruments are loaded. What sounds are the metronome's clicks.

/** A note begins at the sample nearest to its time; times lie on that grid from the first one on. */
const sample = 1000 / sampleRate;

/** alphaTab's own instruments. */
const instruments = await readFile(join(dirname(process.env.QUAVERLY_ALPHATAB), "soundfont", "sonivox.sf2"));

/** @param {string} text alphaTex */
function rehearse(text) {
  const rehearsal = new Rehearsal(scoreOf(text));
  rehearsal.metronome.configure({ volume: 1, sound: "tick", accent: true, mode: "beat" });
  return rehearsal;
}

/**
 * @param {number[]} heard
 * @param {number[]} wanted
 */
function assertAt(heard, wanted) {
  assert.equal(heard.length, wanted.length, `${heard.map(Math.round)} instead of ${wanted.map(Math.round)}`);
  heard.forEach((at, index) => {
    assert.ok(Math.abs(at - wanted[index]) <= 2 * sample, `${at} instead of ${wanted[index]}`);
  });
}

const bar = "r.4 r r r |";
const evenBeats = (count, length, from = 0) => Array.from({ length: count }, (_, beat) => from + beat * length);

test("clicks fall on the beats and stop with the score", () => {
  const rehearsal = rehearse(`\\tempo 120 ${bar} ${bar}`);
  rehearsal.metronome.turn(true);
  rehearsal.playback.playPause();
  assertAt(onsets(rehearsal.listen(10)), evenBeats(8, 500));
});

test("a loop starts over on the beat", () => {
  const rehearsal = rehearse(`\\tempo 137 ${bar} ${bar}`);
  rehearsal.metronome.turn(true);
  rehearsal.synth.isLooping = true;
  rehearsal.playback.playPause();
  assertAt(onsets(rehearsal.listen((8 * 60 * 5) / 137 - 0.1)), evenBeats(40, 60000 / 137));
});

test("a range starts over on the beat", () => {
  const rehearsal = rehearse(`\\tempo 120 ${bar} ${bar} ${bar}`);
  rehearsal.metronome.turn(true);
  rehearsal.synth.isLooping = true;
  rehearsal.synth.playbackRange = { startTick: 2 * 960, endTick: 6 * 960 };
  rehearsal.playback.playPause();
  assertAt(onsets(rehearsal.listen(7.9)), evenBeats(16, 500));
});

test("speed stretches the clicks, also in the middle of playing", () => {
  const rehearsal = rehearse(`\\tempo 120 ${bar} ${bar}`);
  rehearsal.metronome.turn(true);
  rehearsal.synth.playbackSpeed = 0.25;
  rehearsal.playback.playPause();
  const slow = rehearsal.listen(4);
  rehearsal.synth.playbackSpeed = 2;
  const fast = rehearsal.listen(2);
  const turn = (slow.length * 1000) / sampleRate;
  // 4 seconds at a quarter of the speed are two beats.
  assertAt(onsets(slow).slice(0, 2), [0, 2000]);
  const rest = turn - 4000;
  assertAt(onsets(fast).slice(0, 5), evenBeats(5, 250, rest > 0 ? 250 - rest / 8 : 0));
});

test("one bar is counted in, with an accent and with the metronome off", () => {
  const rehearsal = rehearse(`\\tempo 90 \\ts 3 4 r.4 r r | r.4 r r |`);
  rehearsal.playback.setCountIn(true);
  rehearsal.playback.playPause();
  const sound = rehearsal.listen(8);
  assertAt(onsets(sound), evenBeats(3, 60000 / 90));
  const peak = (beat) => sound.slice(((beat * 60) / 90) * sampleRate, ((beat * 60) / 90 + 0.1) * sampleRate).reduce((most, one) => Math.max(most, one), 0);
  assert.ok(peak(0) > peak(1) * 1.2);
});

test("the count-in leads into the clicks of the score on the beat", () => {
  const rehearsal = rehearse(`\\tempo 137 ${bar} ${bar}`);
  rehearsal.metronome.turn(true);
  rehearsal.playback.setCountIn(true);
  rehearsal.playback.playPause();
  assertAt(onsets(rehearsal.listen(20)), evenBeats(12, 60000 / 137));
});

test("the count-in has the metre, the tempo and the speed of the place it leads to", () => {
  const rehearsal = rehearse(`\\tempo 120 ${bar} \\ts 7 8 \\tempo 60 :8 r r r r r r r | r r r r r r r |`);
  rehearsal.playback.setCountIn(true);
  rehearsal.synth.playbackSpeed = 2;
  rehearsal.playback.seekToTick(4 * 960 + 480); // in the middle of the second bar
  rehearsal.playback.playPause();
  assertAt(onsets(rehearsal.listen(9)), evenBeats(7, 250));
});

test("the position waits while a bar is counted in", () => {
  const rehearsal = rehearse(`\\tempo 120 ${bar} ${bar}`);
  const places = [];
  rehearsal.synth.positionChanged.on(({ currentTime }) => places.push(currentTime));
  rehearsal.playback.setCountIn(true);
  rehearsal.playback.playPause();
  rehearsal.listen(4);
  places.length = 0;
  rehearsal.synth.presented(1.9 * sampleRate);
  rehearsal.synth.presented(2.5 * sampleRate);
  assert.equal(places[0], 0);
  assert.ok(Math.abs(places[1] - 500) < 1, String(places[1]));
});

test("a pause in the count-in leaves the place alone, and the next start counts anew", () => {
  const rehearsal = rehearse(`\\tempo 120 ${bar} ${bar}`);
  rehearsal.playback.setCountIn(true);
  rehearsal.playback.seekToTick(960);
  rehearsal.playback.playPause();
  rehearsal.listen(1.2);
  rehearsal.synth.presented(sampleRate);
  rehearsal.synth.pause();
  assert.ok(Math.abs(rehearsal.synth.timePosition - 500) < 2);
  assert.equal(rehearsal.synth.render(512), null);
  rehearsal.synth.play();
  assertAt(onsets(rehearsal.listen(5)), evenBeats(4, 500));
});

test("a seek in the count-in counts again for the new place", () => {
  const rehearsal = rehearse(`\\tempo 120 ${bar} \\ts 3 4 r.4 r r | r r r |`);
  rehearsal.playback.setCountIn(true);
  rehearsal.playback.playPause();
  rehearsal.listen(0.8);
  rehearsal.playback.seekToTick(4 * 960);
  assertAt(onsets(rehearsal.listen(6)), evenBeats(3, 500));
});

test("a pause stays at what was heard", () => {
  const rehearsal = rehearse(`\\tempo 120 ${bar} ${bar}`);
  rehearsal.playback.playPause();
  rehearsal.listen(1);
  rehearsal.synth.presented(0.8 * sampleRate);
  rehearsal.synth.pause();
  assert.ok(Math.abs(rehearsal.synth.timePosition - 800) < 1);
});

test("a place is reported when a note begins, and otherwise now and then", () => {
  const rehearsal = rehearse(`\\tempo 120 ${bar} ${bar}`);
  rehearsal.playback.playPause();
  rehearsal.listen(1.9);
  const places = [];
  rehearsal.synth.positionChanged.on(({ currentTime }) => places.push(currentTime));
  const notes = new Set();
  for (let frame = 0; frame <= 1.1 * sampleRate; frame += sampleRate / 1000) {
    notes.add(rehearsal.synth.nextNote);
    rehearsal.synth.presented(frame);
  }
  const beats = [...notes].filter((frame) => frame % (sampleRate / 2) === 0);
  assert.deepEqual(beats, [0, 0.5, 1].map((seconds) => seconds * sampleRate));
  assert.ok(places.some((place) => Math.abs(place - 500) < 0.1) && places.some((place) => Math.abs(place - 1000) < 0.1), String(places));
  assert.ok(places.length > 15 && places.length < 30, String(places));
});

test("a pause stays at what was heard since the last report", () => {
  const rehearsal = rehearse(`\\tempo 120 ${bar} ${bar}`);
  rehearsal.playback.playPause();
  rehearsal.listen(1);
  rehearsal.synth.presented(0.8 * sampleRate);
  rehearsal.synth.presented(0.81 * sampleRate);
  rehearsal.synth.pause();
  assert.ok(Math.abs(rehearsal.synth.timePosition - 810) < 1);
});

test("a range ends before the note that begins with its end", () => {
  const rehearsal = rehearse(`\\tempo 137 ${bar} ${bar} ${bar}`);
  rehearsal.metronome.turn(true);
  rehearsal.synth.playbackRange = { startTick: 0, endTick: 4 * 960 };
  rehearsal.playback.playPause();
  assertAt(onsets(rehearsal.listen(3)), evenBeats(4, 60000 / 137));
});

test("the metronome changes with its next click, the stream without a break", () => {
  const rehearsal = rehearse(`\\tempo 60 ${bar} ${bar} ${bar}`);
  rehearsal.metronome.turn(true);
  rehearsal.playback.playPause();
  const { streams } = rehearsal;
  const before = rehearsal.listen(0.9);
  assert.equal(onsets(before).length, 1);
  rehearsal.metronome.configure({ volume: 1, sound: "tick", accent: true, mode: "quarter" });
  const after = onsets(rehearsal.listen(1)).map((at) => at + (before.length * 1000) / sampleRate);
  assertAt(after, [1000, 1250, 1500, 1750]);
  rehearsal.metronome.turn(false);
  assert.deepEqual(onsets(rehearsal.listen(1)), []);
  assert.equal(rehearsal.streams, streams);
});

test("what is presented is told apart from what was rendered", () => {
  const time = new PresentationTimeMap(1000);
  assert.equal(time.at(0), null);
  time.add({ frame: 0, position: 500, speed: 0, startsOver: false });
  time.add({ frame: 100, position: 500, speed: 2, startsOver: false });
  time.add({ frame: 300, position: 0, speed: 2, startsOver: true });
  assert.deepEqual(time.at(50), { position: 500, startsOver: false });
  assert.deepEqual(time.at(200), { position: 700, startsOver: false });
  assert.deepEqual(time.at(301), { position: 2, startsOver: true });
  assert.deepEqual(time.at(350), { position: 100, startsOver: false });
});

for (const range of [null, { startTick: 2 * 3840, endTick: 4 * 3840 }]) {
  test(`instruments that come after the place was chosen are heard there${range ? ", at the beginning of a loop too" : ""}`, () => {
    const rehearsal = new Rehearsal(scoreOf("\\track \\instrument 27 c4.4 d4 e4 f4 |".padEnd(120, " g4.4 a4 b4 c5 |")));
    const { synth, playback } = rehearsal;
    synth.loadMidiFile(rehearsal.midi);
    synth.isLooping = range !== null;
    synth.playbackRange = range;
    synth.tickPosition = 2 * 3840;
    const place = synth.timePosition;
    synth.loadBanks([new Uint8Array(instruments)]);
    assert.ok(place > 1000 && Math.abs(synth.timePosition - place) < 1, `${synth.timePosition} instead of ${place}`);
    assert.deepEqual(synth.playbackRange, range);
    playback.playPause();
    const loudest = rehearsal.listen(1).reduce((most, sample) => Math.max(most, Math.abs(sample)), 0);
    assert.ok(loudest > 0.01, `${loudest}`);
  });
}

test("several banks make it ready once, when the last one is there", () => {
  const { synth } = new Rehearsal(scoreOf("c4"));
  const ready = [];
  synth.readyForPlayback.on(() => ready.push(synth.isReadyForPlayback));
  ready.length = 0; // those who come late are told at once
  synth.loadBanks([new Uint8Array(instruments), buildClickBank(), buildClickBank()]);
  assert.deepEqual(ready, [true]);
});
