// @ts-check
import { alphaTab } from "../../shared/alphatab.js";

/**
 * Reads harmonics on strings, of which alphaTab's reader takes no notice: the note would sound as if it were fretted.
 *
 * @typedef {import("../containers/xml-scanner.js").XmlElement} XmlElement
 * @typedef {import("@coderline/alphatab").model.Note} Note
 * @typedef {"natural" | "artificial" | "artificial, sounding"} Harmonic `sounding` where the document may give the key
 *     that is heard
 */

/** @param {XmlElement} note @returns {Harmonic | null} */
export function harmonicOf(note) {
  for (const notations of note.children) {
    const technical = notations.name === "notations" ? notations.child("technical") : undefined;
    const harmonic = technical?.child("harmonic");
    if (harmonic) {
      const isOfBase = harmonic.child("base-pitch") ?? harmonic.child("touching-pitch");
      return harmonic.child("artificial") ? (isOfBase ? "artificial" : "artificial, sounding") : "natural";
    }
  }
  return null;
}

/** Frets behind the finger where a string is touched, by how much higher it sounds then, in semitones. */
const touched = new Map([
  [12, 12],
  [19, 7],
  [24, 5],
  [28, 4],
  [31, 3.2],
  [36, 2.4],
]);

/** What a natural harmonic at a fret is called, where that is not the fret's own number. */
const nodes = new Map([
  [2, 2.4],
  [3, 3.2],
  [8, 8.2],
  [10, 9.6],
  [14, 14.7],
  [15, 14.7],
  [21, 21.7],
  [22, 21.7],
]);
const exactNodes = new Set([4, 5, 7, 9, 12, 16, 17, 19, 24]);
const octave = 12;

/**
 * @param {Note} note on a string
 * @param {Harmonic} harmonic
 */
export function applyHarmonic(note, harmonic) {
  const { HarmonicType } = alphaTab.model;
  if (harmonic === "natural") {
    note.harmonicValue = nodes.get(note.fret) ?? (exactNodes.has(note.fret) ? note.fret : octave);
    note.harmonicType = HarmonicType.Natural;
    return;
  }
  const interval = note.octave * octave + note.tone - note.realValue;
  note.harmonicValue = (harmonic === "artificial, sounding" && touched.get(interval)) || octave;
  note.harmonicType = HarmonicType.Artificial;
}
