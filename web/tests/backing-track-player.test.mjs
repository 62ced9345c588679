// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { contexts, settled, told, volumes } from "./support/audio-context.mjs";
import "./support/clock.mjs";

const { clickSamples } = await import("../src/clicks/click-sounds.js");
const { BackingTrackPlayer } = await import("../src/backing-track/backing-track-player.js");

/** @type {import("../src/backing-track/backing-track-player.js").Ticking} */
const ticking = { levels: 2, sound: "woodblock", accent: true, volume: 0.5 };

test("without a backing track nothing is opened; when one is about to play the audio thread hears how things are", async () => {
  const player = new BackingTrackPlayer();
  for (const volume of [0.25, 0.5]) {
    player.load(null);
    player.setTicking({ ...ticking, volume });
    player.setClicks([{ ms: 1000 * volume, level: 1 }]);
    player.setLoop({ from: 0, to: 1000 * volume });
    player.playbackRate = volume;
  }
  player.seekTo(300);
  await settled();
  assert.equal(contexts.made, 0);
  player.play();
  await settled();
  assert.equal(contexts.made, 1);
  const [first, ...others] = told.filter((message) => !("latency" in message));
  assert.deepEqual(others, []);
  const { clicks, ticking: sounds, ...rest } = first;
  assert.deepEqual(rest, {
    seek: { position: 300, generation: 1 },
    speed: 0.5,
    loop: { from: 0, to: 500 },
    playing: true,
  });
  assert.deepEqual([...clicks.times, ...clicks.levels], [500, 1]);
  assert.equal(sounds.levels, 2);
  const samples = (accent) => clickSamples("woodblock", accent, 48000).map((sample) => sample * 0.5);
  assert.deepEqual(sounds.sounds, [samples(true), samples(false), samples(false), samples(false)]);

  const before = told.length;
  player.setTicking({ ...ticking });
  assert.equal(told.length, before);
  player.setTicking({ ...ticking, levels: 1 });
  player.setTicking({ ...ticking, levels: 1, accent: false });
  assert.deepEqual(
    told.slice(before).map((message) => message.ticking.levels),
    [1, 1],
  );
  assert.deepEqual(told.at(-1).ticking.sounds, Array(4).fill(samples(false)));
});

test("a volume set while nothing plays holds from the first sample on, and one set while it plays does not click", () => {
  const player = new BackingTrackPlayer();
  volumes.length = 0;
  player.masterVolume = 0.5;
  player.play();
  player.masterVolume = 0.25;
  player.pause();
  player.masterVolume = 0;
  assert.deepEqual(volumes, [{ set: 0.5 }, { approached: 0.25 }, { set: 0 }]);
});
