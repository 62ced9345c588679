// @ts-check
/**
 * Notices when a worker does not answer any more: it is gone, or works on something that takes for ever.
 *
 * A worker answers in the order of the questions. Whoever asks it something reports it here, and a ping follows; its
 * answer says that everything before has been done.
 *
 * @typedef {object} Dependencies
 * @property {(work: () => void, ms: number) => void} after
 * @property {() => number} now in milliseconds
 */

/** How long the worker may take for one thing. */
const answerTimeoutMs = 20000;

/** How long it may take when something else waits for it. */
const hurryTimeoutMs = 4000;

/** How often a worker that works on by itself is asked. */
const pingIntervalMs = 5000;

/** How late a timer may be before it says nothing about the worker: the page stood still itself. */
const lateMs = 1000;

/** @type {Dependencies} */
const browser = { after: (work, ms) => void setTimeout(work, ms), now: () => performance.now() };

export class WorkerWatch {
  #ping;
  #lost;
  #isBusy;
  #dependencies;
  /** Counts the pings: the answer to the last one alone counts. */
  #pings = 0;
  #answered = 0;
  /** Whether something was asked that no ping follows yet. */
  #more = false;
  #ended = false;
  #timeoutMs;

  /**
   * @param {(number: number) => void} ping asks the worker for that number
   * @param {() => void} lost called once, when the worker does not answer
   * @param {() => boolean} isBusy whether the worker works on without being asked
   * @param {number} [timeoutMs] how long the worker may take for one thing
   * @param {Dependencies} [dependencies]
   */
  constructor(ping, lost, isBusy, timeoutMs = answerTimeoutMs, dependencies = browser) {
    this.#ping = ping;
    this.#lost = lost;
    this.#isBusy = isBusy;
    this.#timeoutMs = timeoutMs;
    this.#dependencies = dependencies;
  }

  get isWaiting() {
    return this.#answered < this.#pings;
  }

  /** The worker has been asked something. */
  asked() {
    this.#more = this.isWaiting;
    if (!this.#more && !this.#ended) {
      this.#ping(++this.#pings);
      this.#wait(this.#pings, this.#timeoutMs);
    }
  }

  /** Something waits behind what the worker is doing, if it is doing anything. */
  hurry() {
    if (this.isWaiting) {
      this.#wait(this.#pings, hurryTimeoutMs);
    }
  }

  /** @param {number} number that was asked for */
  answer(number) {
    if (number > this.#answered) {
      this.#answered = number;
      if (this.#more) {
        this.asked();
      } else {
        this.#dependencies.after(() => !this.isWaiting && this.#isBusy() && this.asked(), pingIntervalMs);
      }
    }
  }

  /** Nobody wants to know any more. */
  end() {
    this.#ended = true;
  }

  /**
   * @param {number} number
   * @param {number} timeoutMs
   */
  #wait(number, timeoutMs) {
    const { after, now } = this.#dependencies;
    const due = now() + timeoutMs;
    after(() => {
      if (this.#ended || this.#answered >= number) {
        return;
      }
      if (now() - due > lateMs) {
        this.#wait(number, timeoutMs);
        return;
      }
      this.#ended = true;
      this.#lost();
    }, timeoutMs);
  }
}
