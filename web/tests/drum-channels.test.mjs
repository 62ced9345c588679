// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { chooseChannels } from "../src/playback/drum-channels.js";
import { standIn } from "./support/stand-in.mjs";

test("a single percussion track stays where it is", () => {
  assert.equal(
    chooseChannels(
      standIn([
        { track: 0, channel: 0 },
        { track: 1, channel: 9 },
        { track: 1, channel: 9 },
      ]),
    ).size,
    0,
  );
});

test("every further percussion track gets a channel that nobody plays on", () => {
  /** @type {import("../src/playback/drum-channels.js").ChannelEvent[]} */
  const events = standIn([
    { track: 4, channel: 9 },
    { track: 0, channel: 0 },
    { track: 5, channel: 26 },
    { track: 8, channel: 9 },
    { track: 9, channel: 9 },
    { track: 0 },
  ]);
  assert.deepEqual(
    [...chooseChannels(events)],
    [
      [8, 27],
      [9, 28],
    ],
  );
});

test("channels below the percussion channel are not given away", () => {
  assert.deepEqual(
    [
      ...chooseChannels(
        standIn([
          { track: 0, channel: 9 },
          { track: 1, channel: 9 },
        ]),
      ),
    ],
    [[1, 10]],
  );
});
