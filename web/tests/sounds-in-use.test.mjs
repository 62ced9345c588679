// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { alphaTab } from "./support/played-score.mjs";
import { soundsInUse } from "../src/soundfont/sounds-in-use.js";

const { ControlChangeEvent, NoteOnEvent, ProgramChangeEvent } = alphaTab.midi;
const { BankSelectCoarse, BankSelectFine } = alphaTab.midi.ControllerType;

const preset = (bank, presetNumber) => ({ bank, presetNumber });
const presets = [preset(0, 0), preset(0, 25), preset(0, 33), preset(128, 0), preset(128, 16), preset(256, 115)];

const program = (channel, number) => new ProgramChangeEvent(0, 0, channel, number);
const note = (channel, key, velocity = 95) => new NoteOnEvent(0, 0, channel, key, velocity);
const bank = (channel, coarse, fine) => [
  new ControlChangeEvent(0, 0, channel, BankSelectCoarse, coarse),
  new ControlChangeEvent(0, 0, channel, BankSelectFine, fine),
];

function inUse(events, transpositions = new Map()) {
  return soundsInUse(events.flat(), presets, transpositions).map(({ index, bank, program, softest, loudest }) => ({
    index,
    bank,
    program,
    notes: [...softest.keys()].filter((key) => softest[key] > 0).map((key) => [key, softest[key], loudest[key]]),
  }));
}

test("every sound that is played is there with its notes, in the order in which it is heard", () => {
  const events = [
    program(0, 33),
    program(1, 25),
    program(2, 0),
    note(1, 60, 80),
    note(0, 40),
    note(1, 60, 50),
    note(1, 62, 127),
  ];
  assert.deepEqual(inUse(events), [
    {
      index: 1,
      bank: 0,
      program: 25,
      notes: [
        [60, 50, 80],
        [62, 127, 127],
      ],
    },
    { index: 2, bank: 0, program: 33, notes: [[40, 95, 95]] },
  ]);
});

test("a change of program in the middle makes another sound", () => {
  const events = [program(0, 25), note(0, 60), program(0, 33), note(0, 30)];
  assert.deepEqual(
    inUse(events).map(({ index, notes }) => [index, notes[0][0]]),
    [
      [1, 60],
      [2, 30],
    ],
  );
});

test("percussion plays the kit, whatever its program; other channels may choose it by its bank", () => {
  const events = [
    program(9, 77),
    note(9, 36),
    bank(12, 1, 0),
    program(12, 0),
    note(12, 38),
    program(9, 16),
    note(9, 40),
  ];
  assert.deepEqual(
    inUse(events).map(({ index, notes }) => [index, notes.map(([key]) => key)]),
    [
      [3, [36, 38]],
      [4, [40]],
    ],
  );
});

test("notes are those that are heard: transposed, and none of no velocity", () => {
  const events = [program(0, 25), note(0, 60), note(0, 61, 0), note(0, 127)];
  assert.deepEqual(inUse(events, new Map([[0, 3]]))[0].notes, [[63, 95, 95]]);
});

test("a sound that the synthesizer does not have is not in use", () => {
  assert.deepEqual(inUse([bank(0, 0, 8), program(0, 25), note(0, 60)]), []);
});
