// @ts-check
import { alphaTab } from "../../shared/alphatab.js";
import { chooseStrings } from "../strings/open-fingerings.js";
import { foldBend } from "./bends.js";
import { writtenFolding } from "./long-rests.js";
import { mergeVoices } from "./merge.js";
import { chooseVoices, mostVoices } from "./voices.js";

/**
 * Writes scores as Guitar Pro files with alphaTab's exporter, which writes what it is given without asking whether the
 * format holds it. It is given a copy of the score that the format does hold; docs/export.md lists what is lost on the way.
 *
 * @typedef {import("../../shared/alphatab.js").Score} Score
 * @typedef {import("../../shared/alphatab.js").Settings} Settings
 * @typedef {import("../../shared/alphatab.js").Beat} Beat
 * @typedef {Score["tracks"][number]["staves"][number]} Staff
 * @typedef {Beat["notes"][number]} Note
 */

/**
 * @param {Score} score is left as it is, but for strings that were open
 * @param {Settings} settings
 * @returns {Uint8Array} a Guitar Pro 7 file
 */
export function exportGuitarPro(score, settings) {
  const { JsonConverter } = alphaTab.model;
  chooseStrings(score);
  const copy = JsonConverter.jsObjectToScore(/** @type {object} */ (JsonConverter.scoreToJsObject(score)), settings);
  // The copy's sound would be a copy as well.
  copy.backingTrack = score.backingTrack;
  copy.stylesheet.perTrackMultiBarRest = writtenFolding(score);
  giveShortBarsTheirMetre(copy);
  for (const track of copy.tracks) {
    numberArticulations(track);
    for (const staff of track.staves) {
      showHiddenNotes(staff);
      foldVoices(staff);
      for (const beat of beatsOf(staff)) {
        writeAsHeld(beat);
      }
      for (const beat of beatsOf(staff)) {
        slurAsLegato(beat);
      }
      if (staff.isPercussion) {
        putDrumsOnStrings(staff);
      }
    }
  }
  return new alphaTab.exporter.Gp7Exporter().export(copy, settings);
}

/** @param {Staff} staff */
function* beatsOf(staff) {
  for (const bar of staff.bars) {
    for (const voice of bar.voices) {
      yield* voice.beats;
    }
  }
}

/**
 * Of bars that are shorter than their metre the format knows an upbeat at the beginning only.
 *
 * @param {Score} score
 */
function giveShortBarsTheirMetre({ masterBars }) {
  for (const bar of masterBars.slice(1).filter(({ isAnacrusis }) => isAnacrusis)) {
    const { numerator, denominator } = metreOf(bar.calculateDuration(), bar.timeSignatureDenominator);
    bar.timeSignatureNumerator = numerator;
    bar.timeSignatureDenominator = denominator;
    bar.isAnacrusis = false;
  }
}

/**
 * @param {number} ticks 960 to a quarter
 * @param {number} wanted denominator, if it can be kept
 */
function metreOf(ticks, wanted) {
  let denominator = wanted;
  while (denominator < 64 && !Number.isInteger((ticks * denominator) / 3840)) {
    denominator *= 2;
  }
  return { numerator: Math.max(Math.round((ticks * denominator) / 3840), 1), denominator };
}

/**
 * The format hides no notes, and what is heard is not to be lost.
 *
 * @param {Staff} staff
 */
function showHiddenNotes({ bars }) {
  for (const voice of bars.flatMap(({ voices }) => voices)) {
    const { beats } = voice;
    const hidden = beats.filter(({ isEmpty, notes }) => isEmpty && notes.length > 0);
    if (hidden.length > 0) {
      for (const beat of hidden) {
        beat.isEmpty = false;
      }
      // Only while beats are added does a voice learn that it is not empty.
      voice.beats = [];
      for (const beat of beats) {
        voice.addBeat(beat);
      }
    }
  }
}

/** @param {Staff} staff */
function foldVoices(staff) {
  const chosen = chooseVoices(staff.bars.map((bar) => bar.voices.map((voice) => !voice.isEmpty)));
  staff.bars.forEach((bar, index) => {
    const voices = chosen[index].map((voice) => bar.voices[voice]);
    for (const other of voices.slice(mostVoices)) {
      mergeVoices(voices[mostVoices - 1], other);
    }
    bar.voices = voices.slice(0, mostVoices);
    // Readers go from bar to bar by the number of the voice: as many as in Guitar Pro itself, most of them empty.
    while (bar.voices.length < mostVoices) {
      bar.addVoice(new alphaTab.model.Voice());
    }
  });
}

/**
 * Notes of drums are written as places in their track's list of articulations. A track without a list means the numbers of
 * General MIDI, and is given the list of them all.
 *
 * @param {Score["tracks"][number]} track
 */
function numberArticulations(track) {
  const places = track.percussionArticulations.length > 0 ? null : articulationPlaces();
  for (const staff of track.staves.filter(({ isPercussion }) => isPercussion)) {
    for (const beat of beatsOf(staff)) {
      for (const note of beat.notes) {
        note.percussionArticulation = places
          ? (places.get(note.percussionArticulation) ?? 0)
          : note.percussionArticulation;
      }
    }
  }
}

/**
 * Other programs go by the frets of drums, on strings that are all tuned to nought.
 *
 * @param {Staff} staff
 */
function putDrumsOnStrings(staff) {
  const drumStrings = 6;
  const known = staff.track.percussionArticulations;
  const keys = known.length > 0 ? known.map(({ outputMidiNumber }) => outputMidiNumber) : articulationKeys();
  staff.stringTuning.tunings = new Array(drumStrings).fill(0);
  for (const beat of beatsOf(staff)) {
    beat.notes.slice(0, drumStrings).forEach((note, index) => {
      note.string = drumStrings - index;
      note.fret = keys[note.percussionArticulation] ?? 0;
    });
  }
}

/** @type {import("@coderline/alphatab").model.InstrumentArticulation[] | null} */
let listedArticulations = null;

/** What alphaTab lists for drums without a list of their own. */
function allArticulations() {
  if (!listedArticulations) {
    const settings = new alphaTab.Settings();
    const drums = alphaTab.importer.ScoreLoader.loadAlphaTex("\\track \\staff \\instrument percussion 38", settings);
    drums.tracks[0].percussionArticulations = [];
    const written = alphaTab.importer.ScoreLoader.loadScoreFromBytes(
      new alphaTab.exporter.Gp7Exporter().export(drums, settings),
      settings,
    );
    listedArticulations = written.tracks[0].percussionArticulations;
  }
  return listedArticulations;
}

/** Where in that list each number is. */
function articulationPlaces() {
  return new Map(allArticulations().map(({ id }, place) => [id, place]));
}

/** The keys that they sound with. */
function articulationKeys() {
  return allArticulations().map(({ outputMidiNumber }) => outputMidiNumber);
}

/**
 * The format's dynamics, and for each of the others the one that sounds most like it.
 *
 * @param {import("@coderline/alphatab").model.DynamicValue} dynamics
 */
function heldDynamics(dynamics) {
  const { DynamicValue } = alphaTab.model;
  const name = DynamicValue[dynamics];
  if (dynamics <= DynamicValue.FFF) {
    return dynamics;
  }
  return /^PPPP/.test(name) || name === "N"
    ? DynamicValue.PPP
    : /^FFFF/.test(name)
      ? DynamicValue.FFF
      : /^(FP|PF)$/.test(name)
        ? DynamicValue.F
        : DynamicValue.FF;
}

/** @param {Beat} beat */
function writeAsHeld(beat) {
  beat.dynamics = heldDynamics(beat.dynamics);
  if (beat.whammyBarPoints) {
    beat.whammyBarPoints = foldBend(beat.whammyBarPoints);
  }
  for (const automation of beat.automations) {
    // Other programs find by this where in the bar it is.
    automation.ratioPosition = Math.max(beat.playbackStart, 0) / beat.voice.bar.masterBar.calculateDuration();
  }
  for (const note of beat.notes) {
    if (note.bendPoints) {
      note.bendPoints = foldBend(note.bendPoints);
    }
  }
}

/**
 * Slurs of notes are written as what the format has in their place, legato from beat to beat.
 *
 * @param {Beat} beat where a slur may begin
 */
function slurAsLegato(beat) {
  for (const { slurDestination } of beat.notes) {
    const end = slurDestination?.beat;
    if (end && end.voice.bar.staff === beat.voice.bar.staff && end.voice.index === beat.voice.index) {
      for (let next = /** @type {Beat | null} */ (beat); next && next !== end; next = next.nextBeat) {
        next.isLegatoOrigin = true;
      }
    }
  }
}
