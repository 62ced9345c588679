// @ts-check
import assert from "node:assert/strict";
import { readFileSync, readdirSync } from "node:fs";
import { dirname, join, normalize } from "node:path";
import { test } from "node:test";
import { fileURLToPath } from "node:url";

const source = fileURLToPath(new URL("../src", import.meta.url));

/** From the top down: a folder may import from those in lines below its own. */
const layers = [
  ["."],
  ["session", "printing"],
  ["score-view", "fretboard", "metronome", "sounds"],
  ["playback"],
  ["alphatab"],
  ["rendering", "synth", "backing-track"],
  ["backing-track/decode"],
  ["backing-track/stretch"],
  ["score-files", "soundfont", "clicks"],
  ["score-files/guitar-pro", "score-files/musicxml"],
  ["score-files/containers", "score-files/strings"],
  ["audio", "timing", "bridge", "alphatab/internals"],
  ["shared"],
];

/** Files that a module names: in import statements, in the types of comments, and as scripts of workers. */
const named = /(?:from|import\(|import|URL\()\s*"(\.[^"]+\.js)"/g;

const layerOf = (folder) => layers.findIndex((layer) => layer.includes(folder));
const modules = readdirSync(source, { recursive: true })
  .map(String)
  .filter((path) => path.endsWith(".js"));

test("every folder of the page has its layer", () => {
  assert.deepEqual([...new Set(modules.map(dirname))].sort(), layers.flat().sort());
});

test("modules import from their own folder and from layers below", () => {
  const wrong = modules.flatMap((path) => {
    const folder = dirname(path);
    const imports = Array.from(readFileSync(join(source, path), "utf8").matchAll(named), ([, file]) =>
      normalize(join(folder, file)),
    );
    const upwards = imports.filter((file) => {
      const other = dirname(file);
      return !file.startsWith("..") && other !== folder && layerOf(other) <= layerOf(folder);
    });
    return upwards.map((file) => `${path} -> ${file}`);
  });
  assert.deepEqual(wrong, []);
});
