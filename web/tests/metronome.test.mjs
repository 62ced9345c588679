// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import "./support/clock.mjs";
import { PlayedScore, scoreOf } from "./support/played-score.mjs";
import { standIn } from "./support/stand-in.mjs";

const { clickKey } = await import("../src/clicks/click-bank.js");
const { clickSamples } = await import("../src/clicks/click-sounds.js");
const bar = "c4.4 d4.4 e4.4 f4.4 |";

/** The metronome of a score, and what its channels are set to: bars, beats, halves, quarters, and two of the count-in. */
function metronome(configuration = {}) {
  const played = new PlayedScore(scoreOf(`${bar} ${bar}`));
  const set = { Mute: new Map(), Solo: new Map(), Volume: new Map(), TranspositionPitch: new Map() };
  played.api.player = Object.fromEntries(
    Object.entries(set).map(([name, values]) => [`setChannel${name}`, (channel, value) => values.set(channel, value)]),
  );
  played.metronome.configure({ volume: 0.5, sound: "beep", accent: true, mode: "half", ...configuration });
  const values = (name) => [...set[name].entries()].sort(([one], [other]) => one - other).map(([, value]) => value);
  return { played, metronome: played.metronome, values };
}

test("without the metronome only the count-in sounds", () => {
  const { metronome: own, values } = metronome();
  own.turn(false);
  assert.deepEqual(values("Mute"), [true, true, true, true, false, false]);
});

test("with it the levels of the mode sound, and no finer ones", () => {
  for (const [mode, muted] of Object.entries({ bar: [1, 2, 3], beat: [2, 3], half: [3], quarter: [] })) {
    const { metronome: own, values } = metronome({ mode });
    own.turn(true);
    assert.deepEqual(
      values("Mute").flatMap((mute, level) => (mute ? [level] : [])),
      muted,
      mode,
    );
  }
});

test("the accent is on the first beat of bars and of the count-in, where it is wanted", () => {
  for (const accent of [true, false]) {
    const { metronome: own, values } = metronome({ accent });
    own.turn(true);
    const [plain, accented] = [clickKey("beep", false), clickKey("beep", accent)].map(
      (key) => key - clickKey("woodblock", false),
    );
    assert.deepEqual(values("TranspositionPitch"), [accented, plain, plain, plain, accented, plain]);
  }
});

test("all of its channels have its volume, and a soloed track does not silence it", () => {
  const { metronome: own, values } = metronome();
  own.setBesideSolo(true);
  assert.deepEqual(values("Volume"), Array(6).fill(0.5));
  assert.deepEqual(values("Solo"), Array(6).fill(true));
  own.setBesideSolo(false);
  assert.deepEqual(values("Solo"), Array(6).fill(false));
});

test("the preview is one click, plain, of the sound and volume that are set", () => {
  const heard = [];
  globalThis.AudioContext = standIn(
    class {
      state = "running";
      destination = { channelCount: 2, maxChannelCount: 2 };
      async resume() {}
      async suspend() {}
      createBuffer() {
        return { copyToChannel: (samples) => heard.push({ samples }) };
      }
    },
  );
  globalThis.AudioBufferSourceNode = standIn(
    class {
      connect = (node) => node;
      start = () => heard.push("starts");
    },
  );
  globalThis.GainNode = standIn(
    class {
      constructor(_, { gain }) {
        heard.push({ gain });
      }
      connect() {}
    },
  );
  metronome().metronome.preview();
  assert.deepEqual(heard, [{ samples: clickSamples("beep", false) }, { gain: 0.5 }, "starts"]);
});

test("beside a backing track the clicks fall where its sync points put them", () => {
  const { played, metronome: own } = metronome();
  let clicks = [];
  played.api.playsBackingTrack = true;
  played.api.backingTrackPlayer.setClicks = (all) => (clicks = all);
  own.use(
    standIn({
      clicks: {
        firstChannel: 5,
        pattern: [
          { tick: 0, level: 0 },
          { tick: 960, level: 1 },
        ],
      },
      tempoMap: { msAt: (tick) => tick / 2 },
      // The backing track begins 100 ms late and is half as fast.
      syncPoints: [
        { synthTime: 0, syncTime: 100 },
        { synthTime: 1000, syncTime: 2100 },
      ],
    }),
  );
  assert.deepEqual(clicks, [
    { ms: 100, level: 0 },
    { ms: 1060, level: 1 },
  ]);
});

test("a backing track's player mixes the clicks in itself", () => {
  const { played, metronome: own } = metronome({ mode: "beat" });
  const ticking = [];
  played.api.playsBackingTrack = true;
  played.api.backingTrackPlayer.setTicking = (value) => ticking.push(value);
  own.turn(true);
  own.turn(false);
  assert.deepEqual(ticking, [
    { levels: 2, sound: "beep", accent: true, volume: 0.5 },
    { levels: 0, sound: "beep", accent: true, volume: 0.5 },
  ]);
});
