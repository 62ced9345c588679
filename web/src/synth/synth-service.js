// @ts-check
import "../../vendor/alphaTab.min.js";
import { alphaTab } from "../shared/alphatab.js";
import { MidiInParts } from "./midi-parts.js";
import { PlaybackClock } from "./playback-clock.js";
import { PracticeSynth } from "./practice-synth.js";
import { SampleRing } from "../audio/sample-ring.js";
import { collectGarbage, collectThoroughly } from "../shared/garbage.js";

/**
 * The synthesizer at work in its worker. It understands the messages of alphaTab's player on the page, and
 * answers the audio thread, which requests samples over a port of their own.
 *
 * @typedef {{ cmd: string } & Record<string, any>} Command
 */

/** What the page's player sets by assigning a property, by the name of the command. */
const properties = /** @type {const} */ ({
  setLogLevel: "logLevel",
  setMasterVolume: "masterVolume",
  setMetronomeVolume: "metronomeVolume",
  setPlaybackSpeed: "playbackSpeed",
  setTickPosition: "tickPosition",
  setTimePosition: "timePosition",
  setPlaybackRange: "playbackRange",
  setIsLooping: "isLooping",
});

/** What as many leave when they are handed over. */
const manyEvents = 50_000;

const midiInParts = new MidiInParts();

/** @type {Record<string, (synth: PracticeSynth, command: Command) => void>} */
const operations = {
  play: (synth) => synth.play(),
  pause: (synth) => synth.pause(),
  playPause: (synth) => synth.playPause(),
  stop: (synth) => synth.stop(),
  loadSoundFontBytes: (synth, { data, append }) => synth.loadSoundFont(data, append),
  loadBanks: (synth, { banks }) => synth.loadBanks(banks),
  resetSoundFonts: (synth) => synth.resetSoundFonts(),
  loadMidiPart: (synth, { part }) => {
    const midi = midiInParts.add(part);
    if (midi) {
      synth.loadMidiFile(midi);
      if (midi.events.length > manyEvents) {
        collectGarbage();
      }
    }
  },
  setChannelMute: (synth, { channel, mute }) => synth.setChannelMute(channel, mute),
  setChannelSolo: (synth, { channel, solo }) => synth.setChannelSolo(channel, solo),
  setChannelVolume: (synth, { channel, volume }) => synth.setChannelVolume(channel, volume),
  setChannelTranspositionPitch: (synth, { channel, semitones }) =>
    synth.setChannelTranspositionPitch(channel, semitones),
  resetChannelStates: (synth) => synth.resetChannelStates(),
  applyTranspositionPitches: (synth, { transpositionPitches }) => synth.applyTranspositionPitches(transpositionPitches),
  setCountIn: (synth, { countIn }) => synth.setCountIn(countIn),
  setPassCountIn: (synth, { countIn }) => synth.setPassCountIn(countIn),
  postSoundsInUse: (synth, { answer }) => answer.postMessage(synth.instruments.inUse()),
  ping: (_, { answer }) => answer.postMessage(null),
  collect: () => collectThoroughly(),
  replaceSound: (synth, { index, sound }) => synth.instruments.replace(index, sound),
};

/** The way to the audio thread. */
class SamplePort {
  #port;
  #ring;
  #stream = 0;
  /** Frames of the stream that are on their way. */
  #sent = 0;
  /** @type {PlaybackClock | undefined} */
  #clock;

  /**
   * @param {MessagePort} port
   * @param {SharedArrayBuffer | null} memory of the ring that the audio thread reads; null when samples are to be
   *     posted
   */
  constructor(port, memory) {
    this.#port = port;
    this.#ring = memory && new SampleRing(memory);
  }

  start() {
    this.#send({ playing: true });
  }

  stop() {
    this.#clock?.stop();
    this.#send({ playing: false });
  }

  clear() {
    this.#clock?.stop();
    this.#stream++;
    this.#sent = 0;
    this.#send({});
  }

  /** @param {PracticeSynth} synth who answers */
  serve(synth) {
    const clock = new PlaybackClock(synth);
    this.#clock = clock;
    this.#port.onmessage = ({ data }) => {
      const { stream, wanted, presented, at } = /** @type {import("./sound-processor.js").ToSynth} */ (data);
      if (stream !== this.#stream) {
        return;
      }
      const samples = wanted > this.#sent ? synth.render(wanted - this.#sent) : null;
      if (samples) {
        this.#sent += samples.length / 2;
        if (this.#ring) {
          this.#ring.write(samples);
        } else {
          this.#send({ samples });
        }
      }
      if (presented !== undefined) {
        clock.set(presented, at);
      }
    };
  }

  /** @param {Omit<import("./sound-processor.js").FromSynth, "stream">} message */
  #send(message) {
    this.#port.postMessage({ stream: this.#stream, ...message });
  }
}

/**
 * @param {PracticeSynth} synth
 * @param {MessagePort} page
 */
function report(synth, page) {
  /** @type {(cmd: string, details?: object) => void} */
  const post = (cmd, details) => page.postMessage({ cmd: `alphaSynth.${cmd}`, ...details });
  synth.positionChanged.on((args) => post("positionChanged", { args }));
  synth.stateChanged.on(({ state, stopped }) => post("playerStateChanged", { state, stopped }));
  synth.soundFontLoaded.on(() => post("soundFontLoaded"));
  synth.soundFontLoadFailed.on((error) => post("soundFontLoadFailed", { error }));
  synth.midiLoaded.on((args) => post("midiLoaded", { args }));
  synth.midiLoadFailed.on((error) => post("midiLoadFailed", { error }));
  synth.readyForPlayback.on(() => post("readyForPlayback"));
  synth.playbackRangeChanged.on(({ playbackRange }) => post("playbackRangeChanged", { playbackRange }));
  post("ready");
}

/**
 * @param {MessagePort} page
 * @param {MessagePort} audioThread
 * @param {SharedArrayBuffer | null} ring
 */
export function serve(page, audioThread, ring) {
  const output = new SamplePort(audioThread, ring);
  /** @type {PracticeSynth | undefined} */
  let synth;
  page.onmessage = ({ data }) => {
    const command = /** @type {Command} */ (data);
    const name = command.cmd.replace("alphaSynth.", "");
    if (name === "initialize") {
      alphaTab.Logger.logLevel = command.logLevel;
      synth = new PracticeSynth(command.sampleRate, {
        start: () => {
          output.start();
          page.postMessage({ cmd: "alphaSynth.output.play" });
        },
        stop: () => {
          output.stop();
          page.postMessage({ cmd: "alphaSynth.output.pause" });
        },
        clear: () => output.clear(),
      });
      output.serve(synth);
      report(synth, page);
    } else if (name === "destroy") {
      synth?.destroy();
      page.postMessage({ cmd: "alphaSynth.output.destroy" });
      page.postMessage({ cmd: "alphaSynth.destroyed" });
    } else if (synth && name in properties) {
      const property = properties[/** @type {keyof typeof properties} */ (name)];
      /** @type {Record<string, unknown>} */ (/** @type {unknown} */ (synth))[property] = command.value;
    } else if (synth && name in operations) {
      operations[name](synth, command);
    }
  };
}
