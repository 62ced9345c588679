// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { clicksOf } from "../clicks/click-pattern.js";
import { countInAt } from "../clicks/count-in.js";
import { TempoMap } from "../timing/tempo-map.js";
import { countIn, writeClicks } from "./click-notes.js";
import { separateDrums } from "./drum-channels.js";

/**
 * Everything that playing a score needs, built in one step out of what alphaTab generates. Whoever plays it gets the
 * same value, in any order.
 *
 * @typedef {import("../shared/alphatab.js").Score} Score
 * @typedef {import("../shared/alphatab.js").MidiFile} MidiFile
 * @typedef {import("@coderline/alphatab").synth.BackingTrackSyncPoint} BackingTrackSyncPoint
 * @typedef {import("@coderline/alphatab").midi.MasterBarTickLookup} PlayedBar
 *
 * @typedef {object} Generated
 * @property {MidiFile} midi becomes what is played
 * @property {PlayedBar[]} bars in the order of playing
 * @property {Map<number, { primary: number, secondary: number }>} trackChannels that it was generated with, by the index
 *     of the track
 *
 * @typedef {object} BuiltPlayback
 * @property {MidiFile} midi with the drums of each track, and the clicks, on channels of their own
 * @property {TempoMap} tempoMap in the ticks of `midi`
 * @property {number} tickShift by how much the ticks of `midi` exceed those of the score
 * @property {Map<number, number[]>} channels that each track plays on, by its index
 * @property {{ firstChannel: number, pattern: import("../clicks/click-pattern.js").Click[] }} clicks one channel for each
 *     level, and two for the count-in behind them
 * @property {(tick: number) => import("../synth/practice-synth.js").CountIn | null} countIn what is counted before the
 *     music starts at a tick of the score
 * @property {BackingTrackSyncPoint[]} syncPoints where score time lies in the backing track
 *
 * @typedef {{ use: (built: BuiltPlayback) => void }} PlaybackUser
 */

/**
 * @param {Score} score
 * @param {(score: Score) => Generated} generate
 * @returns {BuiltPlayback}
 */
export function buildPlayback(score, generate) {
  const { midi, bars: played, trackChannels } = generate(score);
  const { tickShift, division } = midi;
  const tempoMap = tempoMapOf(midi);
  const channels = channelsOf(score, trackChannels, separateDrums(midi));
  const bars = played.map(({ start, end, masterBar }) => ({
    start: start + tickShift,
    end: end + tickShift,
    numerator: masterBar.timeSignatureNumerator,
    denominator: masterBar.timeSignatureDenominator,
    pickup: masterBar.isAnacrusis,
  }));
  const pattern = clicksOf(bars, division);
  const firstChannel = writeClicks(midi, pattern);
  return {
    midi,
    tempoMap,
    tickShift,
    channels,
    clicks: { firstChannel, pattern },
    countIn: (tick) => countIn(countInAt(bars, tempoMap, tick + tickShift, division), firstChannel),
    syncPoints: syncPointsOf(score, tempoMap, tickShift),
  };
}

/**
 * Builds the playback of each score that alphaTab prepares, and hands it to those who use it.
 *
 * @param {import("../alphatab/page-api.js").PageApi} api
 * @param {PlaybackUser[]} users in any order
 */
export function providePlayback(api, users) {
  api.midiLoad.on((midi) => {
    const { score, tickCache, trackChannels } = api;
    if (score) {
      const built = buildPlayback(score, () => ({ midi, bars: tickCache?.masterBars ?? [], trackChannels }));
      users.forEach((user) => user.use(built));
    }
  });
}

/** @param {MidiFile} midi */
function tempoMapOf({ events, division }) {
  /** @type {import("../timing/tempo-map.js").TempoChange[]} */
  const changes = [];
  for (const event of events) {
    if (event instanceof alphaTab.midi.TempoChangeEvent) {
      changes.push({ tick: event.tick, bpm: event.beatsPerMinute });
    }
  }
  return new TempoMap(changes, events.at(-1)?.tick ?? 0, division);
}

/**
 * @param {Score} score
 * @param {Generated["trackChannels"]} generated
 * @param {Map<number, number>} drums the channel of each track of drums that was given its own
 */
function channelsOf(score, generated, drums) {
  /** @type {Map<number, number[]>} */
  const channels = new Map();
  for (const { index, playbackInfo } of score.tracks) {
    const drum = drums.get(index);
    const { primaryChannel, secondaryChannel } = playbackInfo;
    const { primary, secondary } = generated.get(index) ?? { primary: primaryChannel, secondary: secondaryChannel };
    channels.set(index, drum === undefined ? [primary, secondary] : [drum]);
  }
  return channels;
}

/**
 * A score without sync points of its own runs together with its backing track.
 *
 * @param {Score} score
 * @param {TempoMap} tempoMap
 * @param {number} tickShift
 */
function syncPointsOf(score, tempoMap, tickShift) {
  const { MidiFileGenerator } = alphaTab.midi;
  const own = MidiFileGenerator.generateSyncPoints(score);
  const points = own.length > 0 ? own : MidiFileGenerator.generateSyncPoints(score, true);
  for (const point of points) {
    // alphaTab counts whole milliseconds from point to point, which adds up.
    point.synthTime = tempoMap.msAt(point.synthTick + tickShift);
    point.syncTime = own.length > 0 ? point.syncTime : point.synthTime;
  }
  return points;
}
