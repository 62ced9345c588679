// Writes scores that are hard to lay out: thirty-tracks.musicxml, stacked.gp; thirty-tracks-long.musicxml, which takes
// a while, and cut-short.gp, which cannot be read.
// usage: node make-layouts.mjs ALPHATAB_SCRIPT FOLDER
import { mkdirSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join, resolve } from "node:path";

const [script, folder] = process.argv.slice(2).map((path) => resolve(path));
const alphaTab = createRequire(import.meta.url)(script);

/** One staff each, and names that are shorter and longer than a staff is high. */
function thirtyTracks(length) {
  const names = ["Piano", "MusicXML Part", "Vox", "Contrabass Clarinet in B flat", "E-Bass", "Violin I", "Harp"];
  const numbers = Array.from({ length: 30 }, (_, index) => index + 1);
  const note = (step, octave) => {
    const pitch = `<pitch><step>${step}</step><octave>${octave}</octave></pitch>`;
    return `<note>${pitch}<duration>1</duration><type>quarter</type></note>`;
  };
  const time = "<time><beats>4</beats><beat-type>4</beat-type></time>";
  const bar = (number) =>
    `<measure number="${number}">${number === 1 ? `<attributes><divisions>1</divisions>${time}</attributes>` : ""}` +
    `${note("C", 5)}${note("E", 5)}${note("D", 5)}${note("B", 4)}</measure>`;
  const bars = Array.from({ length }, (_, index) => bar(index + 1)).join("");
  const name = (number) => names[(number - 1) % names.length] + (number > names.length ? ` ${number}` : "");
  const entries = numbers.map(
    (number) => `<score-part id="P${number}"><part-name>${name(number)}</part-name></score-part>`,
  );
  const parts = numbers.map((number) => `<part id="P${number}">${bars}</part>`);
  return (
    '<?xml version="1.0" encoding="UTF-8"?><score-partwise version="4.0"><work><work-title>Thirty</work-title></work>' +
    "<identification><rights>2026 The Ferry Orchestra</rights></identification>" +
    `<part-list>${entries.join("")}</part-list>${parts.join("")}</score-partwise>`
  );
}

/** What stands over one beat: a section, a chord's name, a text, a tempo; with a capo, a tuning and a copyright. */
function stacked() {
  const bar = ':4 (0.6 2.5){ch "Dsus2"} 2.4{ch "Gmaj7/B"} 3.2 0.1';
  const tex = `\\title "Stacked" \\artist "The Ferry" \\copyright "2026 The Ferry" \\tempo 96
    \\track "Steel Guitar" \\staff {score tabs} \\tuning E4 B3 G3 D3 A2 D2 \\capo 3
    \\chord ("Dsus2" 0 3 2 0 0 0) \\chord ("Gmaj7/B" 3 0 0 0 2 x)
    \\section "A" "Intro" ${bar} | ${bar} |
    \\section "B" "The long refrain" ${bar.replace("{ch", '{txt "let ring" ch')} | ${bar} |
    ${Array.from({ length: 12 }, () => bar).join(" | ")}`;
  const settings = new alphaTab.Settings();
  const score = alphaTab.importer.ScoreLoader.loadAlphaTex(tex, settings);
  return new alphaTab.exporter.Gp7Exporter().export(score, settings);
}

mkdirSync(folder, { recursive: true });
writeFileSync(join(folder, "thirty-tracks.musicxml"), thirtyTracks(24));
writeFileSync(join(folder, "thirty-tracks-long.musicxml"), thirtyTracks(240));
const gp = stacked();
writeFileSync(join(folder, "stacked.gp"), gp);
writeFileSync(join(folder, "cut-short.gp"), gp.subarray(0, gp.length / 2));
