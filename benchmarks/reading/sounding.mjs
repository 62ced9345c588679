// What Quaverly plays of score files, read and ordered by the page's own modules: for each path on standard input a line
// of JSON with the keys and their times in quarters, or with the sentence that says why the file cannot be read.
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { createInterface } from "node:readline";

globalThis.alphaTab = createRequire(import.meta.url)(process.argv[2]);
const { midi, Logger, LogLevel, Settings } = globalThis.alphaTab;
Logger.logLevel = LogLevel.None;
const page = new URL("../../web/src/", import.meta.url);
const { readScore } = await import(new URL("score-files/score-files.js", page));
const { playInOrder } = await import(new URL("alphatab/play-through.js", page));
const { scoreOrder } = await import(new URL("playback/score-order.js", page));
playInOrder((score) => scoreOrder(score).bars);

function sounding(path) {
  const { score, problem } = readScore(new Uint8Array(readFileSync(path)), new Settings());
  if (problem) {
    return { problem };
  }
  const file = new midi.MidiFile();
  new midi.MidiFileGenerator(score, new Settings(), new midi.AlphaSynthMidiFileHandler(file)).generate();
  const events = file.tracks.flatMap((track) => track.events).filter(({ type }) => type === midi.MidiEventType.NoteOn);
  return { notes: events.map(({ tick, noteKey }) => [tick / 960, noteKey]) };
}

for await (const path of createInterface({ input: process.stdin })) {
  let answer;
  try {
    answer = sounding(path);
  } catch (reason) {
    answer = { problem: String(reason) };
  }
  console.log(JSON.stringify({ path, ...answer }));
}
