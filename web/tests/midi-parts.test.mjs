// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { alphaTab } from "./support/played-score.mjs";

const { inParts, MidiInParts } = await import("../src/synth/midi-parts.js");

/** @param {string} tex */
function midiOf(tex) {
  const settings = new alphaTab.Settings();
  const score = alphaTab.importer.ScoreLoader.loadAlphaTex(tex, settings);
  const midi = new alphaTab.midi.MidiFile();
  new alphaTab.midi.MidiFileGenerator(score, settings, new alphaTab.midi.AlphaSynthMidiFileHandler(midi)).generate();
  return midi;
}

const bars = `\\tempo 90 . ${"3.3{b (0 4)}.4 5.3 r 7.3 | \\ts 3 4 \\tempo 70 3.3.4 5.3 7.3 | \\ts 4 4 ".repeat(300)} 3.3.1`;

test("what is to be played arrives as it was, in parts of bounded length", () => {
  const midi = midiOf(bars);
  assert.ok(midi.events.length > 5000);
  const receiver = new MidiInParts();
  const parts = [...inParts(midi)];
  const arrived = parts.map((part) => receiver.add(structuredClone(part)));
  assert.ok(parts.length > 3 && parts.every(({ events }) => events.length <= 2000));
  assert.ok(arrived.slice(0, -1).every((one) => one === null));
  const all = arrived.at(-1);
  assert.deepEqual(all, midi);
  assert.deepEqual(
    all?.events.map(({ constructor }) => constructor),
    midi.events.map(({ constructor }) => constructor),
  );
});

test("one that begins anew takes the place of what had not arrived as a whole", () => {
  const receiver = new MidiInParts();
  const [head, first] = inParts(midiOf(bars));
  receiver.add(head);
  receiver.add(first);
  const midi = midiOf("3.3.1");
  const arrived = [...inParts(midi)].map((part) => receiver.add(part));
  assert.deepEqual(arrived.at(-1), midi);
});

test("an empty one arrives too", () => {
  const receiver = new MidiInParts();
  const arrived = [...inParts(new alphaTab.midi.MidiFile())].map((part) => receiver.add(part));
  assert.deepEqual(arrived, [new alphaTab.midi.MidiFile()]);
});
