// Measures the sounds of the fine bank beside those of the light one, on the synthesizer of the page, without a page.
//
// usage: instruments.mjs BUILT_PAGE TOP [--levels | --score]
//
// Every sound plays the same notes from both banks. What is compared is the loudness while they are held (the mean square
// behind the weighting of ITU-R BS.1770-4). With --levels what is left of a difference is added to the levels that the
// fine bank is built with (TOP/web/sounds/levels.json). What a score takes of each bank comes last; with --score alone.
import { existsSync, readFileSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { basename, join, resolve } from "node:path";

const [page, top] = process.argv.slice(2, 4).map((path) => resolve(path));
const adjusts = process.argv.includes("--levels");
globalThis.alphaTab = createRequire(import.meta.url)(join(page, "vendor/alphaTab.min.js"));
const { PracticeSynth } = await import(join(top, "web/src/synth/practice-synth.js"));
const { finePreset } = await import(join(top, "web/src/soundfont/fine-preset.js"));
const { fullScale } = await import(join(top, "web/src/audio/full-scale.js"));
const { readSoundFile, to16BitSamples, zonesFor } = await import(join(top, "web/src/soundfont/sound-file.js"));

/** That of the weighting's coefficients. */
const sampleRate = 48000;
const step = 64;
const held = 0.5;
const velocity = 95;
const percussionBank = 128;
const percussionChannel = 9;

/** What is played, by what plays it. */
const every = (first, last, apart) => Array.from({ length: Math.floor((last - first) / apart) + 1 }, (_, index) => first + index * apart);
const keysOf = ({ bank, program }) => {
  if (bank === percussionBank) {
    return [35, 36, 38, 40, 41, 42, 43, 45, 46, 47, 48, 49, 51, 53, 57];
  }
  return program >= 32 && program <= 39 ? every(28, 55, 3) : every(40, 84, 4);
};

const line = { start: () => {}, stop: () => {}, clear: () => {} };

/** A synthesizer with the light bank, its samples loaded for some programs and for all drums. */
function lightSynth(programs) {
  const synth = new PracticeSynth(sampleRate, line);
  const { ProgramChangeEvent, NoteOnEvent, MidiFile } = alphaTab.midi;
  const midi = new MidiFile();
  programs.forEach((program) => midi.addEvent(new ProgramChangeEvent(0, 0, 0, program)));
  every(0, 127, 1).forEach((key) => midi.addEvent(new NoteOnEvent(0, 0, percussionChannel, key, 1)));
  synth.loadMidiFile(midi);
  synth.loadSoundFont(readFileSync(join(page, "vendor/soundfont/sonivox.sf2")), false);
  return synth;
}

/** The engine's own decoder of Vorbis streams: that of a bank. */
function streamDecoder() {
  let parsed;
  const synth = lightSynth([]);
  synth.synthesizer.loadPresets = (bank) => (parsed = bank);
  synth.loadSoundFont(readFileSync(join(page, "vendor/soundfont/sonivox.sf2")), false);
  return (stream, frames) => {
    parsed.sampleData = stream;
    const samples = parsed.decodeSamples(0, stream.length, true);
    // It keeps what it has decoded, by place and length.
    Object.values(parsed).filter((part) => part instanceof Map).forEach((decoded) => decoded.clear());
    return to16BitSamples(samples, frames);
  };
}

const decode = streamDecoder();

function fineSound(name, notes) {
  const { description, streamOf } = readSoundFile(new Uint8Array(readFileSync(join(page, "sounds", name))));
  const zones = notes ? zonesFor(description.zones, notes) : description.zones;
  const used = new Set(zones.map(({ sample }) => sample));
  const samples = description.samples.map(({ frames, rate, root, correction }, index) => ({
    samples: used.has(index) ? decode(streamOf(index), frames) : new Int16Array(0), rate, root, correction,
  }));
  return { ...description, zones, samples };
}

function replace(synth, sound) {
  const { presets } = synth.synthesizer;
  const index = presets.findIndex(({ bank, presetNumber }) => bank === sound.bank && presetNumber === sound.program);
  presets[index] = finePreset(synth.synthesizer, sound);
}

/** Mean square of each note while it is held, weighted. */
function loudness(synth, sound) {
  const { synthesizer } = synth;
  const channel = sound.bank === percussionBank ? percussionChannel : 0;
  synthesizer.channelSetPresetNumber(channel, sound.program, channel === percussionChannel);
  return keysOf(sound).map((key) => {
    const frames = Math.round((held * sampleRate) / step) * step;
    const samples = new Float32Array(frames * 2);
    synthesizer.channelNoteOn(channel, key, velocity / 127);
    for (let frame = 0; frame < frames; frame += step) {
      synthesizer.synthesize(samples, frame * 2, step);
    }
    synthesizer.synthesizeSilent(step);
    samples.forEach((sample, index) => (samples[index] = sample / fullScale));
    return [0, 1].reduce((sum, side) => sum + meanSquare(weighted(samples.filter((_, index) => index % 2 === side))), 0);
  });
}

/** ITU-R BS.1770-4, tables 1 and 2. */
function weighted(samples) {
  const shelf = filtered(samples, [1.53512485958697, -2.69169618940638, 1.19839281085285], [-1.69065929318241, 0.73248077421585]);
  return filtered(shelf, [1, -2, 1], [-1.99004745483398, 0.99007225036621]);
}

function filtered(samples, [b0, b1, b2], [a1, a2]) {
  let [x1, x2, y1, y2] = [0, 0, 0, 0];
  return samples.map((x) => {
    const y = b0 * x + b1 * x1 + b2 * x2 - a1 * y1 - a2 * y2;
    [x1, x2, y1, y2] = [x, x1, y, y1];
    return y;
  });
}

const meanSquare = (samples) => samples.reduce((sum, sample) => sum + sample * sample, 0) / samples.length;
const mean = (values) => values.reduce((sum, value) => sum + value, 0) / values.length;
const decibels = (power) => 10 * Math.log10(power + 1e-12);

const names = JSON.parse(readFileSync(join(page, "sounds/index.json"), "utf8"));
const numberOf = (name) => name.split("-").reduce((sum, part) => sum * 1000 + Number(part), 0);
const levels = JSON.parse(readFileSync(join(top, "web/sounds/levels.json"), "utf8"));

function compareLevels() {
  console.log("sound    name                      light       fine   difference   by key, from and to");
  for (const name of names.sort((a, b) => numberOf(a) - numberOf(b))) {
    const sound = fineSound(name);
    const synth = lightSynth([sound.program]);
    const light = loudness(synth, sound);
    replace(synth, sound);
    const fine = loudness(synth, sound);
    const difference = decibels(mean(fine)) - decibels(mean(light));
    const byKey = fine.map((power, index) => decibels(power) - decibels(light[index])).sort((a, b) => a - b);
    const figures = [decibels(mean(light)), decibels(mean(fine)), difference, byKey[0], byKey[byKey.length - 1]];
    console.log(name.padEnd(8), sound.name.padEnd(22), ...figures.map((figure) => figure.toFixed(1).padStart(9)));
    levels[name] = Math.round(((levels[name] ?? 0) - difference) * 10) / 10;
  }
}

function playing(synth, midi, seconds) {
  synth.loadMidiFile(midi);
  return () => {
    synth.play();
    const began = performance.now();
    let square = 0;
    let frames = 0;
    while (frames < seconds * sampleRate) {
      const samples = synth.render(512);
      square += samples.reduce((sum, sample) => sum + sample * sample, 0);
      frames += samples.length / 2;
    }
    const took = performance.now() - began;
    synth.stop();
    return { took, level: Math.sqrt(square / frames / 2) };
  };
}

function compareScore(path) {
  const score = alphaTab.importer.ScoreLoader.loadScoreFromBytes(new Uint8Array(readFileSync(path)), new alphaTab.Settings());
  const midi = new alphaTab.midi.MidiFile();
  new alphaTab.midi.MidiFileGenerator(score, new alphaTab.Settings(), new alphaTab.midi.AlphaSynthMidiFileHandler(midi)).generate();
  const synth = lightSynth([]);
  const play = playing(synth, midi, 20);
  const told = (what, bytes) => {
    play();
    const { took, level } = play();
    console.log(`${what}: ${(bytes / 1e6).toFixed(1)} MB of samples, 20 s rendered in ${took.toFixed(0)} ms, level ${level.toFixed(3)}`);
  };
  const held = (presets) => [...new Set(presets.flatMap(({ regions }) => regions.map(({ samples }) => samples)))].reduce((sum, { byteLength }) => sum + byteLength, 0);
  console.log(`\n${basename(path)}`);
  told("light", held(synth.synthesizer.presets));
  const sounds = synth.instruments.inUse();
  for (const { index, bank, program, ...notes } of sounds) {
    const before = synth.synthesizer.presets[index];
    const sound = fineSound(`${bank}-${program}`, notes);
    synth.instruments.replace(index, sound);
    const after = synth.synthesizer.presets[index];
    console.log(`  ${bank}-${program} ${sound.name}: ${sound.zones.length} of ${before.regions.length} regions, ${(held([after]) / 1e6).toFixed(2)} MB`);
  }
  told("fine ", held(synth.synthesizer.presets));
}

if (names.length === 0) {
  console.log("The page was built without the fine bank.");
  process.exit(1);
}
if (!process.argv.includes("--score")) {
  compareLevels();
}
if (adjusts) {
  writeFileSync(join(top, "web/sounds/levels.json"), `${JSON.stringify(levels, null, 2)}\n`);
}
const sample = join(top, "../shared/samples/canon.gp5");
if (existsSync(sample)) {
  compareScore(sample);
}
