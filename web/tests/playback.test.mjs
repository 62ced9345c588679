// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { Signal } from "./support/signal.mjs";
import { alphaTab } from "./support/played-score.mjs";
import { standIn } from "./support/stand-in.mjs";

const { TempoMap } = await import("../src/timing/tempo-map.js");
const { Playback } = await import("../src/playback/playback.js");
const { EnabledSynthesizer, EnabledExternalMedia } = alphaTab.PlayerMode;
const { Playing, Paused } = alphaTab.synth.PlayerState;

/** The transport over a player that is told what happens: 40 quarter notes at 120, which last 20 s. */
function transport({
  ready = true,
  score = alphaTab.importer.ScoreLoader.loadAlphaTex("c4", new alphaTab.Settings()),
} = {}) {
  const calls = [];
  const messages = [];
  const notation = new EventTarget();
  const api = {
    preparationFailed: new Signal(),
    playerReady: new Signal(),
    playerStateChanged: new Signal(),
    playerPositionChanged: new Signal(),
    notation,
    score,
    isReadyForPlayback: ready,
    actualPlayerMode: EnabledSynthesizer,
    isLooping: false,
    player: { playbackRange: null },
    hasPrepared: true,
    synth: {
      isLoading: false,
      setCountIn: (count) => calls.push(["countIn", count]),
      setPassCountIn: (count) => calls.push(["passCountIn", count]),
    },
    backingTrackPlayer: { setLoop: (loop) => calls.push(["loop", loop]) },
    playPause: () => calls.push(["playPause"]),
    play: () => calls.push(["play"]),
    stop: () => calls.push(["stop"]),
    pause: () => calls.push(["pause"]),
    set tickPosition(tick) {
      calls.push(["tick", tick]);
    },
    set timePosition(ms) {
      calls.push(["time", ms]);
    },
    set playbackSpeed(speed) {
      calls.push(["speed", speed]);
    },
    set masterVolume(volume) {
      calls.push(["volume", volume]);
    },
  };
  const playback = new Playback(standIn(api), (message) => messages.push(message));
  const load = () => {
    playback.use(
      standIn({
        tempoMap: new TempoMap([], 40 * 960, 960),
        tickShift: 0,
        countIn: (tick) => ({ tick }),
        syncPoints: [],
      }),
    );
    notation.dispatchEvent(new Event("alphaTab.midiFileLoaded"));
  };
  if (score) {
    load();
  }
  const names = (name) => calls.filter(([call]) => call === name).map(([, value]) => value);
  const state = (value, stopped = false) => api.playerStateChanged.trigger({ state: value, stopped });
  const position = (tick, isSeek = false) =>
    api.playerPositionChanged.trigger({ currentTick: tick, currentTime: tick / 2, endTime: 20 * 960, isSeek });
  return { playback, api, calls, messages, names, load, state, position, last: () => messages.at(-1) };
}

test("without a score nothing is played, stopped or sought", () => {
  const { playback, calls } = transport({ score: null });
  playback.playPause();
  playback.stop();
  playback.seekToTime(500);
  assert.deepEqual(calls, []);
});

test("a start before the player is ready waits for it; a second one takes it back", async () => {
  const waiting = transport({ ready: false });
  waiting.playback.playPause();
  assert.deepEqual(waiting.names("playPause"), []);
  waiting.api.isReadyForPlayback = true;
  waiting.api.playerReady.trigger();
  await new Promise((resolve) => setTimeout(resolve));
  assert.equal(waiting.names("play").length, 1);
  const taken = transport({ ready: false });
  taken.playback.playPause();
  taken.playback.playPause();
  taken.api.isReadyForPlayback = true;
  taken.api.playerReady.trigger();
  await new Promise((resolve) => setTimeout(resolve));
  assert.equal(taken.names("play").length, 0);
});

test("the sound of the score before, which comes late, is not taken for that of the next one", () => {
  const { playback, api, names } = transport();
  const loaded = () => api.notation.dispatchEvent(new Event("alphaTab.midiFileLoaded"));
  const seek = (ms) => {
    playback.seekToTime(ms);
    return names("time").at(-1);
  };
  playback.leaveScore();
  api.hasPrepared = false;
  loaded();
  assert.equal(seek(1000), undefined);
  // It is on its way now, and the one before it still, too.
  api.hasPrepared = true;
  api.synth.isLoading = true;
  loaded();
  assert.equal(seek(2000), undefined);
  api.synth.isLoading = false;
  loaded();
  assert.deepEqual(names("tick"), [4 * 960]);
  assert.equal(seek(3000), 3000);
});

test("a backing track does not wait for the synthesizer that it replaced", () => {
  const { playback, api, names } = transport();
  playback.handOver();
  api.actualPlayerMode = EnabledExternalMedia;
  api.synth.isLoading = true;
  api.notation.dispatchEvent(new Event("alphaTab.midiFileLoaded"));
  playback.seekToTime(3000);
  assert.deepEqual(names("time"), [3000]);
});

test("that the player is ready is posted once", () => {
  const { api, messages } = transport();
  api.playerReady.trigger();
  api.playerReady.trigger();
  assert.equal(messages.filter(({ type }) => type === "playerReady").length, 1);
});

test("a score that cannot be prepared says why, at once and with each start", () => {
  const { playback, api, messages, names } = transport();
  api.preparationFailed.trigger(new Error("no end"));
  playback.playPause();
  const { message } = messages.at(-1);
  assert.match(message, /no end/);
  assert.equal(messages.filter(({ type }) => type === "error").length, 2);
  assert.deepEqual(names("playPause"), []);
  playback.leaveScore();
  playback.playPause();
  assert.equal(messages.filter(({ type }) => type === "error").length, 2);
});

test("seeks stay in the score and count in real time at the speed that is set", () => {
  const { playback, names } = transport();
  playback.setSpeed(2);
  for (const ms of [-5, 3000, 1e9, NaN]) {
    playback.seekToTime(ms);
  }
  assert.deepEqual(names("time"), [0, 1500, 10000]);
});

test("speed and volume have bounds, and only numbers count", () => {
  const { playback, names } = transport();
  [0.5, 0.01, 99, 0, -1, NaN].forEach((ratio) => playback.setSpeed(ratio));
  [0.5, -1, 2, NaN].forEach((volume) => playback.setMasterVolume(volume));
  assert.deepEqual(names("speed"), [0.5, 0.125, 8]);
  assert.deepEqual(names("volume"), [0.5, 0, 1]);
});

test("a state is posted when it changes", () => {
  const { state, messages } = transport();
  state(Playing);
  state(Playing);
  state(Paused, true);
  assert.deepEqual(
    messages.filter(({ type }) => type === "state").map(({ playing }) => playing),
    [true, false],
  );
});

test("a pause stays at the position", () => {
  const { playback, state, position, names } = transport();
  state(Playing);
  position(5000);
  state(Paused);
  assert.equal(names("tick").at(-1), 5000);
  position(100, true); // where alphaTab goes by itself
  assert.equal(playback.tick, 5000);
});

test("what the player still reports of the score before does not count", () => {
  const { playback, position, load, messages } = transport();
  playback.leaveScore();
  const before = messages.length;
  position(5000, true);
  assert.equal(messages.length, before);
  load();
  position(5000, true);
  assert.deepEqual([messages.at(-1).type, playback.tick], ["position", 5000]);
});

test("a seek before the score is loaded goes there when it is", () => {
  const { playback, calls, names, load, position } = transport();
  playback.leaveScore();
  const before = calls.length;
  playback.seekToTime(1e9);
  playback.seekToTime(3000);
  assert.equal(calls.length, before);
  load();
  assert.deepEqual(names("tick"), [5760]);
  position(0, true); // where a player begins by itself
  assert.equal(playback.tick, 5760);
  load();
  assert.equal(names("tick").length, 1);
  playback.leaveScore();
  playback.seekToTick(960);
  load();
  assert.equal(names("tick").at(-1), 960);
});

test("a seek for another score, or before a stop, is over", () => {
  const { playback, names, load } = transport();
  playback.leaveScore();
  playback.seekToTime(3000);
  playback.leaveScore();
  load();
  assert.deepEqual(names("tick"), []);
  playback.leaveScore();
  playback.seekToTime(3000);
  playback.stop();
  load();
  assert.deepEqual(names("tick"), [0]);
});

test("a seek while another player takes over counts more than where the last one was", () => {
  const { playback, state, position, names, load } = transport();
  state(Playing);
  position(5000);
  playback.handOver();
  playback.seekToTime(1000);
  playback.handOver();
  load();
  assert.equal(names("tick").at(-1), 1920);
});

test("a range is looped only while looping is on, and a stop goes to its beginning either way", () => {
  const { playback, api, names } = transport();
  const range = { startTick: 960, endTick: 3840 };
  playback.setRange(range);
  assert.equal(api.player.playbackRange, null);
  playback.stop();
  assert.equal(names("tick").at(-1), 960);
  playback.setLooping(true);
  assert.deepEqual({ ...api.player.playbackRange }.startTick, 960);
  assert.deepEqual(playback.loop, range);
  assert.deepEqual(names("loop").at(-1), { from: 500, to: 2000 });
  playback.leaveScore();
  assert.equal(api.player.playbackRange, null);
});

test("a count-in is prepared for starts and seeks of the synthesizer, and only where it is on", () => {
  const { playback, api, names } = transport();
  playback.seekToTick(960);
  assert.equal(names("countIn").at(-1), null);
  playback.setCountIn(true);
  playback.seekToTick(1920);
  assert.deepEqual(names("countIn").at(-1), { tick: 1920 });
  const count = names("countIn").length;
  api.actualPlayerMode = EnabledExternalMedia;
  playback.playPause();
  assert.equal(names("countIn").length, count);
});

test("the count-in before each pass is that of the loop's start, where both are on", () => {
  const { playback, names } = transport();
  playback.setCountIn(true);
  playback.setRange({ startTick: 960, endTick: 1920 });
  assert.deepEqual([...new Set(names("passCountIn"))], [null]);
  playback.setCountsInPasses(true);
  assert.deepEqual(names("passCountIn").at(-1), { tick: 960 });
  playback.setRange({ startTick: 480, endTick: 1920 });
  assert.deepEqual(names("passCountIn").at(-1), { tick: 480 });
  playback.setRange(null);
  assert.deepEqual(names("passCountIn").at(-1), { tick: 0 });
  playback.setCountIn(false);
  assert.equal(names("passCountIn").at(-1), null);
});

test("another player goes on where this one was, and playing if it did", async () => {
  const { playback, api, state, position, names, load } = transport();
  state(Playing);
  position(5000);
  playback.handOver();
  load();
  assert.equal(names("tick").at(-1), 5000);
  api.playerReady.trigger();
  await new Promise((resolve) => setTimeout(resolve));
  assert.equal(names("play").length, 1);
});

test("looping that is turned on right after a seek stays where that went", () => {
  const { playback, names, position } = transport();
  position(5000, true);
  playback.setRange({ startTick: 3840, endTick: 7680 });
  playback.seekToTick(3840);
  // Of the seek before.
  position(5000, true);
  playback.setLooping(true);
  assert.equal(names("tick").at(-1), 3840);
  position(3840, true);
  position(5000, true);
  playback.setLooping(true);
  assert.equal(names("tick").at(-1), 5000);
});

test("a start is counted in from where the music is by then", () => {
  const { playback, names, position } = transport();
  playback.setCountIn(true);
  position(1920, true);
  playback.playPause();
  assert.deepEqual(names("countIn").at(-1), { tick: 1920 });
  playback.setCountIn(false);
  playback.playPause();
  assert.equal(names("countIn").at(-1), null);
});

test("positions are posted in score time, whatever the length that alphaTab gives at its speed", () => {
  const { last, state, position } = transport();
  state(Playing);
  position(19200);
  assert.deepEqual(last(), { type: "position", currentTime: 10_000, endTime: 20_000 });
});
