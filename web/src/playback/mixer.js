// @ts-check
import { Emitter } from "../shared/emitter.js";

/**
 * Mutes, solos and volumes of the tracks. They belong to one score and start afresh with the next.
 *
 * @typedef {{ mute: boolean, solo: boolean, volume: number }} Strip
 */
export class Mixer {
  #api;
  /** @type {Map<number, number[]>} what each track plays on, by its index */
  #channels = new Map();
  #onSoloChanged;
  /** @type {Map<number, Strip>} */
  #strips = new Map();
  /** @type {Emitter<void>} */
  soloChanged = new Emitter();

  /**
   * @param {import("../alphatab/page-api.js").PageApi} api
   * @param {(anySolo: boolean) => void} onSoloChanged
   */
  constructor(api, onSoloChanged) {
    this.#api = api;
    this.#onSoloChanged = onSoloChanged;
    // alphaTab sets volumes of its own right after it says that the player is ready, on the channels of the file.
    api.playerReady.on(() => queueMicrotask(() => this.#applyAll()));
  }

  /** @param {import("./build-playback.js").BuiltPlayback} built */
  use({ channels }) {
    this.#channels = channels;
  }

  leaveScore() {
    this.#strips.clear();
    this.#api.player?.resetChannelStates();
    this.#onSoloChanged(false);
    this.soloChanged.trigger();
  }

  get anySolo() {
    return this.soloed.length > 0;
  }

  /** Indices of the tracks that are soloed. */
  get soloed() {
    return [...this.#strips].filter(([, strip]) => strip.solo).map(([track]) => track);
  }

  /**
   * @param {number} trackId
   * @param {boolean} mute
   */
  setMute(trackId, mute) {
    this.#change(trackId, { mute: Boolean(mute) });
  }

  /**
   * @param {number} trackId
   * @param {boolean} solo
   */
  setSolo(trackId, solo) {
    this.#change(trackId, { solo: Boolean(solo) });
    this.#onSoloChanged(this.anySolo);
    this.soloChanged.trigger();
  }

  /**
   * @param {number} trackId
   * @param {number} volume 1 is as loud as the score has it
   */
  setVolume(trackId, volume) {
    if (Number.isFinite(volume)) {
      this.#change(trackId, { volume: Math.max(volume, 0) });
    }
  }

  /**
   * @param {number} trackId
   * @param {Partial<Strip>} change
   */
  #change(trackId, change) {
    const track = this.#api.score?.tracks[trackId];
    if (track) {
      const strip = { mute: false, solo: false, volume: 1, ...this.#strips.get(trackId), ...change };
      this.#strips.set(trackId, strip);
      this.#apply(track, strip);
    }
  }

  /** A player that was set up anew knows none of the settings, and alphaTab gives some tracks its own volume. */
  #applyAll() {
    for (const track of this.#api.score?.tracks ?? []) {
      this.#apply(track, this.#strips.get(track.index) ?? { mute: false, solo: false, volume: 1 });
    }
    this.#onSoloChanged(this.anySolo);
  }

  /**
   * @param {import("../shared/alphatab.js").Track} track
   * @param {Strip} strip
   */
  #apply(track, strip) {
    for (const channel of this.#channels.get(track.index) ?? []) {
      this.#api.player?.setChannelMute(channel, strip.mute);
      this.#api.player?.setChannelSolo(channel, strip.solo);
      this.#api.player?.setChannelVolume(channel, strip.volume);
    }
  }
}
