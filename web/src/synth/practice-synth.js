// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { reportTime, sequencerOf, synthesizerOf } from "../alphatab/internals/alphatab-internals.js";
import { fullScale } from "../audio/full-scale.js";
import { PresentationTimeMap } from "../timing/presentation-time-map.js";
import { Instruments } from "./instruments.js";
import { silentOutput } from "./silent-output.js";

/**
 * alphaTab's synthesizer, as a musician who practises needs it. Runs in a worker. What is different:
 *
 * - A note begins at its own sample. alphaTab lets it begin with the step of 64 samples that it falls into.
 * - A loop starts over from one sample to the next. alphaTab waits until the last sample has been presented.
 * - A bar is counted in by the synthesizer itself, so that its clicks and the first note are of one stream.
 * - A change of speed goes on from where the sound is. alphaTab seeks, which cuts off every note.
 * - A pause stays at what was presented last, not at what was rendered last.
 * - The position it reports is the position that is presented.
 * - Its sounds can be replaced while it plays.
 *
 * @typedef {object} CountIn
 * @property {number} beats none for no count-in; the last one may be cut short
 * @property {number} barBeats each of so many begins a bar
 * @property {number} beatLength milliseconds of score time
 * @property {number} first channel of the first beat of a bar
 * @property {number} others channel of the other beats
 * @property {number} key what the click is
 * @property {number} velocity 0 to 1
 * @property {{ number: number, program: number }} bank where the click is found
 *
 * @typedef {import("./silent-output.js").SampleOutput} SampleOutput
 * @typedef {import("../alphatab/internals/alphatab-internals.js").SynthEvent} SynthEvent
 */

/** alphaTab hands over events in steps of this many samples. */
const step = 64;

/** How often the position is reported while no note begins, a second. */
const reportsPerSecond = 15;

/** What still sounds at a seam fades out over this many samples. */
const fadeLength = 480;

/** How long the last notes of a score may ring on, in seconds. */
const longestEnd = 1.5;

export class PracticeSynth extends alphaTab.synth.AlphaSynth {
  #sampleRate;
  #presentationTimes;
  #instruments;
  /** Samples rendered since the stream began. */
  #rendered = 0;
  /** The samples with which notes begin that have not been presented yet. */
  #notes = /** @type {number[]} */ ([]);
  #samples = new Float32Array(0);
  /** Milliseconds of score time. */
  #presentedMs = 0;
  #reportedFrame = -Infinity;
  /** @type {number | null} the sample after which nothing sounds any more */
  #end = null;
  #ringingOut = 0;
  /** @type {CountIn | null} the one to begin with */
  #nextCountIn = null;
  /** @type {CountIn | null} what a loop starts over with */
  #passCountIn = null;
  /** @type {CountIn | null} the one under way */
  #countIn = null;
  /** How much of it was rendered, in milliseconds of score time, and how many of its clicks. */
  #countedIn = 0;
  #clicks = 0;
  /** @type {Float32Array | null} what fades out over the next samples, of two channels */
  #fading = null;
  /** @type {SynthEvent[] | null} where events are held back until their sample comes */
  #held = null;
  #dispatch;
  #banksToCome = false;

  /**
   * @param {number} sampleRate samples a second
   * @param {SampleOutput} output
   */
  constructor(sampleRate, output) {
    const clear = () => this.#clear(output);
    super(silentOutput(sampleRate, { ...output, clear }), 0);
    this.#sampleRate = sampleRate;
    this.#presentationTimes = new PresentationTimeMap(sampleRate);
    const synthesizer = this.#synthesizer;
    this.#instruments = new Instruments(synthesizer);
    this.#dispatch = synthesizer.dispatchEvent.bind(synthesizer);
    synthesizer.dispatchEvent = (event) => {
      if (this.#held) {
        this.#held.push(event);
      } else {
        this.#dispatch(event);
      }
    };
  }

  /** Samples a second. */
  get sampleRate() {
    return this.#sampleRate;
  }

  /** What it sounds like. */
  get instruments() {
    return this.#instruments;
  }

  get #sequencer() {
    return sequencerOf(this);
  }

  get #synthesizer() {
    return synthesizerOf(this);
  }

  /** Where rendering has come to, in milliseconds of score time. */
  get #renderedMs() {
    return this.#sequencer.currentTime * this.#sequencer.playbackSpeed;
  }

  /** @override Left to itself alphaTab would be ready once for each bank. */
  get isReadyForPlayback() {
    return super.isReadyForPlayback && !this.#banksToCome;
  }

  /**
   * @param {CountIn | null} countIn what the next start begins with; while one is under way it starts over with this
   */
  setCountIn(countIn) {
    this.#nextCountIn = countIn;
    if (this.#countIn) {
      this.#beginCountIn(countIn);
    }
  }

  /** @param {CountIn | null} countIn what each pass of a loop but the first one begins with */
  setPassCountIn(countIn) {
    this.#passCountIn = countIn;
  }

  /**
   * @override
   * @param {import("@coderline/alphatab").midi.MidiFile} midi
   */
  loadMidiFile(midi) {
    this.#instruments.setEvents(midi.events);
    super.loadMidiFile(midi);
  }

  /**
   * @override
   * @param {Map<number, number>} semitones by channel
   */
  applyTranspositionPitches(semitones) {
    this.#instruments.setTranspositions(semitones);
    super.applyTranspositionPitches(semitones);
  }

  /**
   * @param {Uint8Array[]} banks in place of those before; of two with the same sound the later one's sounds
   */
  loadBanks(banks) {
    banks.forEach((bank, index) => {
      this.#banksToCome = index + 1 < banks.length;
      this.loadSoundFont(bank, index > 0);
    });
    if (this.#sequencer.currentTime > 0 && this.state !== alphaTab.synth.PlayerState.Playing) {
      this.#comeHereAgain();
    }
  }

  /** On the way to this position the score chose sounds that were not there yet. */
  #comeHereAgain() {
    const sequencer = this.#sequencer;
    const { currentTime, mainPlaybackRange } = sequencer;
    // To where it is alphaTab does not seek, and to the beginning not while there is a range.
    sequencer.mainPlaybackRange = null;
    sequencer.mainSeek(0);
    sequencer.mainPlaybackRange = mainPlaybackRange;
    this.timePosition = currentTime;
  }

  /** @override */
  play() {
    const playing = super.play();
    if (playing) {
      this.#beginCountIn(this.#nextCountIn);
    }
    return playing;
  }

  /** @override */
  pause() {
    const playing = this.state === alphaTab.synth.PlayerState.Playing;
    const presentedMs = this.#presentedMs;
    this.#countIn = null;
    super.pause();
    if (playing) {
      // Back from what was rendered to what was presented.
      this.timePosition = presentedMs / this.#sequencer.playbackSpeed;
    }
  }

  /** @override */
  stop() {
    this.#countIn = null;
    super.stop();
  }

  /**
   * @override
   * @param {number} speed
   */
  updatePlaybackSpeed(speed) {
    this.#sequencer.playbackSpeed = speed;
    this.#addPosition(false);
    this.#report(this.#presentedMs, true);
  }

  /**
   * @param {number} least how many frames are wanted
   * @returns {Float32Array | null} at least as many, left and right alternately, until the next call; null when there
   *     is nothing more to play
   */
  render(least) {
    if (this.state !== alphaTab.synth.PlayerState.Playing || this.#end !== null) {
      return null;
    }
    const samples = this.#silence((least + step) * 2);
    let frames = 0;
    while (frames < least && this.#end === null) {
      const count = this.#renderStep(samples, frames);
      this.#mixFading(samples, frames, count);
      frames += count;
      this.#rendered += count;
    }
    for (let i = 0; i < frames * 2; i++) {
      samples[i] /= fullScale;
    }
    return samples.subarray(0, frames * 2);
  }

  /** @param {number} length */
  #silence(length) {
    if (this.#samples.length < length) {
      this.#samples = new Float32Array(length);
    }
    return this.#samples.fill(0, 0, length);
  }

  /** How many frames of the stream were rendered; no later one can be heard. */
  get rendered() {
    return this.#rendered;
  }

  /**
   * The frame of the stream with which the next note begins; undefined when none was rendered that was not presented.
   */
  get nextNote() {
    return /** @type {number | undefined} */ (this.#notes[0]);
  }

  /**
   * Reports the position where a note begins, and in between now and then.
   *
   * @param {number} frame of the stream that is presented now
   */
  presented(frame) {
    if (this.state !== alphaTab.synth.PlayerState.Playing) {
      return;
    }
    const presented = this.#presentationTimes.at(frame);
    if (presented) {
      this.#presentedMs = presented.position;
      const noteBegins = this.#notes[0] <= frame;
      while (this.#notes[0] <= frame) {
        this.#notes.shift();
      }
      if (noteBegins || presented.startsOver || frame - this.#reportedFrame >= this.#sampleRate / reportsPerSecond) {
        this.#reportedFrame = frame;
        this.#report(presented.position, presented.startsOver);
      }
    }
    if (this.#end !== null && frame >= this.#end) {
      this.stop();
    }
  }

  /**
   * @param {Float32Array} samples
   * @param {number} at frame in `samples`
   * @returns {number} how many frames were rendered, at most `step`
   */
  #renderStep(samples, at) {
    if (this.#countIn) {
      return this.#renderCountIn(this.#countIn, samples, at);
    }
    const left = this.#framesLeft();
    if (left >= 1) {
      const count = Math.min(step, left);
      this.#renderScore(samples, at, count);
      return count;
    }
    if (this.isLooping) {
      this.#startOver();
      return 0;
    }
    return this.#ringOut(samples, at);
  }

  /**
   * The events of a step that is cut short by the end of the range, and lie behind it, are dropped.
   *
   * @param {Float32Array} samples
   * @param {number} at
   * @param {number} count at most `step`
   */
  #renderScore(samples, at, count) {
    const begin = this.#renderedMs;
    const perFrame = (1000 / this.#sampleRate) * this.#sequencer.playbackSpeed;
    /** @type {SynthEvent[]} */
    const events = [];
    this.#held = events;
    this.#sequencer.fillMidiEventQueue();
    this.#held = null;
    let done = 0;
    for (const event of events) {
      const due = Math.round((event.time - begin) / perFrame);
      if (due >= count && count < step) {
        break;
      }
      if (due > done) {
        this.#synthesizer.synthesize(samples, (at + done) * 2, due - done);
        done = due;
      }
      this.#dispatch(event);
      if (event.event?.type === alphaTab.midi.MidiEventType.NoteOn) {
        this.#noteBegins(this.#rendered + done);
      }
    }
    if (count > done) {
      this.#synthesizer.synthesize(samples, (at + done) * 2, count - done);
    }
  }

  /** @param {number} frame */
  #noteBegins(frame) {
    if (this.#notes.at(-1) !== frame) {
      this.#notes.push(frame);
    }
  }

  /** How many frames there are up to the end of the score, or of the range. */
  #framesLeft() {
    const sequencer = this.#sequencer;
    const range = sequencer.mainPlaybackRange;
    const end = range ? sequencer.mainTickPositionToTimePosition(range.endTick) : sequencer.currentEndTime;
    return Math.round(((end - sequencer.currentTime) * this.#sampleRate) / 1000);
  }

  #startOver() {
    const fading = new Float32Array(fadeLength * 2);
    this.#synthesizer.synthesize(fading, 0, fadeLength);
    for (let i = 0; i < fading.length; i++) {
      fading[i] *= 1 - (i >> 1) / fadeLength;
    }
    const range = this.#sequencer.mainPlaybackRange;
    this.#sequencer.mainSeek(range ? this.#sequencer.mainTickPositionToTimePosition(range.startTick) : 0);
    this.#synthesizer.synthesizeSilent(step);
    this.#fading = fading;
    this.#ringingOut = 0;
    this.#addPosition(true);
    if (this.#framesLeft() < 1) {
      // A range without length would start over for ever.
      this.#end = this.#rendered;
    } else {
      this.#beginCountIn(this.#passCountIn);
    }
  }

  /**
   * @param {Float32Array} samples
   * @param {number} at
   * @param {number} count
   */
  #mixFading(samples, at, count) {
    const fading = this.#fading;
    if (fading) {
      const length = Math.min(count * 2, fading.length);
      for (let i = 0; i < length; i++) {
        samples[at * 2 + i] += fading[i];
      }
      this.#fading = length < fading.length ? fading.subarray(length) : null;
    }
  }

  /**
   * @param {Float32Array} samples
   * @param {number} at
   */
  #ringOut(samples, at) {
    if (this.#ringingOut === 0) {
      this.#synthesizer.noteOffAll(false);
    }
    if (this.#synthesizer.activeVoiceCount === 0 || this.#ringingOut > longestEnd * this.#sampleRate) {
      this.#end = this.#rendered;
      return 0;
    }
    this.#synthesizer.synthesize(samples, at * 2, step);
    this.#ringingOut += step;
    return step;
  }

  /** @param {CountIn | null} countIn */
  #beginCountIn(countIn) {
    this.#countIn = countIn && countIn.beats > 0 ? countIn : null;
    this.#countedIn = 0;
    this.#clicks = 0;
    this.#addPosition(false);
  }

  /**
   * @param {CountIn} countIn
   * @param {Float32Array} samples
   * @param {number} at
   */
  #renderCountIn(countIn, samples, at) {
    const perFrame = (1000 / this.#sampleRate) * this.#sequencer.playbackSpeed;
    const next = Math.min(this.#clicks, countIn.beats);
    const until = Math.round((next * countIn.beatLength - this.#countedIn) / perFrame);
    if (until > 0) {
      const count = Math.min(step, until);
      this.#synthesizer.synthesize(samples, at * 2, count);
      this.#countedIn += count * perFrame;
      return count;
    }
    if (this.#clicks < countIn.beats) {
      const channel = this.#clicks % countIn.barBeats === 0 ? countIn.first : countIn.others;
      this.#synthesizer.channelSetBankPreset(channel, countIn.bank.number, countIn.bank.program);
      this.#synthesizer.channelNoteOn(channel, countIn.key, countIn.velocity);
      this.#clicks++;
    } else {
      this.#countIn = null;
      this.#addPosition(false);
    }
    return 0;
  }

  /** @param {boolean} startsOver */
  #addPosition(startsOver) {
    const speed = this.#countIn ? 0 : this.#sequencer.playbackSpeed;
    this.#presentationTimes.add({ frame: this.#rendered, position: this.#renderedMs, speed, startsOver });
  }

  /**
   * @param {number} scoreMs
   * @param {boolean} isSeek
   */
  #report(scoreMs, isSeek) {
    reportTime(this, scoreMs / this.#sequencer.playbackSpeed, isSeek);
  }

  /** @param {SampleOutput} output */
  #clear(output) {
    output.clear();
    this.#presentationTimes.clear();
    this.#rendered = 0;
    this.#notes = [];
    this.#presentedMs = this.#renderedMs;
    this.#reportedFrame = -Infinity;
    this.#end = null;
    this.#ringingOut = 0;
    this.#fading = null;
    this.#addPosition(false);
  }
}
