import assert from "node:assert/strict";
import { test } from "node:test";
import { recordingTime } from "../src/timing/recording-time.js";

test("between sync points score and backing track run evenly", () => {
  const points = [{ score: 0, backingTrack: 350 }, { score: 2000, backingTrack: 2350 }, { score: 4000, backingTrack: 3350 }];
  assert.equal(recordingTime(points, 0), 350);
  assert.equal(recordingTime(points, 1000), 1350);
  assert.equal(recordingTime(points, 3000), 2850);
  assert.equal(recordingTime(points, 4000), 3350);
  assert.equal(recordingTime(points, 6000), 4350);
  assert.equal(recordingTime([], 1234), 1234);
});
