// @ts-check
import { alphaTab } from "./alphatab.js";
import { fetchBytes } from "./resources.js";
import { readScore } from "./score-files.js";

/**
 * The score on the desk: opening another, choosing how it sounds, and writing it out again.
 *
 * @typedef {object} Surroundings
 * @property {import("./engine.js").Engine} engine
 * @property {import("./playback.js").Playback} playback
 * @property {import("./mixer.js").Mixer} mixer
 * @property {import("./selection.js").Selection} selection
 * @property {import("./sheet.js").Sheet} sheet
 * @property {import("./bridge.js").Post} post
 */
export class Documents {
  #engine;
  #playback;
  #mixer;
  #selection;
  #sheet;
  #post;
  #preferSynthesizer = false;

  /** @param {Surroundings} surroundings */
  constructor({ engine, playback, mixer, selection, sheet, post }) {
    this.#engine = engine;
    this.#playback = playback;
    this.#mixer = mixer;
    this.#selection = selection;
    this.#sheet = sheet;
    this.#post = post;
  }

  /** @param {Uint8Array | null} bytes null when they could not be decoded */
  open(bytes) {
    const reading = readScore(bytes, this.#engine.settings);
    if ("problem" in reading) {
      this.#post({ type: "error", message: reading.problem });
    } else {
      this.#show(reading.score);
    }
  }

  async openDemo() {
    try {
      this.open(await fetchBytes("demo/demo.gp"));
    } catch (reason) {
      this.#post({ type: "error", message: `The demo score cannot be loaded: ${reason}` });
    }
  }

  /** @param {boolean} synthesized */
  preferSynthesizer(synthesized) {
    this.#preferSynthesizer = Boolean(synthesized);
    const score = this.#engine.score;
    if (score && this.#choosePlayer(score)) {
      const settle = this.#playback.carryOver();
      this.#engine.updateSettings();
      settle();
    }
  }

  /** @param {(bytes: Uint8Array) => string} encode */
  exportGuitarPro(encode) {
    const score = this.#engine.score;
    if (!score) {
      this.#post({ type: "error", message: "There is no score to export." });
      return;
    }
    try {
      const bytes = new alphaTab.exporter.Gp7Exporter().export(score, this.#engine.settings);
      this.#post({ type: "gpData", data: encode(bytes), title: score.title });
    } catch (reason) {
      this.#post({ type: "error", message: `The score cannot be exported: ${reason}` });
    }
  }

  /** @param {import("./alphatab.js").Score} score */
  #show(score) {
    this.#selection.leaveScore();
    this.#playback.leaveScore();
    this.#mixer.leaveScore();
    this.#choosePlayer(score);
    this.#sheet.lay();
    this.#sheet.scrollToTop();
    this.#post({
      type: "score",
      title: score.title,
      artist: score.artist,
      tracks: score.tracks.map((track) => ({ index: track.index, name: track.name })),
      hasBackingTrack: hasRecording(score),
    });
    this.#sheet.show(score);
    this.#playback.announceLength();
  }

  /**
   * @param {import("./alphatab.js").Score} score
   * @returns {boolean} whether another player is needed than the one at work
   */
  #choosePlayer(score) {
    const { EnabledBackingTrack, EnabledSynthesizer } = alphaTab.PlayerMode;
    const mode = hasRecording(score) && !this.#preferSynthesizer ? EnabledBackingTrack : EnabledSynthesizer;
    this.#engine.settings.player.playerMode = mode;
    return mode !== this.#engine.actualPlayerMode;
  }
}

/** @param {import("./alphatab.js").Score} score */
function hasRecording(score) {
  return (score.backingTrack?.rawAudioFile?.length ?? 0) > 0;
}
