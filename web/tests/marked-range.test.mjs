// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { positionAt, ticksOf, wholeBars } from "../src/timing/marked-range.js";
import { playingOrder } from "../src/timing/playing-order.js";
import { written } from "./support/written-form.mjs";

const barLength = 3840;
const beat = 960;

/** Bars of four beats in the order in which they are played. */
const playedBars = (form) =>
  playingOrder(written(form)).bars.map((index, at) => ({ index, start: at * barLength, end: (at + 1) * barLength }));

/** A range over the bars from one number to another, or from beat to beat: "2-3" or "2.3-4.1", the last beat with it. */
function range(text) {
  const [first, last = first] = text.split("-").map((end) => end.split(".").map(Number));
  return {
    start: { bar: first[0] - 1, tick: ((first[1] ?? 1) - 1) * beat },
    end: { bar: last[0] - 1, tick: last[1] ? last[1] * beat : Infinity },
  };
}

/** The numbers of the bars that sound, with the beats of those of which only a part does. */
function sounding(form, marked) {
  const played = playedBars(form);
  const { startTick, endTick } = ticksOf(range(marked), played);
  return played
    .filter(({ start, end }) => start < endTick && end > startTick)
    .map(({ index, start, end }) => {
      const [from, to] = [Math.max(startTick, start), Math.min(endTick, end)].map((tick) => (tick - start) / beat);
      return from === 0 && end <= endTick ? `${index + 1}` : `${index + 1}(${from + 1}-${to})`;
    })
    .join(" ");
}

/** What is written, which bars are marked, and which must sound. */
const table = [
  ["- - - -", "2-3", "2 3"],
  ["- - - -", "2.3-3.1", "2(3-4) 3(1-1)"],
  // Repeats: marked as a whole, in part, and from the inside to the outside.
  ["|:- -:| -", "1-2", "1 2"],
  ["|:- -:| -", "1-3", "1 2 1 2 3"],
  ["|:- -:| -", "2-3", "2 3"],
  ["- |:- -:| -", "1-2", "1 2"],
  ["- |:- -:| -", "1-4", "1 2 3 2 3 4"],
  ["- |:-:|4 -", "2", "2"],
  ["|:- -:| -", "1.3-3", "1(3-4) 2 3"],
  ["|:- -:| -", "2.2-2.3", "2(2-3)"],
  ["|:- |:-:| -:| -", "2-3", "2 2 3"],
  // Endings: a first one, a second one, both, and bars before and behind them.
  ["|:- - 1.-:| 2.- -", "2-3", "2 3"],
  ["|:- - 1.-:| 2.- -", "4-5", "4 5"],
  ["|:- - 1.-:| 2.- -", "1-4", "1 2 3 1 2 4"],
  ["|:- - 1.-:| 2.- -", "2-4", "2 3 1 2 4"],
  ["|:- - 1.-:| 2.- -", "3-4", "3 1 2 4"],
  ["|:- 1,2.-:|3 3.- -", "1-2", "1 2"],
  ["|:- 1,2.-:|3 3.- -", "1-3", "1 2 1 2 1 3"],
  ["|:- 2.-:| -", "1-2", "1 1 2"],
  // Jumps: what lies before them, around them, and where they lead.
  ["- - - DaCapo", "1-4", "1 2 3 4"],
  ["- Fine - DaCapoAlFine", "1-2", "1 2"],
  ["- Fine - DaCapoAlFine", "2-4", "2 3 4"],
  ["- |:-:| - DaCapoAlFine", "1-3", "1 2 2 3"],
  ["- ToCoda - DaCapoAlCoda Coda -", "2-3", "2 3"],
  ["- ToCoda - DaCapoAlCoda Coda -", "4-5", "4 1 2 5"],
  ["- ToCoda - DaCapoAlCoda Coda -", "5-6", "5 6"],
  ["- Segno ToCoda - DalSegnoAlCoda Coda -", "3-6", "3 4 5 2 3 6"],
  // Bars that are never played stand for those of the range that are, or else for the next one.
  ["ToCoda DaCapoAlCoda - Coda", "2-4", "2 1 4"],
  ["ToCoda DaCapoAlCoda - Coda", "3.2-4", "4"],
  ["ToCoda DaCapoAlCoda - Coda", "3", "4"],
  // Written in one order, played in the other.
  ["|:- 2.- 1.-:|", "2-3", "3 1 2"],
];

for (const [form, marked, bars] of table) {
  test(`of ${form} the range ${marked}`, () => {
    assert.equal(sounding(form, marked), bars);
  });
}

test("nothing sounds of a score without bars", () => {
  assert.equal(ticksOf(range("1"), []), null);
  assert.equal(positionAt(0, []), null);
});

test("a position is found in the bar that is played then", () => {
  const played = playedBars("|:- -:| -");
  assert.deepEqual(positionAt(2 * barLength + 100, played), { bar: 0, tick: 100 });
  assert.deepEqual(positionAt(99 * barLength, played), { bar: 2, tick: barLength });
});

test("the bars of a range are those it touches", () => {
  const whole = (text) => wholeBars(range(text));
  assert.deepEqual(whole("2.3-3.1"), range("2-3"));
  assert.deepEqual(whole("2.2-2.3"), range("2"));
  assert.deepEqual(wholeBars({ start: { bar: 1, tick: 960 }, end: { bar: 3, tick: 0 } }), range("2-3"));
});

test("of a repeat with thousands of passes one is taken", () => {
  const played = Array.from({ length: 10000 }, (_, at) => ({ index: at % 2, start: at * 10, end: (at + 1) * 10 }));
  assert.deepEqual(ticksOf(range("1-2"), played), { startTick: 0, endTick: 20 });
});
