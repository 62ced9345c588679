// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { RangeSelection } from "../src/score-view/range-selection.js";
import { Signal } from "./support/signal.mjs";
import { standIn } from "./support/stand-in.mjs";

const barTicks = 3840;

/** Four bars of four quarter notes, played as they are written until `played` says otherwise. */
function score({ tick = 0, beat = null } = {}) {
  const masterBars = Array.from({ length: 4 }, () => ({
    calculateDuration: () => barTicks,
    timeSignatureDenominator: 4,
  }));
  const api = {
    scorePrepared: new Signal(),
    score: { masterBars },
    tracks: [{ index: 0 }],
    tickCache: { masterBars: [], findBeat: () => (beat ? { beat } : null) },
  };
  const asked = { shown: [], ranges: [], seeks: [], changes: [] };
  const playback = {
    tick,
    setRange: (range) => asked.ranges.push(range),
    seekToTick: (to) => asked.seeks.push(to),
  };
  const selection = new RangeSelection(
    standIn(api),
    standIn(playback),
    standIn({ show: (range) => asked.shown.push(range) }),
  );
  selection.changed.on((range) => asked.changes.push(range));
  const play = (order) => {
    api.tickCache.masterBars = order.map((index, at) => ({
      start: at * barTicks,
      end: (at + 1) * barTicks,
      masterBar: { index },
    }));
    api.scorePrepared.trigger();
  };
  return { selection, playback, asked, play };
}

const secondBar = { start: { bar: 1, tick: 0 }, end: { bar: 1, tick: barTicks } };

test("a range that is chosen is shown, played and told of; one that is let go is none of these", () => {
  const { selection, asked } = score();
  selection.choose(secondBar);
  assert.deepEqual(selection.range, secondBar);
  assert.deepEqual(asked.shown, [secondBar]);
  assert.deepEqual(asked.ranges, [{ startTick: barTicks, endTick: 2 * barTicks }]);
  assert.deepEqual(asked.changes, [secondBar]);
  selection.letGo();
  selection.letGo();
  assert.equal(selection.range, null);
  assert.deepEqual(asked.shown.slice(1), [null]);
  assert.deepEqual(asked.ranges.slice(1), [null]);
  assert.deepEqual(asked.changes.slice(1), [null]);
});

test("a preview is seen only", () => {
  const { selection, asked } = score();
  selection.preview(secondBar);
  assert.deepEqual(asked.shown, [secondBar]);
  assert.deepEqual([selection.range, asked.ranges, asked.changes], [null, [], []]);
});

test("when it is known how the bars are played, the range is played there", () => {
  const { selection, asked, play } = score();
  play([0, 1, 2, 3]);
  assert.deepEqual(asked.ranges, []);
  selection.choose(secondBar);
  play([0, 0, 1, 2, 3]);
  assert.deepEqual(asked.ranges.at(-1), { startTick: 2 * barTicks, endTick: 3 * barTicks });
});

test("a bar is chosen from its first tick to its last, and begun with", () => {
  const { selection, asked, play } = score();
  play([0, 1, 2, 3]);
  selection.chooseBar(2);
  assert.deepEqual(selection.ticks, { startTick: 2 * barTicks, endTick: 3 * barTicks });
  assert.deepEqual(asked.seeks, [2 * barTicks]);
  selection.letGo();
  selection.seekToStart();
  assert.deepEqual(asked.seeks.at(-1), 0);
});

test("a range begins and ends with the bar at the cursor, where there is no beat", () => {
  const { selection, playback, play } = score({ tick: barTicks });
  play([0, 1, 2, 3]);
  selection.setRangeStart();
  assert.deepEqual(selection.ticks, { startTick: barTicks, endTick: 4 * barTicks });
  playback.tick = 2 * barTicks + 960;
  selection.setRangeEnd();
  assert.deepEqual(selection.ticks, { startTick: barTicks, endTick: 3 * barTicks });
  // An end before the start: the range begins with the score.
  playback.tick = 0;
  selection.setRangeEnd();
  assert.deepEqual(selection.ticks, { startTick: 0, endTick: barTicks });
  // A start behind the end: the range reaches to the end of the score.
  playback.tick = 3 * barTicks;
  selection.setRangeStart();
  assert.deepEqual(selection.ticks, { startTick: 3 * barTicks, endTick: 4 * barTicks });
});

test("its end moves by beats and bars; without a range only a move onwards begins one", () => {
  const { selection, asked, play } = score({ tick: barTicks });
  play([0, 1, 2, 3]);
  selection.moveRangeEnd("beat", -1);
  assert.equal(selection.range, null);
  assert.deepEqual(asked.changes, []);
  selection.moveRangeEnd("beat", 1);
  assert.deepEqual(selection.ticks, { startTick: barTicks, endTick: barTicks + 960 });
  selection.moveRangeEnd("bar", 1);
  assert.deepEqual(selection.ticks, { startTick: barTicks, endTick: 2 * barTicks });
});
