// Writes a score as Guitar Pro 3, 4 or 5: its bars, notes and tuplets, without the ways in which notes are played.

/** Bytes one after the other, integers with their lowest byte first. */
class Writer {
  #bytes = [];

  byte(...values) {
    this.#bytes.push(...values.map((value) => value & 0xff));
    return this;
  }

  nothing(count) {
    return this.byte(...new Array(count).fill(0));
  }

  int(value) {
    return this.byte(value, value >> 8, value >> 16, value >> 24);
  }

  /** In a field of `room` bytes behind the byte with its length. */
  field(text, room) {
    const bytes = [...Buffer.from(text, "latin1")].slice(0, room);
    return this.byte(bytes.length, ...bytes).nothing(room - bytes.length);
  }

  text(text) {
    const bytes = [...Buffer.from(text, "latin1")];
    return this.int(bytes.length + 1).byte(bytes.length, ...bytes);
  }

  finish() {
    return Uint8Array.from(this.#bytes);
  }
}

const versions = { 3: "v3.00", 4: "v4.06", 5: "v5.10" };
const channelCount = 64;
const directionCount = 19;
const stringFields = 7;
const dynamics = 6;
const firstDrumChannel = 9;

const channelOf = (track, index) => (track.staves[0].isPercussion ? firstDrumChannel : index);

function writeHead(writer, score, version) {
  writer.field(`FICHIER GUITAR PRO ${versions[version]}`, 30);
  const { title, subTitle, artist, album, words, music, copyright } = score;
  const texts = [title, subTitle, artist, album, ...(version >= 5 ? [words, music] : [words]), copyright, "", ""];
  texts.forEach((text) => writer.text(text));
  writer.int(0);
  if (version < 5) {
    writer.byte(0);
  }
  if (version >= 4) {
    // Lyrics: of no track, in five empty lines.
    writer.int(0);
    for (let line = 0; line < 5; line++) {
      writer.int(1).int(0);
    }
  }
  if (version >= 5) {
    writer.nothing(19);
    // The page, which of its lines are shown, and what they show.
    writer.nothing(28).byte(0xff, 1);
    for (const line of ["%TITLE%", "%SUBTITLE%", "%ARTIST%", "%ALBUM%", "%WORDS%", "%MUSIC%", "%WORDSMUSIC%", "", "", "", ""]) {
      writer.text(line);
    }
  }
  writer.int(score.tempo);
  if (version >= 5) {
    writer.byte(0);
  }
  writer.int(0);
  if (version >= 4) {
    writer.byte(0);
  }
}

function writeChannels(writer, score) {
  const programs = new Array(channelCount).fill(0);
  score.tracks.forEach((track, index) => (programs[channelOf(track, index)] = track.playbackInfo.program));
  programs.forEach((program) => writer.int(program).byte(13, 8).nothing(6));
}

function writeMasterBars(writer, score, version) {
  let before = null;
  for (const bar of score.masterBars) {
    const numerator = bar.timeSignatureNumerator !== before?.timeSignatureNumerator;
    const denominator = bar.timeSignatureDenominator !== before?.timeSignatureDenominator;
    writer.byte((numerator ? 1 : 0) | (denominator ? 2 : 0) | (bar.isRepeatStart ? 4 : 0) | (bar.isRepeatEnd ? 8 : 0));
    if (numerator) {
      writer.byte(bar.timeSignatureNumerator);
    }
    if (denominator) {
      writer.byte(bar.timeSignatureDenominator);
    }
    if (bar.isRepeatEnd) {
      writer.byte(version >= 5 ? bar.repeatCount : bar.repeatCount - 1);
    }
    if (version >= 5) {
      if (numerator || denominator) {
        writer.byte(2, 2, 2, 2);
      }
      writer.byte(0, 0, 0);
    }
    before = bar;
  }
}

function writeTrack(writer, track, index, version) {
  const [staff] = track.staves;
  const tuning = staff.isPercussion ? new Array(6).fill(0) : staff.tuning;
  writer.byte(staff.isPercussion ? 1 : 0).field(track.name, 40).int(tuning.length);
  for (let string = 0; string < stringFields; string++) {
    writer.int(tuning[string] ?? 0);
  }
  const channel = channelOf(track, index) + 1;
  writer.int(1).int(channel).int(channel).int(24).int(0).byte(0xff, 0, 0, 0);
  if (version >= 5) {
    // Tablature and notation, the automatic ways of playing, and no sound bank of its own.
    writer.byte(3, 0, 0, 0, 0).int(0).int(0).int(0).nothing(12).nothing(16).nothing(4).text("").text("");
  }
}

/** What a drum is called in these formats: its number among the General MIDI drums. */
function drumOf(note) {
  const { percussionArticulations } = note.beat.voice.bar.staff.track;
  return percussionArticulations[note.percussionArticulation]?.outputMidiNumber ?? note.percussionArticulation;
}

function writeBeat(writer, beat, version) {
  const { tuning, isPercussion } = beat.voice.bar.staff;
  const rest = beat.notes.length === 0;
  const tuplet = beat.tupletNumerator > 1 ? beat.tupletNumerator : 0;
  writer.byte((beat.dots ? 1 : 0) | (tuplet ? 0x20 : 0) | (rest ? 0x40 : 0));
  if (rest) {
    writer.byte(2);
  }
  writer.byte(Math.log2(Math.max(beat.duration, 1)) - 2);
  if (tuplet) {
    writer.int(tuplet);
  }
  // By string, the highest first; drums take one after the other.
  const byString = new Map(beat.notes.map((note, index) => [isPercussion ? index : tuning.length - note.string, note]));
  const strings = [...byString.keys()].sort((a, b) => a - b);
  writer.byte(strings.reduce((flags, string) => flags | (1 << (6 - string)), 0));
  for (const string of strings) {
    const note = byString.get(string);
    const kind = note.isTieDestination ? 2 : note.isDead ? 3 : 1;
    writer.byte(0x30, kind, dynamics, isPercussion ? drumOf(note) : note.fret);
    if (version >= 5) {
      writer.byte(0);
    }
  }
  if (version >= 5) {
    writer.byte(0, 0);
  }
}

function writeVoice(writer, voice, version) {
  writer.int(voice?.beats.length ?? 0);
  voice?.beats.forEach((beat) => writeBeat(writer, beat, version));
}

/** @param {3 | 4 | 5} version */
export function writeOldGuitarPro(score, version) {
  const writer = new Writer();
  writeHead(writer, score, version);
  writeChannels(writer, score);
  if (version >= 5) {
    for (let direction = 0; direction < directionCount; direction++) {
      writer.byte(0xff, 0xff);
    }
    writer.int(0);
  }
  writer.int(score.masterBars.length).int(score.tracks.length);
  writeMasterBars(writer, score, version);
  score.tracks.forEach((track, index) => writeTrack(writer, track, index, version));
  for (const { index } of score.masterBars) {
    for (const track of score.tracks) {
      const { voices } = track.staves[0].bars[index];
      if (version >= 5) {
        writer.byte(0);
      }
      writeVoice(writer, voices[0], version);
      if (version >= 5) {
        writeVoice(writer, undefined, version);
      }
    }
  }
  return writer.finish();
}
