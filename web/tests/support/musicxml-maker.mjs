// @ts-check
import { createRequire } from "node:module";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { readScore } = await import("../../src/score-files/score-files.js");

/** A note such as "C4" or "F#4" for so many divisions; more elements go before and after its length. */
export function note(name, duration, { before = "", after = "", voice = 1 } = {}) {
  const [, step, sharp, octave] = /^([A-G])(#?)(-?\d)$/.exec(name);
  const alter = sharp ? "<alter>1</alter>" : "";
  return `<note>${before}<pitch><step>${step}</step>${alter}<octave>${octave}</octave></pitch><duration>${duration}</duration><voice>${voice}</voice>${after}</note>`;
}

export const rest = (duration, attributes = "") =>
  `<note><rest${attributes}/><duration>${duration}</duration><voice>1</voice></note>`;
export const forward = (duration) => `<forward><duration>${duration}</duration></forward>`;
export const backup = (duration) => `<backup><duration>${duration}</duration></backup>`;

/**
 * Divisions of a quarter and the metre, with further attributes.
 *
 * @param {number} [divisions]
 * @param {number | string} [beats]
 */
export const attributes = (divisions = 1, beats = 4, more = "") =>
  `<attributes><divisions>${divisions}</divisions><time><beats>${beats}</beats><beat-type>4</beat-type></time>${more}</attributes>`;

/** A document of one part (or of several, each a list of measures' contents). */
export function document(measures, { description = "", head = "" } = {}) {
  const parts = Array.isArray(measures[0]) ? measures : [measures];
  const list = parts
    .map((_, i) => `<score-part id="P${i}"><part-name>Part ${i}</part-name>${description}</score-part>`)
    .join("");
  const bodies = parts.map((part, i) => {
    const inside = part.map((content, k) =>
      content.startsWith("<measure") ? content : `<measure number="${k + 1}">${content}</measure>`,
    );
    return `<part id="P${i}">${inside.join("")}</part>`;
  });
  return `<?xml version="1.0" encoding="UTF-8"?>${head}<score-partwise version="4.0"><part-list>${list}</part-list>${bodies.join("")}</score-partwise>`;
}

export const bytesOf = (text) => new TextEncoder().encode(text);

/** @returns the score that the page reads, or the sentence that says why it cannot be read. */
export function read(source) {
  return readScore(typeof source === "string" ? bytesOf(source) : source, new globalThis.alphaTab.Settings());
}

/** @returns what the synthesizer is given: keys with their times in quarters, such as "0:60 1:62". */
export function played(source) {
  const { score, problem } = read(source);
  if (problem) {
    return problem;
  }
  return notesOf(score)
    .map(({ time, key }) => `${Number(time.toFixed(3))}:${key}`)
    .join(" ");
}

/** @returns notes with times and lengths in quarters, in time. */
export function notesOf(score) {
  const { midi, Settings } = globalThis.alphaTab;
  const file = new midi.MidiFile();
  new midi.MidiFileGenerator(score, new Settings(), new midi.AlphaSynthMidiFileHandler(file)).generate();
  const notes = [];
  const sounding = new Map();
  /** @type {any[]} */
  const events = file.tracks.flatMap((track) => track.events);
  for (const event of events) {
    const id = `${event.channel} ${event.noteKey}`;
    if (event.type === midi.MidiEventType.NoteOn) {
      const note = { time: event.tick / 960, key: event.noteKey, length: 0 };
      sounding.set(id, note);
      notes.push(note);
    } else if (event.type === midi.MidiEventType.NoteOff && sounding.has(id)) {
      sounding.get(id).length = event.tick / 960 - sounding.get(id).time;
    }
  }
  return notes.sort((a, b) => a.time - b.time || a.key - b.key);
}
