// @ts-check
import { alphaTab } from "../shared/alphatab.js";

/**
 * Brings the numbers of a score that was read into bounds that music keeps to. A damaged byte makes a bend of millions of
 * semitones or an octave of a billion, and alphaTab then draws or plays each step on the way there. What is out of bounds
 * is taken for the nearest bound: the rest of the score is shown as it is.
 *
 * @typedef {import("../shared/alphatab.js").Score} Score
 * @typedef {import("../shared/alphatab.js").Beat} Beat
 * @typedef {Score["masterBars"][number]} MasterBar
 * @typedef {Score["tracks"][number]} Track
 * @typedef {Track["staves"][number]} Staff
 * @typedef {Beat["notes"][number]} Note
 */

/** Texts are drawn on one line each, and the title is the window's, too; in characters. */
const longestText = 5000;

/** @type {("title" | "subTitle" | "artist" | "album" | "words" | "music" | "copyright" | "instructions" | "notices" | "tab")[]} */
const textsOfScore = [
  "title",
  "subTitle",
  "artist",
  "album",
  "words",
  "music",
  "copyright",
  "instructions",
  "notices",
  "tab",
];

const mostStrings = 16;

/** @param {Score} score */
export function boundScore(score) {
  for (const name of textsOfScore) {
    score[name] = score[name].slice(0, longestText);
  }
  score.masterBars.forEach(boundMasterBar);
  for (const track of score.tracks) {
    boundTrack(track);
    for (const staff of track.staves) {
      boundStaff(staff);
      for (const bar of staff.bars) {
        bar.keySignature = within(bar.keySignature, -7, 7, 0);
        bar.displayScale = within(bar.displayScale, 0.1, 10, 1);
        for (const { beats } of bar.voices) {
          beats.forEach(boundBeat);
        }
      }
    }
  }
}

/**
 * @param {number} value
 * @param {number} least
 * @param {number} most
 * @param {number} otherwise for what is no number
 */
function within(value, least, most, otherwise) {
  return Number.isNaN(value) ? otherwise : Math.min(Math.max(value, least), most);
}

/** @param {MasterBar} bar */
function boundMasterBar(bar) {
  bar.timeSignatureNumerator = Math.round(within(bar.timeSignatureNumerator, 1, 128, 4));
  // The note values there are.
  bar.timeSignatureDenominator = 2 ** Math.round(Math.log2(within(bar.timeSignatureDenominator, 1, 128, 4)));
  bar.repeatCount = Math.round(within(bar.repeatCount, 0, 1e6, 0));
  for (const automation of bar.tempoAutomations) {
    automation.value = within(automation.value, 1, 2000, 120);
    automation.ratioPosition = within(automation.ratioPosition, 0, 1, 0);
  }
  for (const automation of bar.syncPoints ?? []) {
    automation.ratioPosition = within(automation.ratioPosition, 0, 1, 0);
  }
  if (bar.section) {
    bar.section.text = bar.section.text.slice(0, longestText);
    bar.section.marker = bar.section.marker.slice(0, longestText);
  }
}

/** @param {Track} track */
function boundTrack(track) {
  const { playbackInfo } = track;
  playbackInfo.volume = within(playbackInfo.volume, 0, 16, 15);
  playbackInfo.balance = within(playbackInfo.balance, 0, 16, 8);
  playbackInfo.program = within(playbackInfo.program, 0, 127, 0);
  playbackInfo.bank = within(playbackInfo.bank, 0, 16383, 0);
  playbackInfo.primaryChannel = within(playbackInfo.primaryChannel, 0, 255, 0);
  playbackInfo.secondaryChannel = within(playbackInfo.secondaryChannel, 0, 255, 0);
  track.name = track.name.slice(0, longestText);
  track.shortName = track.shortName.slice(0, longestText);
  track.defaultSystemsLayout = within(track.defaultSystemsLayout, 1, 100, 3);
  for (const articulation of track.percussionArticulations) {
    articulation.staffLine = within(articulation.staffLine, -20, 30, 0);
    articulation.outputMidiNumber = within(articulation.outputMidiNumber, 0, 127, 38);
  }
}

/** @param {Staff} staff */
function boundStaff(staff) {
  const { stringTuning } = staff;
  stringTuning.tunings = stringTuning.tunings.slice(0, mostStrings).map((key) => within(key, 0, 127, 40));
  staff.capo = within(staff.capo, 0, 36, 0);
  staff.transpositionPitch = within(staff.transpositionPitch, -60, 60, 0);
  staff.displayTranspositionPitch = within(staff.displayTranspositionPitch, -60, 60, 0);
  staff.standardNotationLineCount = within(staff.standardNotationLineCount, 0, 16, 5);
  for (const chord of staff.chords?.values() ?? []) {
    chord.name = chord.name.slice(0, longestText);
    chord.firstFret = within(chord.firstFret, 1, 99, 1);
    chord.strings = chord.strings.slice(0, mostStrings).map((fret) => within(fret, -1, 99, -1));
    // alphaTab's reader of newer Guitar Pro files names a barre once for each string beyond the first.
    const barres = Array.from(new Set(chord.barreFrets));
    chord.barreFrets = barres.slice(0, mostStrings).map((fret) => within(fret, 0, 99, 1));
  }
}

/** @param {Beat} beat */
function boundBeat(beat) {
  beat.dots = within(beat.dots, 0, 4, 0);
  beat.tupletNumerator = within(beat.tupletNumerator, -1, 128, -1);
  beat.tupletDenominator = within(beat.tupletDenominator, -1, 128, -1);
  beat.brushDuration = within(beat.brushDuration, 0, 3840, 0);
  beat.barreFret = within(beat.barreFret, -1, 99, -1);
  beat.text = beat.text?.slice(0, longestText) ?? null;
  beat.lyrics = beat.lyrics?.map((line) => line.slice(0, longestText)) ?? null;
  boundLine(beat.whammyBarPoints);
  if (beat.tremoloPicking) {
    beat.tremoloPicking.marks = within(beat.tremoloPicking.marks, 0, 5, 3);
  }
  for (const automation of beat.automations) {
    automation.ratioPosition = within(automation.ratioPosition, 0, 1, 0);
    automation.value = within(automation.value, 0, 16383, 0);
  }
  for (const note of beat.notes) {
    boundNote(note, beat.voice.bar.staff);
  }
}

/**
 * @param {Note} note
 * @param {Staff} staff
 */
function boundNote(note, staff) {
  if (staff.isPercussion && note.percussionArticulation < 0) {
    // Grace notes of older files, which alphaTab leaves on their strings.
    note.percussionArticulation = Math.max(note.fret, 0);
    note.string = -1;
    note.fret = -1;
  }
  note.percussionArticulation = within(note.percussionArticulation, -1, 1000, 38);
  note.fret = within(note.fret, -1, 127, 0);
  note.string = within(note.string, -1, Math.max(staff.tuning.length, -1), -1);
  note.octave = within(note.octave, -1, 12, 4);
  note.tone = within(note.tone, -12, 24, 0);
  note.harmonicValue = within(note.harmonicValue, 0, 48, 0);
  note.trillValue = within(note.trillValue, -1, 127, -1);
  note.trillSpeed = alphaTab.model.Duration[note.trillSpeed] ? note.trillSpeed : alphaTab.model.Duration.Sixteenth;
  boundLine(note.bendPoints);
}

/**
 * Twice as far as Guitar Pro bends, in quarter tones.
 *
 * @param {{ offset: number, value: number }[] | null} points
 */
function boundLine(points) {
  for (const point of points ?? []) {
    point.offset = within(point.offset, 0, 60, 0);
    point.value = within(point.value, -96, 96, 0);
  }
}
