// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { backingTrackMs } from "../src/timing/sync-point-map.js";

test("between sync points score and backing track run evenly", () => {
  const points = [
    { scoreMs: 0, backingTrackMs: 350 },
    { scoreMs: 2000, backingTrackMs: 2350 },
    { scoreMs: 4000, backingTrackMs: 3350 },
  ];
  assert.equal(backingTrackMs(points, 0), 350);
  assert.equal(backingTrackMs(points, 1000), 1350);
  assert.equal(backingTrackMs(points, 3000), 2850);
  assert.equal(backingTrackMs(points, 4000), 3350);
  assert.equal(backingTrackMs(points, 6000), 4350);
  assert.equal(backingTrackMs([], 1234), 1234);
});
