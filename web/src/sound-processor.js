// @ts-check
import { SampleQueue } from "./sample-queue.js";

/**
 * The last station before the loudspeaker, in the audio thread. It asks the synthesizer's worker for samples over a
 * port of their own, so that nothing the page is busy with holds up the sound.
 *
 * @typedef {{ port?: MessagePort, latency?: number, brace?: number }} FromPage latency in frames: by how much later
 *     than here a sample is heard than what is reported of it is seen; below zero when it is heard first; brace: for how
 *     many frames the page will keep the processor busy
 * @typedef {{ stream: number, samples?: Float32Array, notes?: number[], playing?: boolean }} FromSynth notes: frames of
 *     the stream that the synthesizer wants to be told of as soon as they are heard
 * @typedef {{ stream: number, want?: number, heard?: number }} ToSynth frames
 */

/** How many frames are kept ahead. The more, the longer a mute takes to be heard; the fewer, the sooner it stutters. */
const least = 1280;
const most = 8192;

/** What is added after the queue ran dry. */
const increase = 512;

/** Frames asked for at a time. */
const portion = 512;

/** After how many frames the synthesizer is told again what is heard. */
const reportEvery = 1536;

/** After how many at the soonest, when a note begins. */
const reportSoonest = 256;

/** How long a sound that is broken off takes to fade, in frames. */
const fadeLength = 256;

const { AudioWorkletProcessor, registerProcessor } = /** @type {any} */ (globalThis);

class SoundProcessor extends AudioWorkletProcessor {
  #queue = new SampleQueue();
  #ahead = least;
  #asked = 0;
  #playing = false;
  /** Counts the streams: a seek begins a new one, and answers for the one before are dropped. */
  #stream = 0;
  #taken = 0;
  #latency = 0;
  /** For how many frames to come as much as possible is kept ahead. */
  #braced = 0;
  /** How many frames had been taken at each of the last calls. @type {number[]} */
  #history = [];
  #sinceReport = 0;
  /** @type {number[]} those of which the synthesizer has not been told yet */
  #notes = [];
  /** @type {[Float32Array, Float32Array]} */
  #fade = [new Float32Array(0), new Float32Array(0)];
  #faded = 0;
  /** @type {MessagePort | undefined} */
  #synth;

  constructor() {
    super();
    this.port.onmessage = (/** @type {MessageEvent<FromPage>} */ event) => {
      const { port, latency, brace } = event.data;
      if (port) {
        this.#synth = port;
        port.onmessage = (message) => this.#listen(message.data);
      }
      this.#latency = latency ?? this.#latency;
      this.#braced = brace ?? this.#braced;
    };
  }

  /** @param {FromSynth} message */
  #listen({ stream, samples, notes, playing }) {
    if (stream > this.#stream) {
      this.#breakOff();
      this.#stream = stream;
    }
    if (playing !== undefined) {
      if (!playing) {
        this.#breakOff();
      }
      this.#playing = playing;
    }
    if (samples && stream === this.#stream) {
      this.#asked = Math.max(this.#asked - portion, 0);
      this.#queue.push(samples);
      this.#notes.push(...(notes ?? []));
    }
  }

  /** Drops what is waiting; a little of it fades out, as a sound that ends at once clicks. */
  #breakOff() {
    const fade = /** @type {[Float32Array, Float32Array]} */ ([new Float32Array(fadeLength), new Float32Array(fadeLength)]);
    if (this.#playing) {
      this.#queue.take(...fade);
      for (const channel of fade) {
        channel.forEach((sample, frame) => (channel[frame] = sample * (1 - frame / fadeLength)));
      }
      this.#fade = fade;
      this.#faded = 0;
    }
    this.#queue.clear();
    this.#asked = 0;
    this.#taken = 0;
    this.#history = [];
    this.#sinceReport = 0;
    this.#notes = [];
  }

  /**
   * @param {Float32Array[][]} _inputs
   * @param {Float32Array[][]} outputs
   */
  process(_inputs, outputs) {
    const [left, right] = outputs[0];
    if (this.#playing) {
      const taken = this.#queue.take(left, right);
      if (taken < left.length && taken > 0) {
        this.#ahead = Math.min(this.#ahead + increase, most);
      }
      this.#taken += taken;
      this.#braced = Math.max(this.#braced - left.length, 0);
      this.#ask();
      this.#report(left.length);
    }
    this.#mixFade(left, right);
    return true;
  }

  #ask() {
    const ahead = this.#braced > 0 ? most : this.#ahead;
    while (this.#queue.length + this.#asked < ahead) {
      this.#asked += portion;
      this.#send({ stream: this.#stream, want: portion });
    }
  }

  /** @param {number} frames how many went by */
  #report(frames) {
    this.#history.push(this.#taken);
    const kept = Math.round(Math.max(this.#latency, 0) / frames) + 1;
    if (this.#history.length > kept) {
      this.#history.splice(0, this.#history.length - kept);
    }
    this.#sinceReport += frames;
    if (this.#history.length < kept) {
      return;
    }
    const heard = this.#history[0] + Math.max(-this.#latency, 0);
    const due = this.#notes[0] <= heard ? reportSoonest : reportEvery;
    if (this.#sinceReport >= due) {
      this.#sinceReport = 0;
      while (this.#notes[0] <= heard) {
        this.#notes.shift();
      }
      this.#send({ stream: this.#stream, heard });
    }
  }

  /**
   * @param {Float32Array} left
   * @param {Float32Array} right
   */
  #mixFade(left, right) {
    const [fadeLeft, fadeRight] = this.#fade;
    const count = Math.min(left.length, fadeLeft.length - this.#faded);
    for (let i = 0; i < count; i++) {
      left[i] += fadeLeft[this.#faded + i];
      right[i] += fadeRight[this.#faded + i];
    }
    this.#faded += count;
  }

  /** @param {ToSynth} message */
  #send(message) {
    this.#synth?.postMessage(message);
  }
}

registerProcessor("quaverly-sound", SoundProcessor);
