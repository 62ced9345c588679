// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { replaceScoreWalk } from "./internals/alphatab-internals.js";
import { withHiddenNotes } from "./hidden-notes.js";
import { ornamentInKey } from "./ornaments.js";

/**
 * Has alphaTab play scores in an order of the page's own: its notes, its lookup of bars and beats by their ticks, and
 * its sync points all come from one walk through the score, whose order alphaTab finds itself and lets nobody choose.
 *
 * That walk is an undeclared static method, which is replaced by one of the same contract.
 *
 * @typedef {import("../shared/alphatab.js").Score} Score
 * @typedef {Score["masterBars"][number]} MasterBar
 * @typedef {import("@coderline/alphatab").model.Automation} Automation
 * @typedef {import("@coderline/alphatab").synth.BackingTrackSyncPoint} SyncPoint
 *
 * @typedef {(bar: MasterBar, previous: MasterBar | null, tick: number, bpm: number, occurrence: number) => void}
 *     BarBegins `bpm` before the bar; `occurrence` counted from 0
 * @typedef {(index: number, tick: number, bpm: number) => void} BarPlays
 * @typedef {(score: Score, syncPoints: SyncPoint[], createNew: boolean, barBegins: BarBegins, barPlays: BarPlays,
 *     finish: (endTick: number) => void) => { automationToSyncPoint: Map<Automation, SyncPoint> }} ScoreWalk
 */

const ticksPerQuarter = 960;

/** @param {(score: Score) => number[]} orderOf indices of bars in the order in which they are played */
export function playInOrder(orderOf) {
  /** @type {ScoreWalk} */
  const walkInOrder = (score, syncPoints, createNew, barBegins, barPlays, finish) => {
    const walk = new Walk(score, syncPoints, createNew);
    withHiddenNotes(score, () => {
      /** @type {MasterBar | null} */
      let previous = null;
      for (const index of orderOf(score)) {
        const bar = score.masterBars[index];
        const { tick, bpm } = walk;
        const occurrence = walk.countOccurrence(bar);
        barBegins(bar, previous, tick, bpm, occurrence);
        ornamentInKey(score, index);
        barPlays(index, tick, bar.tempoAutomations[0]?.value ?? bpm);
        walk.pass(bar, occurrence);
        previous = bar;
      }
    });
    walk.finish();
    finish(walk.tick);
    return walk;
  };
  replaceScoreWalk(walkInOrder);
}

/** Keeps time from bar to bar. */
class Walk {
  #score;
  #syncPoints;
  #createNew;
  /** @type {Map<MasterBar, number>} */
  #occurrences = new Map();
  /** Where alphaTab looks up the tempo that a sync point leads to. @type {Map<Automation, SyncPoint>} */
  automationToSyncPoint = new Map();
  tick = 0;
  bpm;
  /** Milliseconds of score time. */
  #ms = 0;

  /**
   * @param {Score} score
   * @param {SyncPoint[]} syncPoints are added here
   * @param {boolean} createNew whether the score's tempos are taken for its backing track's
   */
  constructor(score, syncPoints, createNew) {
    this.#score = score;
    this.#syncPoints = syncPoints;
    this.#createNew = createNew;
    this.bpm = score.tempo;
  }

  /** @param {MasterBar} bar */
  countOccurrence(bar) {
    const occurrence = (this.#occurrences.get(bar) ?? -1) + 1;
    this.#occurrences.set(bar, occurrence);
    return occurrence;
  }

  /**
   * @param {MasterBar} bar
   * @param {number} occurrence
   */
  pass(bar, occurrence) {
    const start = this.tick;
    const duration = bar.calculateDuration();
    if (this.#createNew && start === 0) {
      this.#add(bar, occurrence, 0);
    }
    const synced = this.#createNew ? [] : (bar.syncPoints ?? []);
    const tempos = [...bar.tempoAutomations, ...synced].sort((a, b) => a.ratioPosition - b.ratioPosition);
    for (const tempo of tempos) {
      const { syncPointValue } = tempo;
      this.#advance(start + tempo.ratioPosition * duration);
      if (!syncPointValue) {
        const changes = tempo.value !== this.bpm;
        this.bpm = tempo.value;
        if (changes && this.#createNew) {
          this.#add(bar, occurrence, this.#ms);
        }
      } else if (syncPointValue.barOccurence === occurrence) {
        this.automationToSyncPoint.set(tempo, this.#add(bar, occurrence, syncPointValue.millisecondOffset));
      }
    }
    this.#advance(start + duration);
    this.tick = start + duration;
  }

  /** Adds where the backing track is at the end of the score, if it went on as it did before. */
  finish() {
    const last = this.#syncPoints.at(-1);
    if (last && last.synthTick < this.tick) {
      const before = this.#syncPoints.at(-2);
      const pace =
        before && before.synthTime < last.synthTime
          ? (last.syncTime - before.syncTime) / (last.synthTime - before.synthTime)
          : 1;
      const bar = this.#score.masterBars[last.masterBarIndex];
      this.#add(bar, last.masterBarOccurence, last.syncTime + (this.#ms - last.synthTime) * pace);
    }
    for (const bar of this.#score.masterBars) {
      for (const automation of bar.syncPoints ?? []) {
        if (!this.automationToSyncPoint.has(automation)) {
          // For a time that the bar is never played. alphaTab looks up each of them when it writes a file.
          this.automationToSyncPoint.set(
            automation,
            this.#pointAt(bar, 0, automation.syncPointValue?.millisecondOffset ?? 0),
          );
        }
      }
    }
  }

  /** @param {number} tick */
  #advance(tick) {
    if (tick > this.tick) {
      this.#ms += ((tick - this.tick) * 60000) / (this.bpm * ticksPerQuarter);
      this.tick = tick;
    }
  }

  /**
   * @param {MasterBar} bar
   * @param {number} occurrence
   * @param {number} syncTime milliseconds of the backing track
   */
  #add(bar, occurrence, syncTime) {
    const point = this.#pointAt(bar, occurrence, syncTime);
    this.#syncPoints.at(-1)?.updateSyncBpm(point.synthTime, point.syncTime);
    this.#syncPoints.push(point);
    return point;
  }

  /**
   * @param {MasterBar} bar
   * @param {number} occurrence
   * @param {number} syncTime
   */
  #pointAt(bar, occurrence, syncTime) {
    return Object.assign(new alphaTab.synth.BackingTrackSyncPoint(), {
      masterBarIndex: bar.index,
      masterBarOccurence: occurrence,
      synthTick: this.tick,
      synthTime: this.#ms,
      synthBpm: this.bpm,
      syncTime,
      syncBpm: this.bpm,
    });
  }
}
