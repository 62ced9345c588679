// @ts-check
import { SampleRing } from "../audio/sample-ring.js";

/**
 * The synthesizer's AudioWorklet, in the audio thread. It requests samples from the synthesizer's worker over a
 * port of their own, so that nothing the page is busy with holds up the sound. While it plays it allocates next to
 * nothing and receives nothing: garbage collection made it miss its callback once in ten minutes.
 *
 * @typedef {{ port?: MessagePort | null, ring?: SharedArrayBuffer | null, latency?: number, busyFrames?: number }} FromPage
 *     port: to the synthesizer that sounds from now on, null for none; ring: where the samples come, if memory can be
 *     shared; latency in frames: output latency minus drawing time, below zero when drawing is slower; busyFrames: for
 *     how many frames the page will keep the processor busy
 * @typedef {{ stream: number, samples?: Float32Array, playing?: boolean }} FromSynth samples: where memory cannot be
 *     shared
 * @typedef {{ stream: number, wanted: number, presented?: number, at: number }} ToSynth wanted, presented: up to which frame of the
 *     stream samples are wanted, and which one is presented (not begun yet below zero) at the time `at` of Date
 */

/** The look-ahead, in frames. The more, the longer a mute takes to sound; the fewer, the sooner there are dropouts. */
const least = 1536;
const most = 8192;

/** What is added after the ring ran dry. */
const increase = 512;

/**
 * How many frames at the least are requested at a time: as many as the sound system takes in one callback, as the
 * synthesizer's thread wakes up for each request.
 */
const portion = 1024;

/** After how many frames the presented frame is posted again. */
const reportEvery = 1536;

/**
 * The render quanta of one audio callback come at once, one behind the other. After so many milliseconds another
 * callback has begun.
 */
const callbackGapMs = 2;

/** How many calls are remembered: more than the latency of the slowest audio output, half a second. */
const memory = 256;

/** How long a sound that is broken off takes to fade, in frames. */
const fadeLength = 256;

const { AudioWorkletProcessor, registerProcessor } = /** @type {any} */ (globalThis);

class SoundProcessor extends AudioWorkletProcessor {
  #ring = new SampleRing(null);
  #lookAhead = least;
  #playing = false;
  /** Counts the streams: a seek begins a new one, and what comes of the one before is dropped. */
  #stream = 0;
  /** Frames of the stream that were requested, and that came. */
  #requested = 0;
  #taken = 0;
  #latency = 0;
  /** For how many frames to come the look-ahead is the longest. */
  #busyFrames = 0;
  /** Calls since the stream's first frame, and how many frames had been taken before each of the last ones. */
  #calls = 0;
  #before = new Int32Array(memory);
  /**
   * The render quantum with which the audio callback began, and when that and the last quantum came, in milliseconds.
   */
  #callback = 0;
  #callbackTime = 0;
  #lastTime = 0;
  #sinceReport = 0;
  #fadeLeft = new Float32Array(fadeLength);
  #fadeRight = new Float32Array(fadeLength);
  #faded = fadeLength;
  /** @type {MessagePort | null} */
  #synth = null;

  constructor() {
    super();
    this.port.onmessage = (/** @type {MessageEvent<FromPage>} */ event) => {
      const { port, ring, latency, busyFrames } = event.data;
      if (port !== undefined) {
        this.#connect(port);
      }
      this.#ring = ring ? new SampleRing(ring) : this.#ring;
      this.#latency = latency ?? this.#latency;
      this.#busyFrames = busyFrames ?? this.#busyFrames;
    };
  }

  /** @param {MessagePort | null} synth */
  #connect(synth) {
    this.#breakOff();
    this.#synth?.close();
    this.#synth = synth;
    this.#stream = 0;
    this.#playing = false;
    this.#lookAhead = least;
    if (synth) {
      synth.onmessage = (message) => this.#receive(message.data);
    }
  }

  /** @param {FromSynth} message */
  #receive({ stream, samples, playing }) {
    if (stream > this.#stream) {
      this.#breakOff();
      this.#stream = stream;
    }
    if (playing !== undefined) {
      if (!playing) {
        this.#breakOff();
      } else if (this.#requested === 0) {
        // A synthesizer that sounded before this one may have answered its last request late.
        this.#ring.clear();
      }
      this.#playing = playing;
    }
    if (samples && stream === this.#stream) {
      this.#ring.write(samples);
    }
  }

  /** Drops what is waiting; a little of it fades out, as a sound that ends at once clicks. */
  #breakOff() {
    if (this.#playing) {
      for (const channel of [this.#fadeLeft, this.#fadeRight]) {
        channel.fill(0);
      }
      this.#ring.take(this.#fadeLeft, this.#fadeRight);
      for (const channel of [this.#fadeLeft, this.#fadeRight]) {
        channel.forEach((sample, frame) => (channel[frame] = sample * (1 - frame / fadeLength)));
      }
      this.#faded = 0;
    }
    this.#ring.clear();
    this.#requested = 0;
    this.#taken = 0;
    this.#calls = 0;
    this.#sinceReport = 0;
  }

  /**
   * @param {Float32Array[][]} _inputs
   * @param {Float32Array[][]} outputs
   */
  process(_inputs, outputs) {
    const [left, right] = outputs[0];
    if (!left || !right) {
      // Newer versions of Chromium give no channels to a node that is being disconnected. Nobody would hear them, and an
      // exception here would end the sound for good.
      return true;
    }
    if (this.#playing) {
      this.#noticeCallback();
      const taken = this.#ring.take(left, right);
      if (taken < left.length && taken > 0) {
        this.#lookAhead = Math.min(this.#lookAhead + increase, most);
      }
      if (taken > 0 || this.#calls > 0) {
        this.#before[this.#calls++ % memory] = this.#taken;
      }
      this.#taken += taken;
      this.#busyFrames = Math.max(this.#busyFrames - left.length, 0);
      this.#sinceReport += left.length;
      this.#post(left.length);
    }
    this.#mixFade(left, right);
    return true;
  }

  #noticeCallback() {
    const now = Date.now();
    if (now - this.#lastTime >= callbackGapMs || this.#calls === 0) {
      this.#callback = this.#calls;
      this.#callbackTime = now;
    }
    this.#lastTime = now;
  }

  /** @param {number} length frames of a call */
  #post(length) {
    const missing = (this.#busyFrames > 0 ? most : this.#lookAhead) - (this.#requested - this.#taken);
    if (missing <= 0 && this.#sinceReport < reportEvery) {
      return;
    }
    if (missing > 0) {
      // The first time exactly the look-ahead: from then on the requests come when a callback begins.
      this.#requested += this.#requested === 0 ? missing : Math.ceil(missing / portion) * portion;
    }
    this.#sinceReport = 0;
    const presented = this.#calls > 0 ? this.#presentedFrame(length) : undefined;
    this.#synth?.postMessage({ stream: this.#stream, wanted: this.#requested, presented, at: this.#callbackTime });
  }

  /**
   * The frame of the stream that was presented when the audio callback began.
   *
   * @param {number} length frames of a call
   */
  #presentedFrame(length) {
    const back = Math.min(Math.round(this.#latency / length), memory - 1);
    const call = this.#callback - back;
    if (call <= 0) {
      return call * length;
    }
    // Frames that have not been taken yet are presented one quantum behind the other from now on.
    const known = Math.min(call, this.#callback);
    return this.#before[known % memory] + (call - known) * length;
  }

  /**
   * @param {Float32Array} left
   * @param {Float32Array} right
   */
  #mixFade(left, right) {
    const count = Math.min(left.length, fadeLength - this.#faded);
    for (let i = 0; i < count; i++) {
      left[i] += this.#fadeLeft[this.#faded + i];
      right[i] += this.#fadeRight[this.#faded + i];
    }
    this.#faded += count;
  }
}

registerProcessor("quaverly-sound", SoundProcessor);
