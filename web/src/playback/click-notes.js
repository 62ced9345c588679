// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { clickBank, clickKey } from "../clicks/click-bank.js";
import { levels } from "../clicks/click-pattern.js";

/**
 * The metronome's clicks as notes of a playback, on channels of their own: one for each level of the pattern, and two
 * for the count-in behind those, the first beats of bars and the others.
 *
 * @typedef {import("../shared/alphatab.js").MidiFile} MidiFile
 */

const velocity = 112;

/** Offsets from the first channel of the clicks. */
export const countInChannels = { first: levels.length, others: levels.length + 1 };

/** The key the notes are written with; a channel's transposition leads from it to the chosen sound. */
export const writtenKey = clickKey("woodblock", false);

/**
 * @param {MidiFile} midi gets the notes
 * @param {import("../clicks/click-pattern.js").Click[]} pattern
 * @returns {number} the first of their channels, above all others
 */
export function writeClicks(midi, pattern) {
  const notes = midi.tracks[0];
  const firstChannel = highestChannel(notes.events) + 1;
  const clicks = pattern.map(({ tick, level }) => note(tick, firstChannel + level));
  // Those of the count-in are set up too: alphaTab takes the first channel that is not for a metronome of its own.
  const used = [...levels.keys(), ...Object.values(countInChannels)];
  const setUp = used.flatMap((offset) => chooseClicks(firstChannel + offset));
  // The sort keeps the order of events at the same tick; the end of the track stays last, as it is past every click.
  const all = [...setUp, ...notes.events, ...clicks].sort((a, b) => a.tick - b.tick);
  notes.events.length = 0;
  for (const event of all) {
    notes.events.push(event);
  }
  return firstChannel;
}

/**
 * @param {import("../clicks/count-in.js").Count | null} count
 * @param {number} firstChannel of the clicks
 * @returns {import("../synth/practice-synth.js").CountIn | null}
 */
export function countIn(count, firstChannel) {
  return (
    count && {
      ...count,
      first: firstChannel + countInChannels.first,
      others: firstChannel + countInChannels.others,
      key: writtenKey,
      velocity: velocity / 127,
      bank: clickBank,
    }
  );
}

/** @param {number} channel */
function chooseClicks(channel) {
  const { BankSelectCoarse, BankSelectFine } = alphaTab.midi.ControllerType;
  return [
    new alphaTab.midi.ControlChangeEvent(0, 0, channel, BankSelectCoarse, clickBank.msb),
    new alphaTab.midi.ControlChangeEvent(0, 0, channel, BankSelectFine, clickBank.lsb),
    new alphaTab.midi.ProgramChangeEvent(0, 0, channel, clickBank.program),
  ];
}

/**
 * @param {number} tick
 * @param {number} channel
 */
function note(tick, channel) {
  return new alphaTab.midi.NoteOnEvent(0, tick, channel, writtenKey, velocity);
}

/** @param {import("@coderline/alphatab").midi.MidiEvent[]} events */
function highestChannel(events) {
  let highest = 0;
  for (const event of events) {
    const channel = /** @type {{ channel?: number }} */ (event).channel;
    if (channel !== undefined && channel > highest) {
      highest = channel;
    }
  }
  return highest;
}
