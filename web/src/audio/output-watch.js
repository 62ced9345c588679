// @ts-check
import { Emitter } from "../shared/emitter.js";

/**
 * Keeps audio contexts sounding through the end of the sound system and back, or of a device.
 *
 * A context whose device is gone says that it runs, and stands still. Suspended and resumed, it is given a new device.
 * Resumed while there is none, it plays to nobody, or never again by that alone. So it stays suspended until there is
 * one, and what it plays goes on where it was. As a device may go in just that moment, the context is made to open it
 * anew, too.
 *
 * Where it stands all the same, and the browser does not even answer which devices there are, the connection to the sound
 * system is dead. The host of the page makes another one when the page says that its output is gone.
 */

/** How often the time of a running context is looked at. */
const tickMs = 250;

/** A tick that comes later than this says nothing: the page, or the machine, stood still itself. */
const lateTickMs = 600;

/** How long the time of a running context may stand still, at first and after attempts to set it going. */
const stallTimeoutMs = 750;
const longestStallTimeoutMs = 8000;

/** How often devices are looked for while sound is wanted: when there were some, and when there never was one. */
const lostPollMs = 300;
const absentPollMs = 2000;

/** How long the answer may take whether there is a device. */
const devicesTimeoutMs = 1000;

/** What all contexts of the page share: whether there is a device to play to. */
export class OutputStatus {
  /** @type {Emitter<boolean>} whether there is an audio output now */
  changed = new Emitter();
  /** Whether there was a device at any time. Where there never is one, contexts run to nobody, as pages expect. */
  hadDevice = false;
  #working = true;

  get working() {
    return this.#working;
  }

  set working(working) {
    if (working !== this.#working) {
      this.#working = working;
      this.changed.trigger(working);
    }
  }
}

export const outputStatus = new OutputStatus();

/**
 * @typedef {Pick<AudioContext, "state" | "currentTime" | "suspend" | "resume">
 *     & { destination: Pick<AudioDestinationNode, "channelCount" | "maxChannelCount"> }} Context
 *
 * @typedef {object} Dependencies
 * @property {() => Promise<{ kind: string }[]>} devices
 * @property {OutputStatus} status
 * @property {() => number} now in milliseconds
 * @property {(work: () => void, ms: number) => void} after
 */

/** @type {Dependencies} */
const browser = {
  devices: async () => navigator.mediaDevices.enumerateDevices(),
  status: outputStatus,
  now: () => performance.now(),
  after: (work, ms) => void setTimeout(work, ms),
};

export class OutputWatch {
  #context;
  #dependencies;
  /** Whether the context is to run. */
  #wanted = false;
  /** Whether it stays suspended although it is to run. */
  #lost = false;
  /** Whether it runs to nobody. */
  #absent = false;
  /** How often in a row it was given a device, and stood still on a dead connection. */
  #deadConnections = 0;
  /** Counts the waits: the last one alone counts. */
  #waits = 0;
  #tickedAt = 0;
  #askedAt = 0;
  /** The context's time, and since when it is that. */
  #seconds = 0;
  #movedAt = 0;
  #stallTimeoutMs = stallTimeoutMs;

  /**
   * @param {Context} context that was just made, and may run at once
   * @param {Dependencies} [dependencies]
   */
  constructor(context, dependencies = browser) {
    this.#context = context;
    this.#dependencies = dependencies;
    void this.#inspect();
  }

  /** The context is to run. */
  wake() {
    if (this.#wanted) {
      return;
    }
    this.#wanted = true;
    this.#moved(stallTimeoutMs);
    if (this.#lost) {
      this.#dependencies.status.working = false;
      this.#wait();
    } else if (this.#context.state === "running" && !this.#absent) {
      this.#wait();
    } else {
      void this.#begin();
    }
  }

  /** It need not run any more. */
  sleep() {
    this.#wanted = false;
    void this.#context.suspend();
  }

  async #inspect() {
    const has = await this.#hasDevice();
    this.#absent = has === false && !this.#dependencies.status.hadDevice;
    if (has === false && !this.#absent && !this.#lost) {
      this.#lose();
    }
  }

  async #begin() {
    const has = await this.#hasDevice();
    if (!this.#wanted || this.#lost) {
      return;
    }
    const { status } = this.#dependencies;
    this.#absent = has === false && !status.hadDevice;
    if (has === false && status.hadDevice) {
      this.#lose();
    } else {
      status.working = !this.#absent;
      void this.#context.resume();
      this.#wait();
    }
  }

  #wait() {
    const wait = ++this.#waits;
    const { now, after } = this.#dependencies;
    this.#tickedAt = now();
    const lostMs = this.#wanted ? lostPollMs : absentPollMs;
    after(() => void (wait === this.#waits && this.#tick()), this.#lost ? lostMs : tickMs);
  }

  async #tick() {
    if (this.#lost) {
      await this.#lookForDevice();
    } else if (this.#wanted && this.#stands()) {
      await this.#setGoing();
    } else if (this.#wanted && this.#absent && this.#dependencies.now() - this.#askedAt >= absentPollMs) {
      await this.#lookForDevice();
    }
    if (this.#wanted || this.#lost) {
      this.#wait();
    }
  }

  async #lookForDevice() {
    if (await this.#hasDevice()) {
      this.#lost = false;
      this.#absent = false;
      this.#dependencies.status.working = true;
      this.#moved(Math.min(stallTimeoutMs * 2 ** Math.max(0, this.#deadConnections - 1), longestStallTimeoutMs));
      this.#restart();
    }
  }

  /** The context stands still. */
  async #setGoing() {
    const has = await this.#hasDevice();
    const { hadDevice } = this.#dependencies.status;
    const wasGivenAnew = this.#deadConnections > 0 || this.#stallTimeoutMs > stallTimeoutMs;
    if (has === false && hadDevice) {
      this.#lose();
    } else if (has === undefined && hadDevice && wasGivenAnew) {
      this.#deadConnections += 1;
      this.#lose();
    } else {
      // It may take its time.
      this.#moved(Math.min(2 * this.#stallTimeoutMs, longestStallTimeoutMs));
      this.#restart();
    }
  }

  #lose() {
    this.#lost = true;
    void this.#context.suspend();
    if (this.#wanted) {
      this.#dependencies.status.working = false;
    }
    this.#wait();
  }

  /** What runs already is not given another device. */
  #restart() {
    void this.#context.suspend();
    openAnew(this.#context.destination);
    if (this.#wanted) {
      void this.#context.resume();
    }
  }

  #stands() {
    const now = this.#dependencies.now();
    const { currentTime } = this.#context;
    if (currentTime !== this.#seconds) {
      this.#seconds = currentTime;
      this.#deadConnections = 0;
      this.#moved(stallTimeoutMs);
    } else if (now - this.#tickedAt > lateTickMs) {
      this.#moved(this.#stallTimeoutMs);
    }
    return now - this.#movedAt >= this.#stallTimeoutMs;
  }

  /** @param {number} timeoutMs until it counts as standing still */
  #moved(timeoutMs) {
    this.#movedAt = this.#dependencies.now();
    this.#stallTimeoutMs = timeoutMs;
  }

  /** @returns {Promise<boolean | undefined>} whether there is a device to play to; undefined where nobody knows */
  async #hasDevice() {
    const { devices, status, now, after } = this.#dependencies;
    this.#askedAt = now();
    /** @type {Promise<undefined>} */
    const late = new Promise((resolve) => after(() => resolve(undefined), devicesTimeoutMs));
    const answer = devices().then((found) => found.some(({ kind }) => kind === "audiooutput"));
    const has = await Promise.race([answer.catch(() => undefined), late]);
    status.hadDevice ||= has === true;
    return has;
  }
}

/**
 * Chromium opens the device anew for another number of channels. Nothing else brings a context back that was resumed
 * without a device.
 *
 * @param {Context["destination"]} destination
 */
function openAnew(destination) {
  const { channelCount, maxChannelCount } = destination;
  const other = channelCount > 1 ? 1 : 2;
  if (other <= maxChannelCount) {
    destination.channelCount = other;
    destination.channelCount = channelCount;
  }
}
