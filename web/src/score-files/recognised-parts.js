// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { chooseFingering } from "./fingering.js";

/**
 * Audiveris reads notes and nothing of who plays them: it calls every part of one staff a voice, gives it a choir's
 * sound, and overlooks the small 8 under a guitar's clef. Here the parts that can be a guitar's or a bass's become
 * theirs, with their sound, octave, tuning and tablature. Parts with words, drums and keyboards stay what they are.
 *
 * @typedef {import("../shared/alphatab.js").Score} Score
 * @typedef {import("../shared/alphatab.js").Track} Track
 * @typedef {Track["staves"][0]} Staff
 * @typedef {Staff["bars"][0]["voices"][0]["beats"][0]["notes"][0]} Note
 * @typedef {import("./fingering.js").SoundingNote} SoundingNote
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
  for (const track of score.tracks) {
    const instrument = instrumentOf(track);
    if (instrument) {
      become(track, instrument);
      players.set(instrument.name, [...(players.get(instrument.name) ?? []), track]);
    }
  }
  for (const [name, tracks] of players) {
    tracks.forEach((track, index) => (track.name = tracks.length > 1 ? `${name} ${index + 1}` : name));
  }
}

/**
 * @param {Track} track
 * @returns {Instrument | undefined}
 */
function instrumentOf(track) {
  const [staff] = track.staves;
  if (track.staves.length !== 1 || staff.isPercussion || staff.isStringed || track.name !== "Voice" || isSung(staff)) {
    return undefined;
  }
  const notes = notesOf(staff);
  return instruments().find((instrument) => {
    const clefs = staff.bars.filter(({ clef }) => clef === instrument.clef);
    const keys = notes.map(soundingKeys(staff, instrument));
    const reachable = keys.filter((key) => key >= lowestOf(instrument) && key <= instrument.tuning[0] + frets);
    return (
      notes.length > 0 && 2 * clefs.length > staff.bars.length && reachable.length >= (1 - mostOutside) * notes.length
    );
  });
}

/** @param {Staff} staff */
function isSung(staff) {
  const beats = staff.bars
    .flatMap(({ voices }) => voices.flatMap((voice) => voice.beats))
    .filter(({ isRest }) => !isRest);
  return beats.filter(({ lyrics }) => lyrics?.some((syllable) => syllable)).length > mostSyllables * beats.length;
}

/** @param {Staff} staff */
function notesOf(staff) {
  return staff.bars.flatMap(({ voices }) => voices.flatMap(({ beats }) => beats.flatMap(({ notes }) => notes)));
}

/** @param {Instrument} instrument */
function lowestOf({ tuning, slack }) {
  return tuning[tuning.length - 1] - slack;
}

/**
 * Whether the staff is written an octave above what it sounds, as both instruments are: nothing lies lower than their
 * lowest string is written.
 *
 * @param {Staff} staff
 * @param {Instrument} instrument
 */
function isWrittenHigh(staff, instrument) {
  const written = notesOf(staff).filter((note) => !saysOctave(note));
  const low = written.filter(({ realValue }) => realValue < lowestOf(instrument) + octave);
  return low.length <= mostOutside * written.length;
}

/** @param {Note} note whose clef may carry the small 8, so that it has been read as it sounds */
function saysOctave(note) {
  return note.beat.voice.bar.clefOttava === octaveBelow;
}

/**
 * @param {Staff} staff
 * @param {Instrument} instrument
 * @returns {(note: Note) => number} the key that sounds, for a note as it was read
 */
function soundingKeys(staff, instrument) {
  const down = isWrittenHigh(staff, instrument) ? octave : 0;
  return (note) => note.realValue - (saysOctave(note) ? 0 : down);
}

/**
 * @param {Track} track
 * @param {Instrument} instrument
 */
function become(track, instrument) {
  const [staff] = track.staves;
  const { model } = alphaTab;
  const isHigh = isWrittenHigh(staff, instrument);
  const keyOf = soundingKeys(staff, instrument);
  const keys = new Map(notesOf(staff).map((note) => [note, keyOf(note)]));
  const tuning = tuningFor([...keys.values()], instrument);

  track.shortName = instrument.shortName;
  track.playbackInfo.program = instrument.program;
  for (const beat of staff.bars.flatMap(({ voices }) => voices.flatMap(({ beats }) => beats))) {
    for (const automation of beat.automations) {
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
}

/**
 * The standard tuning, with the lowest string as far down as the music needs it.
 *
 * @param {number[]} keys
 * @param {Instrument} instrument
 */
function tuningFor(keys, instrument) {
  const { tuning, slack } = instrument;
  const lowest = Math.min(...keys.filter((key) => key >= lowestOf(instrument)));
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
  for (const { beat } of keys.keys()) {
    beat.noteStringLookup.clear();
    for (const note of beat.notes) {
      if (note.isStringed) {
        beat.noteStringLookup.set(note.string, note);
      }
    }
  }
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
  const byStart = [...keys].map(([note, key]) => ({ note, key, ...spanOf(note) })).sort((a, b) => a.start - b.start);
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
