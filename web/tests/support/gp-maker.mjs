// @ts-check
// Makes Guitar Pro 3, 4 and 5 files.

const versions = { 3: "FICHIER GUITAR PRO v3.00", 4: "FICHIER GUITAR PRO v4.06", 5: "FICHIER GUITAR PRO v5.10" };

class Writer {
  #parts = [];

  byte(...values) {
    this.#parts.push(Buffer.from(values.map((value) => value & 255)));
    return this;
  }

  zeros(count) {
    this.#parts.push(Buffer.alloc(count));
    return this;
  }

  int(...values) {
    for (const value of values) {
      const bytes = Buffer.alloc(4);
      bytes.writeInt32LE(value);
      this.#parts.push(bytes);
    }
    return this;
  }

  short(value) {
    return this.byte(value, value >> 8);
  }

  double(value) {
    const bytes = Buffer.alloc(8);
    bytes.writeDoubleBE(value);
    this.#parts.push(bytes);
    return this;
  }

  /** In a field of a fixed length. */
  field(text, length) {
    const bytes = Buffer.alloc(length);
    bytes.write(text, "latin1");
    return this.byte(text.length).append(bytes);
  }

  /** With its length, and before that with the length of both. */
  text(text) {
    return this.int(text.length + 1)
      .byte(text.length)
      .append(Buffer.from(text, "latin1"));
  }

  longText(text) {
    return this.int(text.length).append(Buffer.from(text, "latin1"));
  }

  append(bytes) {
    this.#parts.push(bytes);
    return this;
  }

  get bytes() {
    return new Uint8Array(Buffer.concat(this.#parts));
  }
}

/**
 * @typedef {{ fret?: number, tied?: boolean, dead?: boolean, dynamics?: number, bend?: [number, number][], grace?: number, trill?: number,
 *   slide?: number, letRing?: boolean, hammer?: boolean, harmonic?: boolean, tremolo?: number, fingers?: [number, number] }} MadeNote bend as
 *   pairs of offset and hundredths of a tone
 * @typedef {{ length?: number, dotted?: boolean, tuplet?: number, rest?: boolean, chord?: { name: string, first: number, frets: number[] }, text?: string,
 *   whammy?: [number, number][], stroke?: [number, number], fadeIn?: boolean, mix?: Record<string, number>, notes?: Record<number, MadeNote> }} MadeBeat length from -2, a
 *   whole note, up; notes by their strings, the highest one is 0
 *
 * @typedef {{ metre?: [number, number], start?: boolean, count?: number, ending?: number, section?: string, key?: number }} MadeBar
 * @typedef {{ title?: string, tempo?: number, lyrics?: string, bars: MadeBar[], tracks: { name: string, tuning?: number[], drums?: boolean, capo?: number, bars: MadeBeat[][] }[], directions?: number[] }} MadeSong
 *
 * @param {3 | 4 | 5} version
 * @param {MadeSong} song
 */
export function makeGuitarPro(version, { title = "Made", tempo = 120, lyrics = "", bars, tracks, directions = [] }) {
  const out = new Writer().field(versions[version], 30);
  const names = [title, "", "Maker", "", "", ...(version === 5 ? [""] : []), "", "", ""];
  names.forEach((name) => out.text(name));
  out.int(1).text("Notice");
  if (version < 5) {
    out.byte(0);
  }
  if (version >= 4) {
    out.int(1).int(1).longText(lyrics);
    for (let line = 1; line < 5; line++) {
      out.int(1).longText("");
    }
  }
  if (version === 5) {
    out.zeros(19).zeros(28).short(0);
    for (let line = 0; line < 10; line++) {
      out.text("");
    }
    out.text("Moderate");
  }
  out.int(tempo);
  if (version === 5) {
    out.byte(0);
  }
  out.int(0);
  if (version >= 4) {
    out.byte(0);
  }
  for (let channel = 0; channel < 64; channel++) {
    out.int(25).byte(13, 8).zeros(6);
  }
  if (version === 5) {
    for (let direction = 0; direction < 19; direction++) {
      out.short(directions[direction] ?? -1);
    }
    out.zeros(4);
  }
  out.int(bars.length, tracks.length);
  bars.forEach((bar) => writeBar(out, version, bar));
  tracks.forEach((track, index) => writeTrack(out, version, track, index));
  bars.forEach((_, index) => {
    for (const track of tracks) {
      if (version === 5) {
        out.byte(0);
      }
      const beats = track.bars[index] ?? [];
      out.int(beats.length);
      beats.forEach((beat) => writeBeat(out, version, beat));
      if (version === 5) {
        out.int(0);
      }
    }
  });
  return out.bytes;
}

/** @param {Writer} out @param {number} version @param {MadeBar} bar */
function writeBar(out, version, { metre, start, count, ending, section, key }) {
  const flags =
    (metre ? 3 : 0) |
    (start ? 4 : 0) |
    (count ? 8 : 0) |
    (ending && version < 5 ? 16 : 0) |
    (section ? 32 : 0) |
    (key === undefined ? 0 : 64);
  out.byte(flags);
  if (metre) {
    out.byte(...metre);
  }
  if (count) {
    out.byte(count - (version === 5 ? 0 : 1));
  }
  if (ending && version < 5) {
    out.byte(ending);
  }
  if (section) {
    out.text(section).byte(255, 0, 0, 0);
  }
  if (key !== undefined) {
    out.byte(key, 0);
  }
  if (version === 5) {
    if (metre) {
      out.byte(2, 2, 2, 2);
    }
    out.byte(ending ? 1 << (ending - 1) : 0, 0, 0);
  }
}

function writeTrack(out, version, { name, tuning = [64, 59, 55, 50, 45, 40], drums = false, capo = 0 }, index) {
  out
    .byte(drums ? 1 : 0)
    .field(name, 40)
    .int(tuning.length);
  for (let string = 0; string < 7; string++) {
    out.int(tuning[string] ?? 0);
  }
  const channel = drums ? 10 : index + 1;
  out.int(1, channel, channel, 24, capo).byte(255, 0, 0, 0);
  if (version === 5) {
    out.byte(3).zeros(2).byte(0, 0).int(0, 0, 0).zeros(10).byte(0, 0).zeros(16).zeros(4).text("").text("");
  }
}

function writeBeat(out, version, beat) {
  const { length = 0, dotted, tuplet, rest, chord, text, mix, notes = {} } = beat;
  const effects = beat.whammy || beat.stroke || beat.fadeIn;
  out.byte(
    (dotted ? 1 : 0) |
      (chord ? 2 : 0) |
      (text ? 4 : 0) |
      (effects ? 8 : 0) |
      (mix ? 16 : 0) |
      (tuplet ? 32 : 0) |
      (rest ? 64 : 0),
  );
  if (rest) {
    out.byte(2);
  }
  out.byte(length);
  if (tuplet) {
    out.int(tuplet);
  }
  if (chord) {
    writeChord(out, version, chord);
  }
  if (text) {
    out.text(text);
  }
  if (effects) {
    writeBeatEffects(out, version, beat);
  }
  if (mix) {
    writeMix(out, version, mix);
  }
  const strings = Object.keys(notes)
    .map(Number)
    .sort((a, b) => a - b);
  out.byte(strings.reduce((bits, string) => bits | (1 << (6 - string)), 0));
  strings.forEach((string) => writeNote(out, version, notes[string]));
  if (version === 5) {
    out.short(0);
  }
}

function writeChord(out, version, { name, first, frets }) {
  if (version === 3) {
    out.byte(1).zeros(25).field(name, 34).int(first);
    frets.slice(0, 6).forEach((fret) => out.int(fret));
    out.zeros(36);
    return;
  }
  out
    .append(Buffer.from([1, ...Buffer.alloc(16)]))
    .field(name, 21)
    .zeros(4)
    .int(first);
  for (let string = 0; string < 7; string++) {
    out.int(frets[string] ?? -1);
  }
  out.byte(1, first, 0, 0, 0, 0).zeros(26);
}

function writeBeatEffects(out, version, { whammy, stroke, fadeIn }) {
  out.byte((fadeIn ? 16 : 0) | (stroke ? 64 : 0));
  if (version >= 4) {
    out.byte(whammy ? 4 : 0);
    if (whammy) {
      writeLine(out, whammy);
    }
  }
  if (stroke) {
    out.byte(...stroke);
  }
}

function writeLine(out, points) {
  out.byte(1).int(100, points.length);
  points.forEach(([offset, value]) => out.int(offset, value).byte(0));
}

function writeMix(out, version, { instrument = -1, volume = -1, balance = -1, tempo = -1 }) {
  out.byte(instrument);
  if (version === 5) {
    out.zeros(16);
  }
  out.byte(volume, balance, -1, -1, -1, -1);
  if (version === 5) {
    out.text("");
  }
  out.int(tempo);
  [volume, balance].forEach((value) => value >= 0 && out.byte(0));
  if (tempo >= 0) {
    out.byte(0);
    if (version === 5) {
      out.byte(0);
    }
  }
  if (version >= 4) {
    out.byte(0);
  }
  if (version === 5) {
    out.byte(-1).text("").text("");
  }
}

function writeNote(out, version, note) {
  const { fret = 0, tied, dead, dynamics, fingers } = note;
  const effects = ["bend", "grace", "trill", "slide", "letRing", "hammer", "harmonic", "tremolo"].some(
    (name) => note[name] !== undefined,
  );
  out.byte(32 | (effects ? 8 : 0) | (dynamics ? 16 : 0) | (fingers ? 128 : 0)).byte(dead ? 3 : tied ? 2 : 1);
  if (dynamics) {
    out.byte(dynamics);
  }
  out.byte(fret);
  if (fingers) {
    out.byte(...fingers);
  }
  if (version === 5) {
    out.byte(0);
  }
  if (effects) {
    writeNoteEffects(out, version, note);
  }
}

function writeNoteEffects(out, version, { bend, grace, trill, slide, letRing, hammer, harmonic, tremolo }) {
  out.byte(
    (bend ? 1 : 0) |
      (hammer ? 2 : 0) |
      (slide && version === 3 ? 4 : 0) |
      (letRing ? 8 : 0) |
      (grace === undefined ? 0 : 16),
  );
  if (version >= 4) {
    out.byte((tremolo ? 4 : 0) | (slide ? 8 : 0) | (harmonic ? 16 : 0) | (trill === undefined ? 0 : 32));
  }
  if (bend) {
    writeLine(out, bend);
  }
  if (grace !== undefined) {
    out.byte(grace, 6, 0, 1);
    if (version === 5) {
      out.byte(0);
    }
  }
  if (version >= 4) {
    tremolo && out.byte(tremolo);
    slide && out.byte(slide);
    harmonic && out.byte(1);
    trill !== undefined && out.byte(trill, 2);
  }
}

/** A song with something of everything that these files hold. @type {MadeSong} */
export const song = {
  title: "Made for tests",
  tempo: 96,
  lyrics: "one two-three four",
  bars: [
    { metre: [4, 4], key: 1, section: "Verse" },
    { start: true },
    { count: 2, ending: 1 },
    { count: 2, ending: 2, metre: [3, 4] },
    { section: "End" },
  ],
  directions: [],
  tracks: [
    {
      name: "Guitar",
      capo: 2,
      bars: [
        [
          {
            notes: { 0: { fret: 3, dynamics: 5 }, 2: { fret: 2 } },
            chord: { name: "G", first: 1, frets: [3, 0, 0, 0, 2, 3] },
          },
          {
            notes: {
              1: {
                fret: 5,
                bend: [
                  [0, 0],
                  [15, 100],
                  [30, 100],
                  [45, 100],
                  [60, 0],
                ],
              },
            },
          },
          {
            notes: {
              1: {
                fret: 7,
                bend: [
                  [0, 0],
                  [10, 100],
                  [20, 100],
                  [30, 0],
                  [40, 0],
                  [50, 100],
                  [60, 100],
                ],
              },
            },
            text: "twice",
          },
          { length: 1, notes: { 3: { fret: 2, hammer: true } } },
          { length: 1, notes: { 3: { fret: 4 } } },
        ],
        [
          { length: 1, tuplet: 3, notes: { 0: { fret: 1 } } },
          { length: 1, tuplet: 3, notes: { 0: { fret: 3, trill: 5 } } },
          { length: 1, tuplet: 3, notes: { 0: { fret: 5, grace: 3 } } },
          { notes: { 0: { fret: 5, tied: true } }, mix: { volume: 9, tempo: 140 } },
          { length: -1, notes: { 4: { fret: 3, letRing: true }, 5: { fret: 3, dead: true } }, stroke: [2, 0] },
        ],
        [
          {
            length: -1,
            dotted: true,
            notes: { 2: { fret: 9, slide: 1 } },
            whammy: [
              [0, 0],
              [30, -100],
              [60, 0],
            ],
          },
          { notes: { 2: { fret: 7, tremolo: 2 } } },
        ],
        [
          { length: -1, rest: true },
          {
            notes: { 5: { fret: 12, harmonic: true, fingers: [1, 2] } },
            fadeIn: true,
            mix: { instrument: 30, balance: 4 },
          },
        ],
        [{ length: -2, notes: { 5: { fret: 0 } } }],
      ],
    },
    {
      name: "Drums",
      drums: true,
      tuning: [0, 0, 0, 0, 0, 0],
      bars: Array.from({ length: 5 }, (_, bar) =>
        Array.from({ length: bar === 3 ? 3 : 4 }, (_, beat) => ({
          notes: { 0: { fret: beat % 2 === 0 ? 36 : 38 }, 1: { fret: 42 } },
        })),
      ),
    },
  ],
};
