// @ts-check
import "../../vendor/alphaTab.min.js";
import { alphaTab } from "../shared/alphatab.js";
import { HeardClock } from "./heard-clock.js";
import { PracticeSynth } from "./practice-synth.js";
import { SampleRing } from "../audio/sample-ring.js";
import { collectThoroughly } from "../shared/garbage.js";

/**
 * The synthesizer at work in its worker. It speaks alphaTab's own language with alphaTab's player on the page, and
 * answers the audio thread, which asks for samples over a port of their own.
 *
 * @typedef {{ cmd: string } & Record<string, any>} Command
 */

const { JsonConverter } = alphaTab.model;

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

/** @type {Record<string, (synth: PracticeSynth, command: Command) => void>} */
const operations = {
  play: (synth) => synth.play(),
  pause: (synth) => synth.pause(),
  playPause: (synth) => synth.playPause(),
  stop: (synth) => synth.stop(),
  loadSoundFontBytes: (synth, { data, append }) => synth.loadSoundFont(data, append),
  loadBanks: (synth, { banks }) => synth.loadBanks(banks),
  resetSoundFonts: (synth) => synth.resetSoundFonts(),
  loadMidi: (synth, { midi }) => synth.loadMidiFile(JsonConverter.jsObjectToMidiFile(midi)),
  setChannelMute: (synth, { channel, mute }) => synth.setChannelMute(channel, mute),
  setChannelSolo: (synth, { channel, solo }) => synth.setChannelSolo(channel, solo),
  setChannelVolume: (synth, { channel, volume }) => synth.setChannelVolume(channel, volume),
  setChannelTranspositionPitch: (synth, { channel, semitones }) => synth.setChannelTranspositionPitch(channel, semitones),
  resetChannelStates: (synth) => synth.resetChannelStates(),
  applyTranspositionPitches: (synth, { transpositionPitches }) => synth.applyTranspositionPitches(transpositionPitches),
  setCountIn: (synth, { countIn }) => synth.setCountIn(countIn),
  tellSoundsInUse: (synth, { answer }) => answer.postMessage(synth.instruments.inUse()),
  tidy: () => collectThoroughly(),
  replaceSound: (synth, { index, sound }) => synth.instruments.replace(index, sound),
};

/** The way to the audio thread. */
class Line {
  #port;
  #ring;
  #stream = 0;
  /** Frames of the stream that are on their way. */
  #sent = 0;
  /** @type {HeardClock | undefined} */
  #clock;

  /**
   * @param {MessagePort} port
   * @param {SharedArrayBuffer | null} memory of the ring that the audio thread reads; null when samples are to be posted
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
    const clock = new HeardClock(synth);
    this.#clock = clock;
    this.#port.onmessage = ({ data }) => {
      const { stream, want, heard, at } = /** @type {import("./sound-processor.js").ToSynth} */ (data);
      if (stream !== this.#stream) {
        return;
      }
      const samples = want > this.#sent ? synth.render(want - this.#sent) : null;
      if (samples) {
        this.#sent += samples.length / 2;
        if (this.#ring) {
          this.#ring.write(samples);
        } else {
          this.#send({ samples });
        }
      }
      if (heard !== undefined) {
        clock.set(heard, at);
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
  const tell = (cmd, details) => page.postMessage({ cmd: `alphaSynth.${cmd}`, ...details });
  synth.positionChanged.on((args) => tell("positionChanged", { args }));
  synth.stateChanged.on(({ state, stopped }) => tell("playerStateChanged", { state, stopped }));
  synth.soundFontLoaded.on(() => tell("soundFontLoaded"));
  synth.soundFontLoadFailed.on((error) => tell("soundFontLoadFailed", { error }));
  synth.midiLoaded.on((args) => tell("midiLoaded", { args }));
  synth.midiLoadFailed.on((error) => tell("midiLoadFailed", { error }));
  synth.readyForPlayback.on(() => tell("readyForPlayback"));
  synth.playbackRangeChanged.on(({ playbackRange }) => tell("playbackRangeChanged", { playbackRange }));
  tell("ready");
}

/**
 * @param {MessagePort} page
 * @param {MessagePort} loudspeaker
 * @param {SharedArrayBuffer | null} ring
 */
export function serve(page, loudspeaker, ring) {
  const line = new Line(loudspeaker, ring);
  /** @type {PracticeSynth | undefined} */
  let synth;
  page.onmessage = ({ data }) => {
    const command = /** @type {Command} */ (data);
    const name = command.cmd.replace("alphaSynth.", "");
    if (name === "initialize") {
      alphaTab.Logger.logLevel = command.logLevel;
      synth = new PracticeSynth(command.sampleRate, {
        start: () => {
          line.start();
          page.postMessage({ cmd: "alphaSynth.output.play" });
        },
        stop: () => {
          line.stop();
          page.postMessage({ cmd: "alphaSynth.output.pause" });
        },
        clear: () => line.clear(),
      });
      line.serve(synth);
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
