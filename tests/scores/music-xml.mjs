// Writes a score as MusicXML: its bars, notes and tuplets, one voice for each track.

const divisions = 960;
const names = ["C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"];
const types = { 1: "whole", 2: "half", 4: "quarter", 8: "eighth", 16: "16th", 32: "32nd", 64: "64th" };

const escaped = (text) => text.replaceAll("&", "&amp;").replaceAll("<", "&lt;");

function pitch(note) {
  const [step, sharp] = names[note.realValue % 12];
  const octave = Math.floor(note.realValue / 12) - 1;
  return `<pitch><step>${step}</step>${sharp ? "<alter>1</alter>" : ""}<octave>${octave}</octave></pitch>`;
}

function beatNotes(beat, part) {
  const { isPercussion } = beat.voice.bar.staff;
  const length = `<duration>${beat.playbackDuration}</duration>`;
  const look = `<type>${types[beat.duration]}</type>${"<dot/>".repeat(beat.dots)}${beat.tupletNumerator > 1
    ? `<time-modification><actual-notes>${beat.tupletNumerator}</actual-notes><normal-notes>${beat.tupletDenominator}</normal-notes></time-modification>`
    : ""}`;
  if (beat.notes.length === 0) {
    return `<note><rest/>${length}${look}</note>`;
  }
  return beat.notes.map((note, index) => {
    const height = isPercussion
      ? "<unpitched><display-step>C</display-step><display-octave>5</display-octave></unpitched>"
      : pitch(note);
    const instrument = isPercussion ? `<instrument id="${part}-drum"/>` : "";
    return `<note>${index ? "<chord/>" : ""}${height}${length}${instrument}${look}</note>`;
  }).join("");
}

function measure(masterBar, before, bar, part, tempo) {
  const { timeSignatureNumerator: beats, timeSignatureDenominator: beatType } = masterBar;
  const attributes = before
    ? ""
    : `<attributes><divisions>${divisions}</divisions><time><beats>${beats}</beats><beat-type>${beatType}</beat-type></time></attributes><direction><direction-type><metronome><beat-unit>quarter</beat-unit><per-minute>${tempo}</per-minute></metronome></direction-type><sound tempo="${tempo}"/></direction>`;
  const start = masterBar.isRepeatStart ? '<barline location="left"><repeat direction="forward"/></barline>' : "";
  const end = masterBar.isRepeatEnd
    ? `<barline location="right"><repeat direction="backward" times="${masterBar.repeatCount}"/></barline>`
    : "";
  const notes = bar.voices[0].beats.map((beat) => beatNotes(beat, part)).join("");
  return `<measure number="${masterBar.index + 1}">${start}${attributes}${notes}${end}</measure>`;
}

function partEntry(track, part) {
  const drum = track.staves[0].isPercussion
    ? `<score-instrument id="${part}-drum"><instrument-name>Snare</instrument-name></score-instrument><midi-instrument id="${part}-drum"><midi-channel>10</midi-channel><midi-unpitched>39</midi-unpitched></midi-instrument>`
    : "";
  return `<score-part id="${part}"><part-name>${escaped(track.name)}</part-name>${drum}</score-part>`;
}

/** A score in one time signature and one tempo. */
export function writeMusicXml(score) {
  const parts = score.tracks.map((track, index) => ({ track, id: `P${index + 1}` }));
  const list = parts.map(({ track, id }) => partEntry(track, id)).join("");
  const music = parts.map(({ track, id }) => {
    const measures = score.masterBars.map((masterBar, index) =>
      measure(masterBar, score.masterBars[index - 1], track.staves[0].bars[index], id, score.tempo));
    return `<part id="${id}">${measures.join("")}</part>`;
  }).join("");
  return `<?xml version="1.0" encoding="UTF-8"?>
<score-partwise version="4.0"><work><work-title>${escaped(score.title)}</work-title></work><identification><creator type="composer">${escaped(score.music)}</creator></identification><part-list>${list}</part-list>${music}</score-partwise>
`;
}
