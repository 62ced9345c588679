// @ts-check
import assert from "node:assert/strict";
import { existsSync, readFileSync, readdirSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { makeGuitarPro, song } from "./support/gp-maker.mjs";
import { attributes, backup, bytesOf, document, note } from "./support/musicxml-maker.mjs";
import { differences, factsOf } from "./support/score-facts.mjs";

const { alphaTab } = globalThis;
const { readScore } = await import("../src/score-files/score-files.js");
const { exportGuitarPro } = await import("../src/score-files/guitar-pro/export.js");
const { foldBend } = await import("../src/score-files/guitar-pro/bends.js");
const { chooseVoices } = await import("../src/score-files/guitar-pro/voices.js");
const { rhythmsFor } = await import("../src/score-files/guitar-pro/rhythms.js");
const { playInOrder } = await import("../src/alphatab/play-through.js");
const { scoreOrder } = await import("../src/playback/score-order.js");

playInOrder((score) => scoreOrder(score).bars);
alphaTab.Logger.logLevel = alphaTab.LogLevel.None;
const settings = new alphaTab.Settings();

const read = (bytes) => readScore(bytes, settings).score;
const written = (score) => read(exportGuitarPro(score, settings));
const lost = (score) => differences(factsOf(score), factsOf(written(score)));
const texScore = (text) => alphaTab.importer.ScoreLoader.loadAlphaTex(text, settings);

/** What the format does not hold, as docs/export.md tells. */
const notHeld = new Set(["changes of volume and balance", "lines"]);

/** @param {ReturnType<typeof differences>} found */
const unexpected = (found) => Object.fromEntries(Object.entries(found).filter(([kind]) => !notHeld.has(kind)));

/** The song without what the format does not hold of it. */
/** @type {import("./support/gp-maker.mjs").MadeSong} */
const held = structuredClone(song);
for (const beat of held.tracks[0].bars.flat()) {
  for (const note of Object.values(beat.notes ?? {})) {
    // Bends of several turns, and trills of another speed than sixteenths.
    delete note.trill;
    if (note.bend?.length > 5) {
      delete note.bend;
    }
  }
}
delete held.tracks[0].bars[0][0].chord;

for (const version of /** @type {(3 | 4 | 5)[]} */ ([3, 4, 5])) {
  test(`a Guitar Pro ${version} file of our own`, () => {
    assert.deepEqual(unexpected(lost(read(makeGuitarPro(version, held)))), {});
  });
}

test("everything that our notation has", () => {
  const score =
    texScore(`\\title "All" \\subtitle "of it" \\artist "A" \\album "B" \\words "C" \\music "D" \\copyright "E" \\tempo 90
    \\track "Lead" "ld" \\staff {tabs} \\tuning e4 b3 g3 d3 a2 d2 \\capo 2 \\instrument 29
    \\chord "Am" 0 1 2 2 0 x \\ts 4 4 \\ks g \\section "A" "Intro" \\ro
    :8 3.3{h} 5.3 7.3{b (0 4)} 7.3{b (0 4 0)} 5.3{v} 5.3{pm} x.3 5.3{g} |
    \\ae (1) \\rc 2 :4 3.3{tr 5 16 lr} (3.3 4.2 5.1){ch "Am" bd 60} 3.3{st ac} 5.3{sl} | \\ae (2) \\rc 2 \\tempo 120 :2 7.3{dy ff} 7.3{t} |
    \\ts 3 4 \\jump Segno :4 {tu 3} 3.3 3.3 3.3 3.3{f} 3.3{tp 16} |
    \\jump DaCoda \\ts 7 8 :8 3.3 r 3.3{d} :16 3.3 3.3{tempo 70} r.4 | \\jump DalSegnoAlCoda \\ts 4 4 :1 3.3{txt "text" lyrics "word"} | \\jump Coda :1 3.3{tb (0 -4 0)}
    \\track "Bass" \\staff {score} \\clef F4 \\ks g \\tuning g2 d2 a1 e1 \\instrument 33 r.1 | r.1 | r.1 | r.2{d} | r.2{d} r.8 | r.1 | r.1`);
  assert.deepEqual(unexpected(lost(score)), {});
});

test("a backing track and where it belongs", () => {
  const score = texScore("\\tempo 100 \\ro c4.1 | \\rc 2 d4.1 | e4.1");
  score.backingTrack = new alphaTab.model.BackingTrack();
  score.backingTrack.rawAudioFile = Uint8Array.from({ length: 70000 }, (_, index) => (index * 7919) >> 5);
  const points = [
    [0, 0, 250],
    [1, 0, 2600],
    [0, 1, 5100],
    [2, 0, 9900],
  ];
  score.applyFlatSyncPoints(
    points.map(([barIndex, barOccurence, millisecondOffset]) => ({
      barIndex,
      barOccurence,
      barPosition: 0,
      millisecondOffset,
    })),
  );
  const again = written(score);
  assert.deepEqual(again.backingTrack.rawAudioFile, score.backingTrack.rawAudioFile);
  assert.deepEqual(lost(score), {});
});

test("drums keep their sounds", () => {
  const drums = Array.from({ length: 40 }, (_, index) => 35 + index);
  const bars = drums.map((fret) => [{ length: -2, notes: { 0: { fret } } }]);
  const score = read(
    makeGuitarPro(5, {
      bars: drums.map(() => ({ metre: [4, 4] })),
      tracks: [{ name: "Drums", drums: true, tuning: [0, 0, 0, 0, 0, 0], bars }],
    }),
  );
  assert.deepEqual(unexpected(lost(score)), {});
  assert.equal(new Set(factsOf(written(score)).notes.map((note) => /drum \d+/.exec(note)[0])).size, 40);
});

test("a barre across many strings is one barre", () => {
  const diagram = `\\chord ("F" 1 1 2 3 3 1) {barre 1}`;
  const score = texScore(`\\track \\staff {score tabs} ${diagram} (1.1 1.2 2.3 3.4 3.5 1.6).1 {ch "F"}`);
  const barres = ({ tracks }) => Array.from(tracks[0].staves[0].chords.values(), ({ barreFrets }) => barreFrets);
  assert.deepEqual(barres(score), [[1]]);
  assert.deepEqual(barres(read(exportGuitarPro(score, settings))), [[1]]);
});

test("a bar that is shorter than its metre in the midst of a score lasts as long", () => {
  const score = texScore("\\ts 4 4 :4 c4 d4 e4 f4 | c4 d4 e4 | c4 | c4 d4 e4 f4");
  score.masterBars[1].isAnacrusis = true;
  score.masterBars[2].isAnacrusis = true;
  const { metres, ...others } = lost(score);
  assert.deepEqual(others, {});
  assert.equal(metres.missing.length, 2);
  assert.deepEqual(
    written(score).masterBars.map((bar) => bar.calculateDuration()),
    [3840, 2880, 960, 3840],
  );
});

test("notes that are heard and not seen are written", () => {
  const hidden = (name) => note(name, 1).replace("<note>", '<note print-object="no">');
  const bars = [
    attributes() +
      note("C4", 4) +
      backup(4) +
      "C5 D5 E5 F5".split(" ").map(hidden).join("").replaceAll("<voice>1", "<voice>2"),
  ];
  const score = read(bytesOf(document(bars)));
  const { notes, playing } = lost(score);
  assert.equal(notes, undefined);
  assert.equal(playing, undefined);
  assert.equal(factsOf(written(score)).notes.length, 5);
});

test("grace notes behind the last note of a bar are read where they were written", () => {
  const grace = note("D5", 0, { before: "<grace/>", after: "<type>eighth</type>" }).replace(
    "<duration>0</duration>",
    "",
  );
  const score = read(bytesOf(document([attributes() + note("C4", 4) + grace, note("C4", 4)])));
  const { notes, playing, rhythm } = lost(score);
  assert.deepEqual([notes, playing, rhythm], [undefined, undefined, undefined]);
});

test("voices are counted from one in each staff, and what is too much is written with the fourth", () => {
  const types = {
    1: "<type>eighth</type>",
    2: "<type>quarter</type>",
    3: "<type>quarter</type><dot/>",
    4: "<type>half</type>",
    6: "<type>half</type><dot/>",
    8: "<type>whole</type>",
  };
  const voice = (number, notes) =>
    notes
      .map(
        ([step, octave, duration]) =>
          `<note><pitch><step>${step}</step><octave>${octave}</octave></pitch><duration>${duration}</duration><voice>${number}</voice>${types[duration]}</note>`,
      )
      .join("") + "<backup><duration>8</duration></backup>";
  const voices = [
    [["C", 6, 8]],
    [["C", 5, 8]],
    [["C", 4, 8]],
    [
      ["C", 3, 2],
      ["D", 3, 6],
    ],
    [
      ["E", 2, 4],
      ["G", 2, 3],
      ["A", 2, 1],
    ],
    [
      ["B", 1, 1],
      ["C", 2, 1],
      ["D", 2, 6],
    ],
  ];
  const bar = (numbers) => `<measure>${numbers.map((number) => voice(number + 1, voices[number])).join("")}</measure>`;
  const xml = `<score-partwise><part-list><score-part id="P"><part-name>P</part-name></score-part></part-list><part id="P">${[
    [0, 1, 2, 3, 4, 5],
    [4],
    [1, 5],
  ]
    .map(bar)
    .join("")
    .replace(
      "<measure>",
      "<measure><attributes><divisions>2</divisions><time><beats>4</beats><beat-type>4</beat-type></time></attributes>",
    )}</part></score-partwise>`;
  const score = read(new TextEncoder().encode(xml));
  assert.ok(Math.max(...score.tracks[0].staves[0].bars.map(({ voices: { length } }) => length)) > 4);
  const again = written(score);
  assert.deepEqual(
    again.tracks[0].staves[0].bars.map(({ voices: { length } }) => length),
    [4, 4, 4],
  );
  assert.deepEqual(factsOf(again).playing, factsOf(score).playing);
});

test("the voices of bars keep their places where they can", () => {
  const used = (...voices) => Array.from({ length: 7 }, (_, voice) => voices.includes(voice));
  assert.deepEqual(chooseVoices([used(0, 2), used(1)]), [
    [0, 1, 2, 3],
    [0, 1, 2, 3],
  ]);
  assert.deepEqual(chooseVoices([used(4), used(4, 5)]), [
    [4, 5],
    [4, 5],
  ]);
  assert.deepEqual(chooseVoices([used(0, 1, 4), used(2, 5), used()]), [[0, 1, 4], [2, 5], [0]]);
});

test("bends are folded to an origin, a plateau and a destination", () => {
  const fold = (text) =>
    foldBend(
      text.split(" ").map((point) => ({ offset: Number(point.split(":")[0]), value: Number(point.split(":")[1]) })),
    )
      .map(({ offset, value }) => `${offset}:${value}`)
      .join(" ");
  assert.equal(fold("0:0 60:4"), "0:0 60:4");
  assert.equal(fold("0:0 15:4 30:4 45:4 60:0"), "0:0 15:4 45:4 60:0");
  assert.equal(fold("0:0 15:2 30:2 45:0 60:0"), "0:0 15:2 30:2 45:0");
  assert.equal(fold("0:0 25:0 30:4 60:4"), "25:0 30:4");
  assert.equal(fold("0:4 60:4"), "0:4 60:4");
  assert.equal(fold("0:0 30:2 60:4"), "0:0 60:4");
  // With more turns than the format has, the ends and the way up stay.
  assert.equal(fold("0:0 10:4 20:4 30:0 40:0 50:4 60:4"), "0:0 10:4 20:4 50:4");
  assert.equal(fold("0:0 5:12 10:1 15:10 20:3 60:6"), "0:0 5:12 5:12 60:6");
});

test("lengths are written as note values", () => {
  const values = (ticks) => rhythmsFor(ticks).map(({ length }) => length);
  assert.deepEqual(values(960), [960]);
  assert.deepEqual(values(1440), [1440]);
  assert.deepEqual(values(640), [640]);
  assert.deepEqual(values(2400), [1920, 480]);
  assert.deepEqual(values(7), []);
  for (let ticks = 15; ticks <= 3840; ticks += 15) {
    assert.equal(
      values(ticks).reduce((sum, length) => sum + length, 0),
      ticks,
    );
  }
});

const samples = process.env.QUAVERLY_SAMPLES ?? "";
const exceptions = {
  "canon.gp5": ["bends"],
  "effects.gp3": ["bends"],
  "effects.gp4": ["bends", "whammy"],
};
const sampleFiles = existsSync(samples) ? readdirSync(samples).filter((name) => /\.gp.?$/.test(name)) : [];
for (const name of sampleFiles) {
  test(`nothing is lost of ${name}`, () => {
    const found = unexpected(lost(read(new Uint8Array(readFileSync(join(samples, name))))));
    assert.deepEqual(
      Object.keys(found).filter((kind) => !(exceptions[name] ?? []).includes(kind)),
      [],
    );
    assert.ok((found.bends?.missing.length ?? 0) <= 5);
  });
}
