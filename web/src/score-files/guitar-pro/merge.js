// @ts-check
import { alphaTab } from "../../shared/alphatab.js";
import { rhythmsFor } from "./rhythms.js";

/**
 * Writes two voices of a bar as one: wherever a note of either begins or ends, a beat begins, with the notes that sound
 * there. What sounds on is tied.
 *
 * @typedef {import("../../shared/alphatab.js").Beat} Beat
 * @typedef {Beat["voice"]} Voice
 * @typedef {Beat["notes"][number]} Note
 */

/**
 * @param {Voice} voice gets the notes of both
 * @param {Voice} other
 */
export function mergeVoices(voice, other) {
  const sources = [...voice.beats, ...other.beats];
  const main = sources.filter(({ graceType, isRest }) => graceType === alphaTab.model.GraceType.None && !isRest);
  const times = new Set(
    sources.flatMap(({ displayStart, displayDuration }) => [displayStart, displayStart + displayDuration]),
  );
  const edges = [...times].sort((a, b) => a - b);
  /** The last segment of each note so far. @type {Map<Note, Note>} */
  const segments = new Map();
  /** @type {Beat[]} */
  const beats = [];
  for (let i = 0; i + 1 < edges.length; i++) {
    const sounding = main.filter(
      ({ displayStart, displayDuration }) => displayStart <= edges[i] && displayStart + displayDuration >= edges[i + 1],
    );
    const beginning = sounding.filter(({ displayStart }) => displayStart === edges[i]);
    beats.push(...beginning.flatMap(graceBeatsOf));
    let start = edges[i];
    rhythmsFor(edges[i + 1] - start).forEach(({ length, rhythm }, place) => {
      const beat = place === 0 && beginning[0] ? copyOf(beginning[0]) : new alphaTab.model.Beat();
      beat.voice = voice;
      beat.duration = rhythm.duration;
      beat.dots = rhythm.dots;
      beat.tupletNumerator = rhythm.numerator;
      beat.tupletDenominator = rhythm.denominator;
      Object.assign(beat, {
        displayStart: start,
        playbackStart: start,
        displayDuration: length,
        playbackDuration: length,
      });
      start += length;
      for (const note of sounding.flatMap(({ notes }) => notes)) {
        const segment = segmentOf(note, segments.get(note));
        segment.beat = beat;
        beat.notes.push(segment);
        segments.set(note, segment);
      }
      beats.push(beat);
    });
  }
  voice.beats = beats;
}

/** @param {Beat} beat @returns {Beat[]} the grace notes that lead to it */
function graceBeatsOf(beat) {
  /** @type {Beat[]} */
  const found = [];
  const { beats } = beat.voice;
  for (let i = beats.indexOf(beat) - 1; i >= 0 && beats[i].graceType !== alphaTab.model.GraceType.None; i--) {
    found.unshift(beats[i]);
  }
  return found;
}

/** @param {Beat} beat @returns {Beat} another one, without notes */
function copyOf(beat) {
  const copy = new alphaTab.model.Beat();
  const { id } = copy;
  return Object.assign(copy, beat, { id, notes: [] });
}

/**
 * @param {Note} note
 * @param {Note | undefined} before the segment that this one goes on from
 * @returns {Note}
 */
function segmentOf(note, before) {
  if (!before) {
    return note;
  }
  const segment = new alphaTab.model.Note();
  const { id } = segment;
  Object.assign(segment, note, {
    id,
    isTieDestination: true,
    tieOrigin: before,
    tieDestination: before.tieDestination,
  });
  before.tieDestination = segment;
  return segment;
}
