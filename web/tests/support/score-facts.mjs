// @ts-check
// What a score says, as lists of short texts by kind: two scores say the same when their lists are the same.
import { createHash } from "node:crypto";
import { createRequire } from "node:module";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;

const settings = new alphaTab.Settings();

const rounded = (number) => Math.round(number * 1000) / 1000;
const line = (points) => (points ?? []).map(({ offset, value }) => `${Math.round(offset)}:${rounded(value)}`).join(" ");

/** The shape of a bend, without points that change nothing of it. */
function shape(points) {
  const kept = [];
  const all = points ?? [];
  all.forEach((point, index) => {
    const [before, behind] = [kept.at(-1), all[index + 1]];
    const flat = before?.value === point.value && (!behind || behind.value === point.value);
    const leads = !before && behind?.value === point.value;
    const part =
      before && behind && behind.offset > before.offset
        ? (point.offset - before.offset) / (behind.offset - before.offset)
        : NaN;
    const straight = Math.abs(before?.value + part * (behind?.value - before?.value) - point.value) < 0.01;
    if (!flat && !straight && !leads) {
      kept.push(point);
    }
  });
  return line(kept);
}

/** Where a note is. */
function placeOf(note) {
  const { beat } = note;
  const { bar } = beat.voice;
  return `${bar.staff.track.index + 1}.${bar.staff.index + 1} bar ${bar.index + 1} tick ${Math.round(beat.playbackStart)}`;
}

/** Attributes of notes and beats that are there only when they say something. */
const noteEffects = [
  "isLetRing",
  "isPalmMute",
  "isDead",
  "isGhost",
  "isStaccato",
  "isHammerPullOrigin",
  "isLeftHandTapped",
  "accentuated",
  "harmonicType",
  "harmonicValue",
  "slideInType",
  "slideOutType",
  "vibrato",
  "trillValue",
  "ornament",
  "showStringNumber",
  "isTrill",
];
const beatEffects = [
  "fade",
  "tap",
  "slap",
  "pop",
  "vibrato",
  "brushType",
  "pickStroke",
  "crescendo",
  "rasgueado",
  "slashed",
  "deadSlapped",
  "golpe",
  "wahPedal",
  "isBarre",
  "showTimer",
  "text",
];

function beatFacts(facts, beat, where) {
  const add = (kind, text) => facts[kind].push(`${where} ${text}`);
  const { isRest, isEmpty, duration, dots, tupletNumerator, tupletDenominator, graceType } = beat;
  if (isEmpty) {
    return;
  }
  add(
    "rhythm",
    `${isRest ? "rest" : "notes"} ${duration} ${dots} ${tupletNumerator}:${tupletDenominator} ${graceType}`,
  );
  add("dynamics", beat.dynamics);
  if (beat.ottava !== alphaTab.model.Ottavia.Regular) {
    add("beat effects", `ottava ${beat.ottava}`);
  }
  for (const name of beatEffects) {
    if (beat[name]) {
      add("beat effects", `${name} ${beat[name]}`);
    }
  }
  if (beat.tremoloPicking) {
    add("beat effects", `tremolo ${beat.tremoloPicking.marks}`);
  }
  if (beat.hasWhammyBar) {
    add("whammy", shape(beat.whammyBarPoints));
  }
  (beat.lyrics ?? []).forEach((text, verse) => text && add("lyrics", `${verse} ${text}`));
  if (beat.chord) {
    const { name, firstFret, strings, barreFrets } = beat.chord;
    add("chords", `${name} ${firstFret} ${strings} ${barreFrets}`);
  }
  for (const { type, value } of beat.automations) {
    if (type === alphaTab.model.AutomationType.Volume || type === alphaTab.model.AutomationType.Balance) {
      add("changes of volume and balance", `${type} ${value}`);
    } else if (type === alphaTab.model.AutomationType.Instrument) {
      add("changes of program", value);
    }
  }
}

function noteFacts(facts, note) {
  const { beat } = note;
  const where = placeOf(note);
  const key = note.isPercussion ? `drum ${drumOf(note)}` : note.realValue;
  facts.notes.push(
    `${where} key ${key} string ${note.string} fret ${note.fret} for ${Math.round(beat.playbackDuration)}${note.isTieDestination ? " tied" : ""}`,
  );
  for (const name of noteEffects) {
    if (note[name] && note[name] !== -1) {
      facts["note effects"].push(`${where} key ${key} ${name} ${note[name]}`);
    }
  }
  if (note.hasBend) {
    facts.bends.push(`${where} key ${key} ${shape(note.bendPoints)}`);
  }
  if (note.leftHandFinger >= 0 || note.rightHandFinger >= 0) {
    facts.fingering.push(
      `${where} key ${key} ${Math.max(note.leftHandFinger, -1)} ${Math.max(note.rightHandFinger, -1)}`,
    );
  }
  if (note.slurDestination || (beat.isLegatoOrigin && beat.notes[0] === note && !beat.isLegatoDestination)) {
    facts.slurs.push(where);
  }
}

/** The key that a drum sounds with. */
function drumOf(note) {
  const articulation = note.beat.voice.bar.staff.track.percussionArticulations[note.percussionArticulation];
  return articulation ? articulation.id : note.percussionArticulation;
}

function playingFacts(score) {
  const midi = new alphaTab.midi.MidiFile();
  const generator = new alphaTab.midi.MidiFileGenerator(
    score,
    settings,
    new alphaTab.midi.AlphaSynthMidiFileHandler(midi),
  );
  generator.generate();
  const { NoteOn, NoteOff, TempoChange } = alphaTab.midi.MidiEventType;
  /** @type {any[]} */
  const events = midi.events;
  return events
    .filter(({ type }) => type === NoteOn || type === NoteOff || type === TempoChange)
    .map(
      (event) =>
        `${event.tick} ${event.track} ${event.type} ${event.noteKey ?? rounded(event.beatsPerMinute)} ${event.noteVelocity ?? ""}`,
    );
}

/**
 * @param {import("../../src/shared/alphatab.js").Score} score
 * @returns {Record<string, string[]>}
 */
export function factsOf(score) {
  const kinds = [
    "notes",
    "rhythm",
    "dynamics",
    "note effects",
    "beat effects",
    "bends",
    "whammy",
    "fingering",
    "slurs",
    "lyrics",
    "chords",
    "tempo",
    "metres",
    "keys",
    "clefs",
    "repeats",
    "directions",
    "sections",
    "fermatas",
    "tracks",
    "changes of program",
    "changes of volume and balance",
    "recording",
    "sync points",
    "titles",
    "lines",
  ];
  const facts = Object.fromEntries(kinds.map((kind) => [kind, []]));
  const { title, subTitle, artist, album, words, music, copyright, tab, instructions, notices } = score;
  facts.titles.push(
    ...[title, subTitle, artist, album, words, music, copyright, tab, instructions, notices].map(String),
  );
  score.masterBars.forEach((bar, index) => {
    const add = (kind, text) => facts[kind].push(`bar ${index + 1} ${text}`);
    add(
      "metres",
      `${bar.timeSignatureNumerator}/${bar.timeSignatureDenominator} for ${bar.calculateDuration()} ${bar.tripletFeel} ${bar.isFreeTime}`,
    );
    add("repeats", `${bar.isRepeatStart} ${bar.repeatCount} ${bar.alternateEndings}`);
    [...(bar.directions ?? [])]
      .sort((a, b) => a - b)
      .forEach((direction) => add("directions", alphaTab.model.Direction[direction]));
    bar.tempoAutomations.forEach(({ value, ratioPosition, text }) =>
      add("tempo", `${rounded(value)} at ${rounded(ratioPosition)} ${text ?? ""}`),
    );
    (bar.syncPoints ?? []).forEach(({ ratioPosition, syncPointValue: { barOccurence, millisecondOffset } }) =>
      add("sync points", `${rounded(ratioPosition)} ${barOccurence} ${Math.round(millisecondOffset * 10) / 10}`),
    );
    if (bar.section) {
      add("sections", `${bar.section.marker} ${bar.section.text}`);
    }
    (bar.fermata ?? new Map()).forEach(({ type }, offset) => add("fermatas", `${offset} ${type}`));
  });
  for (const track of score.tracks) {
    const {
      name,
      shortName,
      playbackInfo: { program, volume, balance, isMute, isSolo, bank },
    } = track;
    const staves = track.staves.map(
      ({
        tuning,
        capo,
        isPercussion,
        showTablature,
        showStandardNotation,
        transpositionPitch,
        displayTranspositionPitch,
      }) =>
        `${tuning} ${capo} ${isPercussion} ${showTablature} ${showStandardNotation} ${transpositionPitch} ${displayTranspositionPitch}`,
    );
    facts.tracks.push(`${name} ${shortName} ${program} ${bank} ${volume} ${balance} ${isMute} ${isSolo} ${staves}`);
    for (const staff of track.staves) {
      for (const bar of staff.bars) {
        const where = `${track.index + 1}.${staff.index + 1} bar ${bar.index + 1}`;
        facts.keys.push(`${where} ${bar.keySignature} ${bar.keySignatureType}`);
        facts.clefs.push(`${where} ${bar.clef} ${bar.clefOttava} ${bar.simileMark}`);
        facts.lines.push(`${where} ${bar.barLineLeft} ${bar.barLineRight}`);
        bar.voices.forEach((voice) =>
          voice.beats.forEach((beat) => {
            beatFacts(facts, beat, `${where} tick ${Math.round(beat.playbackStart)}`);
            beat.notes.forEach((note) => noteFacts(facts, note));
          }),
        );
      }
    }
  }
  const sound = score.backingTrack?.rawAudioFile;
  if (sound) {
    facts.recording.push(`${sound.length} ${createHash("sha256").update(sound).digest("hex")}`);
  }
  facts.playing = playingFacts(score);
  // Voices may have other places.
  Object.entries(facts).forEach(([kind, list]) => kind === "titles" || list.sort());
  return facts;
}

/**
 * @returns {Record<string, { missing: string[], added: string[] }>} the kinds in which two scores differ
 */
export function differences(before, after) {
  /** @type {Record<string, { missing: string[], added: string[] }>} */
  const found = {};
  for (const kind of Object.keys(before)) {
    const counts = new Map();
    before[kind].forEach((text) => counts.set(text, (counts.get(text) ?? 0) + 1));
    after[kind].forEach((text) => counts.set(text, (counts.get(text) ?? 0) - 1));
    const missing = [...counts].filter(([, count]) => count > 0).map(([text]) => text);
    const added = [...counts].filter(([, count]) => count < 0).map(([text]) => text);
    if (missing.length + added.length > 0) {
      found[kind] = { missing, added };
    }
  }
  return found;
}
