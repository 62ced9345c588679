// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { Mixer } from "../src/playback/mixer.js";
import { Signal } from "./support/signal.mjs";
import { standIn } from "./support/stand-in.mjs";

/** A score of two tracks, the first of which plays on two channels; what the player is set to is kept by channel. */
function mixed() {
  const channels = new Map([
    [0, [4, 5]],
    [1, [9]],
  ]);
  const set = { Mute: new Map(), Solo: new Map(), Volume: new Map() };
  const player = { resets: 0, resetChannelStates: () => player.resets++ };
  for (const [name, values] of Object.entries(set)) {
    player[`setChannel${name}`] = (channel, value) => values.set(channel, value);
  }
  const api = { playerReady: new Signal(), player, score: { tracks: [{ index: 0 }, { index: 1 }] } };
  const solos = [];
  const mixer = new Mixer(standIn(api), (anySolo) => solos.push(anySolo));
  mixer.use(standIn({ channels }));
  return { mixer, api, set, solos };
}

test("a track's mute, solo and volume are set on all of its channels, and on no other", () => {
  const { mixer, set } = mixed();
  mixer.setMute(0, true);
  mixer.setVolume(0, 0.5);
  mixer.setSolo(1, true);
  assert.deepEqual(
    [...set.Mute],
    [
      [4, true],
      [5, true],
      [9, false],
    ],
  );
  assert.deepEqual(
    [...set.Volume],
    [
      [4, 0.5],
      [5, 0.5],
      [9, 1],
    ],
  );
  assert.deepEqual(
    [...set.Solo],
    [
      [4, false],
      [5, false],
      [9, true],
    ],
  );
});

test("volumes have no upper bound, are never negative, and only numbers count", () => {
  const { mixer, set } = mixed();
  mixer.setVolume(1, 3);
  assert.equal(set.Volume.get(9), 3);
  mixer.setVolume(1, -1);
  assert.equal(set.Volume.get(9), 0);
  mixer.setVolume(1, NaN);
  assert.equal(set.Volume.get(9), 0);
});

test("a track that the score does not have changes nothing", () => {
  const { mixer, set } = mixed();
  mixer.setMute(7, true);
  mixer.setMute(-1, true);
  assert.equal(set.Mute.size, 0);
});

test("whether any track is soloed is said with each change", () => {
  const { mixer, solos } = mixed();
  mixer.setSolo(0, true);
  mixer.setSolo(1, true);
  mixer.setSolo(0, false);
  mixer.setSolo(1, false);
  assert.deepEqual(solos, [true, true, true, false]);
});

test("a player that is ready gets all settings, after the volumes that alphaTab sets itself", async () => {
  const { mixer, api, set, solos } = mixed();
  mixer.setMute(0, true);
  mixer.setSolo(1, true);
  Object.values(set).forEach((values) => values.clear());
  api.playerReady.trigger();
  assert.equal(set.Mute.size, 0);
  set.Volume.set(9, 0.2); // alphaTab's own
  await Promise.resolve();
  assert.deepEqual(
    [...set.Mute],
    [
      [4, true],
      [5, true],
      [9, false],
    ],
  );
  assert.equal(set.Volume.get(9), 1);
  assert.equal(solos.at(-1), true);
});

test("another score begins with nothing muted, nothing soloed and its own volumes", async () => {
  const { mixer, api, set, solos } = mixed();
  mixer.setMute(0, true);
  mixer.setSolo(1, true);
  mixer.setVolume(1, 0.1);
  mixer.leaveScore();
  assert.equal(api.player.resets, 1);
  assert.equal(mixer.anySolo, false);
  assert.equal(solos.at(-1), false);
  api.playerReady.trigger();
  await Promise.resolve();
  assert.deepEqual([...set.Mute.values(), ...set.Solo.values()], Array(6).fill(false));
  assert.deepEqual([...set.Volume.values()], [1, 1, 1]);
});
