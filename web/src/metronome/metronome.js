// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { clickBank, clickKey } from "../clicks/click-bank.js";
import { audibleLevels, clicksOf, levels } from "../clicks/click-pattern.js";
import { ClickPlayer } from "./click-player.js";
import { countInAt } from "../clicks/count-in.js";
import { soundNamed } from "../clicks/click-sounds.js";
import { backingTrackMs } from "../timing/sync-point-map.js";

/**
 * The metronome. Its clicks are written into the playback itself as notes on channels of their own, one channel for
 * each level of the pattern (bars, beats, half beats, quarter beats): so they are in time to the sample at any speed
 * and through seeks, repeats and changes of tempo, which clicks timed by the page could not be. What sounds is
 * chosen without touching the notes: a channel is muted or not, and transposed to the key of the chosen sound.
 *
 * A score's backing track plays without the synthesizer; its player mixes the clicks in where they fall in it.
 *
 * @typedef {{ volume: number, sound: string, accent: boolean, mode: string }} Configuration volume from 0 to 1
 */

const velocity = 112;

/** Channels for the bar counted in, behind those of the levels: its first beat, and the others. */
const countInChannels = { first: levels.length, others: levels.length + 1 };

/** The key the notes are written with; a channel's transposition leads from it to the chosen sound. */
const writtenKey = clickKey("woodblock", false);

export class Metronome {
  #api;
  #playback;
  #on = false;
  /** @type {Configuration} */
  #configuration = { volume: 0.8, sound: "woodblock", accent: true, mode: "beat" };
  #besideSolo = false;
  #firstChannel = 0;
  /** @type {import("../clicks/count-in.js").MeteredBar[]} */
  #bars = [];
  #division = 960;
  #tickShift = 0;
  #preview = new ClickPlayer();

  /**
   * @param {import("../alphatab/page-api.js").PageApi} api
   * @param {import("../playback/playback.js").Playback} playback made before this, so that it knows a score's times
   *     first
   */
  constructor(api, playback) {
    this.#api = api;
    this.#playback = playback;
    api.midiLoad.on((midi) => this.#write(midi));
    api.playerReady.on(() => this.#apply());
  }

  /** @param {boolean} on */
  turn(on) {
    this.#on = Boolean(on);
    this.#apply();
  }

  /** @param {Configuration} configuration */
  configure(configuration) {
    this.#configuration = configuration;
    this.#apply();
  }

  /**
   * A soloed track silences every other channel; the metronome goes on beside it.
   *
   * @param {boolean} anySolo
   */
  setBesideSolo(anySolo) {
    this.#besideSolo = anySolo;
    this.#apply();
  }

  /** Plays one click with the sound and volume as they are, whatever else is going on. */
  preview() {
    const { sound, volume } = this.#configuration;
    this.#preview.play({ sound: soundNamed(sound), accent: false, volume });
  }

  /**
   * @param {number} tick where the music will start
   * @returns {import("../synth/practice-synth.js").CountIn | null} what the synthesizer counts before; null without a
   *     score
   */
  countInAt(tick) {
    const count = countInAt(this.#bars, this.#playback.tempoMap, tick + this.#tickShift, this.#division);
    return (
      count && {
        ...count,
        first: this.#firstChannel + countInChannels.first,
        others: this.#firstChannel + countInChannels.others,
        key: writtenKey,
        velocity: velocity / 127,
        bank: clickBank,
      }
    );
  }

  #apply() {
    const player = this.#api.player;
    if (!player || this.#firstChannel === 0) {
      return;
    }
    const { volume, accent, mode } = this.#configuration;
    const sound = soundNamed(this.#configuration.sound);
    const audible = this.#on ? audibleLevels(mode) : 0;
    if (this.#api.playsBackingTrack) {
      this.#api.backingTrackPlayer.setTicking({ levels: audible, sound, accent, volume });
    }
    /** @type {(offset: number, sounds: boolean, accented: boolean) => void} */
    const set = (offset, sounds, accented) => {
      const channel = this.#firstChannel + offset;
      player.setChannelMute(channel, !sounds);
      player.setChannelSolo(channel, this.#besideSolo);
      player.setChannelVolume(channel, volume);
      player.setChannelTranspositionPitch(channel, clickKey(sound, accented) - writtenKey);
    };
    levels.forEach((name, level) => set(level, level < audible, accent && name === "bar"));
    // Counted in is whether the metronome is on or not.
    set(countInChannels.first, true, accent);
    set(countInChannels.others, true, false);
  }

  /** @param {import("../shared/alphatab.js").MidiFile} midi the playback just generated */
  #write(midi) {
    const bars = (this.#api.tickCache?.masterBars ?? []).map(({ start, end, masterBar }) => ({
      start: start + midi.tickShift,
      end: end + midi.tickShift,
      numerator: masterBar.timeSignatureNumerator,
      denominator: masterBar.timeSignatureDenominator,
      pickup: masterBar.isAnacrusis,
    }));
    this.#bars = bars;
    this.#division = midi.division;
    this.#tickShift = midi.tickShift;
    const notes = midi.tracks[0];
    this.#firstChannel = highestChannel(notes.events) + 1;
    const pattern = clicksOf(bars, midi.division);
    const points = this.#playback.syncPoints;
    if (this.#api.playsBackingTrack) {
      this.#api.backingTrackPlayer.setClicks(
        pattern.map(({ tick, level }) => ({ ms: backingTrackMs(points, this.#playback.tempoMap.msAt(tick)), level })),
      );
    }
    const clicks = pattern.map(({ tick, level }) => note(tick, this.#firstChannel + level));
    // Those of the count-in are set up too: alphaTab takes the first channel that is not for a metronome of its own.
    const used = [...levels.keys(), ...Object.values(countInChannels)];
    const setUp = used.flatMap((offset) => this.#chooseClicks(this.#firstChannel + offset));
    // The sort keeps the order of events at the same tick; the end of the track stays last, as it is past every click.
    const all = [...setUp, ...notes.events, ...clicks].sort((a, b) => a.tick - b.tick);
    notes.events.length = 0;
    for (const event of all) {
      notes.events.push(event);
    }
  }

  /** @param {number} channel */
  #chooseClicks(channel) {
    const { BankSelectCoarse, BankSelectFine } = alphaTab.midi.ControllerType;
    return [
      new alphaTab.midi.ControlChangeEvent(0, 0, channel, BankSelectCoarse, clickBank.msb),
      new alphaTab.midi.ControlChangeEvent(0, 0, channel, BankSelectFine, clickBank.lsb),
      new alphaTab.midi.ProgramChangeEvent(0, 0, channel, clickBank.program),
    ];
  }
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
