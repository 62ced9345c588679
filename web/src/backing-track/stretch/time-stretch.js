// @ts-check
import { OverlapAdd } from "./overlap-add.js";

/**
 * Plays a backing track slower or faster at its own pitch, and keeps its onsets sharp and in time.
 *
 * The sound is put together of segments of the backing track as it is, faded into each other where they are most alike:
 * waveform-similarity overlap-add, W. Verhelst and M. Roelands, "An overlap-add technique based on waveform similarity
 * (WSOLA) for high quality time-scale modification of speech", ICASSP 1993. Around an onset no segment ends: it is
 * played as it is, and begins exactly when the even course of time says so, as S. Grofit and Y. Lavner propose in
 * "Time-Scale Modification of Audio Signals Using Enhanced WSOLA With Management of Transients", IEEE Transactions on
 * Audio, Speech, and Language Processing 16 (2008). What lies between two onsets makes up for it.
 *
 * All positions are frames of the backing track. The position is where the even course of time is; the source is what
 * is being played, which is never far from it.
 *
 * @typedef {{ from: number, to: number }} Loop frames
 *
 * @typedef {object} Pin a source that has to be reached in time for something to sound when it is due
 * @property {number} wait frames until the fade to it begins
 * @property {number} length of that fade
 * @property {number} until frames until it is due
 * @property {number} shift what the fade adds to the source
 * @property {number} unheard what may not sound before: no segment before the fade reaches it
 * @property {"onset" | "end" | "seam"} kind end: of the loop; seam: the beginning of its next pass
 */

/** All in seconds. How far the source may be from the position. */
const tolerance = 0.013;

/** How long one segment fades into the next, at most and at least. */
const fadeTime = 0.01;
const shortFadeTime = 0.0015;

/**
 * A segment is played for at least so long between two fades, in seconds, and is so far from the last, in tolerances.
 */
const shortestSegment = 0.006;
const shortestStep = 0.5;

/** What is played as it is, before and after an onset begins. */
const beforeOnset = 0.003;
const afterOnset = 0.025;

/** A loop is at least so long. */
const shortestLoop = 0.02;

/** A source is settled at most so long before it is due: what sounded just before would sound again. */
const longestLead = 0.026;

/** A segment that is taken up behind an onset is so far behind that nothing of its beginning sounds again. */
const pastOnset = 0.008;

/** Where no better segment may be taken up, it is tried again after this time. */
const retry = 0.004;

export class TimeStretch {
  #overlapAdd;
  #sound;
  #onsets;
  #speed = 1;
  /** @type {Loop | null} */
  #loop = null;
  #position = 0;
  /** Up to where it is played. */
  #end = 0;
  /** The first onset that is neither past nor settled. */
  #next = 0;
  /** For how many frames to come the source is left as it is. */
  #held = 0;
  /** @type {Pin | null | undefined} undefined when it has to be found */
  #pin;
  /** What the source was settled for in this pass of the loop, when nothing is left to be settled. */
  #settled = "";
  #frames;

  /** @param {import("./decoded-track.js").DecodedTrack} sound */
  constructor(sound) {
    /** @type {(seconds: number) => number} */
    const frames = (seconds) => Math.max(Math.round(seconds * sound.sampleRate), 1);
    this.#overlapAdd = new OverlapAdd(sound.channels, sound.sampleRate, 2 * tolerance);
    this.#sound = sound;
    this.#onsets = sound.onsets;
    this.#frames = {
      tolerance: frames(tolerance),
      fade: frames(fadeTime),
      shortFade: frames(shortFadeTime),
      segment: frames(shortestSegment),
      before: frames(beforeOnset),
      after: frames(afterOnset),
      lead: frames(longestLead),
      shortestLoop: frames(shortestLoop),
      past: frames(pastOnset),
      retry: frames(retry),
    };
    this.jump(0);
  }

  /** Where in the backing track the next frame is. */
  get position() {
    return this.#position;
  }

  get speed() {
    return this.#speed;
  }

  /** @param {number} speed frames of the backing track for each frame that is played, above 0 */
  set speed(speed) {
    this.#speed = speed;
    this.#pin = undefined;
  }

  /** @param {Loop | null} loop what startOver() is going to be called for; null for none */
  set loop(loop) {
    if (this.#settled === "seam") {
      // The beginning of a pass sounds that may not come.
      this.#fadeTo(Math.round(this.#position), this.#frames.shortFade);
    }
    this.#settled = "";
    this.#loop = loop;
    this.#findEnd();
  }

  /** Whether there is a loop that is long enough to be played. */
  get hasLoop() {
    return (
      this.#loop !== null && Math.min(this.#loop.to, this.#sound.length) - this.#loop.from > this.#frames.shortestLoop
    );
  }

  /** How many frames there are up to the end of the loop, or of the backing track. */
  get framesLeft() {
    return Math.max(Math.ceil((this.#end - this.#position) / this.#speed), 0);
  }

  /** A position behind the loop is played to the end of the backing track. */
  #findEnd() {
    const to = this.#loop?.to ?? this.#sound.length;
    this.#end = this.#position < to ? Math.min(to, this.#sound.length) : this.#sound.length;
    this.#pin = undefined;
  }

  /** To be called when more of the backing track has come. */
  grow() {
    this.#findEnd();
  }

  /** @param {number} position where to go on, at once: what sounds is broken off */
  jump(position) {
    this.#overlapAdd.begin(Math.round(position));
    this.#goOn(position);
  }

  /** Goes on at the beginning of the loop. To be called when no frames are left and there is a loop. */
  startOver() {
    const from = this.#loop?.from ?? 0;
    const position = from + Math.max(this.#position - this.#end, 0);
    if (this.#settled !== "seam") {
      this.#fadeTo(Math.round(position), this.#frames.shortFade);
    }
    this.#goOn(position);
  }

  /** @param {number} position */
  #goOn(position) {
    this.#position = position;
    this.#settled = "";
    this.#findEnd();
    this.#held = this.#frames.after;
    this.#next = firstAtLeast(this.#onsets, Math.max(position, this.#overlapAdd.source));
  }

  /**
   * @param {Float32Array} left
   * @param {Float32Array} right
   * @param {number} at the first frame to be set
   * @param {number} count at most as many as are left
   */
  render(left, right, at, count) {
    for (let done = 0; done < count;) {
      const steps = Math.min(count - done, this.#untilDecision());
      if (steps === 0) {
        this.#decide();
        continue;
      }
      this.#overlapAdd.play(left, right, at + done, steps);
      done += steps;
      this.#position += steps * this.#speed;
      this.#held -= steps;
      if (this.#pin) {
        this.#pin.wait -= steps;
        this.#pin.until -= steps;
      }
    }
  }

  #untilDecision() {
    if (this.#overlapAdd.fadeLeft > 0) {
      return this.#overlapAdd.fadeLeft;
    }
    const pin = this.#nextPin();
    const free = Math.max(this.#untilOff(), this.#held, 0);
    return pin ? Math.max(Math.min(pin.wait, free), 0) : free;
  }

  /** For how many frames the source is near enough to the position when nothing is done. */
  #untilOff() {
    const lead = this.#overlapAdd.source - this.#position;
    const drift = 1 - this.#speed;
    if (this.#settled || drift === 0) {
      return Infinity;
    }
    const room = drift > 0 ? this.#frames.tolerance - lead : this.#frames.tolerance + lead;
    return Math.max(Math.ceil(room / Math.abs(drift)), 0);
  }

  #decide() {
    const pin = this.#nextPin();
    if (!pin || pin.wait > 0) {
      this.#goOnFreely(pin);
    } else if (pin.until <= this.#frames.lead || !this.#takeUpLikest(pin)) {
      this.#settle(pin);
    }
  }

  /** @param {Pin | null} pin */
  #goOnFreely(pin) {
    if (pin && pin.wait < this.#frames.fade) {
      this.#held = pin.wait;
    } else if (!this.#takeUpLikest(pin)) {
      this.#held = this.#frames.retry;
    }
  }

  /** @param {Pin} pin */
  #settle({ kind, shift, length, until }) {
    if (shift !== 0) {
      this.#fadeTo(this.#overlapAdd.source + shift, length);
    }
    this.#held = Math.max(until, 0) + this.#frames.after;
    if (kind === "onset") {
      this.#next++;
    } else {
      this.#settled = kind;
    }
    this.#pin = undefined;
  }

  #nextPin() {
    if (this.#pin === undefined) {
      this.#pin = this.#settled ? null : this.#findPin();
    }
    return this.#pin;
  }

  /** @returns {Pin | null} for the next onset or the end of the loop, whichever is first */
  #findPin() {
    const seam = this.#seam();
    while (this.#next < this.#onsets.length) {
      const onset = this.#onsets[this.#next];
      const until = Math.round((onset - this.#position) / this.#speed);
      if (seam && until > seam.until - this.#frames.fade) {
        break;
      }
      if (Math.min(until, onset - this.#overlapAdd.source) >= this.#frames.before + this.#frames.shortFade) {
        return this.#pinTo("onset", onset, until, onset);
      }
      this.#next++;
    }
    return seam;
  }

  /** @returns {Pin | null} */
  #seam() {
    const loop = this.#loop;
    if (!loop || !this.hasLoop || this.#end !== loop.to) {
      return null;
    }
    const untilEnd = (loop.to - this.#position) / this.#speed;
    if (loop.from < this.#frames.lead + this.#frames.tolerance) {
      // Before the backing track there is nothing that could fade in.
      return this.#pinTo("end", Math.round(loop.to), Math.round(untilEnd), loop.to);
    }
    // An onset that is meant by the beginning of the loop, and is not quite there, sounds when it is due itself.
    const meant = this.#onsetAt(loop.from);
    const unheard = Math.min(this.#onsetAt(loop.to), loop.to);
    return this.#pinTo("seam", meant, Math.round(untilEnd + (meant - loop.from) / this.#speed), unheard);
  }

  /**
   * @param {number} position
   * @returns {number} the onset that is meant by it; the position itself where there is none
   */
  #onsetAt(position) {
    const near = this.#onsets[firstAtLeast(this.#onsets, position - this.#frames.tolerance)];
    return near !== undefined && near <= position + this.#frames.tolerance ? near : Math.round(position);
  }

  /**
   * @param {Pin["kind"]} kind
   * @param {number} wanted the source when it is due
   * @param {number} until frames until it is due
   * @param {number} unheard
   * @returns {Pin}
   */
  #pinTo(kind, wanted, until, unheard) {
    const { before, fade, shortFade } = this.#frames;
    const shift = wanted - until - this.#overlapAdd.source;
    const latest = Math.min(until, Math.floor(unheard) - this.#overlapAdd.source) - before;
    const length = Math.max(Math.min(fade, latest), shortFade);
    return { wait: latest - length, length, until, shift, unheard, kind };
  }

  /**
   * Goes on with the segment near the position that is most like what would follow.
   *
   * @param {Pin | null} pin what comes next
   * @returns {boolean} whether there is one
   */
  #takeUpLikest(pin) {
    const { tolerance, fade, segment, past, before } = this.#frames;
    const drift = 1 - this.#speed;
    const used = Math.min(Math.max(Math.abs(drift) * (fade + segment), shortestStep * tolerance), 2 * tolerance);
    const last = this.#onsets[this.#next - 1] ?? -Infinity;
    const latest = pin ? pin.unheard - before - fade - segment : Infinity;
    const low = Math.ceil(Math.max(this.#position - tolerance + (drift < 0 ? used : 0), last + past));
    const high = Math.floor(Math.min(this.#position + tolerance - (drift > 0 ? used : 0), latest));
    if (low > high || (low <= this.#overlapAdd.source && this.#overlapAdd.source <= high)) {
      return false;
    }
    this.#fadeTo(this.#overlapAdd.likest(low, high), fade);
    return true;
  }

  /**
   * @param {number} source
   * @param {number} length of the fade
   */
  #fadeTo(source, length) {
    this.#overlapAdd.fadeTo(source, length);
    this.#pin = undefined;
  }
}

/**
 * @param {ArrayLike<number>} numbers in rising order
 * @param {number} least
 * @returns {number} the index of the first that is not less
 */
export function firstAtLeast(numbers, least) {
  let low = 0;
  let high = numbers.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (numbers[middle] < least) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return low;
}
