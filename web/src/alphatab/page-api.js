// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { notationColors } from "../rendering/notation-colors.js";
import { renderWorker, startRenderWorker } from "../rendering/render-worker-start.js";
import { chooseStrings } from "../score-files/strings/open-fingerings.js";
import { Emitter } from "../shared/emitter.js";
import { BackingTrackPlayer } from "../backing-track/backing-track-player.js";
import { SynthPlayer } from "../synth/synth-player.js";
import { setRenderer } from "./internals/alphatab-internals.js";
import { separateChannels, withChannels } from "./track-channels.js";
import { WorkerRenderer } from "../rendering/worker-renderer.js";

/**
 * alphaTab with the page's settings, rendered by a worker of the page's own. A score that is shown is prepared for playing
 * once, when the page says so: alphaTab would do it at once, and again with each change of player.
 */
export class PageApi extends alphaTab.AlphaTabApi {
  #soundHeldBack = false;
  /** @type {import("../shared/alphatab.js").Score | null} */
  #preparedScore = null;
  #preparedMode = alphaTab.PlayerMode.Disabled;
  #wantedMode = alphaTab.PlayerMode.EnabledSynthesizer;
  #playerStarted = false;
  /**
   * @type {import("../backing-track/backing-tracks.js").BackingTrack | null} the score's own, where it can be played
   */
  backingTrack = null;
  /** Plays it while it is chosen instead of the synthesizer. */
  backingTrackPlayer = new BackingTrackPlayer();
  /**
   * @type {import("@coderline/alphatab").synth.BackingTrackSyncPoint[]} where the score's time lies in its backing
   *     track
   */
  #syncPoints = [];
  /** @type {Map<number, import("./track-channels.js").Channels>} what each track plays on, by its index */
  trackChannels = new Map();
  /** @type {SynthPlayer | null} the synthesizer made last */
  synth = null;
  /** @type {Emitter<void>} the first player exists */
  playerStarted = new Emitter();
  /** @type {Emitter<void>} the score shown last has its length and is on its way to the player */
  scorePrepared = new Emitter();
  /** @type {Emitter<unknown>} the score shown last cannot be prepared for playing, and why */
  preparationFailed = new Emitter();

  /**
   * @param {HTMLElement} notation where the notation is drawn
   * @param {import("../rendering/scroll-anchor.js").ScrolledView} viewport what scrolls, with the notation in it
   */
  constructor(notation, viewport) {
    replaceRenderWorker();
    super(notation, pageSettings());
    this.notation = notation;
    this.uiFacade.beginInvoke = nextFrame();
    this.uiFacade.createWorkerPlayer = () => (this.synth = new SynthPlayer(this.settings)).player;
    this.backingTrackPlayer.presented.on((ms) => this.#media?.updatePosition(ms));
    // A backing track may end before the last bar does.
    this.backingTrackPlayer.ended.on(() => this.stop());
    this.workerRenderer = new WorkerRenderer(renderWorker, viewport, startRenderWorker);
    this.workerRenderer.updateSettings(this.settings);
    setRenderer(this, this.workerRenderer);
  }

  /** Whether the score shown last has its length and is on its way to the player. */
  get hasPrepared() {
    return !this.#soundHeldBack;
  }

  /**
   * Draws a score with all its tracks. It waits for prepareSound().
   *
   * @param {import("../shared/alphatab.js").Score} score
   */
  show(score) {
    this.#soundHeldBack = true;
    this.renderScore(score, [-1]);
    if (!this.#playerStarted && this.#wantedMode === alphaTab.PlayerMode.EnabledSynthesizer) {
      SynthPlayer.prepare();
    }
  }

  /**
   * @param {import("@coderline/alphatab").PlayerMode} mode
   * @returns {boolean} whether that is another player than the one at work; updateSettings() puts it to work
   */
  choosePlayer(mode) {
    this.#wantedMode = mode;
    if (this.#playerStarted) {
      this.settings.player.playerMode = mode;
    }
    return mode !== this.actualPlayerMode;
  }

  /** Makes the first player, if there is none yet: a page that has opened nothing has no use for its threads. */
  #startPlayer() {
    if (!this.#playerStarted) {
      this.#playerStarted = true;
      this.settings.player.playerMode = this.#wantedMode;
      this.updateSettings();
      this.playerStarted.trigger();
    }
  }

  /** Prepares the score shown last for playing: it has its length then, and is on its way to the player. */
  prepareSound() {
    this.#soundHeldBack = false;
    this.#startPlayer();
    this.loadMidiForScore();
    this.scorePrepared.trigger();
  }

  /** @override */
  loadMidiForScore() {
    const prepared = this.score === this.#preparedScore && this.actualPlayerMode === this.#preparedMode;
    if (!this.#soundHeldBack && !prepared) {
      this.#preparedScore = this.score;
      this.#preparedMode = this.actualPlayerMode;
      const tracks = this.score?.tracks ?? [];
      if (this.score) {
        chooseStrings(this.score);
      }
      this.trackChannels = separateChannels(tracks);
      try {
        withChannels(tracks, this.trackChannels, () => super.loadMidiForScore());
        this.#loadBackingTrack();
      } catch (reason) {
        this.preparationFailed.trigger(reason);
      }
    }
  }

  /** @param {{ syncPoints: import("@coderline/alphatab").synth.BackingTrackSyncPoint[] }} built of the score prepared */
  use({ syncPoints }) {
    this.#syncPoints = syncPoints;
  }

  /** Whether the score's backing track plays. */
  get playsBackingTrack() {
    return this.actualPlayerMode === alphaTab.PlayerMode.EnabledExternalMedia;
  }

  /** The output through which alphaTab learns the backing track's position; null while the synthesizer plays. */
  get #media() {
    const output = this.playsBackingTrack ? this.player?.output : null;
    return (
      /** @type {import("@coderline/alphatab").synth.IExternalMediaSynthOutput | null | undefined} */ (output) ?? null
    );
  }

  #loadBackingTrack() {
    const media = this.#media;
    if (!this.backingTrack) {
      this.backingTrackPlayer.load(null);
    } else if (media && this.player) {
      const { player, backingTrackPlayer: backingTrack } = this;
      const { timePosition } = player;
      backingTrack.load(this.backingTrack);
      backingTrack.playbackRate = this.playbackSpeed;
      backingTrack.masterVolume = this.masterVolume;
      media.handler = backingTrack;
      player.updateSyncPoints(this.#syncPoints);
      player.timePosition = timePosition;
    }
  }
}

/** alphaTab would start a render worker of its own, which nobody needs. Its other workers it gets. */
function replaceRenderWorker() {
  const script = new URL("../../vendor/alphaTab.min.js", import.meta.url).href;
  const nobody = /** @type {Worker} */ (
    /** @type {unknown} */ ({ postMessage() {}, addEventListener() {}, terminate() {} })
  );
  alphaTab.Environment.initializeMain(
    (_, name) => (name === "alphaTab Renderer" ? nobody : new Worker(script, { name })),
    (context) => context.audioWorklet.addModule(script),
  );
}

/**
 * alphaTab puts its cursor off to the next frame, and there once more to the one after. Once is enough.
 *
 * @returns {(action: () => void) => void}
 */
function nextFrame() {
  let inFrame = false;
  return (action) => {
    if (inFrame) {
      action();
      return;
    }
    requestAnimationFrame(() => {
      inFrame = true;
      try {
        action();
      } finally {
        inFrame = false;
      }
    });
  };
}

function pageSettings() {
  const settings = new alphaTab.Settings();
  // Debug lines of alphaTab cost seconds with a large score.
  settings.core.logLevel = alphaTab.LogLevel.Warning;
  settings.core.smuflFontSources = new Map([
    [alphaTab.FontFileFormat.Woff2, new URL("../../vendor/font/Bravura.woff2", import.meta.url).href],
  ]);
  // The score page has its own margins.
  settings.display.padding = [12, 8];
  chooseFonts(settings.display.resources);
  hideOwnScoreHeader(settings);

  const player = settings.player;
  player.playerMode = alphaTab.PlayerMode.Disabled;
  player.scrollElement = "#viewport";
  player.scrollMode = alphaTab.ScrollMode.Continuous;
  // Clicks and drags on the score are read by the page's own PointerInput.
  player.enableUserInteraction = false;
  return settings;
}

/** The page has a score header and a footer of its own with the same contents. */
function hideOwnScoreHeader(/** @type {import("../shared/alphatab.js").Settings} */ settings) {
  const element = alphaTab.NotationElement;
  for (const shown of [
    element.ScoreTitle,
    element.ScoreSubTitle,
    element.ScoreArtist,
    element.ScoreAlbum,
    element.ScoreWords,
    element.ScoreMusic,
    element.ScoreWordsAndMusic,
    element.GuitarTuning,
    element.EffectCapo,
    element.ScoreCopyright,
  ]) {
    settings.notation.elements.set(shown, false);
  }
}

/** @param {import("@coderline/alphatab").RenderingResources} resources */
function chooseFonts(resources) {
  const serif = ["Noto Serif", "Noto Serif CJK SC", "Noto Serif CJK JP", "serif"];
  const sans = ["Noto Sans", "Noto Sans CJK SC", "Noto Sans CJK JP", "sans-serif"];
  const { Plain, Italic } = alphaTab.model.FontStyle;
  const { Regular, Bold } = alphaTab.model.FontWeight;
  /**
   * @type {(families: string[], size: number, style?: number, weight?: number) =>
   *     import("@coderline/alphatab").model.Font}
   */
  const font = (families, size, style = Plain, weight = Regular) =>
    alphaTab.model.Font.withFamilyList([...families], size, style, weight);
  Object.assign(resources, notationColors(false));
  resources.titleFont = font(serif, 30);
  resources.subTitleFont = font(serif, 18);
  resources.wordsFont = font(serif, 14);
  resources.copyrightFont = font(sans, 11, Plain, Bold);
  resources.effectFont = font(serif, 12, Italic);
  resources.markerFont = font(serif, 14, Plain, Bold);
  resources.directionsFont = font(serif, 14);
  resources.fretboardNumberFont = font(sans, 11);
  resources.barNumberFont = font(sans, 11);
  resources.timerFont = font(serif, 12);
  resources.tablatureFont = font(sans, 13);
  resources.graceFont = font(sans, 11);
  resources.fingeringFont = font(serif, 14);
  resources.inlineFingeringFont = font(serif, 12);
}
