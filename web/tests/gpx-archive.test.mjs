// @ts-check
import assert from "node:assert/strict";
import { existsSync, readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join } from "node:path";
import { test } from "node:test";
import { BitWriter, makeContainer, pack } from "./support/gpx-maker.mjs";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;
const { repackGpx } = await import("../src/score-files/gpx-archive.js");
const { readScore } = await import("../src/score-files/score-files.js");

const containers = { "a file of ours": join(process.env.QUAVERLY_SCORES, "ferry.gpx") };
const sample = join(process.env.QUAVERLY_SAMPLES ?? "", "serenade.gpx");
if (existsSync(sample)) {
  containers["a real file"] = sample;
}
const limit = 1 << 24;
const sectorLength = 4096;

/** Content of which no two sectors are the same, and without anything of XML. */
const bytes = (length, seed = 1) => Uint8Array.from({ length }, (_, i) => 0x80 | ((i * seed) ^ (i >> 8)));

/** What a zip holds, by alphaTab's way of reading one: from the front. */
function filesIn(zip) {
  const buffer = Buffer.from(zip);
  const files = {};
  let at = 0;
  for (; buffer.readUInt32LE(at) === 0x04034b50;) {
    const [length, nameLength] = [buffer.readUInt32LE(at + 22), buffer.readUInt16LE(at + 26)];
    const from = at + 30 + nameLength;
    files[buffer.toString("utf8", at + 30, from)] = new Uint8Array(buffer.subarray(from, from + length));
    at = from + length;
  }
  assert.equal(buffer.readUInt32LE(at), 0x06054b50);
  return files;
}

const file = {
  "score.gpif": bytes(3 * sectorLength + 17),
  BinaryStylesheet: bytes(40),
  PartConfiguration: bytes(sectorLength, 3),
};

test("the score and what belongs to it are taken out of the container, compressed or not", () => {
  const container = makeContainer({ "misc.xml": bytes(9000, 5), ...file, "score.gpif.bak": bytes(100) });
  assert.deepEqual(filesIn(repackGpx(container, limit)), file);
  assert.deepEqual(filesIn(repackGpx(pack(container), limit)), file);
});

test("files whose sectors lie apart are put together", () => {
  const backwards = makeContainer(file, (count) => Array.from({ length: count }, (_, index) => count - 1 - index));
  assert.deepEqual(filesIn(repackGpx(backwards, limit)), file);
});

test("a score of more sectors than its head has room for is read to its end", () => {
  const long = { "score.gpif": bytes(1200 * sectorLength), PartConfiguration: bytes(40) };
  assert.deepEqual(filesIn(repackGpx(makeContainer(long), limit)), long);
});

test("of two files of one name the later one counts, and content is not taken for a head", () => {
  const old = makeContainer({ "score.gpif": bytes(500, 9) }).subarray(4 + sectorLength, 4 + 2 * sectorLength);
  const inside = { "misc.bin": Uint8Array.from([...bytes(sectorLength), ...old]), ...file };
  assert.deepEqual(filesIn(repackGpx(makeContainer(inside), limit)), file);
  const first = makeContainer({ "misc.bin": bytes(10), ...file });
  // Its first file gets the score's name.
  first.set(new TextEncoder().encode("score.gpif"), 4 + sectorLength + 4);
  assert.deepEqual(filesIn(repackGpx(first, limit)), file);
});

test("a file without a score, or that is no container, is damaged", () => {
  assert.equal(repackGpx(makeContainer({ PartConfiguration: bytes(10) }), limit), null);
  assert.equal(repackGpx(makeContainer({}), limit), null);
  assert.equal(repackGpx(new TextEncoder().encode("BCFS"), limit), null);
  assert.equal(repackGpx(new TextEncoder().encode("BCFZ"), limit), null);
  assert.equal(repackGpx(pack(bytes(20000)), limit), null);
});

test("a file that breaks off is read as long as nothing is missing of what is needed", () => {
  const container = makeContainer(file);
  const padding = sectorLength - file.PartConfiguration.length;
  assert.deepEqual(filesIn(repackGpx(container.subarray(0, container.length - padding), limit)), file);
  const { PartConfiguration: _part, ...others } = file;
  assert.deepEqual(filesIn(repackGpx(container.subarray(0, container.length - padding - 1), limit)), others);
  for (const length of [5 * sectorLength, 2 * sectorLength, 100, 5]) {
    assert.equal(repackGpx(container.subarray(0, length), limit), null, String(length));
    assert.equal(repackGpx(pack(container.subarray(0, length)), limit), null, String(length));
  }
});

test("heads that lie about length and place are damage, and come to an end", () => {
  const change = (offset, value) => {
    const container = makeContainer(file);
    new DataView(container.buffer).setUint32(4 + sectorLength + offset, value, true);
    return repackGpx(container, limit);
  };
  for (const length of [0xffffffff, 0x7fffffff, 1 << 24, 5 * sectorLength]) {
    assert.equal(change(140, length), null);
  }
  for (const sector of [0xffffffff, 0x80000000, 1 << 20, 5000]) {
    assert.equal(change(148, sector), null);
  }
  // A file that is its own content: once around is enough.
  assert.notEqual(change(148, 1), null);
});

test("a container of nothing but heads is gone through in one pass", () => {
  const count = 4000;
  const container = new Uint8Array(4 + count * sectorLength);
  const view = new DataView(container.buffer);
  container.set(new TextEncoder().encode("BCFS"));
  for (let sector = 1; sector < count; sector++) {
    const at = 4 + sector * sectorLength;
    view.setUint32(at, 2, true);
    view.setUint32(at + 140, container.length - 4, true);
    container.set(new TextEncoder().encode("score.gpif"), at + 4);
    for (let place = at + 148; place < at + sectorLength; place += 4) {
      view.setUint32(place, 1, true);
    }
  }
  const began = performance.now();
  repackGpx(container, limit);
  assert.ok(performance.now() - began < 2000);
});

test("more elements than a score ever has are not read at all", () => {
  const score = (content) => makeContainer({ "score.gpif": new TextEncoder().encode(content) });
  assert.notEqual(repackGpx(score("<a/>".repeat(500000)), limit), null);
  assert.equal(repackGpx(score("<a/>".repeat(3000000)), limit), null);
  assert.match(readScore(score("<GPIF>".repeat(200000)), new alphaTab.Settings()).problem, /damaged/);
});

test("a damaged file gets a sentence", () => {
  const settings = new alphaTab.Settings();
  const lies = new BitWriter().literals(0x42, 0x43, 0x46).literals(0x53).file(0x7fffffff);
  const noXml = makeContainer(file);
  for (const damaged of [lies, noXml, pack(noXml), noXml.subarray(0, 9000)]) {
    const { problem } = readScore(damaged, settings);
    assert.match(problem, /^[A-Z].{15,}\.$/);
  }
});

for (const [title, file] of Object.entries(containers)) {
  const packed = new Uint8Array(readFileSync(file));

  test(`${title} gives the score that alphaTab itself reads from it`, () => {
    const settings = new alphaTab.Settings();
    const json = (score) => alphaTab.model.JsonConverter.scoreToJson(score);
    const own = json(alphaTab.importer.ScoreLoader.loadScoreFromBytes(packed, settings));
    assert.ok(own.length > 100000);
    assert.equal(json(alphaTab.importer.ScoreLoader.loadScoreFromBytes(repackGpx(packed, limit), settings)), own);
  });

  test(`wherever ${title} breaks off, the answer is a score or a sentence`, () => {
    const settings = new alphaTab.Settings();
    const bars = readScore(packed, settings).score.masterBars.length;
    for (let length = 4; length < packed.length; length += 2777) {
      const { score, problem } = readScore(packed.subarray(0, length), settings);
      if (score) {
        // What is missing lies behind the score.
        assert.equal(score.masterBars.length, bars);
      } else {
        assert.match(problem, /damaged or cut short/);
      }
    }
  });

  test(`${title} is read without what is damaged beside its score`, () => {
    const settings = new alphaTab.Settings();
    const parts = filesIn(repackGpx(packed, limit));
    const whole = readScore(packed, settings).score;
    for (const name of Object.keys(parts).filter((part) => part !== "score.gpif")) {
      for (const content of [
        new Uint8Array(40).fill(255),
        new Uint8Array(0),
        parts[name].subarray(0, 9),
        new Uint8Array([0, 0, 0, 200, 5, 1, 2]),
      ]) {
        const { score } = readScore(makeContainer({ ...parts, [name]: content }), settings);
        assert.equal(score?.masterBars.length, whole.masterBars.length, `${name} of ${content.length} bytes`);
        assert.deepEqual(
          score.tracks.map((track) => track.name),
          whole.tracks.map((track) => track.name),
        );
      }
    }
  });
}
