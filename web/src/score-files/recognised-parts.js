// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { leaveOpen } from "./strings/open-fingerings.js";
import { PartFingering } from "./strings/part-fingering.js";

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
 *
 * @typedef {object} Instrument
 * @property {string} name
 * @property {string} shortName
 * @property {number} program of General MIDI, from 0
 * @property {number[]} tuning keys from the highest string to the lowest
 * @property {number} slack keys below the lowest string that a player would tune it down to
 * @property {number} clef that it is written in
 *
 * @typedef {object} Part
 * @property {Instrument} instrument
 * @property {boolean} isHigh whether it is written an octave above what it sounds
 * @property {number[]} keys that sound in it
 *
 * @typedef {Map<number, number>} KeyCounts how many notes there are of each key
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

/**
 * @param {Score} score as alphaTab has read it from a file that Audiveris wrote; its parts are changed in place, and
 *   their strings left open
 */
export function assignInstruments(score) {
  /** @type {Map<string, Track[]>} */
  const players = new Map();
  const fingerings = [];
  for (const track of score.tracks.filter(isUnassigned)) {
    const beats = beatsOf(track.staves[0]);
    const part = isSung(beats) ? undefined : partOf(track.staves[0]);
    if (part) {
      fingerings.push(become(track, part, beats));
      players.set(part.instrument.name, [...(players.get(part.instrument.name) ?? []), track]);
    }
  }
  for (const [name, tracks] of players) {
    tracks.forEach((track, index) => (track.name = tracks.length > 1 ? `${name} ${index + 1}` : name));
  }
  leaveOpen(score, fingerings);
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

/**
 * @param {Staff} staff
 * @returns {Part | undefined} whose part it can be
 */
function partOf(staff) {
  const { written, said, total } = countKeys(staff);
  for (const instrument of instruments()) {
    const clefs = staff.bars.filter(({ clef }) => clef === instrument.clef);
    if (total === 0 || 2 * clefs.length <= staff.bars.length) {
      continue;
    }
    const isHigh = isWrittenHigh(written, instrument);
    const keys = new Map(said);
    for (const [key, count] of written) {
      const sounding = isHigh ? key - octave : key;
      keys.set(sounding, (keys.get(sounding) ?? 0) + count);
    }
    const highest = instrument.tuning[0] + frets;
    if (countOf(keys, (key) => key >= lowestOf(instrument) && key <= highest) >= (1 - mostOutside) * total) {
      return { instrument, isHigh, keys: [...keys.keys()] };
    }
  }
  return undefined;
}

/**
 * How many notes the staff has of each key, apart those whose clef says an octave: they have been read as they sound.
 *
 * @param {Staff} staff
 */
function countKeys({ bars }) {
  /** @type {KeyCounts} */
  const written = new Map();
  /** @type {KeyCounts} */
  const said = new Map();
  let total = 0;
  for (const bar of bars) {
    const counts = saysOctave(bar) ? said : written;
    for (const { beats } of bar.voices) {
      for (const { notes } of beats) {
        for (const { realValue } of notes) {
          counts.set(realValue, (counts.get(realValue) ?? 0) + 1);
          total++;
        }
      }
    }
  }
  return { written, said, total };
}

/**
 * @param {KeyCounts} counts
 * @param {(key: number) => boolean} isCounted
 */
function countOf(counts, isCounted) {
  let sum = 0;
  for (const [key, count] of counts) {
    sum += isCounted(key) ? count : 0;
  }
  return sum;
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
 * @param {KeyCounts} written
 * @param {Instrument} instrument
 */
function isWrittenHigh(written, instrument) {
  const lowest = lowestOf(instrument) + octave;
  return countOf(written, (key) => key < lowest) <= mostOutside * countOf(written, () => true);
}

/** @param {Staff["bars"][0]} bar whose clef may carry the small 8 */
function saysOctave({ clefOttava }) {
  return clefOttava === octaveBelow;
}

/**
 * @param {Track} track
 * @param {Part} part that it becomes
 * @param {Beat[]} beats of its staff
 * @returns {PartFingering} which gives its notes their octave, string and fret
 */
function become(track, { instrument, isHigh, keys }, beats) {
  const [staff] = track.staves;
  const { model } = alphaTab;
  track.shortName = instrument.shortName;
  track.playbackInfo.program = instrument.program;
  for (const { automations } of beats) {
    for (const automation of automations) {
      if (automation.type === model.AutomationType.Instrument) {
        automation.value = instrument.program;
      }
    }
  }
  staff.stringTuning = tuningFor(keys, instrument);
  staff.showTablature = true;
  const lowered = new Set(isHigh ? staff.bars.filter((bar) => !saysOctave(bar)) : []);
  if (isHigh) {
    staff.displayTranspositionPitch = -octave;
    for (const bar of staff.bars) {
      bar.clefOttava = model.Ottavia.Regular;
    }
  }
  return new PartFingering(
    staff,
    ({ realValue, beat }) => realValue - (lowered.has(beat.voice.bar) ? octave : 0),
    frets,
  );
}

/**
 * The standard tuning, with the lowest string as far down as the music needs it.
 *
 * @param {number[]} keys
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
