// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { PositionFeed } from "../src/playback/position-feed.js";

function feedOnClock() {
  const delivered = [];
  const clock = { ms: 0 };
  const feed = new PositionFeed(
    (position) => delivered.push({ at: clock.ms, ...position }),
    () => clock.ms,
  );
  return { feed, clock, delivered };
}

test("of 350 positions a second at most 15 are delivered in any second", () => {
  const { feed, clock, delivered } = feedOnClock();
  for (let i = 0; i < 3500; i++) {
    clock.ms = (i * 1000) / 350;
    feed.flow({ currentTime: clock.ms, endTime: 60000 });
  }
  for (const { at } of delivered) {
    const within = delivered.filter((other) => other.at >= at && other.at < at + 1000);
    assert.ok(within.length <= 15, `${within.length} from ${at} on`);
  }
  assert.ok(delivered.length > 130, `only ${delivered.length} in ten seconds`);
});

test("the first position comes at once", () => {
  const { feed, delivered } = feedOnClock();
  feed.flow({ currentTime: 5, endTime: 10 });
  assert.equal(delivered.length, 1);
});

test("a jump is never held back, and the flow waits after it", () => {
  const { feed, clock, delivered } = feedOnClock();
  feed.flow({ currentTime: 1, endTime: 10 });
  clock.ms = 1;
  feed.jump({ currentTime: 9, endTime: 10 });
  clock.ms = 2;
  feed.flow({ currentTime: 9.1, endTime: 10 });
  assert.deepEqual(
    delivered.map((position) => position.currentTime),
    [1, 9],
  );
});
