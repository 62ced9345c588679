// @ts-check
import assert from "node:assert/strict";
import { createRequire } from "node:module";
import { test } from "node:test";
import { Worker } from "node:worker_threads";
import { unzip, zip } from "../../tests/scores/zip.mjs";
import { makeGuitarPro, song } from "./support/gp-maker.mjs";
import { damagedBytes, damagedXml, randomFrom } from "./support/mutations.mjs";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;
const { readScore } = await import("../src/score-files/score-files.js");
const { exportGuitarPro } = await import("../src/score-files/guitar-pro/export.js");

/** How many damaged files of each kind are tried; more with QUAVERLY_DAMAGED. */
const count = Number(process.env.QUAVERLY_DAMAGED ?? 60);

/** How long one file may take at all, in milliseconds: a thousand times what it takes whole. */
const longest = 20000;

const memoryMb = 700;

/** A worker that is replaced when a file was too much for it. */
class Tester {
  #worker = null;
  /** @type {(report: any) => void} */
  #answer = () => {};

  async #start() {
    const worker = new Worker(new URL("./support/damage-worker.mjs", import.meta.url), {
      resourceLimits: { maxOldGenerationSizeMb: memoryMb },
    });
    worker.on("message", (report) => this.#answer(report));
    worker.on("error", (/** @type {NodeJS.ErrnoException} */ error) =>
      this.#answer({ fatal: error.code ?? error.message }),
    );
    this.#worker = worker;
    await new Promise((resolve) => (this.#answer = resolve));
  }

  async try(bytes) {
    if (!this.#worker) {
      await this.#start();
    }
    let timer;
    const report = await new Promise((resolve) => {
      this.#answer = resolve;
      timer = setTimeout(() => resolve({ fatal: "takes for ever" }), longest);
      this.#worker.postMessage({ bytes });
    });
    clearTimeout(timer);
    if (report.fatal) {
      await this.end();
    }
    return report;
  }

  async end() {
    await this.#worker?.terminate();
    this.#worker = null;
  }
}

/** @type {(3 | 4 | 5)[]} */
const versions = [3, 4, 5];
const settings = new alphaTab.Settings();
const made = (/** @type {3 | 4 | 5} */ version) => makeGuitarPro(version, song);
const gpif = unzip(exportGuitarPro(readScore(made(5), settings).score, settings))["Content/score.gpif"].toString(
  "utf8",
);
const asZip = (xml) => new Uint8Array(zip({ "Content/score.gpif": Buffer.from(xml) }));

/** @type {Record<string, (random: () => number) => Uint8Array>} */
const kinds = {
  "Guitar Pro 3": (random) => damagedBytes(made(3), random),
  "Guitar Pro 4": (random) => damagedBytes(made(4), random),
  "Guitar Pro 5": (random) => damagedBytes(made(5), random),
  "Guitar Pro 7": (random) => asZip(damagedXml(gpif, random)),
};

test("the files are read while they are whole", () => {
  for (const bytes of [made(3), made(4), made(5), asZip(gpif)]) {
    const { score } = readScore(bytes, settings);
    assert.equal(score.title, "Made for tests");
    assert.equal(score.masterBars.length, 5);
    assert.equal(
      score.tracks[0].staves[0].bars[1].voices[0].beats.filter(({ graceType }) => graceType === 0).length,
      5,
    );
  }
});

test("files without bars or tracks have no music in them", () => {
  for (const version of versions) {
    for (const part of [{ bars: [] }, { tracks: [] }]) {
      assert.match(
        readScore(makeGuitarPro(version, { ...song, ...part }), settings).problem,
        /^The score (has no music in it|file is damaged .*)\.$/,
      );
    }
  }
});

for (const [name, damage] of Object.entries(kinds)) {
  test(`${name}: damaged files are shown or refused, soon and in little room`, async () => {
    const tester = new Tester();
    const bad = [];
    const tally = {};
    for (let seed = 1; seed <= count; seed++) {
      const report = await tester.try(damage(randomFrom(seed)));
      const outcome =
        report.fatal ?? Object.entries(report.thrown ?? {})[0]?.join(": ") ?? (report.problem ? "refused" : "shown");
      tally[outcome] = (tally[outcome] ?? 0) + 1;
      const slow = ["read", "play", "draw", "write"].filter((step) => report[step] > longest / 4);
      if (report.fatal || slow.length > 0) {
        bad.push(`${seed}: ${report.fatal ?? slow.join()}`);
      }
    }
    await tester.end();
    if (process.env.QUAVERLY_DAMAGED) {
      console.log(name, tally);
    }
    assert.deepEqual(bad, []);
  });
}
