// @ts-check
import { isAccented, levels as clickLevels } from "../clicks/click-pattern.js";
import { clickSamples } from "../clicks/click-sounds.js";
import { OutputWatch } from "../audio/output-watch.js";
import { Emitter } from "../shared/emitter.js";
import { callbackSeconds, watchOutputLatency } from "../audio/output-latency.js";
import { decodeBackingTrack } from "./decode/backing-track-decoder.js";
import { collectGarbage } from "../shared/garbage.js";

/**
 * The page's side of a backing track that plays: has it decoded, and posts to the audio thread. To alphaTab it is a
 * medium that plays beside it. Times are milliseconds of the backing track.
 *
 * @typedef {import("@coderline/alphatab").synth.IExternalMediaHandler} MediaHandler
 * @typedef {import("./backing-tracks.js").BackingTrack} BackingTrack
 * @typedef {import("./backing-track-processor.js").FromPage} FromPage
 * @typedef {import("./backing-track-processor.js").ToPage} ToPage
 * @typedef {import("./backing-track-processor.js").Returned} Returned
 * @typedef {import("./stretch/decoded-track.js").Chunk} Chunk
 * @typedef {{ from: number, to: number }} Loop
 * @typedef {{ ms: number, level: number }} TimedClick
 *
 * @typedef {object} Ticking
 * @property {number} levels clicks of a lower level than this sound
 * @property {import("../clicks/click-sounds.js").SoundName} sound
 * @property {boolean} accent whether the first beat of a bar sounds otherwise
 * @property {number} volume 0 to 1
 */

/** How long after the last sound the audio context is suspended. */
const suspendDelayMs = 15000;

/** How long a change of volume takes to a third, in seconds: none at all would click. */
const volumeSeconds = 0.005;

/** A seek that is no longer than this does nothing, in milliseconds. */
const sameMs = 1;

/**
 * So long before the end of the loop alphaTab is kept in it, in milliseconds: the stream starts over by itself. What
 * is reported early because drawing takes time would otherwise be behind the end.
 */
const loopEndMarginMs = 2;

/** @implements {MediaHandler} */
export class BackingTrackPlayer {
  /** @type {Emitter<number>} what is presented while playing; at each pass of a loop its very end too */
  presented = new Emitter();
  /** @type {Emitter<void>} the backing track is over */
  ended = new Emitter();
  /** @type {Emitter<string>} why nothing can be played */
  failed = new Emitter();
  /** alphaTab asks for it only behind the last position where score and backing track are known to meet. */
  backingTrackDuration = Infinity;
  /** @type {AudioContext | undefined} */
  #context;
  /** @type {OutputWatch | undefined} */
  #watch;
  /** @type {GainNode | undefined} */
  #gain;
  /** @type {AudioWorkletNode | undefined} */
  #node;
  /** @type {Chunk[]} what the audio thread gets once it runs */
  #chunks = [];
  /** @type {BackingTrack | null} */
  #backingTrack = null;
  #playing = false;
  #speed = 1;
  #volume = 1;
  /** @type {Loop | null} */
  #loop = null;
  /** @type {TimedClick[]} */
  #clicks = [];
  /** @type {Ticking} */
  #ticking = { levels: 0, sound: "woodblock", accent: true, volume: 0 };
  /** Counts the seeks: what was reported before the last one is stale. */
  #generation = 0;
  #presentedMs = 0;
  #startingOver = false;
  /** @type {ReturnType<typeof setTimeout> | undefined} */
  #sleep;

  /** @param {BackingTrack | null} backingTrack null for silence */
  load(backingTrack) {
    if (backingTrack !== this.#backingTrack) {
      this.#backingTrack = backingTrack;
      this.#chunks = [];
      this.#post({ sound: null });
      if (backingTrack) {
        void this.#decode(backingTrack);
      }
    }
  }

  get playbackRate() {
    return this.#speed;
  }

  set playbackRate(speed) {
    this.#speed = speed;
    this.#post({ speed });
  }

  get masterVolume() {
    return this.#volume;
  }

  set masterVolume(volume) {
    this.#volume = volume;
    if (!this.#context || !this.#gain) {
      return;
    }
    const { gain } = this.#gain;
    if (this.#playing) {
      gain.setTargetAtTime(volume, this.#context.currentTime, volumeSeconds);
    } else {
      // What begins now, or when the context wakes, would begin with the change.
      gain.cancelScheduledValues(0);
      gain.value = volume;
    }
  }

  /** @param {number} ms */
  seekTo(ms) {
    if (this.#startingOver || (this.#playing && Math.abs(ms - this.#presentedMs) < sameMs)) {
      return;
    }
    this.#presentedMs = ms;
    this.#generation++;
    this.#post({ seek: this.#seek });
  }

  play() {
    clearTimeout(this.#sleep);
    this.#playing = true;
    this.#open();
    this.#watch?.wake();
    this.#post({ playing: true });
  }

  pause() {
    this.#playing = false;
    this.#post({ playing: false });
    // Back from what was handed over to what was presented.
    this.seekTo(this.#presentedMs);
    this.#fallAsleep();
  }

  /** @param {Loop | null} loop what is played over and over */
  setLoop(loop) {
    this.#loop = loop;
    this.#post({ loop });
  }

  /** @param {TimedClick[]} clicks in rising order of time */
  setClicks(clicks) {
    this.#clicks = clicks;
    this.#post({ clicks: timesOf(clicks) });
  }

  /** @param {Ticking} ticking */
  setTicking(ticking) {
    const before = this.#ticking;
    this.#ticking = ticking;
    const { levels, sound, accent, volume } = ticking;
    const same =
      levels === before.levels && sound === before.sound && accent === before.accent && volume === before.volume;
    if (this.#context && !same) {
      this.#post({ ticking: this.#clickSounds(this.#context) });
    }
  }

  /** Has the audio thread collect its garbage, for which nobody may be listening. */
  collectGarbage() {
    this.#post({ collect: true });
  }

  get #seek() {
    return { position: Math.max(this.#presentedMs, 0), generation: this.#generation };
  }

  /** @param {AudioContext} context */
  #clickSounds({ sampleRate }) {
    const { levels, sound, accent, volume } = this.#ticking;
    /** @type {(accented: boolean) => Float32Array} */
    const click = (accented) => clickSamples(sound, accented, sampleRate).map((sample) => sample * volume);
    return { levels, sounds: clickLevels.map((level) => click(isAccented(level, accent))) };
  }

  /** @param {BackingTrack} backingTrack */
  async #decode(backingTrack) {
    try {
      for await (const chunk of decodeBackingTrack(backingTrack.file, this.#open().sampleRate)) {
        if (backingTrack !== this.#backingTrack) {
          return;
        }
        this.#handOver(chunk);
      }
      // What the decoder wrote is many times what is kept of it.
      collectGarbage();
    } catch (reason) {
      if (backingTrack === this.#backingTrack) {
        this.failed.trigger(`The recording cannot be played: ${reason instanceof Error ? reason.message : reason}`);
      }
    }
  }

  #open() {
    if (!this.#context) {
      this.#context = new AudioContext({ latencyHint: callbackSeconds });
      this.#watch = new OutputWatch(this.#context);
      this.#gain = new GainNode(this.#context, { gain: this.#volume });
      this.#gain.connect(this.#context.destination);
      void this.#connect(this.#context, this.#gain);
      this.#fallAsleep();
    }
    return this.#context;
  }

  /**
   * @param {AudioContext} context
   * @param {GainNode} gain
   */
  async #connect(context, gain) {
    await context.audioWorklet.addModule(new URL("./backing-track-processor.js", import.meta.url));
    const node = new AudioWorkletNode(context, "quaverly-backing-track", {
      numberOfInputs: 0,
      outputChannelCount: [2],
    });
    node.port.onmessage = (/** @type {MessageEvent<ToPage | Returned>} */ { data }) => {
      if ("generation" in data) {
        this.#receive(data);
      }
    };
    node.connect(gain);
    this.#node = node;
    this.#post({
      seek: this.#seek,
      speed: this.#speed,
      loop: this.#loop,
      clicks: timesOf(this.#clicks),
      ticking: this.#clickSounds(context),
      playing: this.#playing,
    });
    for (const chunk of this.#chunks.splice(0)) {
      this.#handOver(chunk);
    }
    watchOutputLatency(context, (latency) => this.#post({ latency }));
  }

  /** @param {Chunk} chunk of the backing track */
  #handOver(chunk) {
    if (this.#node) {
      this.#post({ chunk }, [chunk.onsets.buffer, ...chunk.blocks.flat().map(({ buffer }) => buffer)]);
    } else {
      this.#chunks.push(chunk);
    }
  }

  /**
   * Posts to the audio thread; before that runs nothing is posted, and it begins with the present state.
   *
   * @param {FromPage} message
   * @param {Transferable[]} [transfer]
   */
  #post(message, transfer = []) {
    this.#node?.port.postMessage(message, transfer);
  }

  /** @param {ToPage} report */
  #receive({ generation, position, startsOver, ended }) {
    if (generation !== this.#generation || !this.#playing) {
      return;
    }
    const loop = this.#loop;
    if (startsOver && loop) {
      // alphaTab goes back to the beginning of the loop when its end is reported; the sound is there already.
      this.#startingOver = true;
      this.presented.trigger(loop.to);
      this.#startingOver = false;
    }
    const inLoop = loop !== null && (startsOver || this.#presentedMs < loop.to);
    this.#presentedMs = inLoop ? Math.min(position, loop.to - loopEndMarginMs) : position;
    this.presented.trigger(this.#presentedMs);
    if (ended) {
      this.ended.trigger();
    }
  }

  #fallAsleep() {
    clearTimeout(this.#sleep);
    this.#sleep = setTimeout(() => this.#watch?.sleep(), suspendDelayMs);
  }
}

/** @param {TimedClick[]} clicks */
function timesOf(clicks) {
  return { times: Float64Array.from(clicks, ({ ms }) => ms), levels: Uint8Array.from(clicks, ({ level }) => level) };
}
