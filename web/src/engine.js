// @ts-check
import { alphaTab } from "./alphatab.js";
import { hideEngineHeading } from "./heading.js";
import { SynthPlayer } from "./synth-player.js";

/**
 * The engine with the page's settings. It also prepares a score for playing once: left alone it does so up to three
 * times, and before the drawing worker has its work.
 */
export class Engine extends alphaTab.AlphaTabApi {
  #midiHeldBack = false;
  /** @type {import("./alphatab.js").Score | null} */
  #preparedScore = null;
  #preparedMode = alphaTab.PlayerMode.Disabled;
  /** @type {Uint8Array<ArrayBuffer> | null} what plays in the player's place while the score's recording is chosen */
  recording = null;
  /** @type {import("@coderline/alphatab").synth.BackingTrackSyncPoint[]} where the score's time lies in its recording */
  syncPoints = [];
  /** How much earlier than asked for a recording starts, in seconds: what accompanies it needs to hear it coming. */
  leadIn = 0;
  /** @type {SynthPlayer | null} the synthesizer made last */
  synth = null;

  /** @param {HTMLElement} sheet where the notation is drawn */
  constructor(sheet) {
    super(sheet, pageSettings());
    this.sheet = sheet;
    this.uiFacade.createWorkerPlayer = () => (this.synth = new SynthPlayer(this.settings)).player;
    // Started at once and not with the first score: loading the sound bank takes longest.
    this.settings.player.playerMode = alphaTab.PlayerMode.EnabledSynthesizer;
    this.updateSettings();
  }

  /**
   * Draws a score with all its tracks, and prepares it for playing while the worker draws.
   *
   * @param {import("./alphatab.js").Score} score
   */
  show(score) {
    this.#midiHeldBack = true;
    try {
      this.renderScore(score, [-1]);
    } finally {
      this.#midiHeldBack = false;
    }
    this.loadMidiForScore();
  }

  /** @override */
  loadMidiForScore() {
    const prepared = this.score === this.#preparedScore && this.actualPlayerMode === this.#preparedMode;
    if (!this.#midiHeldBack && !prepared) {
      this.#preparedScore = this.score;
      this.#preparedMode = this.actualPlayerMode;
      super.loadMidiForScore();
      if (this.actualPlayerMode === alphaTab.PlayerMode.EnabledBackingTrack) {
        this.#loadRecording();
      }
    }
  }

  /** The element that plays the score's recording; null while the synthesizer plays. */
  get audioElement() {
    const output = this.actualPlayerMode === alphaTab.PlayerMode.EnabledBackingTrack ? this.player?.output : null;
    return /** @type {{ audioElement?: HTMLAudioElement } | null | undefined} */ (output)?.audioElement ?? null;
  }

  #loadRecording() {
    const output = /** @type {import("@coderline/alphatab").synth.IAudioElementBackingTrackSynthOutput | undefined} */ (
      this.player?.output
    );
    if (output && this.recording) {
      const audio = output.audioElement;
      // A pause while the element is still starting is no fault.
      audio.play = () => {
        audio.currentTime = Math.max(audio.currentTime - this.leadIn, 0);
        return HTMLMediaElement.prototype.play.call(audio).catch(() => {});
      };
      // A recording may end before the last bar does.
      audio.onended = () => this.stop();
      this.player?.updateSyncPoints(this.syncPoints);
      output.loadBackingTrack(Object.assign(new alphaTab.model.BackingTrack(), { rawAudioFile: this.recording }));
    }
  }
}

function pageSettings() {
  const settings = new alphaTab.Settings();
  // Debug lines of the engine cost seconds with a large score.
  settings.core.logLevel = alphaTab.LogLevel.Warning;
  settings.core.smuflFontSources = new Map([
    [alphaTab.FontFileFormat.Woff2, new URL("../vendor/font/Bravura.woff2", import.meta.url).href],
  ]);
  // The paper has its own margins.
  settings.display.padding = [12, 8];
  chooseFonts(settings.display.resources);
  hideEngineHeading(settings);

  const player = settings.player;
  // The engine makes a player of its own with its first settings; the page's comes after.
  player.playerMode = alphaTab.PlayerMode.Disabled;
  player.scrollElement = "#desk";
  player.scrollMode = alphaTab.ScrollMode.Continuous;
  // Clicks and drags on the score are read by the page's own Selection.
  player.enableUserInteraction = false;
  return settings;
}

/** @param {import("@coderline/alphatab").RenderingResources} resources */
function chooseFonts(resources) {
  const serif = ["Noto Serif", "Noto Serif CJK SC", "Noto Serif CJK JP", "serif"];
  const sans = ["Noto Sans", "Noto Sans CJK SC", "Noto Sans CJK JP", "sans-serif"];
  const { Plain, Italic } = alphaTab.model.FontStyle;
  const { Regular, Bold } = alphaTab.model.FontWeight;
  /** @type {(families: string[], size: number, style?: number, weight?: number) => import("@coderline/alphatab").model.Font} */
  const font = (families, size, style = Plain, weight = Regular) =>
    alphaTab.model.Font.withFamilyList([...families], size, style, weight);
  // Second voices are told apart by their stems; the engine's own light gray is hard to read.
  resources.secondaryGlyphColor = new alphaTab.model.Color(74, 74, 82, 255);
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
