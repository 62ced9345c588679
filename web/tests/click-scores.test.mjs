// @ts-check
import assert from "node:assert/strict";
import { existsSync, readFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { clickKey } from "../src/clicks/click-bank.js";
import { audibleLevels } from "../src/clicks/click-pattern.js";
import { PlayedScore, alphaTab, scoreOf } from "./support/played-score.mjs";

/**
 * The clicks that the metronome wrote into a score's playback.
 *
 * @param {PlayedScore} played
 * @param {string} mode
 * @returns {{ tick: number, ms: number, first: boolean }[]} `first` for the first beat of a bar
 */
function clicksIn(played, mode) {
  const { midi, playback } = played;
  /** @type {(import("@coderline/alphatab").midi.MidiEvent & { channel?: number })[]} */
  const events = midi.tracks[0].events;
  const notes = events.filter(
    (event) =>
      event instanceof alphaTab.midi.NoteOnEvent &&
      event.noteKey === clickKey("woodblock", false) &&
      event.track === 0 &&
      event.noteVelocity === 112,
  );
  const top = Math.max(...events.map((event) => event.channel ?? 0));
  const firstChannel = top - 5;
  return notes
    .filter(({ channel }) => channel >= firstChannel && channel - firstChannel < audibleLevels(mode))
    .map(({ tick, channel }) => ({
      tick: tick - midi.tickShift,
      ms: playback.tempoMap.msAt(tick),
      first: channel === firstChannel,
    }));
}

const ticks = (clicks) => clicks.map(({ tick }) => tick);
const firsts = (clicks) => ticks(clicks.filter(({ first }) => first));

test("seven eighths and five quarters", () => {
  const played = new PlayedScore(
    scoreOf("\\tempo 120 \\ts 7 8 :8 r r r r r r r | \\ts 5 4 :4 r r r r r | \\ts 7 8 :8 r r r r r r r |"),
  );
  const beats = clicksIn(played, "beat");
  assert.deepEqual(firsts(beats), [0, 3360, 8160]);
  const eighths = Array.from({ length: 7 }, (_, beat) => beat * 480);
  assert.deepEqual(ticks(beats), [
    ...eighths,
    ...Array.from({ length: 5 }, (_, beat) => 3360 + beat * 960),
    ...eighths.map((tick) => 8160 + tick),
  ]);
  assert.equal(clicksIn(played, "quarter").length, 4 * (7 + 5 + 7));
});

test("an upbeat", () => {
  const played = new PlayedScore(scoreOf("\\tempo 120 \\ts 4 4 \\ac :4 r | r r r r | r r r r |"));
  const beats = clicksIn(played, "beat");
  assert.deepEqual(firsts(beats), [960, 4800]);
  assert.deepEqual(ticks(beats).slice(0, 3), [0, 960, 1920]);
});

test("a tempo that rises bar by bar and in the middle of one", () => {
  const played = new PlayedScore(
    scoreOf("\\tempo 60 r.4 r r r | \\tempo 80 r.4 r r r | \\tempo 120 r.4 r r{tempo 240} r |"),
  );
  const times = clicksIn(played, "beat").map(({ ms }) => Math.round(ms));
  assert.deepEqual(times, [0, 1000, 2000, 3000, 4000, 4750, 5500, 6250, 7000, 7500, 8000, 8250]);
});

test("repeats with endings of their own", () => {
  const played = new PlayedScore(
    scoreOf(
      "\\tempo 120 \\ro :4 r r r r | \\ae (1) \\ts 3 4 \\rc 2 r r r | \\ae (2) \\ts 5 4 r r r r r | \\ts 4 4 r r r r |",
    ),
  );
  const beats = clicksIn(played, "beat");
  // First time round, its ending of three; second time, its ending of five; then on.
  assert.deepEqual(firsts(beats), [0, 3840, 6720, 10560, 15360]);
  assert.deepEqual(
    ticks(beats),
    Array.from({ length: 4 + 3 + 4 + 5 + 4 }, (_, beat) => beat * 960),
  );
});

const whole = { "a score of four tracks": join(process.env.QUAVERLY_SCORES, "ferry.gp5") };
const canon = join(process.env.QUAVERLY_SAMPLES ?? "", "canon.gp5");
if (existsSync(canon)) {
  whole["a real score of nine tracks"] = canon;
}

for (const [title, file] of Object.entries(whole)) {
  test(title, () => {
    const score = alphaTab.importer.ScoreLoader.loadScoreFromBytes(
      new Uint8Array(readFileSync(file)),
      new alphaTab.Settings(),
    );
    const played = new PlayedScore(score);
    const bars = played.api.tickCache.masterBars;
    const beats = clicksIn(played, "beat");
    assert.deepEqual(
      firsts(beats),
      bars.map(({ start }) => start),
    );
    const wanted = bars.reduce(
      (sum, { start, end, masterBar }) => sum + ((end - start) * masterBar.timeSignatureDenominator) / 3840,
      0,
    );
    assert.equal(beats.length, wanted);
    for (const mode of ["bar", "half", "quarter"]) {
      const more = new Set(ticks(clicksIn(played, mode)));
      assert.ok(
        mode === "bar" ? firsts(beats).every((tick) => more.has(tick)) : ticks(beats).every((tick) => more.has(tick)),
      );
    }
    assert.ok(beats.every(({ ms }, index) => index === 0 || ms > beats[index - 1].ms));
    assert.ok(beats.at(-1).ms < played.playback.endTime);
  });
}
