// @ts-check
import assert from "node:assert/strict";
import { readFileSync, readdirSync } from "node:fs";
import { test } from "node:test";
import { sampleRate } from "./support/played-score.mjs";
import { standIn } from "./support/stand-in.mjs";

const { missingInternals } = await import("../src/alphatab/internals/alphatab-internals.js");
const { alphaTab } = globalThis;
const source = readFileSync(process.env.QUAVERLY_ALPHATAB, "utf8");
const sources = new URL("../src/", import.meta.url);

function synth() {
  const never = { on: () => () => {} };
  const output = {
    sampleRate,
    ready: never,
    samplesPlayed: never,
    sampleRequest: never,
    open() {},
    activate() {},
    destroy() {},
  };
  return standIn(new alphaTab.synth.AlphaSynth(standIn(output), 0));
}

test("alphaTab has everything undeclared that the page uses", () => {
  assert.deepEqual(missingInternals(synth(), source), []);
});

test("what is gone is named", () => {
  const without = synth();
  without.sequencer = new Proxy(without.sequencer, { has: (target, name) => name !== "mainSeek" && name in target });
  assert.deepEqual(missingInternals(without, source), ["AlphaSynth.sequencer.mainSeek"]);
  without.sequencer = undefined;
  assert.ok(missingInternals(without, source).includes("AlphaSynth.sequencer.currentTime"));
  const { Environment } = /** @type {any} */ (alphaTab);
  const { buildImporters } = Environment;
  Environment.buildImporters = () => buildImporters().filter(({ name }) => name !== "MusicXML");
  assert.deepEqual(missingInternals(synth(), source), [
    "Environment.buildImporters: one that reads the elements of MusicXML",
  ]);
  Environment.buildImporters = buildImporters;
  const { MidiFileGenerator } = /** @type {any} */ (alphaTab.midi);
  MidiFileGenerator.ornamentKeysDown.push(-1);
  assert.deepEqual(missingInternals(synth(), source), ["MidiFileGenerator: one static table of twelve steps down"]);
  MidiFileGenerator.ornamentKeysDown.pop();
  const changed = source.replaceAll('"alphaSynth.stop"', '"alphaSynth.halt"').replaceAll("at-surface", "at-canvas");
  assert.deepEqual(missingInternals(synth(), changed), ["alphaSynth.stop", "the class at-surface"]);
});

test("no other module reaches behind alphaTab's declarations", () => {
  const cast = /@type \{(?:any|unknown|Record<[^}]*>)\} \*\/ \((?:alphaTab\b|this[.)])/;
  const found = readdirSync(sources, { recursive: true })
    .map(String)
    .filter(
      (path) =>
        path.endsWith(".js") && !path.includes("internals") && cast.test(readFileSync(new URL(path, sources), "utf8")),
    );
  assert.deepEqual(found, []);
});
