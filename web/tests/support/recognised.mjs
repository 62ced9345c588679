// @ts-check
// Scores as Audiveris 5.11 was seen to write them, in the words that it uses.

/**
 * @param {string} pitch "E4", "F#3"; "r" for a rest
 * @param {object} [how]
 * @param {boolean} [how.chord] sounds with the note before
 * @param {number} [how.duration] in quarters
 * @param {number} [how.voice]
 * @param {string} [how.syllable]
 * @param {"start" | "stop"} [how.tie]
 */
export function note(pitch, { chord = false, duration = 1, voice = 1, syllable = "", tie } = {}) {
  const [, step, sharp, octave] = /^([A-G])(#?)(\d)$/.exec(pitch) ?? [];
  const what = step
    ? `<pitch><step>${step}</step>${sharp ? "<alter>1</alter>" : ""}<octave>${octave}</octave></pitch>`
    : "<rest/>";
  const type = { 1: "quarter", 2: "half", 4: "whole", 0.5: "eighth" }[duration];
  return (
    `<note>${chord ? "<chord/>" : ""}${what}<duration>${duration * 12}</duration>${tie ? `<tie type="${tie}"/>` : ""}` +
    `<voice>${voice}</voice><type>${type}</type>${tie ? `<notations><tied type="${tie}"/></notations>` : ""}` +
    `${syllable ? `<lyric number="1"><syllabic>single</syllabic><text>${syllable}</text></lyric>` : ""}</note>`
  );
}

/** @param {number} quarters */
export const backup = (quarters) => `<backup><duration>${quarters * 12}</duration></backup>`;
/** @param {number} quarters @param {number} voice */
export const forward = (quarters, voice) =>
  `<forward><duration>${quarters * 12}</duration><voice>${voice}</voice></forward>`;

/**
 * One part of one staff in 4/4. No key element, for no accidentals; no octave under the clef.
 *
 * @param {string[]} measures
 * @param {object} [how]
 * @param {string} [how.clef]
 * @param {number} [how.staves]
 */
export function part(measures, { clef = "<sign>G</sign><line>2</line>", staves = 1 } = {}) {
  const attributes = `<attributes><divisions>12</divisions><time><beats>4</beats><beat-type>4</beat-type></time>${
    staves > 1 ? `<staves>${staves}</staves>` : ""
  }<clef>${clef}</clef><staff-details print-object="yes"></staff-details></attributes>`;
  return measures
    .map((measure, index) => `<measure number="${index + 1}">${index === 0 ? attributes : ""}${measure}</measure>`)
    .join("");
}

/**
 * @param {string[]} parts
 * @param {object} [how]
 * @param {string} [how.software]
 * @param {string} [how.name]
 */
export function recognised(parts, { software = "Audiveris 5.11.0", name = "Voice" } = {}) {
  const list = parts.map(
    (_, i) =>
      `<score-part id="P${i + 1}"><part-name>${name}</part-name><part-abbreviation>${name}</part-abbreviation>` +
      `<score-instrument id="P${i + 1}-I1"><instrument-name>Voice Oohs</instrument-name></score-instrument>` +
      `<midi-instrument id="P${i + 1}-I1"><midi-channel>${i + 1}</midi-channel><midi-program>54</midi-program>` +
      `<volume>78</volume></midi-instrument></score-part>`,
  );
  const bodies = parts.map((body, i) => `<part id="P${i + 1}">${body}</part>`);
  return (
    `<?xml version="1.0" encoding="UTF-8"?><score-partwise version="4.0.3"><movement-title>Study</movement-title>` +
    `<identification><encoding><software>${software}</software><software>ProxyMusic 4.0.3</software></encoding></identification>` +
    `<part-list>${list.join("")}</part-list>${bodies.join("")}</score-partwise>`
  );
}
