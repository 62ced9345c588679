// Writes the demo score in every format that the program opens: ferry.gp, ferry.gp3, ... in a folder.
// usage: node make-scores.mjs ALPHATAB_SCRIPT DEMO.gp FOLDER
import { mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join, resolve } from "node:path";
import { makeContainer, pack } from "../../web/tests/support/gpx-maker.mjs";
import { writeMusicXml } from "./music-xml.mjs";
import { writeOldGuitarPro } from "./old-guitar-pro.mjs";
import { unzip, zip } from "./zip.mjs";

const [engine, demo, folder] = process.argv.slice(2).map((path) => resolve(path));
const alphaTab = createRequire(import.meta.url)(engine);
const newest = readFileSync(demo);
const score = alphaTab.importer.ScoreLoader.loadScoreFromBytes(new Uint8Array(newest), new alphaTab.Settings());
const musicXml = Buffer.from(writeMusicXml(score));
const container = '<?xml version="1.0" encoding="UTF-8"?><container><rootfiles><rootfile full-path="ferry.musicxml"/></rootfiles></container>';

const scores = {
  gp: newest,
  gp3: writeOldGuitarPro(score, 3),
  gp4: writeOldGuitarPro(score, 4),
  gp5: writeOldGuitarPro(score, 5),
  gpx: pack(makeContainer({ "score.gpif": unzip(newest)["Content/score.gpif"] })),
  mxl: zip({ "META-INF/container.xml": Buffer.from(container), "ferry.musicxml": musicXml }),
  musicxml: musicXml,
};
mkdirSync(folder, { recursive: true });
for (const [kind, bytes] of Object.entries(scores)) {
  writeFileSync(join(folder, `ferry.${kind}`), bytes);
}
