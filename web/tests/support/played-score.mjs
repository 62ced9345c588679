// @ts-check
// Plays scores in Node, with alphaTab itself: what the page's worker renders, sample by sample.
import { createRequire } from "node:module";
import { Signal } from "./signal.mjs";
import { standIn } from "./stand-in.mjs";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
export const { alphaTab } = globalThis;

export const sampleRate = 48000;

export const { PracticeSynth } = await import("../../src/synth/practice-synth.js");
const { buildClickBank } = await import("../../src/clicks/click-bank.js");
const { Metronome } = await import("../../src/metronome/metronome.js");
const { Playback } = await import("../../src/playback/playback.js");
const { providePlayback } = await import("../../src/playback/build-playback.js");
const { playInOrder } = await import("../../src/alphatab/play-through.js");
const { scoreOrder } = await import("../../src/playback/score-order.js");

playInOrder((score) => scoreOrder(score).bars);

/** @param {string} text alphaTex */
export function scoreOf(text) {
  return alphaTab.importer.ScoreLoader.loadAlphaTex(text, new alphaTab.Settings());
}

/** A synthesizer with a score in it and the metronome beside it; everything but the page and the audio output. */
export class PlayedScore {
  streams = 0;
  messages = [];
  api = standIn({
    midiLoad: new Signal(),
    preparationFailed: new Signal(),
    playerReady: new Signal(),
    playerStateChanged: new Signal(),
    playerPositionChanged: new Signal(),
    notation: { addEventListener: () => {} },
    actualPlayerMode: alphaTab.PlayerMode.EnabledSynthesizer,
    isReadyForPlayback: true,
    masterVolume: 1,
    playsBackingTrack: false,
    trackChannels: new Map(),
    backingTrackPlayer: { setClicks: () => {}, setLoop: () => {} },
  });

  /** @param {import("../../src/shared/alphatab.js").Score} score */
  constructor(score) {
    const output = { start: () => {}, stop: () => {}, clear: () => this.streams++ };
    this.synth = new PracticeSynth(sampleRate, output);
    const { synth } = this;
    Object.assign(this.api, {
      score,
      player: synth,
      synth,
      playPause: () => synth.playPause(),
      play: () => synth.play(),
    });
    for (const property of ["tickPosition", "timePosition", "playbackSpeed", "isLooping"]) {
      Object.defineProperty(this.api, property, {
        get: () => synth[property],
        set: (value) => {
          synth[property] = value;
        },
      });
    }
    synth.stateChanged.on((event) => this.api.playerStateChanged.trigger(event));
    synth.positionChanged.on((event) => this.api.playerPositionChanged.trigger(event));
    this.playback = new Playback(this.api, (message) => this.messages.push(message));
    this.metronome = new Metronome(this.api);
    providePlayback(this.api, [this.playback, this.metronome]);
    const midi = new alphaTab.midi.MidiFile();
    const handler = new alphaTab.midi.AlphaSynthMidiFileHandler(midi);
    const generator = new alphaTab.midi.MidiFileGenerator(score, new alphaTab.Settings(), handler);
    generator.applyTranspositionPitches = false;
    generator.generate();
    this.midi = midi;
    this.api.tickCache = generator.tickLookup;
    this.api.midiLoad.trigger(midi);
    this.synth.loadBanks([buildClickBank()]);
    this.synth.loadMidiFile(midi);
    this.api.playerReady.trigger();
  }

  /**
   * @param {number} seconds
   * @returns {Float32Array} the left channel; shorter where the music ends
   */
  render(seconds) {
    const parts = [];
    for (let frames = 0; frames < seconds * sampleRate;) {
      const samples = this.synth.render(512);
      if (!samples) {
        break;
      }
      parts.push(samples.filter((_, index) => index % 2 === 0));
      frames += samples.length / 2;
    }
    const all = new Float32Array(parts.reduce((sum, part) => sum + part.length, 0));
    parts.reduce((at, part) => (all.set(part, at), at + part.length), 0);
    return all;
  }
}

/**
 * @param {Float32Array} sound
 * @returns {number[]} when something begins in it after a silence, in milliseconds
 */
export function onsets(sound) {
  const found = [];
  const silence = 0.02 * sampleRate;
  let last = -Infinity;
  sound.forEach((sample, frame) => {
    if (Math.abs(sample) > 1e-4) {
      if (frame - last > silence) {
        found.push((frame * 1000) / sampleRate);
      }
      last = frame;
    }
  });
  return found;
}
