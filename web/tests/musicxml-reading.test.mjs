// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { attributes, backup, document, forward, note, notesOf, played, read, rest } from "./support/musicxml-maker.mjs";

const { alphaTab } = globalThis;
const scale = (names, duration = 1) =>
  names
    .split(" ")
    .map((name) => note(name, duration))
    .join("");
const repeatEnd = '<barline location="right"><repeat direction="backward"/></barline>';
const repeatStart = '<barline location="left"><repeat direction="forward"/></barline>';

test("notes that name their instrument keep their keys", () => {
  const description =
    '<score-instrument id="I1"><instrument-name>Flute</instrument-name></score-instrument><midi-instrument id="I1"><midi-channel>10</midi-channel><midi-program>74</midi-program></midi-instrument>';
  const named = { after: '<instrument id="I1"/>' };
  const { score } = read(
    document([attributes() + ["C4", "E4", "G4", "C5"].map((name) => note(name, 1, named)).join("")], { description }),
  );
  assert.deepEqual(
    notesOf(score).map(({ key }) => key),
    [60, 64, 67, 72],
  );
  assert.equal(score.tracks[0].isPercussion, false);
  assert.notEqual(score.tracks[0].playbackInfo.primaryChannel, 9);
  assert.equal(score.tracks[0].playbackInfo.program, 73);
});

test("keys of a drum kit sound as the part's instruments say", () => {
  const description = `<score-instrument id="I1"><instrument-name>Snare</instrument-name></score-instrument>
    <score-instrument id="I2"><instrument-name>Bass</instrument-name></score-instrument>
    <midi-instrument id="I1"><midi-channel>10</midi-channel><midi-unpitched>39</midi-unpitched></midi-instrument>
    <midi-instrument id="I2"><midi-channel>10</midi-channel><midi-unpitched>37</midi-unpitched></midi-instrument>`;
  const drum = (id) =>
    `<note><unpitched><display-step>C</display-step><display-octave>5</display-octave></unpitched><duration>1</duration><instrument id="${id}"/></note>`;
  const clef = "<clef><sign>percussion</sign></clef>";
  assert.equal(
    played(document([attributes(1, 4, clef) + drum("I1") + drum("I2") + drum("I1") + drum("I1")], { description })),
    "0:38 1:36 2:38 3:38",
  );
});

test("notes of drums have heads: those of their length, or what the file gives them", () => {
  const description = `<score-instrument id="I1"><instrument-name>Snare</instrument-name></score-instrument>
    <midi-instrument id="I1"><midi-channel>10</midi-channel><midi-unpitched>39</midi-unpitched></midi-instrument>`;
  const drum = (duration, type, head = "") =>
    `<note><unpitched><display-step>C</display-step><display-octave>5</display-octave></unpitched><duration>${duration}</duration><instrument id="I1"/><type>${type}</type>${head}</note>`;
  const clef = "<clef><sign>percussion</sign></clef>";
  const bars = [
    attributes(1, 4, clef) + drum(1, "quarter") + drum(1, "quarter", "<notehead>x</notehead>") + drum(2, "half"),
    drum(4, "whole"),
  ];
  const { score } = read(document(bars, { description }));
  const settings = new alphaTab.Settings();
  settings.core.engine = "svg";
  settings.core.enableLazyLoading = false;
  const renderer = new alphaTab.rendering.ScoreRenderer(settings);
  renderer.width = 900;
  let picture = "";
  renderer.partialRenderFinished.on(({ renderResult }) => (picture += renderResult));
  renderer.renderScore(score, [0]);
  const { NoteheadBlack, NoteheadXBlack, NoteheadHalf, NoteheadWhole } = alphaTab.model.MusicFontSymbol;
  for (const head of [NoteheadBlack, NoteheadXBlack, NoteheadHalf, NoteheadWhole]) {
    assert.ok(picture.includes(`&#${head};`), `no head ${head} in ${picture.match(/&#\d+;/g)}`);
  }
});

test("a glissando slides as far as its second note", () => {
  const end = (type) => ({ after: `<notations><glissando type="${type}" number="1"/></notations>` });
  const { score } = read(document([attributes() + note("C4", 2, end("start")) + note("G4", 2, end("stop"))]));
  const { midi } = alphaTab;
  const file = new midi.MidiFile();
  new midi.MidiFileGenerator(score, new alphaTab.Settings(), new midi.AlphaSynthMidiFileHandler(file)).generate();
  const bends = file.events.filter((event) => event instanceof midi.NoteBendEvent && event.noteKey === 60);
  const last = /** @type {any} */ (bends.at(-1));
  // alphaTab has the synthesizer bend by up to 16 semitones either way, over the whole range of the number.
  assert.equal((last.value / 0x80000000 - 1) * 16, 7);
  assert.equal(last.tick, 2 * 960);
});

test("dashes behind P.M. and let ring hold for the notes up to their end", () => {
  const dashes = (type, words, number = 1) =>
    `<direction>${words ? `<direction-type><words>${words}</words></direction-type>` : ""}<direction-type><dashes type="${type}" number="${number}"/></direction-type></direction>`;
  const second = note("C3", 4, { voice: 2 });
  const bars = [
    attributes() + scale("C4") + dashes("start", "P.M.") + scale("D4 E4 F4") + backup(4) + second,
    scale("G4") +
      dashes("stop", "P.M.") +
      scale("A4") +
      dashes("start", "let ring", 2) +
      scale("B4 C5") +
      dashes("stop", "", 2),
    scale("C4 D4 E4 F4") + backup(4) + second,
  ];
  const { score } = read(document(bars));
  const beats = score.tracks[0].staves[0].bars.flatMap(({ voices }) => voices.flatMap((voice) => voice.beats));
  const sounding = beats.filter(({ notes }) => notes.length > 0);
  const marks = sounding.map(({ isPalmMute, isLetRing }) => (isPalmMute ? "m" : isLetRing ? "r" : "-"));
  assert.equal(marks.join(""), "-mmm-" + "m-rr" + "-----");
  assert.deepEqual(
    beats.map(({ text }) => text).filter((text) => text),
    [],
  );
});

test("a voice that only passes through a bar leaves the others where they are", () => {
  const bar = scale("C4 D4 E4 F4");
  const passing = `${forward(4)}${backup(4)}${["C3", "D3", "E3", "F3"].map((name) => note(name, 1, { voice: 2 })).join("")}`;
  const score = document([attributes() + bar, passing, bar]);
  assert.equal(played(score), "0:60 1:62 2:64 3:65 4:48 5:50 6:52 7:53 8:60 9:62 10:64 11:65");
  assert.deepEqual(
    read(score).score.masterBars.map((masterBar) => masterBar.start / 960),
    [0, 4, 8],
  );
});

test("an upbeat is as short as it is written, also when the file does not mark it", () => {
  const score = document([attributes() + scale("G3"), scale("C4 D4 E4 F4"), scale("G4 F4 E4")]);
  assert.equal(played(score), "0:55 1:60 2:62 3:64 4:65 5:67 6:65 7:64");
  assert.deepEqual(
    read(score).score.masterBars.map((masterBar) => masterBar.calculateDuration() / 960),
    [1, 4, 3],
  );
});

test("a bar that a repeat sign cuts in two lasts as long as its parts", () => {
  const score = document([
    attributes() + scale("C4"),
    scale("D4 E4 F4 G4"),
    scale("A4 G4 F4") + repeatEnd,
    `<measure number="X1" implicit="yes">${repeatStart}${scale("E4")}</measure>`,
    scale("D4 C4 D4") + repeatEnd,
  ]);
  assert.equal(
    played(score),
    "0:60 1:62 2:64 3:65 4:67 5:69 6:67 7:65 8:60 9:62 10:64 11:65 12:67 13:69 14:67 15:65 16:64 17:62 18:60 19:62 20:64 21:62 22:60 23:62",
  );
});

test("a bar lasts as long as its longest part, whichever that is", () => {
  const score = document([
    [attributes() + scale("C4"), scale("D4 E4 F4 G4")],
    [attributes() + scale("C3 D3"), scale("E3 F3 G3 A3")],
  ]);
  assert.equal(played(score), "0:48 0:60 1:50 2:52 2:62 3:53 3:64 4:55 4:65 5:57 5:67");
});

test("grace notes change no bar's length", () => {
  const grace =
    '<note><grace slash="yes"/><pitch><step>B</step><octave>3</octave></pitch><voice>1</voice><type>eighth</type></note>';
  const { score } = read(document([attributes() + grace + scale("C4"), grace + scale("C4 D4 E4 F4"), scale("C4")]));
  assert.deepEqual(
    score.masterBars.map((bar) => bar.calculateDuration() / 960),
    [1, 4, 1],
  );
});

test("notes that take no room, written out for a sign, are left to the sign", () => {
  const tremolo = note("C4", 4, { after: "<notations><ornaments><tremolo>1</tremolo></ornaments></notations>" });
  const hidden = note("C4", 1, { voice: 2 }).replace("<note>", '<note print-object="no" print-spacing="no">');
  const score = document([attributes() + tremolo + backup(4) + hidden.repeat(4)]);
  assert.equal(played(score), played(document([attributes() + tremolo])));
});

test("grace notes behind the last note of a bar end before the next bar begins", () => {
  const grace = (name) => note(name, 0, { before: "<grace/>" }).replace("<duration>0</duration>", "");
  const score = document([attributes() + scale("C4 E4 G4 B4") + grace("C5") + grace("D5"), scale("C4")]);
  assert.equal(played(score), "0:60 1:64 2:67 3:71 3.875:72 3.938:74 4:60");
  const many = Array.from({ length: 12 }, () => grace("C5")).join("");
  const times = notesOf(read(document([attributes() + note("C4", 4) + many, scale("C4")])).score).map(
    ({ time }) => time,
  );
  assert.ok(times.slice(1, 13).every((time) => time >= 2 && time < 4) && times[13] === 4, times.join());
});

test("an arpeggio on strings is spread over a part of its length, from the lowest note or from the highest", () => {
  const tab = (string, fret) => `<technical><string>${string}</string><fret>${fret}</fret></technical>`;
  const tuning = ["E4", "B3", "G3", "D3", "A2", "E2"]
    .reverse()
    .map(
      (name, line) =>
        `<staff-tuning line="${line + 1}"><tuning-step>${name[0]}</tuning-step><tuning-octave>${name[1]}</tuning-octave></staff-tuning>`,
    )
    .join("");
  const details = `<clef><sign>TAB</sign><line>5</line></clef><staff-details><staff-lines>6</staff-lines>${tuning}</staff-details>`;
  const chord = (arpeggiate) =>
    [
      ["E3", 4, 2],
      ["B3", 2, 0],
      ["E4", 1, 0],
    ]
      .map(([name, string, fret], i) =>
        note(name, 1, {
          before: i > 0 ? "<chord/>" : "",
          after: `<notations>${arpeggiate}${tab(string, fret)}</notations>`,
        }),
      )
      .join("");
  const times = (arpeggiate) => played(document([attributes(1, 1, details) + chord(arpeggiate)]));
  assert.equal(times(""), "0:52 0:59 0:64");
  assert.equal(times("<arpeggiate/>"), "0:52 0.083:59 0.167:64");
  assert.equal(times('<arpeggiate direction="down"/>'), "0:64 0.083:59 0.167:52");
});

test("an appoggiatura takes the time that it is written with", () => {
  const grace =
    "<note><grace/><pitch><step>D</step><octave>4</octave></pitch><voice>1</voice><type>eighth</type></note>";
  assert.equal(played(document([attributes() + grace + scale("C4 E4 G4 C5")])), "0:62 0.5:60 1:64 2:67 3:72");
});

test("a whole-bar rest is as long as its bar in any metre", () => {
  const whole = '<note><rest measure="yes"/><duration>4</duration><voice>1</voice></note>';
  assert.equal(played(document([attributes(1, 3) + whole, scale("C4 D4 E4")])), "3:60 4:62 5:64");
});

test("cue notes pass without sound, chords of them as well", () => {
  const cue = "<note><cue/><pitch><step>C</step><octave>4</octave></pitch><duration>1</duration></note>";
  const withChord = cue + cue.replace("<cue/>", "<cue/><chord/>");
  assert.equal(played(document([attributes() + withChord + scale("D4 E4") + cue])), "1:62 2:64");
});

test("notes without a voice of their own that lie over each other all sound at their times", () => {
  const bare = (name, duration) => note(name, duration).replace("<voice>1</voice>", "");
  assert.equal(
    played(document([attributes() + bare("C5", 4) + backup(4) + bare("C4", 2) + bare("D4", 2)])),
    "0:60 0:72 2:62",
  );
});

test("ties join what is tied and nothing else", () => {
  const tied = (...types) => ({
    after: `<notations>${types.map((type) => `<tied type="${type}"/>`).join("")}</notations>`,
  });
  const sounding = { before: "", after: '<tie type="start"/>' };
  const { score } = read(
    document([
      attributes() + note("C4", 1) + note("D4", 3, tied("start")),
      note("D4", 1, tied("stop", "start")) + note("D4", 1, tied("stop")) + note("E4", 2, tied("start")),
      note("F4", 2) + note("E4", 1, tied("stop")) + note("G4", 1, sounding),
      note("G4", 4, { after: '<tie type="stop"/>' }),
    ]),
  );
  const sounds = notesOf(score).map(({ time, key, length }) => `${time}:${key}-${length}`);
  assert.deepEqual(sounds, ["0:60-1", "1:62-5", "6:64-2", "8:65-2", "10:64-1", "11:67-5"]);
});

test("a tie leads from one staff to the other", () => {
  const at = (staff, type) => ({ after: `<staff>${staff}</staff><notations><tied type="${type}"/></notations>` });
  const staves = "<staves>2</staves>";
  const { score } = read(
    document([attributes(1, 4, staves) + note("C4", 4, at(1, "start")), note("C4", 4, at(2, "stop"))]),
  );
  assert.deepEqual(notesOf(score), [{ time: 0, key: 60, length: 8 }]);
});

test("trills go up one step of the key", () => {
  const trill = { after: "<notations><ornaments><trill-mark/></ornaments></notations>" };
  const key = (fifths) => `<key><fifths>${fifths}</fifths></key>`;
  const upper = (fifths, name) =>
    new Set(
      notesOf(read(document([attributes(1, 4, key(fifths)) + note(name, 4, trill)])).score).map((one) => one.key),
    );
  assert.deepEqual(upper(0, "E4"), new Set([64, 65]));
  assert.deepEqual(upper(1, "E4"), new Set([64, 66]));
  assert.deepEqual(upper(-1, "A4"), new Set([69, 70]));
  assert.deepEqual(upper(0, "A4"), new Set([69, 71]));
});

test("strokes through a half note's stem are as fast as through a quarter's", () => {
  const tremolo = { after: '<notations><ornaments><tremolo type="single">1</tremolo></ornaments></notations>' };
  assert.equal(
    played(document([attributes() + note("C4", 2, tremolo) + note("C4", 2)])),
    "0:60 0.5:60 1:60 1.5:60 2:60",
  );
});

test("a clef before a bar line holds from the next bar on", () => {
  const clef = "<attributes><clef><sign>F</sign><line>4</line></clef></attributes>";
  const { score } = read(
    document([attributes() + scale("C4 D4 E4 F4") + clef, scale("C3 D3 E3 F3"), scale("C3 D3 E3 F3")]),
  );
  const { G2, F4 } = globalThis.alphaTab.model.Clef;
  assert.deepEqual(
    score.tracks[0].staves[0].bars.map((bar) => bar.clef),
    [G2, F4, F4],
  );
});

test("tempos are taken from wherever they stand, once, at their times", () => {
  const metronome =
    "<direction><direction-type><metronome><beat-unit>half</beat-unit><per-minute>60</per-minute></metronome></direction-type></direction>";
  const sound = '<sound tempo="90"/>';
  const dotted =
    "<direction><direction-type><metronome><beat-unit>quarter</beat-unit><beat-unit-dot/><per-minute>c. 80</per-minute></metronome></direction-type></direction>";
  const { score } = read(
    document([attributes() + metronome + scale("C4 D4") + sound + scale("E4 F4"), dotted + scale("C4")]),
  );
  const tempos = score.masterBars.map((bar) =>
    bar.tempoAutomations.map(({ value, ratioPosition }) => [value, ratioPosition]),
  );
  assert.deepEqual(tempos, [
    [
      [120, 0],
      [90, 0.5],
    ],
    [[120, 0]],
  ]);
});

test("repeats and endings hold for all parts, whichever has them", () => {
  const ending = (number, type, location) =>
    `<barline location="${location}"><ending number="${number}" type="${type}"/>${type === "stop" && number === "1" ? '<repeat direction="backward"/>' : ""}</barline>`;
  const upper = [
    attributes() + note("C4", 4),
    ending("1", "start", "left") + note("D4", 4) + ending("1", "stop", "right"),
    ending("2", "start", "left") + note("E4", 4) + ending("2", "stop", "right"),
  ];
  const lower = [attributes() + note("C3", 4), note("D3", 4), note("E3", 4)];
  assert.equal(played(document([upper, lower])), "0:48 0:60 4:50 4:62 8:48 8:60 12:52 12:64");
  assert.equal(played(document([lower, upper])), "0:48 0:60 4:50 4:62 8:48 8:60 12:52 12:64");
});

test("gaps become rests that nobody sees", () => {
  const { score } = read(document([attributes() + forward(1) + scale("D4") + forward(1) + scale("F4")]));
  const { beats } = score.tracks[0].staves[0].bars[0].voices[0];
  assert.deepEqual(
    beats.map(({ isEmpty, notes, displayDuration }) => [isEmpty, notes.length, displayDuration / 960]),
    [
      [true, 0, 1],
      [false, 1, 1],
      [true, 0, 1],
      [false, 1, 1],
    ],
  );
});

test("a document by measures is read like one by parts", () => {
  const list =
    '<part-list><score-part id="A"><part-name>A</part-name></score-part><score-part id="B"><part-name>B</part-name></score-part></part-list>';
  const measure = (a, b) => `<measure number="1"><part id="A">${a}</part><part id="B">${b}</part></measure>`;
  const text = `<score-timewise>${list}${measure(attributes() + scale("C4"), attributes() + scale("C3"))}${measure(note("D4", 4), note("D3", 4))}</score-timewise>`;
  assert.equal(played(text), "0:48 0:60 1:50 1:62");
});

test("rests that stand beside the notes of their voice are left out", () => {
  assert.equal(played(document([attributes() + rest(4) + backup(4) + scale("C4 D4 E4 F4")])), "0:60 1:62 2:64 3:65");
});

test("a string without a tuning says nothing about the key", () => {
  const technical = { after: "<notations><technical><string>1</string><fret>3</fret></technical></notations>" };
  assert.equal(played(document([attributes() + note("C4", 4, technical)])), "0:60");
});

test("drums without keys are told by the names of their instruments, else by where their notes stand", () => {
  const drum = (place, instrument = "") =>
    `<note><unpitched><display-step>${place[0]}</display-step><display-octave>${place[1]}</display-octave></unpitched><duration>1</duration>${instrument}</note>`;
  const clef = attributes(1, 4, "<clef><sign>percussion</sign></clef>");
  const byPlace = document([clef + ["F4", "C5", "G5", "A5"].map((place) => drum(place)).join("")]);
  assert.equal(played(byPlace), "0:36 1:38 2:42 3:49");
  assert.ok(read(byPlace).score.tracks[0].staves[0].isPercussion);
  const instruments = [
    ["I1", "Cowbell", ""],
    ["I2", "", "drum.bass-drum"],
  ];
  const description = instruments
    .map(
      ([id, name, sound]) =>
        `<score-instrument id="${id}"><instrument-name>${name}</instrument-name><instrument-sound>${sound}</instrument-sound></score-instrument>`,
    )
    .join("");
  const byName = clef + drum("C5", '<instrument id="I1"/>').repeat(2) + drum("C5", '<instrument id="I2"/>').repeat(2);
  assert.equal(played(document([byName], { description })), "0:56 1:56 2:36 3:36");
});

test("notes without pitch of another instrument are no drums", () => {
  const strum =
    "<note><unpitched><display-step>B</display-step><display-octave>4</display-octave></unpitched><duration>4</duration></note>";
  const guitar =
    '<midi-instrument id="I1"><midi-channel>2</midi-channel><midi-program>26</midi-program></midi-instrument>';
  const clef = attributes(1, 4, "<clef><sign>percussion</sign></clef>");
  const { score } = read(document([clef + strum], { description: guitar }));
  assert.ok(!score.tracks[0].staves[0].isPercussion);
});
