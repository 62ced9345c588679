// @ts-check
import { alphaTab } from "../../shared/alphatab.js";

/**
 * Everything of alphaTab that the page uses or replaces without finding it in alphaTab's declarations. No other module
 * reaches behind them. `missingInternals()` says by name what is gone after an upgrade.
 *
 * @typedef {import("@coderline/alphatab").rendering.IScoreRenderer} IScoreRenderer
 * @typedef {import("@coderline/alphatab").synth.IAlphaSynth} Player
 *
 * @typedef {object} Sequencer times are real milliseconds at the speed of playing
 * @property {number} currentTime up to where events were handed to the synthesizer
 * @property {number} currentEndTime
 * @property {number} playbackSpeed
 * @property {import("@coderline/alphatab").synth.PlaybackRange | null} mainPlaybackRange
 * @property {(tick: number) => number} mainTickPositionToTimePosition
 * @property {(time: number) => void} mainSeek
 * @property {() => void} fillMidiEventQueue hands over the events of the next 64 samples
 *
 * @typedef {object} SynthEvent
 * @property {number} time milliseconds of score time
 * @property {{ type: number }} [event]
 *
 * @typedef {{ samples: Int16Array, loKey: number, hiKey: number }} Region
 * @typedef {{ presetNumber: number, bank: number, name: string, regions: Region[] }} Preset
 *
 * @typedef {object} Bank what alphaTab parses a SoundFont into; named here is what the page reads or replaces of it
 * @property {Uint8Array} sampleData
 * @property {(start: number, end: number) => Int16Array} decodeSamples from the first byte to the one after the last
 *
 * @typedef {object} PresetMaker
 * @property {Preset[] | null} presets
 * @property {(bank: Bank, programs: Set<number>, percussionKeys: Set<number>, append: boolean) => void} loadPresets
 *
 * @typedef {object} SoundMaker
 * @property {number} activeVoiceCount
 * @property {(buffer: Float32Array, at: number, frames: number) => void} synthesize adds to what is in the buffer
 * @property {(frames: number) => void} synthesizeSilent ends all voices
 * @property {(immediate: boolean) => void} noteOffAll
 * @property {(event: SynthEvent) => void} dispatchEvent takes effect with the next samples
 * @property {(channel: number, key: number, velocity: number) => void} channelNoteOn
 * @property {(channel: number, bank: number, program: number) => void} channelSetBankPreset
 *
 * @typedef {PresetMaker & SoundMaker} Synthesizer
 *
 * @typedef {{ effect: { notationElement: number } }} EffectBand
 *
 * @typedef {{ isLinkedToPrevious: boolean, renderers: unknown[], width: number }} DrawnBar
 *
 * @typedef {object} EndlessSystem
 * @property {(tracks: unknown[], bar: number, foldedBehind: number[] | null) => DrawnBar} addBars `foldedBehind` are the
 *     bars that the rest in this one stands for
 * @property {(x: number, y: number, canvas: unknown, start: number, count: number) => void} paintPartial bars by their
 *     place in the line
 *
 * @typedef {object} MusicXmlElement what alphaTab's MusicXML reader asks of the elements of a document
 * @property {string} localName
 * @property {string} innerText
 * @property {ReadonlyMap<string, string>} attributes
 * @property {MusicXmlElement | null} firstElement
 * @property {(name: string, otherwise?: string) => string} getAttribute
 * @property {() => Iterable<MusicXmlElement>} childElements
 * @property {(name: string) => MusicXmlElement | null} findChildElement
 *
 * @typedef {{ createEmptyStaffSystem: (index: number) => EndlessSystem }} EndlessLayout
 *
 * @typedef {object} System a staff system of a page
 * @property {number} index
 * @property {{ masterBar: { index: number }, lastMasterBarIndex: number, renderers: unknown[], layoutingInfo: unknown }[]}
 *     masterBarsRenderers its bars, in the order of the score
 * @property {{ barRenderers: unknown[] }[]} allStaves
 * @property {unknown[]} staves
 *
 * @typedef {{ id: string, firstMasterBarIndex: number }} Laid what a partial is known by
 * @typedef {{ bar: { id: number }, additionalMultiRestBars: { id: number }[] | null }} BarRenderer
 *
 * @typedef {object} PageLayout
 * @property {(index: number) => System} createEmptyStaffSystem
 * @property {(partial: Laid, paint: (canvas: unknown) => void) => void} registerPartial
 * @property {(staff: string, renderer: BarRenderer) => void} registerBarRenderer
 * @property {(staff: string, bar: { id: number }) => BarRenderer | null} getRendererForBar
 * @property {(hints: unknown) => void} doLayoutAndRender lays out all of it
 */

/** Members of alphaTab's objects, by the object. */
const members = {
  AlphaSynth: ["sequencer", "synthesizer", "updateTimePosition", "updatePlaybackSpeed"],
  "AlphaSynth.sequencer": [
    "currentTime",
    "currentEndTime",
    "playbackSpeed",
    "mainPlaybackRange",
    "mainTickPositionToTimePosition",
    "mainSeek",
    "fillMidiEventQueue",
  ],
  "AlphaSynth.synthesizer": [
    "presets",
    "loadPresets",
    "activeVoiceCount",
    "synthesize",
    "synthesizeSilent",
    "noteOffAll",
    "dispatchEvent",
    "channelNoteOn",
    "channelSetBankPreset",
  ],
  "alphaTab.synth": ["AlphaSynthWebWorkerApi"],
  "alphaTab.platform": ["FontSizes"],
  "alphaTab.platform.FontSizes": ["fontSizeLookupTables"],
  "alphaTab.Environment": ["defaultRenderers", "layoutEngines"],
};

/** Commands and reports between alphaTab's player and its synthesizer, each behind "alphaSynth.". */
const messages = [
  ...["initialize", "destroy", "play", "pause", "playPause", "stop", "loadSoundFontBytes", "resetSoundFonts"],
  ...["setLogLevel", "setMasterVolume", "setMetronomeVolume", "setPlaybackSpeed", "setTickPosition", "setTimePosition"],
  ...["setPlaybackRange", "setIsLooping", "setChannelMute", "setChannelSolo", "setChannelVolume", "resetChannelStates"],
  ...["setChannelTranspositionPitch", "applyTranspositionPitches", "positionChanged", "playerStateChanged", "ready"],
  ...["soundFontLoaded", "soundFontLoadFailed", "midiLoaded", "midiLoadFailed", "readyForPlayback"],
  ...["playbackRangeChanged", "output.play", "output.pause", "output.destroy", "destroyed"],
];

/** What stands in alphaTab's source: names of workers, elements and events, and members of objects it makes late. */
const texts = {
  'the worker "alphaTab Renderer"': /"alphaTab Renderer"/,
  "the class at-surface": /at-surface/,
  "the class at-cursor-bar": /at-cursor-bar/,
  "the class at-cursor-beat": /at-cursor-beat/,
  "the class at-highlight": /at-highlight/,
  "the event midiFileLoaded": /"midiFileLoaded"/,
  "AlphaTabApi.renderer.instance": /\bset instance\(/,
  "uiFacade.beginInvoke": /\bbeginInvoke\(/,
  "uiFacade.createWorkerPlayer": /\bcreateWorkerPlayer\(/,
  "uiFacade.createCursors": /\bcreateCursors\(/,
  "uiFacade.destroyCursors": /\bdestroyCursors\(/,
  "a bank's sampleData": /\.sampleData\b/,
  "a bank's decodeSamples": /\.decodeSamples\b/,
  "an effect's canShareBand": /\bcanShareBand\b/,
  "a layout's createEmptyStaffSystem": /\bcreateEmptyStaffSystem\(/,
  "a staff system's addBars": /\baddBars\(/,
  "a staff system's paintPartial": /\bpaintPartial\(/,
  "a staff system's masterBarsRenderers": /\.masterBarsRenderers\b/,
  "a staff system's allStaves": /\.allStaves\b/,
  "a staff's barRenderers": /\.barRenderers\b/,
  "a layout's registerPartial": /\bregisterPartial\(/,
  "a layout's registerBarRenderer": /\bregisterBarRenderer\(/,
  "a layout's getRendererForBar": /\bgetRendererForBar\(/,
  "a layout's doLayoutAndRender": /\bdoLayoutAndRender\(/,
  "a bar's additionalMultiRestBars": /\badditionalMultiRestBars\b/,
  "a bar's layoutingInfo": /\blayoutingInfo\b/,
};

/**
 * @param {object} synth an AlphaSynth
 * @param {string} source of alphaTab
 * @returns {string[]} what of all this alphaTab does not have, by name
 */
export function missingInternals(synth, source) {
  /** @type {Record<string, any>} */
  const roots = { alphaTab, AlphaSynth: synth };
  const missing = Object.entries(members).flatMap(([path, names]) => {
    const owner = path.split(".").reduce((object, name) => object?.[name], /** @type {any} */ (roots));
    return names
      .filter((name) => (typeof owner !== "object" && typeof owner !== "function") || !(name in owner))
      .map((name) => `${path}.${name}`);
  });
  missing.push(...messages.map((name) => `alphaSynth.${name}`).filter((text) => !source.includes(`"${text}"`)));
  missing.push(...Object.entries(texts).flatMap(([name, pattern]) => (pattern.test(source) ? [] : [name])));
  if (scoreWalks().length !== 1) {
    missing.push("MidiFileGenerator: one static method with six parameters");
  }
  if (!musicXmlReader()) {
    missing.push("Environment.buildImporters: one that reads the elements of MusicXML");
  }
  for (const [direction, tables] of Object.entries({ up: ornamentTables(1), down: ornamentTables(-1) })) {
    if (tables.length !== 1) {
      missing.push(`MidiFileGenerator: one static table of twelve steps ${direction}`);
    }
  }
  return missing;
}

/**
 * @param {object} synth an AlphaSynth
 * @returns {Sequencer}
 */
export function sequencerOf(synth) {
  return /** @type {{ sequencer: Sequencer }} */ (synth).sequencer;
}

/**
 * @param {object} synth an AlphaSynth
 * @returns {Synthesizer}
 */
export function synthesizerOf(synth) {
  return /** @type {{ synthesizer: Synthesizer }} */ (synth).synthesizer;
}

/**
 * Has an AlphaSynth report a position.
 *
 * @param {object} synth
 * @param {number} time real milliseconds at the speed of playing
 * @param {boolean} isSeek
 */
export function reportTime(synth, time, isSeek) {
  const base = /** @type {{ updateTimePosition: (time: number, isSeek: boolean) => void }} */ (synth);
  base.updateTimePosition(time, isSeek);
}

/** alphaTab's player for synthesizers that run in a worker. */
export function workerPlayerClass() {
  const { AlphaSynthWebWorkerApi } = /** @type {any} */ (alphaTab.synth);
  return /** @type {new (output: unknown, settings: unknown, worker: unknown) => Player} */ (AlphaSynthWebWorkerApi);
}

/**
 * Gives alphaTab's object another renderer.
 *
 * @param {{ renderer: IScoreRenderer }} api
 * @param {IScoreRenderer} renderer
 */
export function setRenderer(api, renderer) {
  const wrapper = /** @type {{ instance: IScoreRenderer }} */ (/** @type {unknown} */ (api.renderer));
  wrapper.instance = renderer;
}

/** How wide letters are, by the family of the font. */
export function letterWidths() {
  const { FontSizes } = /** @type {any} */ (alphaTab.platform);
  return /** @type {Map<string, unknown>} */ (FontSizes.fontSizeLookupTables);
}

/** @returns {EffectBand[]} what may lie above the staves */
export function effectBands() {
  const { defaultRenderers } = /** @type {any} */ (alphaTab.Environment);
  return defaultRenderers.flatMap((/** @type {{ effectBands: EffectBand[] }} */ { effectBands: bands }) => bands);
}

/** @param {(layout: EndlessLayout) => void} change what is done to each layout of a score in one endless line */
export function changeEndlessLayouts(change) {
  changeLayouts(alphaTab.LayoutMode.Horizontal, change);
}

/** @param {(layout: PageLayout, renderer: object) => void} change what is done to each layout of a score on a page */
export function changePageLayouts(change) {
  changeLayouts(alphaTab.LayoutMode.Page, change);
}

/**
 * @param {number} mode
 * @param {(layout: any, renderer: object) => void} change
 */
function changeLayouts(mode, change) {
  const { layoutEngines } = /** @type {any} */ (alphaTab.Environment);
  const factory = layoutEngines.get(mode);
  const create = factory.createLayout;
  factory.createLayout = (/** @type {object} */ renderer) => {
    const layout = create(renderer);
    change(layout, renderer);
    return layout;
  };
}

/** The names of the static method that walks through a score: it is undeclared, and named otherwise in each build. */
function scoreWalks() {
  const statics = /** @type {Record<string, unknown>} */ (/** @type {unknown} */ (alphaTab.midi.MidiFileGenerator));
  return Object.getOwnPropertyNames(statics).filter((name) => {
    const member = statics[name];
    return typeof member === "function" && member.length === 6;
  });
}

/**
 * Replaces alphaTab's walk through a score, from which notes, ticks and sync points come.
 *
 * @param {Function} walk of six parameters
 */
export function replaceScoreWalk(walk) {
  const names = scoreWalks();
  if (names.length !== 1) {
    throw new Error("alphaTab's walk through a score is not where it was.");
  }
  /** @type {Record<string, unknown>} */ (/** @type {unknown} */ (alphaTab.midi.MidiFileGenerator))[names[0]] = walk;
}

/**
 * @param {1 | -1} sign
 * @returns {number[][]} static tables of the generator of notes with so many semitones for each key of an octave
 */
function ornamentTables(sign) {
  const statics = /** @type {Record<string, unknown>} */ (/** @type {unknown} */ (alphaTab.midi.MidiFileGenerator));
  return Object.getOwnPropertyNames(statics)
    .map((name) => /** @type {number[]} */ (statics[name]))
    .filter((table) => Array.isArray(table) && table.length === 12 && table.every((step) => step * sign > 0));
}

/**
 * How far turns and mordents go, in semitones for each key of an octave from C; one for all notes. Changed in place, it
 * holds for the notes that are generated from then on.
 */
export function ornamentSteps() {
  const [[up], [down]] = [ornamentTables(1), ornamentTables(-1)];
  if (!up || !down) {
    throw new Error("alphaTab's steps of ornaments are not where they were.");
  }
  return { up, down };
}

/** Only what reads whole documents knows those that are ordered by measures. It is named otherwise in each build. */
const readsDocuments = /"score-timewise"/;

function musicXmlReader() {
  const { buildImporters } = /** @type {any} */ (alphaTab.Environment);
  for (const importer of buildImporters?.() ?? []) {
    const members = Object.getOwnPropertyDescriptors(Object.getPrototypeOf(importer));
    const names = Object.keys(members).filter((name) => {
      const { value } = members[name];
      return name !== "constructor" && typeof value === "function" && readsDocuments.test(value.toString());
    });
    if (names.length === 1) {
      return { importer, name: names[0] };
    }
  }
  return null;
}

/**
 * Has alphaTab read MusicXML that is in elements already. It takes only texts, and reading one again takes as long as
 * the rest.
 *
 * @param {MusicXmlElement} root
 * @param {import("../../shared/alphatab.js").Settings} settings
 * @returns {import("../../shared/alphatab.js").Score}
 */
export function readMusicXmlElements(root, settings) {
  const reader = musicXmlReader();
  if (!reader) {
    throw new Error("alphaTab's reader of MusicXML is not where it was.");
  }
  const { importer, name } = reader;
  const readDocument = importer[name];
  importer[name] = () => readDocument.call(importer, { firstElement: root });
  importer.init(alphaTab.io.ByteBuffer.fromString("<score-partwise/>"), settings);
  return importer.readScore();
}
