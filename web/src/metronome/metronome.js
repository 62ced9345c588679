// @ts-check
import { clickKey } from "../clicks/click-bank.js";
import { audibleLevels, isAccented, levels } from "../clicks/click-pattern.js";
import { ClickPlayer } from "./click-player.js";
import { countInChannels, writtenKey } from "../playback/click-notes.js";
import { soundNamed } from "../clicks/click-sounds.js";
import { backingTrackMs } from "../timing/sync-point-map.js";

/**
 * The metronome. Its clicks are written into the playback itself as notes on channels of their own, one channel for
 * each level of the pattern (bars, beats, half beats, quarter beats): so they are in time to the sample at any speed
 * and through seeks, repeats and changes of tempo, which clicks timed by the page could not be. What sounds is
 * chosen without touching the notes: a channel is muted or not, and transposed to the key of the chosen sound.
 *
 * A score's backing track plays without the synthesizer; its player mixes the clicks in where they fall in it.
 *
 * @typedef {{ volume: number, sound: string, accent: boolean, mode: string }} Configuration volume from 0 to 1
 */

export class Metronome {
  #api;
  #on = false;
  /** @type {Configuration} */
  #configuration = { volume: 0.8, sound: "woodblock", accent: true, mode: "beat" };
  #besideSolo = false;
  #firstChannel = 0;
  #preview = new ClickPlayer();

  /** @param {import("../alphatab/page-api.js").PageApi} api */
  constructor(api) {
    this.#api = api;
    api.playerReady.on(() => this.#apply());
  }

  /** @param {import("../playback/build-playback.js").BuiltPlayback} built of the score that is about to be loaded */
  use({ clicks, tempoMap, syncPoints }) {
    this.#firstChannel = clicks.firstChannel;
    if (this.#api.playsBackingTrack) {
      const points = syncPoints.map(({ synthTime, syncTime }) => ({ scoreMs: synthTime, backingTrackMs: syncTime }));
      this.#api.backingTrackPlayer.setClicks(
        clicks.pattern.map(({ tick, level }) => ({ ms: backingTrackMs(points, tempoMap.msAt(tick)), level })),
      );
    }
  }

  /** @param {boolean} on */
  turn(on) {
    this.#on = Boolean(on);
    this.#apply();
  }

  /** @param {Configuration} configuration */
  configure(configuration) {
    this.#configuration = configuration;
    this.#apply();
  }

  /**
   * A soloed track silences every other channel; the metronome goes on beside it.
   *
   * @param {boolean} anySolo
   */
  setBesideSolo(anySolo) {
    this.#besideSolo = anySolo;
    this.#apply();
  }

  /** Plays one click with the sound and volume as they are, whatever else is going on. */
  preview() {
    const { sound, volume } = this.#configuration;
    this.#preview.play({ sound: soundNamed(sound), accent: false, volume });
  }

  #apply() {
    const player = this.#api.player;
    if (!player || this.#firstChannel === 0) {
      return;
    }
    const { volume, accent, mode } = this.#configuration;
    const sound = soundNamed(this.#configuration.sound);
    const audible = this.#on ? audibleLevels(mode) : 0;
    if (this.#api.playsBackingTrack) {
      this.#api.backingTrackPlayer.setTicking({ levels: audible, sound, accent, volume });
    }
    /** @type {(offset: number, sounds: boolean, accented: boolean) => void} */
    const set = (offset, sounds, accented) => {
      const channel = this.#firstChannel + offset;
      player.setChannelMute(channel, !sounds);
      player.setChannelSolo(channel, this.#besideSolo);
      player.setChannelVolume(channel, volume);
      player.setChannelTranspositionPitch(channel, clickKey(sound, accented) - writtenKey);
    };
    levels.forEach((name, level) => set(level, level < audible, isAccented(name, accent)));
    // Counted in is whether the metronome is on or not.
    set(countInChannels.first, true, isAccented("bar", accent));
    set(countInChannels.others, true, isAccented("beat", accent));
  }
}
