import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { test } from "node:test";
import { buildClickBank } from "../src/clicks/click-bank.js";
import { zonesFor } from "../src/soundfont/sound-file.js";
import { Rehearsal, sampleRate, scoreOf } from "./support/rehearsal.mjs";

// Sounds that take the place of the light bank's while a score plays, as numbers that can be told apart.

const lightBank = readFileSync(join(dirname(process.env.QUAVERLY_ALPHATAB), "soundfont/sonivox.sf2"));

const everyKey = [0, 127];
const generator = { modes: 54 };
const steady = 60;

/** A rectangle of `half` samples up and as many down, over and over: at its root it has `sampleRate / half / 2` Hz. */
function rectangle(half, level) {
  const length = half * 8;
  const samples = Int16Array.from({ length }, (_, at) => (Math.floor(at / half) % 2 === 0 ? level : -level));
  return { samples, rate: sampleRate, root: steady, correction: 0, loop: [half * 2, half * 4] };
}

/** @param {{ keys?: [number, number], velocities?: [number, number], wave: ReturnType<typeof rectangle> }[]} parts */
function sound(parts, program = 25) {
  return {
    name: "Hand-made", bank: 0, program,
    zones: parts.map(({ keys = everyKey, velocities = everyKey, wave }, sample) => ({ keys, velocities, sample, loop: wave.loop, generators: [[generator.modes, 1]] })),
    samples: parts.map(({ wave: { samples, rate, root, correction } }) => ({ samples, rate, root, correction })),
  };
}

function rehearse(text) {
  const rehearsal = new Rehearsal(scoreOf(text));
  rehearsal.synth.loadSoundFont(lightBank, false);
  rehearsal.synth.loadSoundFont(buildClickBank(), true);
  return rehearsal;
}

/** The one sound that the score plays; the metronome's are in a bank of their own. */
function soundOf({ synth }) {
  return synth.instruments.inUse().find(({ bank }) => bank === 0);
}

function replace(rehearsal, replacement) {
  rehearsal.synth.instruments.replace(soundOf(rehearsal).index, replacement);
}

const longNote = "\\tempo 120 \\instrument 25 . C4.1 | C4.1 |";
const peak = (sound) => sound.reduce((most, one) => Math.max(most, Math.abs(one)), 0);
/** How often it crosses zero upwards, a second. */
const pitch = (sound) => (sound.reduce((sum, one, at) => sum + (at > 0 && sound[at - 1] < 0 && one >= 0), 0) * sampleRate) / sound.length;

test("what the score plays is told with its notes", () => {
  const { program, softest } = soundOf(rehearse(longNote));
  assert.equal(program, 25);
  assert.deepEqual([...softest.keys()].filter((key) => softest[key] > 0), [60]);
});

test("a loop is exact to the sample, for as long as the note lasts", () => {
  const rehearsal = rehearse(longNote);
  replace(rehearsal, sound([{ wave: rectangle(60, 8000) }]));
  rehearsal.playback.playPause();
  const heard = rehearsal.listen(1.8).subarray(0, 1.8 * sampleRate);
  const signs = heard.map(Math.sign);
  const begin = signs.indexOf(1);
  const wrong = signs.subarray(begin).findIndex((sign, at) => sign !== (Math.floor(at / 60) % 2 === 0 ? 1 : -1));
  assert.equal(wrong, -1, `differs after ${wrong} samples`);
});

test("root, rate and correction of a sample tune it", () => {
  for (const [change, expected] of [[{}, 400], [{ root: 48 }, 800], [{ rate: sampleRate / 2 }, 200], [{ correction: 100 }, 400 * 2 ** (1 / 12)]]) {
    const rehearsal = rehearse(longNote);
    replace(rehearsal, sound([{ wave: { ...rectangle(60, 8000), ...change } }]));
    rehearsal.playback.playPause();
    const heard = pitch(rehearsal.listen(1.5));
    assert.ok(Math.abs(heard - expected) < 2, `${heard} instead of ${expected} Hz`);
  }
});

test("a note sounds from the zone of its key", () => {
  const rehearsal = rehearse("\\tempo 120 \\instrument 25 . C4.2 C5.2 |");
  const parts = [{ keys: [0, 65], wave: rectangle(60, 8000) }, { keys: [66, 127], wave: { ...rectangle(30, 8000), root: 72 } }];
  replace(rehearsal, sound(parts));
  rehearsal.playback.playPause();
  assert.ok(Math.abs(pitch(rehearsal.listen(0.9)) - 400) < 2);
  rehearsal.listen(0.2);
  assert.ok(Math.abs(pitch(rehearsal.listen(0.7)) - 800) < 2);
});

test("a key that the sound does not have keeps the light one", () => {
  const [plain, changed] = [rehearse(longNote), rehearse(longNote)];
  replace(changed, sound([{ keys: [0, 59], wave: rectangle(60, 8000) }, { keys: [61, 127], wave: rectangle(60, 8000) }]));
  [plain, changed].forEach(({ playback }) => playback.playPause());
  assert.deepEqual(changed.listen(1), plain.listen(1));
});

test("only the zones that are played from are wanted", () => {
  const zones = sound([
    { keys: [0, 59], wave: rectangle(60, 1) },
    { keys: [60, 60], velocities: [0, 40], wave: rectangle(60, 1) },
    { keys: [60, 64], velocities: [41, 127], wave: rectangle(60, 1) },
    { keys: [61, 127], wave: rectangle(60, 1) },
  ]).zones;
  assert.deepEqual(zonesFor(zones, soundOf(rehearse(longNote))).map(({ sample }) => sample), [2]);
});

test("a replacement while music plays is heard from the next note on, and breaks nothing", () => {
  const rehearsal = rehearse(longNote);
  const untouched = rehearse(longNote);
  untouched.playback.playPause();
  rehearsal.playback.playPause();
  const { streams } = rehearsal;
  const [before, usual] = [rehearsal.listen(0.5), untouched.listen(0.5)];
  assert.deepEqual(before, usual);
  replace(rehearsal, sound([{ wave: rectangle(60, 8000) }]));
  // The first note rings on as it began.
  assert.deepEqual(rehearsal.listen(1.4), untouched.listen(1.4));
  rehearsal.listen(0.3);
  assert.ok(Math.abs(pitch(rehearsal.listen(1)) - 400) < 2);
  assert.equal(rehearsal.streams, streams);
});

test("mixer and master volume hold", () => {
  const levels = [1, 0.5].map((volume) => {
    const rehearsal = rehearse(longNote);
    for (const channel of [0, 1]) {
      rehearsal.synth.setChannelVolume(channel, volume);
    }
    rehearsal.synth.masterVolume = 0.5;
    replace(rehearsal, sound([{ wave: rectangle(60, 8000) }]));
    rehearsal.playback.playPause();
    return peak(rehearsal.listen(1));
  });
  assert.ok(Math.abs(levels[1] / levels[0] - 0.5) < 0.01, String(levels));
  const muted = rehearse(longNote);
  [0, 1].forEach((channel) => muted.synth.setChannelMute(channel, true));
  replace(muted, sound([{ wave: rectangle(60, 8000) }]));
  muted.playback.playPause();
  assert.equal(peak(muted.listen(1)), 0);
});

test("the metronome clicks on", () => {
  const click = (change) => {
    const rehearsal = rehearse("\\tempo 120 \\instrument 25 . r.1 | C4.1 |");
    rehearsal.metronome.configure({ volume: 1, sound: "tick", accent: true, mode: "beat" });
    rehearsal.metronome.turn(true);
    change(rehearsal);
    rehearsal.playback.playPause();
    return rehearsal.listen(1.9);
  };
  const plain = click(() => {});
  assert.ok(peak(plain) > 0.1);
  assert.deepEqual(click((rehearsal) => replace(rehearsal, sound([{ wave: rectangle(60, 8000) }]))), plain);
});

test("a sound that comes late is not put among those of the next score", () => {
  const rehearsal = rehearse(longNote);
  const { synth } = rehearsal;
  const { index } = soundOf(rehearsal);
  synth.loadMidiFile(rehearsal.midi);
  const before = synth.synthesizer.presets[index];
  synth.instruments.replace(index, sound([{ wave: rectangle(60, 8000) }]));
  assert.equal(synth.synthesizer.presets[index], before);
});

test("the light bank is not copied", () => {
  const rehearsal = rehearse(longNote);
  const { regions } = rehearsal.synth.synthesizer.presets[soundOf(rehearsal).index];
  assert.equal(new Set(regions.map(({ samples }) => samples.buffer)).size, 1);
  assert.ok(regions.every(({ samples }) => samples instanceof Int16Array && samples.length > 0));
});
