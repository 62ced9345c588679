// @ts-check
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { test } from "node:test";
import { buildClickBank } from "../src/clicks/click-bank.js";
import { zonesFor } from "../src/soundfont/sound-file.js";
import { PlayedScore, sampleRate, scoreOf } from "./support/played-score.mjs";
import { standIn } from "./support/stand-in.mjs";

// Sounds that take the place of the light bank's while a score plays, as numbers that can be told apart.

const lightBank = readFileSync(join(dirname(process.env.QUAVERLY_ALPHATAB), "soundfont/sonivox.sf2"));

/** @type {[number, number]} */
const everyKey = [0, 127];
const generator = { modes: 54 };
const steady = 60;

/**
 * A rectangle of `half` samples up and as many down, over and over: at its root it has `sampleRate / half / 2` Hz.
 *
 * @returns {{ samples: Int16Array, rate: number, root: number, correction: number, loop: [number, number] }}
 */
function rectangle(half, level) {
  const length = half * 8;
  const samples = Int16Array.from({ length }, (_, at) => (Math.floor(at / half) % 2 === 0 ? level : -level));
  return { samples, rate: sampleRate, root: steady, correction: 0, loop: [half * 2, half * 4] };
}

/** @param {{ keys?: [number, number], velocities?: [number, number], wave: ReturnType<typeof rectangle> }[]} parts @returns {import("../src/soundfont/fine-preset.js").FineSound} */
function sound(parts, program = 25) {
  return {
    name: "Hand-made",
    bank: 0,
    program,
    zones: parts.map(({ keys = everyKey, velocities = everyKey, wave }, sample) => ({
      keys,
      velocities,
      sample,
      loop: wave.loop,
      generators: [[generator.modes, 1]],
    })),
    samples: parts.map(({ wave: { samples, rate, root, correction } }) => ({ samples, rate, root, correction })),
  };
}

function playedScore(text) {
  const played = new PlayedScore(scoreOf(text));
  played.synth.loadSoundFont(lightBank, false);
  played.synth.loadSoundFont(buildClickBank(), true);
  return played;
}

/** The one sound that the score plays; the metronome's are in a bank of their own. */
function soundOf({ synth }) {
  return synth.instruments.inUse().find(({ bank }) => bank === 0);
}

function replace(played, replacement) {
  played.synth.instruments.replace(soundOf(played).index, replacement);
}

const longNote = "\\tempo 120 \\instrument 25 . C4.1 | C4.1 |";
const peak = (sound) => sound.reduce((most, one) => Math.max(most, Math.abs(one)), 0);
/** How often it crosses zero upwards, a second. */
const pitch = (sound) =>
  (sound.reduce((sum, one, at) => sum + Number(at > 0 && sound[at - 1] < 0 && one >= 0), 0) * sampleRate) /
  sound.length;

test("what the score plays is told with its notes", () => {
  const { program, softest } = soundOf(playedScore(longNote));
  assert.equal(program, 25);
  assert.deepEqual(
    [...softest.keys()].filter((key) => softest[key] > 0),
    [60],
  );
});

test("a loop is exact to the sample, for as long as the note lasts", () => {
  const played = playedScore(longNote);
  replace(played, sound([{ wave: rectangle(60, 8000) }]));
  played.playback.playPause();
  const heard = played.render(1.8).subarray(0, 1.8 * sampleRate);
  const signs = heard.map(Math.sign);
  const begin = signs.indexOf(1);
  const wrong = signs.subarray(begin).findIndex((sign, at) => sign !== (Math.floor(at / 60) % 2 === 0 ? 1 : -1));
  assert.equal(wrong, -1, `differs after ${wrong} samples`);
});

test("root, rate and correction of a sample tune it", () => {
  /** @type {[Partial<ReturnType<typeof rectangle>>, number][]} */
  const cases = [
    [{}, 400],
    [{ root: 48 }, 800],
    [{ rate: sampleRate / 2 }, 200],
    [{ correction: 100 }, 400 * 2 ** (1 / 12)],
  ];
  for (const [change, expected] of cases) {
    const played = playedScore(longNote);
    replace(played, sound([{ wave: { ...rectangle(60, 8000), ...change } }]));
    played.playback.playPause();
    const heard = pitch(played.render(1.5));
    assert.ok(Math.abs(heard - expected) < 2, `${heard} instead of ${expected} Hz`);
  }
});

test("a note sounds from the zone of its key", () => {
  const played = playedScore("\\tempo 120 \\instrument 25 . C4.2 C5.2 |");
  /** @type {Parameters<typeof sound>[0]} */
  const parts = [
    { keys: [0, 65], wave: rectangle(60, 8000) },
    { keys: [66, 127], wave: { ...rectangle(30, 8000), root: 72 } },
  ];
  replace(played, sound(parts));
  played.playback.playPause();
  assert.ok(Math.abs(pitch(played.render(0.9)) - 400) < 2);
  played.render(0.2);
  assert.ok(Math.abs(pitch(played.render(0.7)) - 800) < 2);
});

test("a key that the sound does not have keeps the light one", () => {
  const [plain, changed] = [playedScore(longNote), playedScore(longNote)];
  replace(
    changed,
    sound([
      { keys: [0, 59], wave: rectangle(60, 8000) },
      { keys: [61, 127], wave: rectangle(60, 8000) },
    ]),
  );
  [plain, changed].forEach(({ playback }) => playback.playPause());
  assert.deepEqual(changed.render(1), plain.render(1));
});

test("only the zones that are played from are wanted", () => {
  const zones = sound([
    { keys: [0, 59], wave: rectangle(60, 1) },
    { keys: [60, 60], velocities: [0, 40], wave: rectangle(60, 1) },
    { keys: [60, 64], velocities: [41, 127], wave: rectangle(60, 1) },
    { keys: [61, 127], wave: rectangle(60, 1) },
  ]).zones;
  assert.deepEqual(
    zonesFor(zones, soundOf(playedScore(longNote))).map(({ sample }) => sample),
    [2],
  );
});

test("a replacement while music plays is heard from the next note on, and breaks nothing", () => {
  const played = playedScore(longNote);
  const untouched = playedScore(longNote);
  untouched.playback.playPause();
  played.playback.playPause();
  const { streams } = played;
  const [before, usual] = [played.render(0.5), untouched.render(0.5)];
  assert.deepEqual(before, usual);
  replace(played, sound([{ wave: rectangle(60, 8000) }]));
  // The first note rings on as it began.
  assert.deepEqual(played.render(1.4), untouched.render(1.4));
  played.render(0.3);
  assert.ok(Math.abs(pitch(played.render(1)) - 400) < 2);
  assert.equal(played.streams, streams);
});

test("mixer and master volume hold", () => {
  const levels = [1, 0.5].map((volume) => {
    const played = playedScore(longNote);
    for (const channel of [0, 1]) {
      played.synth.setChannelVolume(channel, volume);
    }
    played.synth.masterVolume = 0.5;
    replace(played, sound([{ wave: rectangle(60, 8000) }]));
    played.playback.playPause();
    return peak(played.render(1));
  });
  assert.ok(Math.abs(levels[1] / levels[0] - 0.5) < 0.01, String(levels));
  const muted = playedScore(longNote);
  [0, 1].forEach((channel) => muted.synth.setChannelMute(channel, true));
  replace(muted, sound([{ wave: rectangle(60, 8000) }]));
  muted.playback.playPause();
  assert.equal(peak(muted.render(1)), 0);
});

test("the metronome clicks on", () => {
  const click = (change) => {
    const played = playedScore("\\tempo 120 \\instrument 25 . r.1 | C4.1 |");
    played.metronome.configure({ volume: 1, sound: "tick", accent: true, mode: "beat" });
    played.metronome.turn(true);
    change(played);
    played.playback.playPause();
    return played.render(1.9);
  };
  const plain = click(() => {});
  assert.ok(peak(plain) > 0.1);
  assert.deepEqual(
    click((played) => replace(played, sound([{ wave: rectangle(60, 8000) }]))),
    plain,
  );
});

test("a sound that comes late is not put among those of the next score", () => {
  const played = playedScore(longNote);
  const synth = standIn(played.synth);
  const { index } = soundOf(played);
  synth.loadMidiFile(played.midi);
  const before = synth.synthesizer.presets[index];
  synth.instruments.replace(index, sound([{ wave: rectangle(60, 8000) }]));
  assert.equal(synth.synthesizer.presets[index], before);
});

test("the light bank is not copied", () => {
  const played = playedScore(longNote);
  const { regions } = standIn(played.synth).synthesizer.presets[soundOf(played).index];
  assert.equal(new Set(regions.map(({ samples }) => samples.buffer)).size, 1);
  assert.ok(regions.every(({ samples }) => samples instanceof Int16Array && samples.length > 0));
});
