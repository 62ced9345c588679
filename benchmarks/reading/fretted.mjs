// Where Quaverly has the notes of Guitar Pro files, read by the page's own modules: for each path on standard input a line
// of JSON with the notes as [track, bar, voice, string, fret, onset in the bar in ticks], and with those of grace notes in
// a list of their own, or with the sentence that says why the file cannot be read. Drums have their key as their fret.
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { createInterface } from "node:readline";

globalThis.alphaTab = createRequire(import.meta.url)(process.argv[2]);
const { model, Logger, LogLevel, Settings } = globalThis.alphaTab;
Logger.logLevel = LogLevel.None;
const { readScore } = await import(new URL("../../web/src/score-files/score-files.js", import.meta.url));

/** Strings count from the highest one, as in the files. */
function placeOf(note, staff) {
  return note.isPercussion
    ? [0, note.percussionArticulation]
    : [staff.tuning.length - note.string + 1, note.fret];
}

function fretted(path) {
  const { score, problem } = readScore(new Uint8Array(readFileSync(path)), new Settings());
  if (problem) {
    return { problem };
  }
  const notes = [];
  const graces = [];
  for (const track of score.tracks) {
    for (const staff of track.staves) {
      for (const bar of staff.bars) {
        for (const voice of bar.voices) {
          for (const beat of voice.beats) {
            const isGrace = beat.graceType !== model.GraceType.None;
            for (const note of beat.notes) {
              const place = [track.index, bar.index, voice.index, ...placeOf(note, staff)];
              (isGrace ? graces : notes).push(isGrace ? place : [...place, beat.displayStart]);
            }
          }
        }
      }
    }
  }
  return { notes, graces };
}

for await (const path of createInterface({ input: process.stdin })) {
  let answer;
  try {
    answer = fretted(path);
  } catch (reason) {
    answer = { problem: String(reason) };
  }
  console.log(JSON.stringify({ path, ...answer }));
}
