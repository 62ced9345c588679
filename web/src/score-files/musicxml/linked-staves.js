// @ts-check
import { alphaTab } from "../../shared/alphatab.js";
import { lookUpByString } from "../strings/by-string.js";

/**
 * Programs that write a guitar's notation and its tablature on two staves say every note twice in MusicXML: in two staves
 * of a part, or in two parts. Played as it stands, it would sound twice. Here the two become one staff that shows both,
 * with the notation's notes and the tablature's strings and frets, if the notation has all that the tablature has.
 *
 * @typedef {import("../../shared/alphatab.js").Score} Score
 * @typedef {import("../../shared/alphatab.js").Settings} Settings
 * @typedef {import("../../shared/alphatab.js").Track} Track
 * @typedef {Track["staves"][0]} Staff
 * @typedef {import("../../shared/alphatab.js").Beat} Beat
 * @typedef {Beat["notes"][0]} Note
 */

/**
 * @param {Score} score is changed in place
 * @param {Settings} settings
 */
export function joinLinkedStaves(score, settings) {
  for (const track of [...score.tracks]) {
    for (const tablature of track.staves.filter(isTablature)) {
      const others = track.staves.filter((staff) => staff !== tablature);
      const partner = others.find((staff) => join(staff, tablature, false, settings));
      if (partner) {
        track.staves = others;
        others.forEach((staff, index) => (staff.index = index));
      }
    }
    joinWithNeighbour(score, track, settings);
  }
}

/**
 * A part of nothing but tablature, beside one that has the same notes and sound.
 *
 * @param {Score} score
 * @param {Track} track
 * @param {Settings} settings
 */
function joinWithNeighbour(score, track, settings) {
  const { tracks } = score;
  if (track.staves.length !== 1 || !isTablature(track.staves[0])) {
    return;
  }
  const at = tracks.indexOf(track);
  const neighbours = [tracks[at - 1], tracks[at + 1]].filter(
    (other) => other?.staves.length === 1 && other.playbackInfo.program === track.playbackInfo.program,
  );
  if (neighbours.some(({ staves }) => join(staves[0], track.staves[0], true, settings))) {
    tracks.splice(at, 1);
    tracks.forEach((other, index) => (other.index = index));
  }
}

/** @param {Staff} staff */
function isTablature(staff) {
  return staff.showTablature && !staff.showStandardNotation && staff.isStringed && !staff.isPercussion;
}

/**
 * @param {Staff} notation becomes the staff of both
 * @param {Staff} tablature
 * @param {boolean} wholly whether the tablature has to have all of the notation's notes, too
 * @param {Settings} settings
 * @returns {boolean} whether the two say the same
 */
function join(notation, tablature, wholly, settings) {
  if (!notation.showStandardNotation || notation.showTablature || notation.isPercussion) {
    return false;
  }
  const pairs = pairNotes(notation, tablature, wholly);
  if (!pairs || pairs.size === 0) {
    return false;
  }
  notation.stringTuning = tablature.stringTuning;
  notation.capo = tablature.capo;
  notation.showTablature = true;
  takeOver(pairs, settings);
  return true;
}

/**
 * @param {Staff} notation
 * @param {Staff} tablature
 * @param {boolean} wholly
 * @returns {Map<Note, Note> | null} the tablature's note for each of the notation's; null if it has one that is not there
 */
function pairNotes(notation, tablature, wholly) {
  /** @type {Map<string, Note[]>} */
  const waiting = new Map();
  for (const note of notesOf(notation)) {
    const place = placeOf(note, note.realValue);
    const known = waiting.get(place);
    if (known) {
      known.push(note);
    } else {
      waiting.set(place, [note]);
    }
  }
  /** @type {Map<Note, Note>} */
  const pairs = new Map();
  for (const note of notesOf(tablature)) {
    // The notation of a harmonic has the key that sounds, or that of the fret.
    const partner =
      waiting.get(placeOf(note, note.realValue))?.shift() ??
      waiting.get(placeOf(note, note.realValueWithoutHarmonic))?.shift();
    if (!partner) {
      return null;
    }
    pairs.set(partner, note);
  }
  return wholly && [...waiting.values()].some(({ length }) => length > 0) ? null : pairs;
}

/** @param {Staff} staff */
function* notesOf({ bars }) {
  for (const { voices } of bars) {
    for (const { beats } of voices) {
      for (const { notes } of beats) {
        yield* notes;
      }
    }
  }
}

/**
 * @param {Note} note
 * @param {number} key
 */
function placeOf({ beat }, key) {
  return `${beat.voice.bar.index} ${beat.displayStart} ${beat.graceType} ${beat.graceIndex} ${key}`;
}

/** What tablature says of how a note is played. */
const manners = /** @type {const} */ ([
  "isHammerPullOrigin",
  "slideInType",
  "slideOutType",
  "isPalmMute",
  "isLetRing",
  "isDead",
  "vibrato",
  "harmonicType",
  "harmonicValue",
]);

/**
 * @param {Map<Note, Note>} pairs the tablature's note for each of the notation's
 * @param {Settings} settings
 */
function takeOver(pairs, settings) {
  const notes = [...pairs.keys()];
  for (const [note, fretted] of pairs) {
    const { string, fret } = fretted;
    Object.assign(note, { string, fret, octave: -1, tone: -1 });
    for (const manner of manners) {
      Object.assign(note, { [manner]: note[manner] || fretted[manner] });
    }
    if (!note.hasBend && fretted.hasBend) {
      fretted.bendPoints?.forEach((point) => note.addBendPoint(point));
      note.bendType = fretted.bendType;
      note.bendStyle = fretted.bendStyle;
    }
  }
  for (const beat of new Set(notes.map((note) => note.beat))) {
    lookUpByString(beat);
  }
  for (const note of notes) {
    if (note.isHammerPullOrigin || note.slideOutType !== alphaTab.model.SlideOutType.None) {
      // Finds again what the note leads to.
      note.finish(settings);
    }
  }
}
