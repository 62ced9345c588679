// Compiles the demo score from its text to the Guitar Pro file that the page opens.
// usage: node compile-demo.mjs ALPHATAB_SCRIPT SOURCE TARGET
import { mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { dirname, resolve } from "node:path";

const [library, source, target] = process.argv.slice(2).map((path) => resolve(path));
const alphaTab = createRequire(import.meta.url)(library);

const settings = new alphaTab.Settings();
let score;
try {
  score = alphaTab.importer.ScoreLoader.loadAlphaTex(readFileSync(source, "utf8"), settings);
} catch (error) {
  console.error(`${source}: ${error.message}`);
  process.exit(1);
}
mkdirSync(dirname(target), { recursive: true });
writeFileSync(target, new alphaTab.exporter.Gp7Exporter().export(score, settings));
