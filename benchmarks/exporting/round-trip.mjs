// Exports every score in some folders as Guitar Pro, reads the file again, and tells by kind what differs.
import { readFileSync, readdirSync, statSync } from "node:fs";
import { basename, join } from "node:path";
import { differences, factsOf } from "../../web/tests/support/score-facts.mjs";

const { alphaTab } = globalThis;
const { readScore } = await import("../../web/src/score-files/score-files.js");
const { exportGuitarPro } = await import("../../web/src/score-files/guitar-pro/export.js");
const { playInOrder } = await import("../../web/src/alphatab/play-through.js");
const { scoreOrder } = await import("../../web/src/playback/score-order.js");

playInOrder((score) => scoreOrder(score).bars);
alphaTab.Logger.logLevel = alphaTab.LogLevel.None;
const settings = new alphaTab.Settings();

/** @param {string} path of a folder or a file */
function scoresIn(path) {
  if (!statSync(path).isDirectory()) {
    return [path];
  }
  const names = readdirSync(path, { recursive: true }).map(String);
  return names.filter((name) => /\.(gp|gp3|gp4|gp5|gpx|xml|musicxml|mxl)$/i.test(name)).map((name) => join(path, name));
}

/** @type {Map<string, { files: number, missing: number, added: number, example: string }>} */
const kinds = new Map();
const counts = { scores: 0, same: 0, unread: 0, failed: 0 };

/** @param {string} file */
function compare(file) {
  const { score } = readScore(new Uint8Array(readFileSync(file)), settings);
  if (!score) {
    counts.unread++;
    return;
  }
  counts.scores++;
  const before = factsOf(score);
  const again = readScore(exportGuitarPro(score, settings), settings);
  if (!again.score) {
    throw new Error(again.problem);
  }
  const found = Object.entries(differences(before, factsOf(again.score)));
  counts.same += found.length === 0 ? 1 : 0;
  for (const [kind, { missing, added }] of found) {
    const example = `${basename(file)}: ${missing[0] ?? "nothing"} -> ${added[0] ?? "nothing"}`;
    const entry = kinds.get(kind) ?? { files: 0, missing: 0, added: 0, example };
    kinds.set(kind, { ...entry, files: entry.files + 1, missing: entry.missing + missing.length, added: entry.added + added.length });
  }
}

for (const file of process.argv.slice(2).flatMap(scoresIn)) {
  try {
    compare(file);
  } catch (reason) {
    counts.failed++;
    console.log(`${file}: ${reason}`);
  }
}

console.log(`${counts.scores} scores, ${counts.same} the same in everything, ${counts.failed} not written or not read again, ${counts.unread} files that are no scores`);
const rows = [...kinds].sort((a, b) => b[1].files - a[1].files);
for (const [kind, { files, missing, added, example }] of rows) {
  console.log(`${kind.padEnd(30)} ${String(files).padStart(5)} scores ${String(missing).padStart(7)} gone ${String(added).padStart(7)} new   ${example.slice(0, 140)}`);
}
