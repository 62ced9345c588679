// Times what a converted score costs beyond reading it: its instrument with the strings of the bars that are laid out
// first, and the strings of all others. An expression, so that Node.js and the page take the same text: called with the
// folder of the page's modules, the kind of music, how many notes, and how many bars are laid out first. Gives milliseconds
// of the first time, and how many notes have a string.
async (modules, kind, wanted, firstBars) => {
  const { alphaTab } = globalThis;
  const { readMusicXml } = await import(`${modules}score-files/musicxml/read.js`);
  const { assignInstruments } = await import(`${modules}score-files/recognised-parts.js`);
  const { chooseStrings } = await import(`${modules}score-files/strings/open-fingerings.js`);
  const steps = ["C", "D", "E", "F", "G", "A", "B"];
  const pitch = (degree) => `<pitch><step>${steps[degree % 7]}</step><octave>${Math.floor(degree / 7)}</octave></pitch>`;
  const note = (degree, eighths, voice = 1, chord = "") =>
    `<note>${chord}${pitch(degree)}<duration>${eighths}</duration><voice>${voice}</voice></note>`;
  const lowest = 23;
  const melody = (bar, count, eighths) =>
    Array.from({ length: count }, (_, i) => note(lowest + 7 + ((3 * bar + 5 * i + (bar >> 3)) % 12), eighths)).join("");
  const bars = {
    melody: [8, (bar) => melody(bar, 8, 1)],
    voices: [
      10,
      (bar) =>
        melody(bar, 8, 1) +
        "<backup><duration>8</duration></backup>" +
        [0, 1].map((half) => note(lowest + ((2 * bar + 3 * half) % 7), 4, 2)).join(""),
    ],
    chords: [
      16,
      (bar) =>
        Array.from({ length: 4 }, (_, beat) =>
          [0, 4, 7, 9]
            .map((above, i) => note(lowest + 3 + ((bar + 2 * beat) % 6) + above, 2, 1, i > 0 ? "<chord/>" : ""))
            .join(""),
        ).join(""),
    ],
  };
  const [perBar, music] = bars[kind];
  const measures = Array.from({ length: Math.ceil(wanted / perBar) }, (_, bar) => `<measure>${music(bar)}</measure>`);
  const attributes =
    "<attributes><divisions>2</divisions><time><beats>4</beats><beat-type>4</beat-type></time>" +
    "<clef><sign>G</sign><line>2</line></clef></attributes>";
  measures[0] = measures[0].replace("<measure>", `<measure>${attributes}`);
  const score = readMusicXml(
    '<score-partwise><part-list><score-part id="P"><part-name>Voice</part-name></score-part></part-list>' +
      `<part id="P">${measures.join("")}</part></score-partwise>`,
    new alphaTab.Settings(),
  );
  const begin = performance.now();
  assignInstruments(score);
  chooseStrings(score, firstBars);
  const first = performance.now() - begin;
  chooseStrings(score);
  const all = performance.now() - begin;
  const voices = score.tracks[0].staves[0].bars.flatMap((bar) => bar.voices);
  const notes = voices.flatMap(({ beats }) => beats.flatMap((beat) => beat.notes));
  return { first, all, placed: notes.filter(({ isStringed }) => isStringed).length };
};
