// @ts-check
/**
 * alphaTab finds what a hammer-on or a slide leads to by a table of each beat's notes by string. Its MusicXML reader does
 * not fill that, and neither does who gives notes their strings afterwards.
 *
 * @param {import("../../shared/alphatab.js").Beat} beat whose notes have got their strings
 */
export function lookUpByString({ noteStringLookup, notes }) {
  noteStringLookup.clear();
  for (const note of notes) {
    if (note.isStringed) {
      noteStringLookup.set(note.string, note);
    }
  }
}
