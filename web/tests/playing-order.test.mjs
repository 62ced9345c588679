// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { mostBars, playingOrder } from "../src/timing/playing-order.js";
import { written } from "./support/written-form.mjs";

/** The form, and the numbers of the bars as they are played. */
const forms = {
  "straight through": ["- - -", "1 2 3"],
  "a repeat": ["- |:- -:| -", "1 2 3 2 3 4"],
  "a repeat from the beginning": ["- -:| -", "1 2 1 2 3"],
  "a repeat of one bar": ["- |:-:| -", "1 2 2 3"],
  "four times": ["|:- -:|4 -", "1 2 1 2 1 2 1 2 3"],
  "once, however the sign looks": ["|:- -:|1 -", "1 2 3"],
  "two repeats without start signs": ["- -:| - -:| -", "1 2 1 2 3 4 3 4 5"],
  "two repeats, the second without a start sign": ["|:- -:| - -:| -", "1 2 1 2 3 4 3 4 5"],
  "two repeats with start signs": ["|:- -:| |:- -:|", "1 2 1 2 3 4 3 4"],
  "a repeat within a repeat": ["|:- |:- -:| -:| -", "1 2 3 2 3 4 1 2 3 2 3 4 5"],
  "two repeats within a repeat": ["|:- |:-:| |:-:| -:|", "1 2 2 3 3 4 1 2 2 3 3 4"],
  "three deep": ["|:- |:- |:-:| -:| -:|", "1 2 3 3 4 2 3 3 4 5 1 2 3 3 4 2 3 3 4 5"],
  "a start sign that nothing closes": ["|:- - |:-:| -", "1 2 3 3 4"],
  "a start sign in the last bar": ["- |:-", "1 2"],
  "two endings": ["|:- 1.-:| 2.- -", "1 2 1 3 4"],
  "two endings without a start sign": ["- 1.-:| 2.- -", "1 2 1 3 4"],
  "two endings, both closed": ["|:- 1.-:| 2.-:| -", "1 2 1 3 4"],
  "two endings, only the second one closed": ["|:- 1.- 2.-:| -", "1 2 1 3 4"],
  "one ending": ["|:- 1.-:| -", "1 2 1 3"],
  "one ending for the last time": ["|:- 2.-:| -", "1 1 2 3"],
  "endings of several bars, each with its number": ["|:- 1.- 1.-:| 2.- 2.- -", "1 2 3 1 4 5 6"],
  "endings of several bars, the number in the first": ["|:- 1.- -:| 2.- -:| -", "1 2 3 1 4 5 6"],
  "three endings": ["|:- 1.-:| 2.-:| 3.- -", "1 2 1 3 1 4 5"],
  "three endings, all closed": ["|:- 1.-:| 2.-:| 3.-:| -", "1 2 1 3 1 4 5"],
  "an ending for three passes": ["|:- 1-3.-:|4 4.- -", "1 2 1 2 1 2 1 3 4"],
  "an ending for three passes whose sign counts two": ["|:- 1-3.-:| 4.- -", "1 2 1 2 1 2 1 3 4"],
  "an ending for all passes": ["|:- 1-3.-:| -", "1 2 1 2 1 2 3"],
  "endings in turn": ["|:- 1,3.-:| 2,4.-:| -", "1 2 1 3 1 2 1 3 4"],
  "endings whose numbers leave one out": ["|:- 1.-:| 3.- -", "1 2 1 3 4"],
  "endings twice": ["|:- 1.-:| 2.- |:- 1.-:| 2.-", "1 2 1 3 4 5 4 6"],
  "endings twice, the second time without a start sign": ["|:- 1.-:| 2.-:| - 1.-:| 2.-", "1 2 1 3 4 5 4 6"],
  "endings twice, the second time without a start sign, no second one closed": [
    "|:- 1.-:| 2.- - - 1.-:| 2.- -",
    "1 2 1 3 4 5 6 4 5 7 8",
  ],
  "the same, the second ending of two bars that carry its number": [
    "|:- 1.-:| 2.- 2.- - 1.-:| 2.- -",
    "1 2 1 3 4 5 6 5 7 8",
  ],
  "a repeat within a first ending": ["|:- 1.- |:-:| -:| 2.- -", "1 2 3 3 4 1 5 6"],
  "the same, each bar with the ending's number": ["|:- 1.- |:1.-:| 1.-:| 2.- -", "1 2 3 3 4 1 5 6"],
  "a repeat within a repeat with endings": ["|:- |:- 1.-:| 2.- -:| -", "1 2 3 2 4 5 1 2 3 2 4 5 6"],
  "endings that nothing repeats": ["- 1.- 2.- -", "1 2 3 4"],
  "a first ending that covers everything": ["|:1.-:| 2.- -", "1 2 3"],
  "D.C.": ["- - DaCapo", "1 2 3 1 2 3"],
  "D.C. in the midst": ["- - DaCapo -", "1 2 3 1 2 3 4"],
  "D.C. al Fine": ["- Fine - DaCapoAlFine", "1 2 3 4 1 2"],
  "D.C. al Fine without a Fine": ["- - DaCapoAlFine", "1 2 3 1 2 3"],
  "D.C. where a Fine is marked": ["- Fine - DaCapo", "1 2 3 4 1 2"],
  "D.C. al Coda": ["- ToCoda - DaCapoAlCoda Coda -", "1 2 3 4 1 2 5 6"],
  "D.C. where the way to a coda is marked": ["- ToCoda - DaCapo Coda -", "1 2 3 4 1 2 5 6"],
  "D.C. al Coda without the way to it": ["- - DaCapoAlCoda Coda", "1 2 3 1 2 3 4"],
  "D.C. al Coda without a coda": ["- ToCoda - DaCapoAlCoda -", "1 2 3 4 1 2 3 4 5"],
  "D.C. al Coda behind the coda": ["ToCoda Fine Coda DaCapoAlCoda -", "1 2 3 4 1 3 4 5"],
  "D.C. al Double Coda": ["ToCoda ToDoubleCoda DaCapoAlDoubleCoda Coda DoubleCoda", "1 2 3 1 2 5"],
  "first the coda, then the double coda": [
    "- Segno ToCoda ToDoubleCoda DalSegnoAlCoda Coda+DalSegnoAlDoubleCoda DoubleCoda",
    "1 2 3 4 5 2 3 6 2 3 4 7",
  ],
  "D.S.": ["- Segno - DalSegno -", "1 2 3 4 2 3 4 5"],
  "D.S. without a sign": ["- - DalSegno -", "1 2 3 4"],
  "D.S. al Fine": ["- Segno - Fine DalSegnoAlFine", "1 2 3 4 5 2 3 4"],
  "D.S. al Coda": ["- Segno ToCoda - DalSegnoAlCoda Coda -", "1 2 3 4 5 2 3 6 7"],
  "D.S. al Double Coda": ["- Segno ToDoubleCoda DalSegnoAlDoubleCoda Coda DoubleCoda", "1 2 3 4 2 3 6"],
  "D.S. to the nearest of two signs": ["Segno - Segno DalSegno -", "1 2 3 4 3 4 5"],
  "D.S. to the sign it stands under": ["- Segno+DalSegno -", "1 2 2 3"],
  "D.S.S.": ["- SegnoSegno Segno DalSegnoSegno -", "1 2 3 4 2 3 4 5"],
  "D.S.S. al Fine": ["- SegnoSegno Fine DalSegnoSegnoAlFine", "1 2 3 4 2 3"],
  "D.S.S. al Coda": ["- SegnoSegno ToCoda DalSegnoSegnoAlCoda Coda", "1 2 3 4 2 3 5"],
  "D.S.S. al Double Coda": ["SegnoSegno ToDoubleCoda DalSegnoSegnoAlDoubleCoda Coda DoubleCoda", "1 2 3 1 2 5"],
  "D.S., and then D.S. al Coda": ["Segno - DalSegno ToCoda DalSegnoAlCoda Coda", "1 2 3 1 2 3 4 5 1 2 3 4 6"],
  "D.S., and then D.S.S. al Fine": ["SegnoSegno Segno Fine DalSegno DalSegnoSegnoAlFine", "1 2 3 4 2 3 4 5 1 2 3"],
  "a Fine before any jump": ["- Fine -", "1 2 3"],
  "the way to a coda without any jump": ["- ToCoda - Coda", "1 2 3 4"],
  "D.C. on the end of a repeat": ["- |:- DaCapo:| -", "1 2 3 2 3 1 2 3 4"],
  "D.S. al Coda on the end of a repeat": ["|:Segno ToCoda DalSegnoAlCoda:| Coda", "1 2 3 1 2 3 1 2 4"],
  "D.C. within a repeat": ["|:- DaCapo -:| -", "1 2 3 1 2 1 2 3 4"],
  "D.C. over a repeat": ["- |:-:| - DaCapoAlFine", "1 2 2 3 4 1 2 3 4"],
  "D.C. over endings": ["|:- 1.-:| 2.Fine DaCapoAlFine", "1 2 1 3 4 1 3"],
  "D.C. to a Fine in the first ending": ["|:- 1.Fine:| 2.- DaCapoAlFine", "1 2 1 3 4 1 2"],
  "D.C. al Coda from the first ending": ["|:- 1.ToCoda:| 2.DaCapoAlCoda Coda", "1 2 1 3 1 2 4"],
  "D.C. in the second ending": ["|:- 1.-:| 2.DaCapo -", "1 2 1 3 1 3 4"],
  "D.C. in place of the first ending's sign": ["|:- 1.DaCapo 2.- -", "1 2 1 3 4"],
  "D.S. into a repeat": ["|:- Segno -:| DalSegno -", "1 2 3 1 2 3 4 2 3 4 5"],
  "a repeat behind a D.C.": ["- DaCapo |:-:|", "1 2 1 2 3 3"],
  "a repeat in the coda": ["ToCoda DaCapoAlCoda |:Coda:| -", "1 2 1 3 3 4"],
  "a repeat from the coda to the end": ["Segno ToCoda DalSegnoAlCoda Coda |:- 1.-:| 2.-", "1 2 3 1 2 4 5 6 5 7"],
};

for (const [name, [form, played]] of Object.entries(forms)) {
  test(name, () => {
    const order = playingOrder(written(form));
    assert.equal(order.bars.map((index) => index + 1).join(" "), played);
    assert.equal(order.tooLong, false);
  });
}

test("an order that is too long is given up for the bars as they are written", () => {
  const straight = (count) => Array.from({ length: count }, (_, index) => index);
  const nested = (deep, times) => `${"|:- ".repeat(deep)}${`-:|${times} `.repeat(deep)}-`;
  for (const form of ["|:-:|10000000 -", nested(30, 2), nested(30, 100), nested(9, 3), nested(3, 40)]) {
    const bars = written(form);
    assert.deepEqual(playingOrder(bars), { bars: straight(bars.length), tooLong: true }, form.slice(0, 40));
  }
  const heavy = written("|:-:|1000 -").map((bar) => ({ ...bar, weight: 1000 }));
  assert.deepEqual(playingOrder(heavy), { bars: [0, 1], tooLong: true });
});

test("a long score is played as it is written, and may repeat itself", () => {
  const bars = Array.from({ length: 50000 }, () => ({ weight: 1000 }));
  assert.equal(playingOrder(bars).bars.length, 50000);
  assert.equal(playingOrder(written("|:-:|255 -")).bars.length, 256);
  assert.ok(mostBars > 255 * 30);
});

/** Numbers from 0 up to 1, always the same ones. */
function random(seed) {
  let state = seed;
  return () => (state = (state * 48271) % 2147483647) / 2147483647;
}

test("whatever is written comes to an end, and soon", () => {
  /** @type {any[]} */
  const names = ["Fine", "Segno", "SegnoSegno", "Coda", "DoubleCoda", "ToCoda", "ToDoubleCoda"].concat(
    ["DaCapo", "DalSegno", "DalSegnoSegno"].flatMap((jump) =>
      ["", "AlCoda", "AlDoubleCoda", "AlFine"].map((aim) => jump + aim),
    ),
  );
  const next = random(7);
  for (let round = 0; round < 5000; round++) {
    const bars = Array.from({ length: 1 + Math.floor(next() * 12) }, () => ({
      repeatStart: next() < 0.3,
      repeatCount: next() < 0.3 ? Math.floor(next() * 4) : 0,
      endings: next() < 0.3 ? Math.floor(next() * 256) : 0,
      directions: names.filter(() => next() < 0.06),
    }));
    const { bars: played } = playingOrder(bars);
    assert.ok(played.length <= mostBars + bars.length);
    assert.ok(played.every((index) => index >= 0 && index < bars.length));
  }
  const many = (bar) => playingOrder(Array.from({ length: 30000 }, () => bar)).bars.length;
  for (const bar of [
    { directions: ["Segno", "DalSegno"] },
    { directions: ["DaCapo"] },
    { repeatStart: true },
    { repeatCount: 2 },
    { endings: 1 },
    { repeatStart: true, endings: 3 },
    { directions: ["DalSegno"] },
    { directions: ["DaCapoAlCoda", "ToCoda"] },
  ]) {
    assert.ok(many(bar) <= 40000);
  }
});
