// @ts-check
import { alphaTab } from "./alphatab.js";
import { drawingWorkerListens } from "./drawing-worker-start.js";
import { Recordings } from "./recordings.js";
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
  #recordings = new Recordings();
  #preferSynthesizer = false;
  /** Counts the openings, so that of two under way only the later one is shown. */
  #turn = 0;

  /** @param {Surroundings} surroundings */
  constructor({ engine, playback, mixer, selection, sheet, post }) {
    this.#engine = engine;
    this.#playback = playback;
    this.#mixer = mixer;
    this.#selection = selection;
    this.#sheet = sheet;
    this.#post = post;
    engine.scorePrepared.on(() => playback.announceLength());
  }

  /** @param {Uint8Array | null} bytes null when they could not be decoded */
  async open(bytes) {
    await drawingWorkerListens;
    const drawing = this.#engine.drawing;
    const file = bytes && drawing.read(bytes);
    const reading = readScore(bytes, this.#engine.settings);
    if ("problem" in reading) {
      this.#post({ type: "error", message: reading.problem });
      return;
    }
    if (file !== null) {
      drawing.recognize(reading.score, file);
    }
    const turn = ++this.#turn;
    if (this.#recordings.isWaiting(reading.score)) {
      await this.#recordings.prepare(reading.score);
    }
    if (turn === this.#turn) {
      this.#show(reading.score);
    }
  }

  async openDemo() {
    const turn = ++this.#turn;
    const bytes = await fetchBytes("demo/demo.gp").catch(() => null);
    if (!bytes) {
      this.#post({ type: "error", message: "The demo score cannot be loaded." });
    } else if (turn === this.#turn) {
      await this.open(bytes);
    }
  }

  /** @param {boolean} synthesized */
  preferSynthesizer(synthesized) {
    this.#preferSynthesizer = Boolean(synthesized);
    const score = this.#engine.score;
    if (score && this.#choosePlayer(score)) {
      this.#playback.handOver();
      this.#engine.updateSettings();
    }
  }

  /** The recording of the score on the desk cannot be heard after all: the synthesizer takes its place. */
  giveUpRecording() {
    const score = this.#engine.score;
    if (!score || !this.#recordings.of(score)) {
      return;
    }
    this.#recordings.giveUp(score);
    // The tracks stay what they are, with what the mixer did to them.
    this.#post({ type: "score", title: score.title, artist: score.artist, hasBackingTrack: false });
    this.#playback.repeatPosition();
    if (this.#choosePlayer(score)) {
      this.#playback.handOver();
      this.#engine.updateSettings();
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
    this.#sheet.leaveScore();
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
      hasBackingTrack: this.#recordings.of(score) !== null,
    });
    this.#sheet.show(score);
  }

  /**
   * @param {import("./alphatab.js").Score} score
   * @returns {boolean} whether another player is needed than the one at work
   */
  #choosePlayer(score) {
    const { EnabledExternalMedia, EnabledSynthesizer } = alphaTab.PlayerMode;
    this.#engine.recording = this.#recordings.of(score);
    const mode = this.#engine.recording && !this.#preferSynthesizer ? EnabledExternalMedia : EnabledSynthesizer;
    return this.#engine.choosePlayer(mode);
  }
}
