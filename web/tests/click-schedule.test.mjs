import assert from "node:assert/strict";
import { test } from "node:test";
import { ClickSchedule } from "../src/click-schedule.js";

const everyHalfSecond = Array.from({ length: 40 }, (_, i) => ({ ms: i * 500, level: i % 4 === 0 ? 0 : 1 }));

/** Plays from `start` to `end` with reports every `step` real milliseconds; gives each click's score time and real error. */
function playThrough(schedule, start, end, rate, step = 50) {
  const heard = [];
  for (let place = start; place < end; place += step * rate) {
    for (const { click, delay } of schedule.due(place, rate)) {
      heard.push({ ms: click.ms, error: place + delay * rate - click.ms });
    }
  }
  return heard;
}

function scheduled() {
  const schedule = new ClickSchedule();
  schedule.setClicks(everyHalfSecond);
  return schedule;
}

test("every click is handed out once and on time, at any rate", () => {
  for (const rate of [0.5, 1, 1.7]) {
    const heard = playThrough(scheduled(), 0, 5000, rate);
    assert.deepEqual(heard.map(({ ms }) => ms).slice(0, 10), everyHalfSecond.map(({ ms }) => ms).slice(0, 10));
    assert.ok(heard.every(({ error }) => Math.abs(error) < 1e-6));
  }
});

test("irregular reports neither repeat nor lose a click", () => {
  const schedule = scheduled();
  const heard = [0, 10, 95, 90, 230, 380, 379, 500, 640, 800].flatMap((place) => schedule.due(place, 1)).map(({ click }) => click.ms);
  assert.deepEqual(heard, [0, 500]);
});

test("after a jump back the clicks come again", () => {
  const schedule = scheduled();
  playThrough(schedule, 4000, 6000, 1);
  assert.deepEqual(playThrough(schedule, 900, 1400, 1).map(({ ms }) => ms).slice(0, 1), [1000]);
});

test("after a reset the clicks at the place itself come again", () => {
  const schedule = scheduled();
  assert.equal(schedule.due(490, 1).length, 1);
  assert.equal(schedule.due(490, 1).length, 0);
  schedule.reset();
  assert.equal(schedule.due(490, 1).length, 1);
});
