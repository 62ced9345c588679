// @ts-check
import assert from "node:assert/strict";
import { existsSync, readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join } from "node:path";
import { test } from "node:test";
import { unzip, zip } from "../../tests/scores/zip.mjs";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;
const { repackGp } = await import("../src/score-files/gp-archive.js");
const { readScore } = await import("../src/score-files/score-files.js");

const settings = new alphaTab.Settings();
const limit = 1 << 24;

const archives = { "a file of ours": join(process.env.QUAVERLY_SCORES, "ferry.gp") };
for (const name of ["canon-audio-track.gp", "serenade.gp"]
  .map((file) => join(process.env.QUAVERLY_SAMPLES ?? "", file))
  .filter(existsSync)) {
  archives[name] = name;
}
for (const [title, file] of Object.entries(archives)) {
  test(`${title} gives the score that alphaTab itself reads from it`, () => {
    const bytes = new Uint8Array(readFileSync(file));
    const own = alphaTab.importer.ScoreLoader.loadScoreFromBytes(bytes, settings);
    const again = alphaTab.importer.ScoreLoader.loadScoreFromBytes(repackGp(bytes, limit), settings);
    assert.equal(alphaTab.model.JsonConverter.scoreToJson(again), alphaTab.model.JsonConverter.scoreToJson(own));
    assert.deepEqual(again.backingTrack?.rawAudioFile, own.backingTrack?.rawAudioFile);
  });
}

const archive = (gpif, others = {}) => new Uint8Array(zip({ "Content/score.gpif": Buffer.from(gpif), ...others }));

test("what alphaTab does not read is left out, and an archive without a score is none", () => {
  const files = unzip(
    withEnd(
      repackGp(
        archive("<GPIF></GPIF>", {
          "Content/Preferences.json": Buffer.alloc(5000),
          "Content/Assets/a.mp3": Buffer.alloc(70),
        }),
        limit,
      ),
    ),
  );
  assert.deepEqual(Object.keys(files), ["Content/score.gpif", "Content/Assets/a.mp3"]);
  assert.equal(repackGp(new Uint8Array(zip({ "score.xml": Buffer.from("<score-partwise/>") })), limit), null);
});

/** What is read from the front has no directory; these tests read by it. */
function withEnd(stored) {
  const bytes = Buffer.from(stored);
  /** @type {Record<string, Buffer>} */
  const files = {};
  for (let at = 0; bytes.readUInt32LE(at) === 0x04034b50;) {
    const [length, nameLength] = [bytes.readUInt32LE(at + 22), bytes.readUInt16LE(at + 26)];
    files[bytes.toString("utf8", at + 30, at + 30 + nameLength)] = bytes.subarray(
      at + 30 + nameLength,
      at + 30 + nameLength + length,
    );
    at += 30 + nameLength + length;
  }
  return zip(files);
}

test("an element with an end is one: exported scores have many", () => {
  assert.ok(repackGp(archive(`<GPIF>${"<Note></Note>".repeat(700000)}</GPIF>`), limit));
});

test("more than a score ever has is not read at all", () => {
  assert.throws(() => repackGp(archive("<a/>".repeat(1200000)), limit), /elements/);
  assert.match(
    readScore(archive(`<GPIF>${"<Note/>".repeat(1200000)}</GPIF>`), settings).problem,
    /^The score file is damaged .*\.$/,
  );
  assert.match(readScore(archive("<GPIF>").subarray(0, 40), settings).problem, /^The score file is damaged .*\.$/);
});
