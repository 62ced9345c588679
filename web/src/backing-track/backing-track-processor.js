// @ts-check
import { PresentationTimeMap } from "../timing/presentation-time-map.js";
import { DecodedTrack } from "./stretch/decoded-track.js";
import { BackingTrackClicks } from "./backing-track-clicks.js";
import { collectThoroughly } from "../shared/garbage.js";
import { TimeStretch } from "./stretch/time-stretch.js";

/**
 * Plays a backing track in the audio thread, with the metronome beside it. Everything is counted in samples of one
 * stream: clicks, loops and changes of speed fall where they belong whatever the page is busy with.
 *
 * @typedef {object} FromPage times are milliseconds of the backing track
 * @property {null} [sound] there is none any more
 * @property {import("./stretch/decoded-track.js").Chunk} [chunk] of a backing track; playing waits for the chunk that
 *     it starts in
 * @property {boolean} [playing]
 * @property {{ position: number, generation: number }} [seek] generation: what tells reports apart from then on
 * @property {number} [speed]
 * @property {{ from: number, to: number } | null} [loop]
 * @property {{ times: Float64Array, levels: Uint8Array }} [clicks]
 * @property {import("./backing-track-clicks.js").Ticking} [ticking]
 * @property {boolean} [collect] whether garbage is to be collected
 * @property {number} [latency] in seconds: output latency minus drawing time; below zero when drawing is slower
 *
 * @typedef {object} ToPage
 * @property {number} generation
 * @property {number} position what is presented now, in milliseconds of the backing track
 * @property {boolean} startsOver whether the loop did since the last report
 * @property {boolean} ended whether the backing track is over
 *
 * @typedef {object} Returned
 * @property {ArrayBuffer[]} memory of a backing track that is not played any more
 */

/** After how many frames the presented position is posted again. */
const reportEvery = 768;

/** How long what is broken off fades out, and what begins somewhere fades in, in frames. */
const fadeOut = 256;
const fadeIn = 32;

const { AudioWorkletProcessor, registerProcessor, sampleRate } = /** @type {any} */ (globalThis);

class BackingTrackProcessor extends AudioWorkletProcessor {
  /** @type {DecodedTrack | null} */
  #sound = null;
  /** @type {TimeStretch | null} */
  #stretch = null;
  #clicks = new BackingTrackClicks(sampleRate);
  #presentationTimes = new PresentationTimeMap(sampleRate);
  #playing = false;
  /** Whether what comes next has not been decoded yet. */
  #waiting = true;
  #generation = 0;
  /** Frames of the backing track: where it starts when it comes, and afterwards whatever seek was last. */
  #start = 0;
  #speed = 1;
  /** @type {import("./stretch/time-stretch.js").Loop | null} */
  #loop = null;
  #latency = 0;
  /** Frames played since the last seek, and after how many of them the backing track was over. */
  #played = 0;
  #end = Infinity;
  #sinceReport = 0;
  #fadedIn = 0;
  /** What was broken off, and how much of it has faded out. */
  #tail = { left: new Float32Array(fadeOut), right: new Float32Array(fadeOut), done: fadeOut };

  constructor() {
    super();
    this.port.onmessage = (/** @type {MessageEvent<FromPage>} */ { data }) => this.#receive(data);
  }

  /** @param {FromPage} message */
  #receive({ sound, chunk, playing, seek, speed, loop, clicks, ticking, collect, latency }) {
    this.#latency = latency !== undefined ? Math.round(latency * sampleRate) : this.#latency;
    if (ticking) {
      this.#clicks.ticking = ticking;
    }
    if (clicks) {
      const positions = clicks.times.map(frames);
      this.#clicks.setPattern({ positions, levels: clicks.levels }, this.#stretch?.position ?? this.#start);
    }
    if (loop !== undefined) {
      this.#loop = loop && { from: frames(loop.from), to: frames(loop.to) };
      if (this.#stretch) {
        this.#stretch.loop = this.#loop;
      }
    }
    if (speed !== undefined) {
      this.#changeSpeed(speed);
    }
    if (sound !== undefined) {
      this.#load(sound);
    }
    if (chunk) {
      if (chunk.first) {
        this.#load(new DecodedTrack(chunk.blocks.length, sampleRate));
      }
      this.#sound?.add(chunk);
      this.#stretch?.grow();
    }
    if (seek) {
      this.#generation = seek.generation;
      this.#goTo(frames(seek.position));
    }
    if (playing !== undefined && playing !== this.#playing) {
      this.#breakOff();
      this.#playing = playing;
    }
    if (collect) {
      collectThoroughly();
    }
  }

  /** @param {DecodedTrack | null} sound */
  #load(sound) {
    this.#breakOff();
    this.#giveBack();
    this.#sound = sound;
    this.#stretch = sound && new TimeStretch(sound);
    if (this.#stretch) {
      this.#stretch.speed = this.#speed;
      this.#stretch.loop = this.#loop;
      this.#goTo(this.#start);
    }
  }

  /** Nobody collects garbage in the audio thread; the page does. */
  #giveBack() {
    const memory = /** @type {ArrayBuffer[]} */ (this.#sound?.empty() ?? []);
    if (memory.length > 0) {
      /** @type {Returned} */
      const returned = { memory };
      this.port.postMessage(returned, memory);
    }
  }

  /** @param {number} speed */
  #changeSpeed(speed) {
    this.#speed = speed;
    if (this.#stretch) {
      this.#stretch.speed = speed;
      this.#addPosition(false);
    }
  }

  /** @param {number} position */
  #goTo(position) {
    this.#breakOff();
    this.#waiting = true;
    this.#start = position;
    this.#stretch?.jump(position);
    this.#clicks.goTo(position);
    this.#presentationTimes.clear();
    this.#played = 0;
    this.#end = Infinity;
    this.#addPosition(false);
  }

  /** @param {boolean} startsOver */
  #addPosition(startsOver) {
    const position = milliseconds(this.#stretch?.position ?? this.#start);
    this.#presentationTimes.add({ frame: this.#played, position, speed: this.#speed, startsOver });
  }

  /** A sound that ends at once clicks: a little of what would have come fades out. */
  #breakOff() {
    if (this.#playing && this.#stretch && !this.#waiting) {
      const { left, right } = this.#tail;
      left.fill(0);
      right.fill(0);
      const count = Math.min(fadeOut, this.#stretch.framesLeft);
      const { position } = this.#stretch;
      this.#stretch.render(left, right, 0, count);
      this.#clicks.mix(left, right, 0, fadeOut, position, this.#speed);
      for (let i = 0; i < fadeOut; i++) {
        left[i] *= 1 - i / fadeOut;
        right[i] *= 1 - i / fadeOut;
      }
      this.#tail.done = 0;
    }
    this.#clicks.silence();
    this.#fadedIn = 0;
  }

  /**
   * @param {Float32Array[][]} _inputs
   * @param {Float32Array[][]} outputs
   */
  process(_inputs, outputs) {
    const [left, right] = outputs[0];
    if (!left || !right) {
      // Newer versions of Chromium give no channels to a node that is being disconnected.
      return true;
    }
    this.#wait();
    if (this.#playing && this.#stretch && !this.#waiting) {
      this.#play(this.#stretch, left, right);
      this.#played += left.length;
      this.#report(left.length);
    }
    this.#mixTail(left, right);
    return true;
  }

  /** What has not been decoded yet is waited for. */
  #wait() {
    const waiting = !this.#stretch || !this.#sound?.reaches(this.#stretch.position);
    if (waiting && !this.#waiting) {
      this.#breakOff();
    }
    this.#waiting = waiting;
  }

  /**
   * @param {TimeStretch} stretch
   * @param {Float32Array} left
   * @param {Float32Array} right
   */
  #play(stretch, left, right) {
    for (let done = 0; done < left.length;) {
      let count = Math.min(left.length - done, stretch.framesLeft);
      if (count === 0 && stretch.hasLoop) {
        this.#startOver(stretch, done);
        continue;
      }
      const { position } = stretch;
      stretch.render(left, right, done, count);
      if (count === 0) {
        this.#end = Math.min(this.#end, this.#played + done);
        count = left.length - done;
      }
      this.#clicks.mix(left, right, done, count, position, this.#speed);
      done += count;
    }
    for (let i = 0; this.#fadedIn < fadeIn && i < left.length; i++, this.#fadedIn++) {
      left[i] *= this.#fadedIn / fadeIn;
      right[i] *= this.#fadedIn / fadeIn;
    }
  }

  /**
   * @param {TimeStretch} stretch
   * @param {number} done frames of the present block
   */
  #startOver(stretch, done) {
    stretch.startOver();
    this.#clicks.goTo(stretch.position);
    const position = milliseconds(stretch.position);
    this.#presentationTimes.add({ frame: this.#played + done, position, speed: this.#speed, startsOver: true });
  }

  /** @param {number} count frames that went by */
  #report(count) {
    this.#sinceReport += count;
    if (this.#sinceReport < reportEvery) {
      return;
    }
    this.#sinceReport = 0;
    const now = Math.max(this.#played - this.#latency, 0);
    const presented = this.#presentationTimes.at(Math.min(now, this.#end));
    if (presented) {
      /** @type {ToPage} */
      const report = { generation: this.#generation, ...presented, ended: now >= this.#end };
      this.port.postMessage(report);
    }
  }

  /**
   * @param {Float32Array} left
   * @param {Float32Array} right
   */
  #mixTail(left, right) {
    const tail = this.#tail;
    const count = Math.min(left.length, fadeOut - tail.done);
    for (let i = 0; i < count; i++) {
      left[i] += tail.left[tail.done + i];
      right[i] += tail.right[tail.done + i];
    }
    tail.done += count;
  }
}

/** @param {number} ms */
function frames(ms) {
  return (ms * sampleRate) / 1000;
}

/** @param {number} position in frames */
function milliseconds(position) {
  return (position * 1000) / sampleRate;
}

registerProcessor("quaverly-backing-track", BackingTrackProcessor);
