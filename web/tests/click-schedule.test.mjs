import assert from "node:assert/strict";
import { test } from "node:test";
import { ClickSchedule } from "../src/click-schedule.js";
import { RecordingClock, recordingTime } from "../src/recording-time.js";

const everyHalfSecond = Array.from({ length: 40 }, (_, i) => ({ ms: i * 500, level: i % 4 === 0 ? 0 : 1 }));

function scheduled() {
  const schedule = new ClickSchedule();
  schedule.setClicks(everyHalfSecond);
  return schedule;
}

test("every click is seen coming, long before and until it is past", () => {
  const times = (place) => scheduled().due(place, 1).map(({ click }) => click.ms);
  assert.deepEqual(times(0), [0, 500]);
  assert.deepEqual(times(1), [500]);
  assert.deepEqual(times(450), [500, 1000]);
  assert.deepEqual(times(500), [500, 1000]);
  assert.deepEqual(times(19900), []);
});

test("the time to a click is real time", () => {
  for (const rate of [0.25, 1, 2]) {
    const [next] = scheduled().due(400, rate);
    assert.equal(next.delay, 100 / rate);
  }
});

test("between sync points score and recording run evenly", () => {
  const points = [{ score: 0, recording: 350 }, { score: 2000, recording: 2350 }, { score: 4000, recording: 3350 }];
  assert.equal(recordingTime(points, 0), 350);
  assert.equal(recordingTime(points, 1000), 1350);
  assert.equal(recordingTime(points, 3000), 2850);
  assert.equal(recordingTime(points, 4000), 3350);
  assert.equal(recordingTime(points, 6000), 4350);
  assert.equal(recordingTime([], 1234), 1234);
});

test("a clock of many looks is steadier than a look", () => {
  const clock = new RecordingClock();
  // Looks are wrong by up to 12 milliseconds either way.
  const errors = Array.from({ length: 60 }, (_, look) => {
    const now = look * 50;
    return Math.abs(clock.look(now, 1000 + now * 0.5 + 12 * Math.sin(look * 2.4), 0.5) - (1000 + now * 0.5));
  });
  assert.ok(Math.max(...errors.slice(24)) < 3, String(Math.max(...errors.slice(24))));
});

test("a clock follows a jump and a change of speed at once", () => {
  const clock = new RecordingClock();
  for (let now = 0; now < 1000; now += 50) {
    clock.look(now, now, 1);
  }
  assert.equal(clock.look(1000, 5000, 1), 5000);
  assert.equal(clock.look(1050, 5050, 2), 5050);
});
