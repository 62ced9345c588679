// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { separateChannels, withChannels } from "../src/alphatab/track-channels.js";

const track = (index, primaryChannel, secondaryChannel) => ({
  index,
  playbackInfo: { primaryChannel, secondaryChannel },
});

test("tracks on the same channels get channels of their own, and none becomes percussion", () => {
  const tracks = Array.from({ length: 20 }, (_, index) => track(index, 0, 1));
  const used = [...separateChannels(tracks).values()].flatMap(({ primary, secondary }) => [primary, secondary]);
  assert.equal(new Set(used).size, 40);
  assert.ok(!used.includes(9));
});

test("percussion stays where it is", () => {
  assert.deepEqual([...separateChannels([track(0, 9, 9), track(1, 3, 4)]).keys()], [1]);
});

test("the score keeps its own channels", () => {
  const tracks = [track(0, 5, 6), track(1, 5, 6)];
  let during = [];
  withChannels(
    tracks,
    separateChannels(tracks),
    () => (during = tracks.map(({ playbackInfo }) => playbackInfo.primaryChannel)),
  );
  assert.deepEqual(during, [0, 2]);
  assert.deepEqual(tracks, [track(0, 5, 6), track(1, 5, 6)]);
  assert.throws(() => withChannels(tracks, separateChannels(tracks), () => assert.fail("broken")));
  assert.deepEqual(tracks, [track(0, 5, 6), track(1, 5, 6)]);
});
