// @ts-check
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { dirname, join } from "node:path";
import { test } from "node:test";
import { buildClickBank } from "../src/clicks/click-bank.js";
import { PresentationTimeMap } from "../src/timing/presentation-time-map.js";
import { PlayedScore, onsets, sampleRate, scoreOf } from "./support/played-score.mjs";

// The tracks are silent here: no instruments are loaded. What sounds are the metronome's clicks.

/** A note begins at the sample nearest to its time; times lie on that grid from the first one on. */
const sample = 1000 / sampleRate;

/** alphaTab's own instruments. */
const instruments = await readFile(join(dirname(process.env.QUAVERLY_ALPHATAB), "soundfont", "sonivox.sf2"));

/** @param {string} text alphaTex */
function playedScore(text) {
  const played = new PlayedScore(scoreOf(text));
  played.metronome.configure({ volume: 1, sound: "tick", accent: true, mode: "beat" });
  return played;
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
  const played = playedScore(`\\tempo 120 ${bar} ${bar}`);
  played.metronome.turn(true);
  played.playback.playPause();
  assertAt(onsets(played.render(10)), evenBeats(8, 500));
});

test("a loop starts over on the beat", () => {
  const played = playedScore(`\\tempo 137 ${bar} ${bar}`);
  played.metronome.turn(true);
  played.synth.isLooping = true;
  played.playback.playPause();
  assertAt(onsets(played.render((8 * 60 * 5) / 137 - 0.1)), evenBeats(40, 60000 / 137));
});

test("a range starts over on the beat", () => {
  const played = playedScore(`\\tempo 120 ${bar} ${bar} ${bar}`);
  played.metronome.turn(true);
  played.synth.isLooping = true;
  played.synth.playbackRange = { startTick: 2 * 960, endTick: 6 * 960 };
  played.playback.playPause();
  assertAt(onsets(played.render(7.9)), evenBeats(16, 500));
});

test("of what begins where a range ends nothing sounds", () => {
  for (const tempo of [60, 93.75, 100, 120, 137]) {
    for (const speed of [0.5, 0.8, 1, 1.1]) {
      const played = playedScore(`\\tempo ${tempo} ${bar} ${bar}`);
      played.metronome.configure({ volume: 1, sound: "tick", accent: true, mode: "bar" });
      played.metronome.turn(true);
      played.playback.setSpeed(speed);
      played.playback.setLooping(true);
      played.playback.setRange({ startTick: 960, endTick: 4 * 960 });
      played.playback.seekToTick(960);
      played.playback.playPause();
      assert.deepEqual(onsets(played.render(12)), [], `${tempo} at ${speed}`);
    }
  }
});

test("speed stretches the clicks, also in the middle of playing", () => {
  const played = playedScore(`\\tempo 120 ${bar} ${bar}`);
  played.metronome.turn(true);
  played.synth.playbackSpeed = 0.25;
  played.playback.playPause();
  const slow = played.render(4);
  played.synth.playbackSpeed = 2;
  const fast = played.render(2);
  const turn = (slow.length * 1000) / sampleRate;
  // 4 seconds at a quarter of the speed are two beats.
  assertAt(onsets(slow).slice(0, 2), [0, 2000]);
  const rest = turn - 4000;
  assertAt(onsets(fast).slice(0, 5), evenBeats(5, 250, rest > 0 ? 250 - rest / 8 : 0));
});

test("one bar is counted in, with an accent and with the metronome off", () => {
  const played = playedScore(`\\tempo 90 \\ts 3 4 r.4 r r | r.4 r r |`);
  played.playback.setCountIn(true);
  played.playback.playPause();
  const sound = played.render(8);
  assertAt(onsets(sound), evenBeats(3, 60000 / 90));
  const peak = (beat) =>
    sound
      .slice(((beat * 60) / 90) * sampleRate, ((beat * 60) / 90 + 0.1) * sampleRate)
      .reduce((most, one) => Math.max(most, one), 0);
  assert.ok(peak(0) > peak(1) * 1.2);
});

test("the count-in leads into the clicks of the score on the beat", () => {
  const played = playedScore(`\\tempo 137 ${bar} ${bar}`);
  played.metronome.turn(true);
  played.playback.setCountIn(true);
  played.playback.playPause();
  assertAt(onsets(played.render(20)), evenBeats(12, 60000 / 137));
});

test("the count-in has the metre, the tempo and the speed of the position it leads to", () => {
  const played = playedScore(`\\tempo 120 ${bar} \\ts 7 8 \\tempo 60 :8 r r r r r r r | r r r r r r r |`);
  played.playback.setCountIn(true);
  played.synth.playbackSpeed = 2;
  played.playback.seekToTick(4 * 960 + 480); // in the middle of the second bar
  played.playback.playPause();
  assertAt(onsets(played.render(9)), evenBeats(7, 250));
});

/** How loud each click of a sound is. */
const loudness = (sound, clicks) =>
  clicks.map((at) =>
    sound
      .slice((at / 1000) * sampleRate, (at / 1000 + 0.1) * sampleRate)
      .reduce((most, one) => Math.max(most, Math.abs(one)), 0),
  );

test("an upbeat is counted in by a bar and the beats before it, which begin one more bar", () => {
  /** @type {[string, number][]} */
  const upbeats = [
    ["\\ts 4 4 \\ac :4 r", 7],
    ["\\ts 4 4 \\ac :8 r", 8],
    ["\\ts 3 4 \\ac :4 r r", 4],
  ];
  for (const [upbeat, clicks] of upbeats) {
    const played = playedScore(`\\tempo 120 ${upbeat} | r.1 |`);
    const metre = Number(/ts (\d)/.exec(upbeat)[1]);
    played.metronome.configure({ volume: 1, sound: "tick", accent: true, mode: "bar" });
    played.metronome.turn(true);
    played.playback.setCountIn(true);
    played.playback.playPause();
    const sound = played.render(8);
    const counted = evenBeats(clicks, 500);
    // The first click of the metronome is that of the bar behind the upbeat.
    const heard = onsets(sound);
    assertAt(heard.slice(0, clicks), counted);
    assert.ok(Math.abs(heard[clicks] - 500 * 2 * metre) <= 2 * sample, `${upbeat}: ${heard}`);
    const loud = loudness(sound, counted).map((peak, _, all) => peak > 0.9 * Math.max(...all));
    assert.deepEqual(
      loud,
      counted.map((_, beat) => beat % metre === 0),
      upbeat,
    );
  }
});

test("from a later bar of a score with an upbeat one bar is counted", () => {
  const played = playedScore(`\\tempo 120 \\ts 4 4 \\ac :4 r | r r r r | r r r r |`);
  played.playback.setCountIn(true);
  played.playback.seekToTick(960);
  played.playback.playPause();
  assertAt(onsets(played.render(8)), evenBeats(4, 500));
});

test("the position waits while a bar is counted in", () => {
  const played = playedScore(`\\tempo 120 ${bar} ${bar}`);
  const positions = [];
  played.synth.positionChanged.on(({ currentTime }) => positions.push(currentTime));
  played.playback.setCountIn(true);
  played.playback.playPause();
  played.render(4);
  positions.length = 0;
  played.synth.presented(1.9 * sampleRate);
  played.synth.presented(2.5 * sampleRate);
  assert.equal(positions[0], 0);
  assert.ok(Math.abs(positions[1] - 500) < 1, String(positions[1]));
});

test("a pass that is counted in begins on the beat behind its clicks, and nothing of it is heard before", () => {
  const played = playedScore(`\\tempo 120 ${bar} \\ts 3 4 r.4 r r | r r r |`);
  played.metronome.turn(true);
  played.playback.setCountIn(true);
  played.playback.setCountsInPasses(true);
  played.synth.isLooping = true;
  played.playback.setRange({ startTick: 4 * 960, endTick: 7 * 960 });
  played.playback.setLooping(true);
  played.playback.seekToTick(4 * 960);
  const passes = [];
  played.synth.positionChanged.on(({ currentTime, isSeek }) => isSeek && passes.push(currentTime));
  played.playback.playPause();
  // Each pass of three beats behind a count-in of three.
  const sound = played.render(8.9);
  assertAt(onsets(sound), evenBeats(18, 500));
  const loud = loudness(sound, evenBeats(18, 500)).map((peak, _, all) => peak > 0.9 * Math.max(...all));
  assert.deepEqual(
    loud,
    evenBeats(18, 1).map((beat) => beat % 3 === 0),
  );
  // The pass is told when its count-in begins, and the position waits there.
  passes.length = 0;
  for (const second of [2.9, 3.01, 3.5, 4.4]) {
    played.synth.presented(second * sampleRate);
  }
  assert.equal(passes.length, 1);
  assert.ok(Math.abs(passes[0] - 2000) < 1, String(passes));
  assert.ok(Math.abs(played.synth.timePosition - 2000) < 1, String(played.synth.timePosition));
  played.synth.presented(5 * sampleRate);
  assert.ok(Math.abs(played.synth.timePosition - 2500) < 1, String(played.synth.timePosition));
});

test("a pause in the count-in leaves the position alone, and the next start counts anew", () => {
  const played = playedScore(`\\tempo 120 ${bar} ${bar}`);
  played.playback.setCountIn(true);
  played.playback.seekToTick(960);
  played.playback.playPause();
  played.render(1.2);
  played.synth.presented(sampleRate);
  played.synth.pause();
  assert.ok(Math.abs(played.synth.timePosition - 500) < 2);
  assert.equal(played.synth.render(512), null);
  played.synth.play();
  assertAt(onsets(played.render(5)), evenBeats(4, 500));
});

test("a seek in the count-in counts again for the new place", () => {
  const played = playedScore(`\\tempo 120 ${bar} \\ts 3 4 r.4 r r | r r r |`);
  played.playback.setCountIn(true);
  played.playback.playPause();
  played.render(0.8);
  played.playback.seekToTick(4 * 960);
  assertAt(onsets(played.render(6)), evenBeats(3, 500));
});

test("a pause stays at what was heard", () => {
  const played = playedScore(`\\tempo 120 ${bar} ${bar}`);
  played.playback.playPause();
  played.render(1);
  played.synth.presented(0.8 * sampleRate);
  played.synth.pause();
  assert.ok(Math.abs(played.synth.timePosition - 800) < 1);
});

test("a position is reported when a note begins, and otherwise now and then", () => {
  const played = playedScore(`\\tempo 120 ${bar} ${bar}`);
  played.playback.playPause();
  played.render(1.9);
  const positions = [];
  played.synth.positionChanged.on(({ currentTime }) => positions.push(currentTime));
  const notes = new Set();
  for (let frame = 0; frame <= 1.1 * sampleRate; frame += sampleRate / 1000) {
    notes.add(played.synth.nextNote);
    played.synth.presented(frame);
  }
  const beats = [...notes].filter((frame) => frame % (sampleRate / 2) === 0);
  assert.deepEqual(
    beats,
    [0, 0.5, 1].map((seconds) => seconds * sampleRate),
  );
  assert.ok(
    positions.some((position) => Math.abs(position - 500) < 0.1) &&
      positions.some((position) => Math.abs(position - 1000) < 0.1),
    String(positions),
  );
  assert.ok(positions.length > 15 && positions.length < 30, String(positions));
});

test("a pause stays at what was heard since the last report", () => {
  const played = playedScore(`\\tempo 120 ${bar} ${bar}`);
  played.playback.playPause();
  played.render(1);
  played.synth.presented(0.8 * sampleRate);
  played.synth.presented(0.81 * sampleRate);
  played.synth.pause();
  assert.ok(Math.abs(played.synth.timePosition - 810) < 1);
});

test("a range ends before the note that begins with its end", () => {
  const played = playedScore(`\\tempo 137 ${bar} ${bar} ${bar}`);
  played.metronome.turn(true);
  played.synth.playbackRange = { startTick: 0, endTick: 4 * 960 };
  played.playback.playPause();
  assertAt(onsets(played.render(3)), evenBeats(4, 60000 / 137));
});

test("the metronome changes with its next click, the stream without a break", () => {
  const played = playedScore(`\\tempo 60 ${bar} ${bar} ${bar}`);
  played.metronome.turn(true);
  played.playback.playPause();
  const { streams } = played;
  const before = played.render(0.9);
  assert.equal(onsets(before).length, 1);
  played.metronome.configure({ volume: 1, sound: "tick", accent: true, mode: "quarter" });
  const after = onsets(played.render(1)).map((at) => at + (before.length * 1000) / sampleRate);
  assertAt(after, [1000, 1250, 1500, 1750]);
  played.metronome.turn(false);
  assert.deepEqual(onsets(played.render(1)), []);
  assert.equal(played.streams, streams);
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
  test(`instruments that come after the position was chosen are heard there${range ? ", at the beginning of a loop too" : ""}`, () => {
    const played = new PlayedScore(scoreOf("\\track \\instrument 27 c4.4 d4 e4 f4 |".padEnd(120, " g4.4 a4 b4 c5 |")));
    const { synth, playback } = played;
    synth.loadMidiFile(played.midi);
    synth.isLooping = range !== null;
    synth.playbackRange = range;
    synth.tickPosition = 2 * 3840;
    const position = synth.timePosition;
    synth.loadBanks([new Uint8Array(instruments)]);
    assert.ok(
      position > 1000 && Math.abs(synth.timePosition - position) < 1,
      `${synth.timePosition} instead of ${position}`,
    );
    assert.deepEqual(synth.playbackRange, range);
    playback.playPause();
    const loudest = played.render(1).reduce((most, sample) => Math.max(most, Math.abs(sample)), 0);
    assert.ok(loudest > 0.01, `${loudest}`);
  });
}

test("several banks make it ready once, when the last one is there", () => {
  const { synth } = new PlayedScore(scoreOf("c4"));
  const ready = [];
  synth.readyForPlayback.on(() => ready.push(synth.isReadyForPlayback));
  ready.length = 0; // those who come late are told at once
  synth.loadBanks([new Uint8Array(instruments), buildClickBank(), buildClickBank()]);
  assert.deepEqual(ready, [true]);
});
