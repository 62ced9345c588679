// @ts-check
import { alphaTab } from "../shared/alphatab.js";

/**
 * Gives every percussion track a channel of its own. All of them are written for the one percussion channel, where
 * muting one would mute them all.
 *
 * @typedef {import("@coderline/alphatab").midi.MidiEvent & { channel?: number }} ChannelEvent
 */

const percussionChannel = 9;

/** The bank that holds the drum kit, as its two halves. */
const kitBank = { coarse: 1, fine: 0 };

/**
 * @param {import("../shared/alphatab.js").MidiFile} midi is changed
 * @returns {Map<number, number>} the channel of each track that was moved, by its index
 */
export function separateDrums(midi) {
  /** @type {ChannelEvent[]} */
  const events = midi.tracks[0].events;
  const moved = chooseChannels(events);
  if (moved.size === 0) {
    return moved;
  }
  const keys = new Set();
  const kept = events.filter((event) => {
    const channel = event.channel === percussionChannel ? moved.get(event.track) : undefined;
    if (channel === undefined) {
      return true;
    }
    event.channel = channel;
    if (event instanceof alphaTab.midi.NoteOnEvent) {
      keys.add(event.noteKey);
    }
    return !choosesInstrument(event);
  });
  const setUp = [...moved].flatMap(([track, channel]) => chooseKit(track, channel));
  // The synthesizer loads only the drums it finds on its percussion channel: each is named there once, unheard.
  const named = [...keys].map((key) => new alphaTab.midi.NoteOnEvent(0, 0, percussionChannel, key, 0));
  events.length = 0;
  for (const event of [...setUp, ...named, ...kept]) {
    events.push(event);
  }
  return moved;
}

/**
 * @param {ChannelEvent[]} events
 * @returns {Map<number, number>} a free channel for each percussion track but the first, by the track's index
 */
export function chooseChannels(events) {
  /** @type {Set<number>} */
  const drummers = new Set();
  let highest = percussionChannel;
  for (const { channel, track } of events) {
    if (channel === percussionChannel) {
      drummers.add(track);
    }
    highest = Math.max(highest, channel ?? 0);
  }
  return new Map([...drummers].slice(1).map((track, index) => [track, highest + 1 + index]));
}

/** @param {ChannelEvent} event */
function choosesInstrument(event) {
  const { BankSelectCoarse, BankSelectFine } = alphaTab.midi.ControllerType;
  return (
    event instanceof alphaTab.midi.ProgramChangeEvent ||
    (event instanceof alphaTab.midi.ControlChangeEvent &&
      (event.controller === BankSelectCoarse || event.controller === BankSelectFine))
  );
}

/**
 * @param {number} track
 * @param {number} channel
 */
function chooseKit(track, channel) {
  const { BankSelectCoarse, BankSelectFine } = alphaTab.midi.ControllerType;
  return [
    new alphaTab.midi.ControlChangeEvent(track, 0, channel, BankSelectCoarse, kitBank.coarse),
    new alphaTab.midi.ControlChangeEvent(track, 0, channel, BankSelectFine, kitBank.fine),
    new alphaTab.midi.ProgramChangeEvent(track, 0, channel, 0),
  ];
}
