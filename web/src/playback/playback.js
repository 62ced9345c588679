// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { PositionFeed } from "./position-feed.js";
import { backingTrackMs } from "../timing/sync-point-map.js";
import { TempoMap } from "../timing/tempo-map.js";

/**
 * The transport: plays the open score, and reports how far it has come.
 *
 * @typedef {{ startTick: number, endTick: number }} TickRange
 */

/** Two ticks this close are the same position: alphaTab rounds each way between ticks and milliseconds. */
const sameTick = 8;

export class Playback {
  #api;
  #post;
  #feed;
  #tempoMap = new TempoMap([], 0, 960);
  /** How far the ticks of the tempo map exceed those of the score. */
  #tickShift = 0;
  /** @type {import("@coderline/alphatab").synth.BackingTrackSyncPoint[]} */
  #syncPoints = [];
  #speed = 1;
  #countIn = false;
  #countsInPasses = false;
  #playing = false;
  #readyPosted = false;
  /** alphaTab still reports on the score before until it has loaded this one. */
  #stale = false;
  #startWhenReady = false;
  /** Why the score cannot be played; empty when it can. */
  #problem = "";
  /** Where the player starts that is loading: a seek that comes before it has loaded would be lost. */
  #resume = /** @type {{ tick: number } | { ms: number } | null} */ (null);
  #tick = 0;
  /** @type {number | null} */
  #awaitedTick = null;
  /** Where the last seek went, until alphaTab reports it: looping that is turned on meanwhile stays there. */
  #sought = /** @type {number | null} */ (null);
  /** @type {TickRange | null} */
  #range = null;
  /** @type {(tick: number) => import("../synth/practice-synth.js").CountIn | null} */
  #countInAt = () => null;

  /**
   * @param {import("../alphatab/page-api.js").PageApi} api
   * @param {import("../bridge/bridge.js").Post} post
   */
  constructor(api, post) {
    this.#api = api;
    this.#post = post;
    this.#feed = new PositionFeed(
      (position) => post({ type: "position", ...position }),
      () => performance.now(),
    );
    api.preparationFailed.on((reason) => this.#giveUp(reason));
    // Subscribed on the element: subscribing on the object requests from the player its last answer, which recurses for
    // ever.
    api.notation.addEventListener("alphaTab.midiFileLoaded", () => this.#onLoaded());
    api.playerReady.on(() => this.#onReady());
    api.playerStateChanged.on((event) => this.#onState(event));
    api.playerPositionChanged.on((event) => this.#onPosition(event));
  }

  /** Milliseconds of score time; 0 without a score. */
  get endTime() {
    return this.#tempoMap.endMs;
  }

  /** The position in the score as alphaTab last reported it. */
  get tick() {
    return this.#tick;
  }

  /** Where the ticks of the score lie in time. */
  get tempoMap() {
    return this.#tempoMap;
  }

  /** Where the score's time lies in its backing track. */
  get syncPoints() {
    return this.#syncPoints.map(({ synthTime, syncTime }) => ({ scoreMs: synthTime, backingTrackMs: syncTime }));
  }

  /** What looping loops; null for the whole score. @returns {TickRange | null} */
  get range() {
    return this.#range;
  }

  /** What is played over and over; null while nothing is. @returns {TickRange | null} */
  get loop() {
    return this.#api.isLooping ? (this.#range ?? { startTick: 0, endTick: Infinity }) : null;
  }

  /**
   * How long it takes to play on to a position, at the speed that is set.
   *
   * @param {number} tick
   * @returns {number} milliseconds
   */
  msUntil(tick) {
    const tempoMap = this.#tempoMap;
    return (tempoMap.msAt(tick + this.#tickShift) - tempoMap.msAt(this.#tick + this.#tickShift)) / this.#speed;
  }

  /**
   * @param {number} ms as played, at the speed that is set
   * @returns {number} how many ticks before the position that is
   */
  ticksIn(ms) {
    const tempoMap = this.#tempoMap;
    const now = this.#tick + this.#tickShift;
    return now - tempoMap.tickAt(Math.max(tempoMap.msAt(now) - ms * this.#speed, 0));
  }

  /** @param {number} tick @returns {number} milliseconds of score time */
  scoreMs(tick) {
    return this.#tempoMap.msAt(tick + this.#tickShift);
  }

  get atStart() {
    return this.#tick <= sameTick;
  }

  get playing() {
    return this.#playing;
  }

  get speed() {
    return this.#speed;
  }

  /** @param {import("./build-playback.js").BuiltPlayback} built of the score that is about to be loaded */
  use({ tempoMap, tickShift, countIn, syncPoints }) {
    this.#tempoMap = tempoMap;
    this.#tickShift = tickShift;
    this.#countInAt = countIn;
    this.#preparePassCountIn();
    this.#syncPoints = syncPoints;
    this.#loopBackingTrack();
  }

  /** To be called before another score is handed to alphaTab. */
  leaveScore() {
    if (this.#playing) {
      // The next score reaches the player only when its first systems are on the score page.
      this.#api.pause();
    }
    this.#stale = true;
    this.#problem = "";
    this.#startWhenReady = false;
    this.#resume = null;
    this.#awaitedTick = null;
    this.#sought = null;
    this.#tick = 0;
    this.setRange(null);
    this.#setPlaying(false);
  }

  /** Posts the length of the score just handed to alphaTab. */
  announceLength() {
    this.#feed.jump({ currentTime: 0, endTime: this.endTime });
  }

  /** Posts the last position once more. */
  repeatPosition() {
    this.#feed.jump({ currentTime: this.#tempoMap.msAt(this.#tick + this.#tickShift), endTime: this.endTime });
  }

  playPause() {
    if (!this.#api.score) {
      return;
    }
    if (this.#problem) {
      this.#post({ type: "error", message: this.#problem });
    } else if (this.#api.isReadyForPlayback && !this.#stale) {
      if (!this.#playing) {
        this.#prepareCountIn(this.#tick);
      }
      this.#api.playPause();
    } else {
      this.#startWhenReady = !this.#startWhenReady;
    }
  }

  stop() {
    this.#startWhenReady = false;
    if (this.#api.score) {
      this.#resume &&= { tick: this.#range?.startTick ?? 0 };
      this.#awaitedTick = null;
      this.#sought = null;
      this.#api.stop();
      if (this.#range && !this.#api.isLooping) {
        // alphaTab knows the range only while it loops.
        this.seekToTick(this.#range.startTick);
      }
    }
  }

  /** @param {number} ms of score time */
  seekToTime(ms) {
    if (!this.#api.score || !Number.isFinite(ms)) {
      return;
    }
    if (this.#stale) {
      this.#resume = { ms };
      return;
    }
    this.#awaitedTick = null;
    this.#sought = null;
    const scoreMs = this.#inScore(ms);
    this.#api.timePosition = scoreMs / this.#speed;
    this.#prepareCountIn(this.#tempoMap.tickAt(scoreMs) - this.#tickShift);
  }

  /** @param {number} ms */
  #inScore(ms) {
    return Math.min(Math.max(ms, 0), this.endTime);
  }

  /** @param {number} tick */
  seekToTick(tick) {
    if (this.#stale) {
      this.#resume = { tick };
      return;
    }
    this.#awaitedTick = null;
    this.#api.tickPosition = tick;
    this.#sought = tick;
    this.#prepareCountIn(tick);
  }

  /** @param {number} ratio */
  setSpeed(ratio) {
    if (Number.isFinite(ratio) && ratio > 0) {
      // alphaTab keeps to these bounds itself; positions are worked out with the speed it really plays at.
      this.#speed = Math.min(Math.max(ratio, 0.125), 8);
      this.#api.playbackSpeed = this.#speed;
    }
  }

  /** @param {number} volume */
  setMasterVolume(volume) {
    if (Number.isFinite(volume)) {
      this.#api.masterVolume = Math.min(Math.max(volume, 0), 1);
    }
  }

  /** @param {boolean} on */
  setLooping(on) {
    this.#api.isLooping = Boolean(on);
    this.#applyRange();
    this.#loopBackingTrack();
  }

  /** @param {boolean} on */
  setCountIn(on) {
    this.#countIn = on;
    this.#preparePassCountIn();
    if (!this.#playing) {
      this.#prepareCountIn(this.#tick);
    }
  }

  /** @param {boolean} on whether the count-in, where it is on, is also before each pass of a loop */
  setCountsInPasses(on) {
    this.#countsInPasses = on;
    this.#preparePassCountIn();
  }

  /**
   * Has the synthesizer count before its next start, or count again when it is just counting. A backing track has no
   * synthesizer and is not counted in.
   *
   * @param {number} tick where the music will start
   */
  #prepareCountIn(tick) {
    const synthesized = this.#api.actualPlayerMode === alphaTab.PlayerMode.EnabledSynthesizer;
    if (synthesized) {
      this.#api.synth?.setCountIn(this.#countIn ? this.#countInAt(tick) : null);
      this.#preparePassCountIn();
    }
  }

  #preparePassCountIn() {
    const counts = this.#countIn && this.#countsInPasses;
    this.#api.synth?.setPassCountIn(counts ? this.#countInAt(this.#range?.startTick ?? 0) : null);
  }

  /**
   * Chooses what looping loops.
   *
   * @param {TickRange | null} range null for the whole score
   */
  setRange(range) {
    this.#range = range;
    this.#preparePassCountIn();
    this.#applyRange();
    this.#loopBackingTrack();
  }

  /** The backing track's player starts over by itself, from one sample to the next. */
  #loopBackingTrack() {
    const points = this.syncPoints;
    const { startTick, endTick } = this.#range ?? {
      startTick: 0,
      endTick: this.#tempoMap.tickAt(this.endTime) - this.#tickShift,
    };
    /** @type {(tick: number) => number} */
    const inTrack = (tick) => Math.max(backingTrackMs(points, this.#tempoMap.msAt(tick + this.#tickShift)), 0);
    this.#api.backingTrackPlayer.setLoop(
      this.#api.isLooping ? { from: inTrack(startTick), to: inTrack(endTick) } : null,
    );
  }

  /** To be called before another player takes over: it starts at this position, and goes on playing if this one did. */
  handOver() {
    this.#resume ??= { tick: this.#tick };
    this.#startWhenReady ||= this.#playing;
    this.#stale = true;
    this.#setPlaying(false);
  }

  #applyRange() {
    const player = this.#api.player;
    // Outside of looping the range binds nothing: alphaTab would refuse to seek or play past its end.
    const range = this.#range && this.#api.isLooping ? this.#range : null;
    if (!player || (!range && !player.playbackRange)) {
      return;
    }
    const tick = this.#sought ?? this.#tick;
    const inside = !range || (tick >= range.startTick && tick < range.endTick);
    player.playbackRange = range ? Object.assign(new alphaTab.synth.PlaybackRange(), range) : null;
    if (inside && range) {
      this.seekToTick(tick);
    }
  }

  /**
   * Whether what has just been loaded is the score before: this one is not prepared yet, or is still on its way to the
   * synthesizer, which answers for each.
   */
  get #isOfScoreBefore() {
    const synthesized = this.#api.actualPlayerMode === alphaTab.PlayerMode.EnabledSynthesizer;
    return !this.#api.hasPrepared || (synthesized && Boolean(this.#api.synth?.isLoading));
  }

  #onLoaded() {
    if (this.#isOfScoreBefore) {
      return;
    }
    this.#stale = false;
    const resume = this.#resume;
    if (resume) {
      this.#resume = null;
      const tick = "tick" in resume ? resume.tick : this.#tempoMap.tickAt(this.#inScore(resume.ms)) - this.#tickShift;
      this.#tick = tick;
      this.#applyRange();
      // A player that took over reports the beginning before it has reached its position.
      this.#awaitedTick = tick;
      this.#api.tickPosition = tick;
    }
  }

  /**
   * The score stays to be seen.
   *
   * @param {unknown} reason
   */
  #giveUp(reason) {
    this.#problem = `The score cannot be played (${reason instanceof Error ? reason.message : reason}).`;
    this.#startWhenReady = false;
    this.#tempoMap = new TempoMap([], 0, 960);
    this.#syncPoints = [];
    this.#post({ type: "error", message: this.#problem });
  }

  #onReady() {
    if (!this.#readyPosted) {
      this.#readyPosted = true;
      this.#post({ type: "playerReady" });
    }
    // alphaTab sets volumes of its own now, and the mixer then sets the right ones: not while music plays.
    setTimeout(() => this.#startIfWanted());
  }

  #startIfWanted() {
    if (this.#startWhenReady && this.#api.isReadyForPlayback && !this.#stale) {
      this.#startWhenReady = false;
      this.#prepareCountIn(this.#tick);
      this.#api.play();
    }
  }

  /** @param {import("@coderline/alphatab").synth.PlayerStateChangedEventArgs} event */
  #onState(event) {
    const playing = event.state === alphaTab.synth.PlayerState.Playing;
    if (!playing && !event.stopped && this.#playing) {
      // alphaTab steps back to the first time the current beat is played, also in the middle of a repeat. A pause
      // stays where it is.
      this.#awaitedTick = this.#tick;
      this.#api.tickPosition = this.#tick;
    }
    this.#setPlaying(playing);
  }

  /** @param {boolean} playing */
  #setPlaying(playing) {
    if (playing !== this.#playing) {
      this.#playing = playing;
      this.#post({ type: "state", playing });
    }
  }

  /** @param {import("@coderline/alphatab").synth.PositionChangedEventArgs} event */
  #onPosition(event) {
    if (this.#stale || !this.#api.score || event.endTime <= 0) {
      return;
    }
    if (!this.#playing && !event.isSeek) {
      // The last samples are reported as played when the player has stopped already: it would stop a little further on.
      return;
    }
    if (this.#awaitedTick !== null && event.isSeek) {
      if (Math.abs(event.currentTick - this.#awaitedTick) > sameTick) {
        return;
      }
      this.#awaitedTick = null;
    }
    this.#tick = event.currentTick;
    if (!event.isSeek || (this.#sought !== null && Math.abs(this.#tick - this.#sought) <= sameTick)) {
      this.#sought = null;
    }
    // alphaTab counts in time as played, which stretches with the speed. Its own end shows by how much.
    const share = Math.min(Math.max(event.currentTime / event.endTime, 0), 1);
    const position = { currentTime: share * this.endTime, endTime: this.endTime };
    if (event.isSeek) {
      this.#feed.jump(position);
    } else {
      this.#feed.flow(position);
    }
  }
}
