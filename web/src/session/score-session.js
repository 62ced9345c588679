// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { renderWorkerReady } from "../rendering/render-worker-start.js";
import { BackingTracks } from "../backing-track/backing-tracks.js";
import { scoreOrder } from "../playback/score-order.js";
import { CallOrder } from "./call-order.js";
import { LoadSequence } from "./load-sequence.js";
import { fetchBytes } from "../shared/resources.js";
import { collectGarbage, leavesMuch } from "../shared/garbage.js";
import { exportGuitarPro } from "../score-files/guitar-pro/export.js";
import { readForFirstScreen } from "../score-files/score-files.js";

/**
 * The open score: opening another, choosing how it sounds, and writing it out again.
 *
 * @typedef {object} Dependencies
 * @property {import("../alphatab/page-api.js").PageApi} api
 * @property {import("../playback/playback.js").Playback} playback
 * @property {import("../playback/mixer.js").Mixer} mixer
 * @property {import("../score-view/pointer-input.js").PointerInput} pointerInput
 * @property {import("../score-view/score-view.js").ScoreView} scoreView
 * @property {import("../score-view/cursor.js").Cursor} cursor
 * @property {import("../score-view/notice.js").Notice} notice
 * @property {import("../bridge/bridge.js").Post} post
 * @property {import("./load-sequence.js").Dependencies} [timing] the browser's where there is none
 */
export class ScoreSession {
  #api;
  #playback;
  #mixer;
  #pointerInput;
  #scoreView;
  #notice;
  #post;
  #backingTracks = new BackingTracks();
  #preferSynthesizer = false;
  #calls = new CallOrder();
  #loading;

  /** @param {Dependencies} dependencies */
  constructor({ api, playback, mixer, pointerInput, scoreView, cursor, notice, post, timing }) {
    this.#api = api;
    this.#playback = playback;
    this.#mixer = mixer;
    this.#pointerInput = pointerInput;
    this.#scoreView = scoreView;
    this.#notice = notice;
    this.#post = post;
    this.#loading = loadSequence(api, playback, cursor, notice, timing);
  }

  /** @param {Uint8Array | null} bytes null when they could not be decoded */
  open(bytes) {
    return this.#open(bytes, this.#calls.begin());
  }

  async openDemo() {
    const call = this.#calls.begin();
    const bytes = await fetchBytes("demo/demo.gp").catch(() => null);
    if (bytes) {
      await this.#open(bytes, call);
    } else {
      this.#refuse("The demo score cannot be loaded.");
    }
  }

  /**
   * @param {Uint8Array | null} bytes
   * @param {number} call
   */
  async #open(bytes, call) {
    await renderWorkerReady;
    if (!this.#calls.counts(call)) {
      return;
    }
    const renderer = this.#api.workerRenderer;
    const file = bytes && renderer.read(bytes);
    const load = this.#loading.begin(bytes?.length ?? 0);
    await load.mayRead;
    if (!this.#calls.counts(call)) {
      return;
    }
    const reading = readForFirstScreen(bytes, this.#api.settings);
    if (reading.problem !== undefined) {
      this.#loading.refuse(load);
      this.#refuse(reading.problem);
      return;
    }
    if (file !== null) {
      renderer.recognize(reading.score, file);
    }
    this.#calls.succeed(call);
    if (this.#backingTracks.isWaiting(reading.score)) {
      await this.#backingTracks.prepare(reading.score);
    }
    if (this.#calls.counts(call)) {
      try {
        this.#show(reading.score, load);
      } catch (reason) {
        const message = reason instanceof Error ? reason.message : String(reason);
        this.#refuse(`The score cannot be shown as a whole (${message}).`);
      }
    }
  }

  /** @param {string} sentence why a file cannot be opened: for the program's log, and for the reader */
  #refuse(sentence) {
    this.#notice.tellProblem(sentence);
    this.#post({ type: "error", message: sentence });
  }

  /** @param {boolean} synthesized */
  preferSynthesizer(synthesized) {
    this.#preferSynthesizer = Boolean(synthesized);
    const score = this.#api.score;
    if (score && this.#choosePlayer(score)) {
      this.#playback.handOver();
      this.#api.updateSettings();
    }
  }

  /** The backing track of the open score cannot be played after all: the synthesizer replaces it. */
  giveUpBackingTrack() {
    const score = this.#api.score;
    if (!score || !this.#backingTracks.of(score)) {
      return;
    }
    this.#backingTracks.giveUp(score);
    // The tracks stay what they are, with what the mixer did to them.
    this.#post({ type: "score", title: score.title, artist: score.artist, hasBackingTrack: false });
    this.#playback.repeatPosition();
    if (this.#choosePlayer(score)) {
      this.#playback.handOver();
      this.#api.updateSettings();
    }
  }

  /** @param {(bytes: Uint8Array) => string} encode */
  exportGuitarPro(encode) {
    const score = this.#api.score;
    if (!score) {
      this.#post({ type: "error", message: "There is no score to export." });
      return;
    }
    try {
      const bytes = exportGuitarPro(score, this.#api.settings);
      this.#post({ type: "gpData", data: encode(bytes), title: score.title });
    } catch (reason) {
      this.#post({ type: "error", message: `The score cannot be exported: ${reason}` });
    }
  }

  /**
   * @param {import("../shared/alphatab.js").Score} score
   * @param {import("./load-sequence.js").Load} load
   */
  #show(score, load) {
    this.#scoreView.leaveScore();
    this.#pointerInput.leaveScore();
    this.#playback.leaveScore();
    this.#mixer.leaveScore();
    this.#choosePlayer(score);
    this.#scoreView.showPage();
    this.#notice.continueOpening();
    this.#scoreView.scrollToTop();
    this.#post({
      type: "score",
      title: score.title,
      artist: score.artist,
      tracks: score.tracks.map((track) => ({ index: track.index, name: track.name })),
      hasBackingTrack: this.#backingTracks.of(score) !== null,
    });
    if (scoreOrder(score).tooLong) {
      this.#post({ type: "error", message: "The score's repeats have no end in sight: it plays straight through." });
    }
    this.#loading.show(load);
    this.#scoreView.show(score);
    if (leavesMuch(score)) {
      // While the render worker lays out the beginning.
      collectGarbage();
    }
  }

  /**
   * @param {import("../shared/alphatab.js").Score} score
   * @returns {boolean} whether another player is needed than the one at work
   */
  #choosePlayer(score) {
    const { EnabledExternalMedia, EnabledSynthesizer } = alphaTab.PlayerMode;
    this.#api.backingTrack = this.#backingTracks.of(score);
    const mode = this.#api.backingTrack && !this.#preferSynthesizer ? EnabledExternalMedia : EnabledSynthesizer;
    return this.#api.choosePlayer(mode);
  }
}

/**
 * @param {Dependencies["api"]} api
 * @param {Dependencies["playback"]} playback
 * @param {Dependencies["cursor"]} cursor
 * @param {Dependencies["notice"]} notice
 * @param {Dependencies["timing"]} timing
 */
function loadSequence(api, playback, cursor, notice, timing) {
  const { workerRenderer } = api;
  const sequence = new LoadSequence(
    {
      announce: () => notice.beginOpening(),
      holdRemainder: (timeoutMs) => workerRenderer.holdRemainder(timeoutMs),
      layOutRemainder: () => {
        workerRenderer.resume();
        // Not before: the synthesizer needs the processor to get ready.
        collectGarbage();
      },
      showCursor: () => cursor.showAtStart(),
      prepareSound: () => {
        api.prepareSound();
        playback.announceLength();
        if (api.score && leavesMuch(api.score)) {
          collectGarbage();
        }
      },
    },
    timing,
  );
  workerRenderer.batchShown.on((batch) => {
    notice.endOpening();
    sequence.batchShown(batch);
  });
  workerRenderer.remainderShown.on(() => sequence.remainderShown());
  workerRenderer.gaveUp.on(() => sequence.endShown());
  api.playerReady.on(() => sequence.soundReady());
  return sequence;
}
