// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { chooseFingering } from "./strings/fingering.js";
import { lookUpByString } from "./strings/by-string.js";

/**
 * Audiveris reads notes and nothing of who plays them: it calls every part of one staff a voice, gives it a choir's
 * sound, and overlooks the small 8 under a guitar's clef. Here the parts that can be a guitar's or a bass's become
 * theirs, with their sound, octave, tuning and tablature. Parts with words, drums and keyboards stay what they are.
 *
 * @typedef {import("../shared/alphatab.js").Score} Score
 * @typedef {import("../shared/alphatab.js").Track} Track
 * @typedef {Track["staves"][0]} Staff
 * @typedef {Staff["bars"][0]["voices"][0]} Voice
 * @typedef {Voice["beats"][0]} Beat
 * @typedef {Beat["notes"][0]} Note
 * @typedef {import("./strings/fingering.js").SoundingNote} SoundingNote
 *
 * @typedef {object} Instrument
 * @property {string} name
 * @property {string} shortName
 * @property {number} program of General MIDI, from 0
 * @property {number[]} tuning keys from the highest string to the lowest
 * @property {number} slack keys below the lowest string that a player would tune it down to
 * @property {number} clef that it is written in
 */

/** How far into the file the name of the program that wrote it is looked for, in characters. */
const headLength = 1 << 16;
const octave = 12;
/** alphaTab's `Ottavia._8vb`. Its minified script has renamed that name, because it begins with an underscore. */
const octaveBelow = /** @type {import("@coderline/alphatab").model.Ottavia} */ (3);
const frets = 24;
/** What share of the notes may have been misread. */
const mostOutside = 0.02;
/** What share of the beats may carry syllables before they are the words of a song: stray marks are read as some. */
const mostSyllables = 0.15;

/** @returns {Instrument[]} */
const instruments = () => [
  {
    name: "Guitar",
    shortName: "Guit.",
    program: 25,
    tuning: [64, 59, 55, 50, 45, 40],
    slack: 2,
    clef: alphaTab.model.Clef.G2,
  },
  { name: "Bass", shortName: "Bass", program: 33, tuning: [43, 38, 33, 28], slack: 0, clef: alphaTab.model.Clef.F4 },
];

/** @param {string} xml a MusicXML file */
export function isRecognised(xml) {
  return /<software>[^<]*Audiveris/.test(xml.slice(0, headLength));
}

/** @param {Score} score as alphaTab has read it from a file that Audiveris wrote; its parts are changed in place */
export function assignInstruments(score) {
  /** @type {Map<string, Track[]>} */
  const players = new Map();
  for (const track of score.tracks.filter(isUnassigned)) {
    const beats = beatsOf(track.staves[0]);
    const notes = notesOf(beats);
    const part = isSung(beats) ? undefined : instrumentFor(track.staves[0], notes);
    if (part) {
      become(track, part.instrument, beats, part.isHigh, part.keys);
      players.set(part.instrument.name, [...(players.get(part.instrument.name) ?? []), track]);
    }
  }
  for (const [name, tracks] of players) {
    tracks.forEach((track, index) => (track.name = tracks.length > 1 ? `${name} ${index + 1}` : name));
  }
}

/** @param {Track} track */
function isUnassigned({ name, staves }) {
  return name === "Voice" && staves.length === 1 && !staves[0].isPercussion && !staves[0].isStringed;
}

/**
 * @param {Staff} staff
 * @returns {Beat[]} of all its voices, bar by bar
 */
function beatsOf(staff) {
  const beats = [];
  for (const { voices } of staff.bars) {
    for (const voice of voices) {
      for (const beat of voice.beats) {
        beats.push(beat);
      }
    }
  }
  return beats;
}

/** @param {Beat[]} beats */
function notesOf(beats) {
  const found = [];
  for (const { notes } of beats) {
    for (const note of notes) {
      found.push(note);
    }
  }
  return found;
}

/**
 * @param {Staff} staff
 * @param {Note[]} notes of the staff
 * @returns {{ instrument: Instrument, isHigh: boolean, keys: Map<Note, number> } | undefined} whose part it can be,
 *   whether it is written an octave above what it sounds, and the keys that sound then
 */
function instrumentFor(staff, notes) {
  for (const instrument of instruments()) {
    const clefs = staff.bars.filter(({ clef }) => clef === instrument.clef);
    if (notes.length === 0 || 2 * clefs.length <= staff.bars.length) {
      continue;
    }
    const isHigh = isWrittenHigh(notes, instrument);
    /** @type {Map<Note, number>} */
    const keys = new Map();
    let reachable = 0;
    for (const note of notes) {
      const key = note.realValue - (isHigh && !saysOctave(note) ? octave : 0);
      keys.set(note, key);
      reachable += key >= lowestOf(instrument) && key <= instrument.tuning[0] + frets ? 1 : 0;
    }
    if (reachable >= (1 - mostOutside) * notes.length) {
      return { instrument, isHigh, keys };
    }
  }
  return undefined;
}

/** @param {Beat[]} beats */
function isSung(beats) {
  let sounding = 0;
  let sung = 0;
  for (const beat of beats) {
    if (!beat.isRest) {
      sounding++;
      sung += beat.lyrics?.some((syllable) => syllable) ? 1 : 0;
    }
  }
  return sung > mostSyllables * sounding;
}

/** @param {Instrument} instrument */
function lowestOf({ tuning, slack }) {
  return tuning[tuning.length - 1] - slack;
}

/**
 * Whether the notes are written an octave above what they sound, as both instruments' are: nothing lies lower than their
 * lowest string is written.
 *
 * @param {Note[]} notes
 * @param {Instrument} instrument
 */
function isWrittenHigh(notes, instrument) {
  const lowest = lowestOf(instrument) + octave;
  let written = 0;
  let low = 0;
  for (const note of notes) {
    if (!saysOctave(note)) {
      written++;
      low += note.realValue < lowest ? 1 : 0;
    }
  }
  return low <= mostOutside * written;
}

/** @param {Note} note whose clef may carry the small 8, so that it has been read as it sounds */
function saysOctave(note) {
  return note.beat.voice.bar.clefOttava === octaveBelow;
}

/**
 * @param {Track} track
 * @param {Instrument} instrument
 * @param {Beat[]} beats of its staff
 * @param {boolean} isHigh whether it is written an octave above what it sounds
 * @param {Map<Note, number>} keys that its notes sound with
 */
function become(track, instrument, beats, isHigh, keys) {
  const [staff] = track.staves;
  const { model } = alphaTab;
  const tuning = tuningFor(keys.values(), instrument);

  track.shortName = instrument.shortName;
  track.playbackInfo.program = instrument.program;
  for (const { automations } of beats) {
    for (const automation of automations) {
      if (automation.type === model.AutomationType.Instrument) {
        automation.value = instrument.program;
      }
    }
  }
  staff.stringTuning = tuning;
  staff.showTablature = true;
  if (isHigh) {
    staff.displayTranspositionPitch = -octave;
    for (const bar of staff.bars) {
      bar.clefOttava = model.Ottavia.Regular;
    }
  }
  for (const [note, key] of keys) {
    note.octave = Math.floor(key / octave);
    note.tone = key % octave;
  }
  finger(keys, tuning.tunings);
  for (const beat of beats) {
    lookUpByString(beat);
  }
}

/**
 * The standard tuning, with the lowest string as far down as the music needs it.
 *
 * @param {Iterable<number>} keys
 * @param {Instrument} instrument
 */
function tuningFor(keys, instrument) {
  const { tuning, slack } = instrument;
  let lowest = Infinity;
  for (const key of keys) {
    lowest = key >= lowestOf(instrument) ? Math.min(lowest, key) : lowest;
  }
  const down = lowest < tuning[tuning.length - 1] ? slack : 0;
  const keysOfStrings = [...tuning.slice(0, -1), tuning[tuning.length - 1] - down];
  const known = alphaTab.model.Tuning.findTuning(keysOfStrings);
  return new alphaTab.model.Tuning(known?.name ?? "", keysOfStrings, known?.isStandard ?? false);
}

/**
 * @param {Map<Note, number>} keys of all notes of a staff, of all its voices
 * @param {number[]} tuning
 */
function finger(keys, tuning) {
  const sounds = soundsOf(keys);
  const placements = chooseFingering(sounds, tuning, frets);
  sounds.forEach(({ notes }, index) => {
    const placement = placements[index];
    for (const note of placement ? notes : []) {
      note.octave = -1;
      note.tone = -1;
      // alphaTab counts strings from the lowest.
      note.string = tuning.length - (placement?.string ?? 0);
      note.fret = placement?.fret ?? 0;
    }
  });
}

/**
 * What the hand has to do for the notes: tied notes are one, and so are notes that two voices share.
 *
 * @param {Map<Note, number>} keys
 * @returns {(SoundingNote & { notes: Note[] })[]} in the order of their starts
 */
function soundsOf(keys) {
  /** @type {(SoundingNote & { notes: Note[] })[]} */
  const sounds = [];
  /** @type {Map<Note, SoundingNote & { notes: Note[] }>} */
  const soundOf = new Map();
  const byStart = [];
  for (const [note, key] of keys) {
    const { start, end } = spanOf(note);
    byStart.push({ note, key, start, end });
  }
  byStart.sort((a, b) => a.start - b.start);
  /** @type {Map<number, SoundingNote & { notes: Note[] }>} the last of each key */
  const latest = new Map();
  for (const { note, key, start, end } of byStart) {
    const origin = note.isTieDestination && note.tieOrigin ? soundOf.get(note.tieOrigin) : undefined;
    const last = latest.get(key);
    const shared = last?.start === start && last.notes.every(({ beat }) => beat !== note.beat);
    const same = origin ?? (shared ? last : undefined);
    if (same) {
      same.notes.push(note);
      same.end = Math.max(same.end, end);
      soundOf.set(note, same);
      continue;
    }
    if (last) {
      // Struck again: the string is the same or another, but what sounded before is over.
      last.end = Math.min(last.end, start);
    }
    const sound = { start, end, key, notes: [note] };
    sounds.push(sound);
    soundOf.set(note, sound);
    latest.set(key, sound);
  }
  return sounds;
}

/**
 * Bars that were misread can hold more than fits. Their notes count as faster then: none falls together with those of
 * the next bar.
 *
 * @param {Note} note
 * @returns {{ start: number, end: number }} in ticks; grace notes come one after the other before their beat
 */
function spanOf({ beat }) {
  const last = beat.voice.beats[beat.voice.beats.length - 1];
  const { masterBar } = beat.voice.bar;
  const faster = Math.min(1, masterBar.calculateDuration() / (last.playbackStart + last.playbackDuration));
  const start = masterBar.start + beat.playbackStart * faster;
  if (beat.graceType === alphaTab.model.GraceType.None) {
    return { start, end: start + beat.playbackDuration * faster };
  }
  const before = (beat.graceGroup?.beats.length ?? 1) - Math.max(0, beat.graceIndex);
  return { start: start - before, end: start - before + 1 };
}
