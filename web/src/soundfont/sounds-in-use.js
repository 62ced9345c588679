// @ts-check
import { alphaTab } from "../shared/alphatab.js";

/**
 * Which of a synthesizer's sounds a score plays, and which notes on each. Loading is done for those alone.
 *
 * @typedef {{ presetNumber: number, bank: number }} Preset
 * @typedef {import("@coderline/alphatab").midi.MidiEvent & { channel?: number }} ChannelEvent
 *
 * @typedef {object} SoundInUse
 * @property {number} index of the preset with the synthesizer
 * @property {number} bank
 * @property {number} program
 * @property {Uint8Array} softest by key: 1 to 127, and 0 for keys that are not played
 * @property {Uint8Array} loudest by key
 *
 * @typedef {{ coarse: number, fine: number, preset: number }} Channel the halves of its bank, and what it plays
 */

/** What is played there is percussion, whatever the program. */
const percussionChannel = 9;
const percussionBank = 128;

const keys = 128;

/**
 * @param {ChannelEvent[]} events of a playback, in the order of time
 * @param {Preset[]} presets of the synthesizer; of two with the same number the later one sounds
 * @param {Map<number, number>} transpositions semitones, by channel
 * @returns {SoundInUse[]} in the order in which they first sound
 */
export function soundsInUse(events, presets, transpositions) {
  /** @type {Map<number, SoundInUse>} */
  const sounds = new Map();
  /** @type {Map<number, Channel>} */
  const channels = new Map();
  for (const event of events) {
    if (event.channel === undefined) {
      continue;
    }
    const channel = channels.get(event.channel) ?? { coarse: 0, fine: 0, preset: 0 };
    channels.set(event.channel, channel);
    if (event instanceof alphaTab.midi.ControlChangeEvent) {
      changeBank(channel, event);
    } else if (event instanceof alphaTab.midi.ProgramChangeEvent) {
      channel.preset = presetOf(presets, event.channel, (channel.coarse << 7) | channel.fine, event.program);
    } else if (event instanceof alphaTab.midi.NoteOnEvent && channel.preset >= 0) {
      const sound = sounds.get(channel.preset) ?? newSound(channel.preset, presets[channel.preset]);
      sounds.set(channel.preset, sound);
      add(sound, event.noteKey + (transpositions.get(event.channel) ?? 0), event.noteVelocity);
    }
  }
  return [...sounds.values()];
}

/**
 * @param {Channel} channel
 * @param {import("@coderline/alphatab").midi.ControlChangeEvent} event
 */
function changeBank(channel, { controller, value }) {
  const { BankSelectCoarse, BankSelectFine } = alphaTab.midi.ControllerType;
  if (controller === BankSelectCoarse) {
    channel.coarse = value;
    channel.fine = 0;
  } else if (controller === BankSelectFine) {
    channel.fine = value;
  }
}

/**
 * @param {Preset[]} presets
 * @param {number} channel
 * @param {number} bank
 * @param {number} program
 * @returns {number} index of the preset that the synthesizer chooses; -1 for none
 */
function presetOf(presets, channel, bank, program) {
  const find = (/** @type {number} */ wantedBank, /** @type {number} */ wanted) =>
    presets.map((preset) => preset.bank === wantedBank && preset.presetNumber === wanted).lastIndexOf(true);
  if (channel !== percussionChannel) {
    return find(bank, program);
  }
  const choices = [find(percussionBank | bank, program), find(percussionBank, program), find(percussionBank, 0)];
  return choices.find((index) => index >= 0) ?? find(bank, program);
}

/**
 * @param {number} index
 * @param {Preset} preset
 * @returns {SoundInUse}
 */
function newSound(index, { bank, presetNumber }) {
  return { index, bank, program: presetNumber, softest: new Uint8Array(keys), loudest: new Uint8Array(keys) };
}

/**
 * @param {SoundInUse} sound
 * @param {number} key
 * @param {number} velocity a note of velocity 0 is none
 */
function add({ softest, loudest }, key, velocity) {
  if (velocity > 0 && key >= 0 && key < keys) {
    softest[key] = softest[key] === 0 ? velocity : Math.min(softest[key], velocity);
    loudest[key] = Math.max(loudest[key], velocity);
  }
}
