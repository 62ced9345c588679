// @ts-check
import assert from "node:assert/strict";
import { readFileSync, readdirSync } from "node:fs";
import { test } from "node:test";
import { Signal } from "./support/signal.mjs";
import { keyTable } from "../src/score-view/keys.js";
import { Movement } from "../src/score-view/movement.js";
import { standIn } from "./support/stand-in.mjs";

/** A bar of four quarter notes of track 0, which begins a section or not. */
function bar(index, section = null) {
  const beat = (start) => ({ start, nextBeat: null, getVisibleBeatAtStart: (tracks) => (tracks.has(0) ? {} : null) });
  const beats = [0, 960, 1920, 2880].map(beat);
  beats.forEach((one, at) => (one.nextBeat = beats[at + 1] ?? null));
  return { start: index * 3840, firstBeat: beats[0], masterBar: { index, section } };
}

/** Six bars, with sections at the third and the fifth. */
function page({ tick = 0, playing = false, range = null } = {}) {
  const api = {
    score: {},
    tracks: [{ index: 0 }],
    tickCache: {
      masterBars: [
        bar(0),
        bar(1),
        bar(2, { marker: "", text: "A" }),
        bar(3),
        bar(4, { marker: "", text: "B" }),
        bar(5),
      ],
    },
    playerPositionChanged: new Signal(),
    scoreLoaded: new Signal(),
  };
  const seeks = [];
  const playback = { tick, playing, range, ticksIn: () => 400, seekToTick: (to) => seeks.push(to) };
  const movement = new Movement(standIn(api), standIn(playback));
  const keys = keyTable(standIn({ movement }));
  const report = (currentTick) => {
    playback.tick = currentTick;
    api.playerPositionChanged.trigger({ isSeek: true, currentTick });
  };
  return { api, playback, seeks, report, press: (...pressed) => pressed.forEach((key) => keys[key]()) };
}

test("the range's keys are those of its ends, and the page keys turn", () => {
  const calls = [];
  const record = (name) => ({
    get:
      (_, method) =>
      (...values) =>
        calls.push([`${name}.${method}`, ...values]),
  });
  const parts = { ranges: new Proxy({}, record("ranges")), paging: new Proxy({}, record("paging")) };
  const keys = keyTable(standIn(parts));
  const pressed = [
    "[",
    "]",
    "Shift+Left",
    "Shift+Right",
    "Ctrl+Shift+Left",
    "Ctrl+Shift+Right",
    "Esc",
    "PgUp",
    "PgDown",
  ];
  pressed.forEach((key) => keys[key]());
  assert.deepEqual(calls, [
    ["ranges.setRangeStart"],
    ["ranges.setRangeEnd"],
    ["ranges.moveRangeEnd", "beat", -1],
    ["ranges.moveRangeEnd", "beat", 1],
    ["ranges.moveRangeEnd", "bar", -1],
    ["ranges.moveRangeEnd", "bar", 1],
    ["ranges.letGo"],
    ["paging.turn", -1],
    ["paging.turn", 1],
  ]);
});

test("the menus hand the page exactly the keys that it answers for", () => {
  const folder = new URL("../../app/menus/", import.meta.url);
  const sources = readdirSync(folder)
    .filter((name) => name.endsWith(".cpp"))
    .map((name) => readFileSync(new URL(name, folder), "utf8"));
  const sent = sources.flatMap((source) =>
    Array.from(source.matchAll(/pageKey\(\s*tr\("[^"]*"\),\s*u"(\S+?)[ "]/g), ([, key]) => key),
  );
  assert.deepEqual(sent.sort(), Object.keys(keyTable(standIn({}))).sort());
});

test("beats, bars and sections lead on and back", () => {
  /** @type {[string, number, number][]} */
  const cases = [
    ["Right", 3840, 4800],
    ["Left", 3840, 2880],
    ["Ctrl+Right", 4000, 7680],
    ["Ctrl+Left", 4000, 3840],
    ["Alt+Right", 0, 7680],
    ["Alt+Right", 7680, 15360],
    ["Alt+Left", 15360, 7680],
    ["Alt+Left", 7680, 0],
  ];
  for (const [key, tick, target] of cases) {
    const { press, seeks } = page({ tick });
    press(key);
    assert.deepEqual(seeks, [target], `${key} at ${tick}`);
  }
});

test("nothing lies before the first and behind the last", () => {
  const first = page();
  first.press("Left", "Ctrl+Left", "Alt+Left");
  assert.deepEqual(first.seeks, []);
  const last = page({ tick: 5 * 3840 + 2880 });
  last.press("Right", "Ctrl+Right", "Alt+Right");
  assert.deepEqual(last.seeks, []);
});

test("Home leads to the beginning of the range, or else of the score", () => {
  const all = page({ tick: 9000 });
  all.press("Home");
  assert.deepEqual(all.seeks, [0]);
  const some = page({ tick: 9000, range: { startTick: 3840, endTick: 7000 } });
  some.press("Home");
  assert.deepEqual(some.seeks, [3840]);
});

test("a key that is held down goes on although no position is reported yet", () => {
  const { press, seeks, report } = page();
  press("Right", "Right", "Right");
  assert.deepEqual(seeks, [960, 1920, 2880]);
  report(960);
  press("Right");
  assert.equal(seeks.at(-1), 3840, "a report on its way is of a step before");
  report(3842);
  press("Left");
  assert.equal(seeks.at(-1), 2880);
});

test("while music plays, Left shortly behind a beat leads to the one before", () => {
  const { press, seeks } = page({ tick: 3840 + 300, playing: true });
  press("Left");
  assert.deepEqual(seeks, [2880]);
});

test("without a score the keys do nothing", () => {
  const { api, press, seeks } = page({ tick: 3840 });
  api.score = null;
  api.tickCache = null;
  press("Home", "Left", "Right", "Ctrl+Right", "Alt+Left");
  assert.deepEqual(seeks, []);
});
