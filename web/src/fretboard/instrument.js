// @ts-check
/**
 * What an instrument's picture has to show: the strings and frets of a track, or the keys where it has no strings.
 *
 * @typedef {import("../shared/alphatab.js").Track} Track
 * @typedef {import("@coderline/alphatab").model.Staff} Staff
 *
 * @typedef {{ kind: "strings", staff: Staff, tuning: number[], capo: number, frets: number }} Strings the open strings'
 *     MIDI keys, the highest string first, without the capo
 * @typedef {{ kind: "keys", low: number, high: number }} Keys from a C to a B, as MIDI keys
 * @typedef {{ kind: "percussion" }} Percussion
 * @typedef {Strings | Keys | Percussion} Instrument
 */

/** How many frets instruments are built with; a score gets the first number that suffices. */
const fretCounts = [12, 15, 17, 20, 22, 24, 27, 30, 36];

/** The keys of a piano, from the C below its lowest one. */
const pianoKeys = { low: 12, high: 119 };

const octave = 12;

/** How many octaves a keyboard shows at least. */
const fewestOctaves = 3;

/**
 * @param {Track} track
 * @returns {Instrument}
 */
export function instrumentOf(track) {
  const staff = track.staves.find((candidate) => candidate.isStringed && !candidate.isPercussion);
  if (staff) {
    const frets = highestFret(staff);
    return {
      kind: "strings",
      staff,
      tuning: staff.tuning,
      capo: staff.capo,
      frets: fretCounts.find((count) => count >= frets) ?? 36,
    };
  }
  return track.staves.every((candidate) => candidate.isPercussion) ? { kind: "percussion" } : keysOf(track);
}

/**
 * The track whose instrument is shown: the one that is shown alone, else the first that is soloed, else the first with
 * strings.
 *
 * @param {readonly Track[]} all
 * @param {readonly Track[]} shown
 * @param {readonly number[]} soloed indices of tracks
 * @returns {Track | null}
 */
export function trackToShow(all, shown, soloed) {
  if (shown.length === 1) {
    return shown[0];
  }
  const solo = all.find(({ index }) => soloed.includes(index));
  const stringed = all.find(({ staves }) => staves.some((staff) => staff.isStringed && !staff.isPercussion));
  const pitched = all.find(({ staves }) => staves.some((staff) => !staff.isPercussion));
  return solo ?? stringed ?? pitched ?? all[0] ?? null;
}

/** @param {Staff} staff */
function highestFret(staff) {
  let highest = 0;
  for (const note of notesOf(staff)) {
    highest = Math.max(highest, note.fret + staff.capo);
  }
  return highest;
}

/**
 * @param {Track} track
 * @returns {Keys}
 */
function keysOf(track) {
  let low = Infinity;
  let high = -Infinity;
  for (const staff of track.staves) {
    for (const { realValue } of notesOf(staff)) {
      low = Math.min(low, realValue);
      high = Math.max(high, realValue);
    }
  }
  if (low > high) {
    // Around the middle C.
    [low, high] = [60, 60];
  }
  const bounded = (/** @type {number} */ key) => Math.min(Math.max(key, pianoKeys.low), pianoKeys.high);
  let first = Math.floor(bounded(low) / octave);
  let last = Math.floor(bounded(high) / octave);
  while (last - first + 1 < fewestOctaves) {
    if ((first + last) / 2 > 5 && first * octave > pianoKeys.low) {
      first--;
    } else {
      last++;
    }
  }
  return { kind: "keys", low: first * octave, high: last * octave + octave - 1 };
}

/** @param {Staff} staff */
function* notesOf(staff) {
  for (const bar of staff.bars) {
    for (const voice of bar.voices) {
      for (const beat of voice.beats) {
        yield* beat.notes;
      }
    }
  }
}
