// @ts-check
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { mkdtempSync, readFileSync, readdirSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, test } from "node:test";
import { fileURLToPath } from "node:url";
import { readSoundFile } from "../src/soundfont/sound-file.js";
import { makeBank } from "./support/bank-maker.mjs";

const generator = {
  loopStart: 2,
  filter: 8,
  pan: 17,
  release: 38,
  instrument: 41,
  keys: 43,
  velocities: 44,
  loopEndCoarse: 50,
  attenuation: 48,
  tune: 52,
  sample: 53,
  modes: 54,
  root: 58,
};
const range = (low, high) => low | (high << 8);

/** Of odd length, after which the bank has no byte to make it even. */
const streams = [11, 12, 13].map((frames) =>
  Buffer.concat([
    Buffer.from("OggS....first page....OggS.."),
    Buffer.from(BigInt64Array.of(BigInt(frames)).buffer),
    Buffer.from("."),
  ]),
);
const vorbisMono = 0x11;
const sample = (index, more) => ({
  bytes: streams[index],
  loop: [100, 200],
  rate: 32000,
  root: 64,
  correction: -7,
  type: vorbisMono,
  ...more,
});

/** @type {Parameters<typeof makeBank>[0]["presets"][0]} */
const guitar = { name: "Guitar", bank: 0, program: 25, zones: [[[generator.instrument, 0]]] };
/** @type {Parameters<typeof makeBank>[0]} */
const bank = {
  presets: [
    { name: "Drums", bank: 128, program: 0, zones: [[[generator.instrument, 1]]] },
    {
      ...guitar,
      zones: [
        [[generator.release, 1200]],
        [
          [generator.keys, range(50, 90)],
          [generator.attenuation, 100],
          [generator.tune, 5],
          [generator.instrument, 0],
        ],
      ],
    },
    { name: "Variation", bank: 8, program: 25, zones: [[[generator.instrument, 0]]] },
  ],
  instruments: [
    [
      [
        [generator.pan, -500],
        [generator.release, -2400],
        [generator.attenuation, 20],
      ],
      [
        [generator.keys, range(0, 60)],
        [generator.modes, 1],
        [generator.loopStart, -10],
        [generator.loopEndCoarse, 1],
        [generator.sample, 2],
      ],
      [
        [generator.keys, range(61, 127)],
        [generator.velocities, range(64, 127)],
        [generator.root, 70],
        [generator.pan, 500],
        [generator.sample, 0],
      ],
      [
        [generator.keys, range(91, 127)],
        [generator.sample, 1],
      ],
    ],
    [
      [
        [generator.keys, range(38, 38)],
        [generator.filter, 9000],
        [generator.sample, 1],
      ],
    ],
  ],
  samples: [sample(0, { loop: [1, 9] }), sample(1, { root: 255 }), sample(2)],
};

const folder = mkdtempSync(join(tmpdir(), "split-bank-"));
after(() => rmSync(folder, { recursive: true }));

function split(bytes, levels = {}) {
  const [source, table, target] = ["bank.sf3", "levels.json", "sounds"].map((name) => join(folder, name));
  writeFileSync(source, bytes);
  writeFileSync(table, JSON.stringify(levels));
  const tool = fileURLToPath(new URL("../tools/split-bank.mjs", import.meta.url));
  const { status, stderr } = spawnSync(process.execPath, [tool, source, table, target], { encoding: "utf8" });
  return { status, stderr, target };
}

function soundOf(target, name) {
  return readSoundFile(new Uint8Array(readFileSync(join(target, name))));
}

test("each sound has a file, variations have none", () => {
  const { status, target } = split(makeBank(bank));
  assert.equal(status, 0);
  assert.deepEqual(JSON.parse(readFileSync(join(target, "index.json"), "utf8")), ["0-25", "128-0"]);
  assert.deepEqual(readdirSync(target).sort(), ["0-25", "128-0", "LICENSE.txt", "index.json"]);
  assert.equal(readFileSync(join(target, "LICENSE.txt"), "utf8"), "Hand-made\n\nNobody\n\nFree.\n");
});

test("what was there before is gone", () => {
  split(makeBank(bank));
  const { target } = split(makeBank({ ...bank, presets: [guitar] }));
  assert.deepEqual(readdirSync(target).sort(), ["0-25", "LICENSE.txt", "index.json"]);
});

test("zones are the common part of the preset's and the instrument's", () => {
  const { description } = soundOf(split(makeBank(bank)).target, "0-25");
  assert.deepEqual(
    description.zones.map(({ keys, velocities }) => [keys, velocities]),
    [
      [
        [50, 60],
        [0, 127],
      ],
      [
        [61, 90],
        [64, 127],
      ],
    ],
  );
  assert.deepEqual([description.name, description.bank, description.program], ["Guitar", 0, 25]);
});

test("a preset adds to what its instrument says", () => {
  const [low, high] = soundOf(split(makeBank(bank)).target, "0-25").description.zones.map(
    ({ generators }) => new Map(generators),
  );
  assert.deepEqual([low.get(generator.release), high.get(generator.release)], [-2400 + 1200, -2400 + 1200]);
  assert.deepEqual([low.get(generator.tune), low.get(generator.pan), high.get(generator.pan)], [5, -500, 500]);
  assert.deepEqual([low.get(generator.modes), low.has(generator.root), high.get(generator.root)], [1, false, 70]);
});

test("attenuation is what is heard of it, and the sound's level is added", () => {
  const attenuationIn = (target) =>
    new Map(soundOf(target, "0-25").description.zones[0].generators).get(generator.attenuation);
  assert.equal(attenuationIn(split(makeBank(bank)).target), (100 + 20) * 0.4);
  assert.equal(attenuationIn(split(makeBank(bank), { "0-25": 6.5 }).target), (100 + 20) * 0.4 - 65);
});

test("a filter that is open does no work", () => {
  const { target } = split(makeBank(bank));
  const filterOf = (name) => new Map(soundOf(target, name).description.zones[0].generators).get(generator.filter);
  assert.ok(filterOf("0-25") > 13500);
  assert.equal(filterOf("128-0"), 9000);
});

test("loops are moved as their zone says", () => {
  const { zones } = soundOf(split(makeBank(bank)).target, "0-25").description;
  assert.deepEqual(
    zones.map(({ loop }) => loop),
    [
      [90, 200 + 32768],
      [1, 9],
    ],
  );
});

test("samples come with their rate, root and correction, and each only once", () => {
  const { target } = split(makeBank(bank));
  const { description, streamOf } = soundOf(target, "0-25");
  assert.deepEqual(
    description.samples.map(({ rate, root, correction }) => [rate, root, correction]),
    [
      [32000, 64, -7],
      [32000, 64, -7],
    ],
  );
  assert.deepEqual(
    description.zones.map((zone) => Buffer.from(streamOf(zone.sample))),
    [streams[2], streams[0]],
  );
  assert.deepEqual(
    description.zones.map((zone) => description.samples[zone.sample].frames),
    [13, 11],
  );
  assert.equal(soundOf(target, "128-0").description.samples[0].root, 60);
});

test("samples that are not compressed, and files that are no bank, are refused", () => {
  const plain = split(makeBank({ ...bank, samples: bank.samples.map((one) => ({ ...one, type: 1 })) }));
  assert.equal(plain.status, 1);
  assert.match(plain.stderr, /not compressed/);
  for (const broken of [Buffer.from("RIFF"), Buffer.alloc(0), makeBank(bank).subarray(0, 120)]) {
    const { status, stderr } = split(broken);
    assert.equal(status, 1);
    assert.match(stderr, /not a sound bank/);
  }
});
