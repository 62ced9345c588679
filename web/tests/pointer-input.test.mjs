// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { PointerInput } from "../src/score-view/pointer-input.js";
import { RangeLayer } from "../src/score-view/range-layer.js";
import { RangeSelection } from "../src/score-view/range-selection.js";
import { Signal } from "./support/signal.mjs";
import { standIn } from "./support/stand-in.mjs";

globalThis.document = standIn({
  createElement: () => ({
    style: {},
    dataset: {},
    replaceChildren(...children) {
      this.boxes = children.filter(({ className }) => className === "range");
      this.handles = children.filter(({ className }) => className === "range-handle");
    },
  }),
});
globalThis.requestAnimationFrame = standIn(() => {});

/** Beats of 960 ticks, each 100 pixels wide, in bars of four; the third bar is never played. */
const beats = Array.from({ length: 16 }, (_, index) => ({
  index: index % 4,
  playbackStart: (index % 4) * 960,
  absolutePlaybackStart: index * 960,
  playbackDuration: 960,
  voice: { bar: { index: index >> 2 } },
}));

/** Where a bar is drawn in one line, at a zoom. */
function barBounds(index, zoom) {
  const drawn = beats
    .filter(({ voice }) => voice.bar.index === index)
    .map((beat) => ({ beat, realBounds: { x: beats.indexOf(beat) * 100 * zoom, w: 100 * zoom } }));
  const visualBounds = { x: index * 400 * zoom, w: 400 * zoom, y: 0, h: 80 };
  return { index, visualBounds, bars: [{ beats: drawn }], staffSystemBounds: { index: 0 } };
}

/** @returns a page with ten of the beats in view, and what was asked of the playback */
function page({ tick = 0 } = {}) {
  const box = { left: 0, top: 0 };
  const notation = Object.assign(new EventTarget(), {
    layer: standIn(null),
    append: (layer) => (notation.layer = layer),
    getBoundingClientRect: () => box,
    setPointerCapture: () => {},
    releasePointerCapture: () => {},
    classList: { toggle: () => {} },
  });
  const viewport = Object.assign(new EventTarget(), {
    getBoundingClientRect: () => box,
    clientWidth: 1000,
    clientHeight: 500,
    scrollBy: () => {},
  });
  const bars = [0, 1, 3].map((index) => ({ start: index * 3840, end: (index + 1) * 3840, masterBar: { index } }));
  const view = { zoom: 1 };
  const api = standIn({
    notation,
    postRenderFinished: new Signal(),
    scorePrepared: new Signal(),
    workerRenderer: { batchShown: new Signal() },
    tracks: [{ index: 0 }],
    score: { masterBars: [0, 1, 2, 3].map(() => ({ calculateDuration: () => 3840, timeSignatureDenominator: 4 })) },
    boundsLookup: {
      isFinished: true,
      getBeatAtPos: (x) => beats[Math.floor(x / 100)] ?? null,
      findMasterBarByIndex: (index) => barBounds(index, view.zoom),
      staffSystems: [{ visualBounds: { x: 0, y: 0, w: 1600, h: 80 }, bars: [] }],
    },
    tickCache: {
      masterBars: bars,
      getBeatStart: (beat) => beat.absolutePlaybackStart,
      getRelativeBeatPlaybackRange: (beat) => ({ startTick: beat.playbackStart, endTick: beat.playbackStart + 960 }),
      findBeat: (_, at) => ({ beat: beats[Math.floor(at / 960)] }),
    },
  });
  const seeks = [];
  const ranges = [];
  const playback = standIn({
    tick,
    seekToTick: (to) => seeks.push(to),
    setRange: (range) => ranges.push(range),
  });
  const selection = new RangeSelection(api, playback, new RangeLayer(api));
  /** @type {({ startTick: number, endTick: number } | null)[]} */
  const loops = [];
  const input = new PointerInput(api, playback, standIn(viewport), selection, () => loops.push(last(ranges)));
  const pointer = (type, x, { target, ...more } = standIn({})) => {
    const event = Object.assign(new Event(type), {
      button: 0,
      buttons: 1,
      clientX: x,
      clientY: 20,
      pointerId: 1,
      shiftKey: false,
      altKey: false,
      ctrlKey: false,
      ...more,
    });
    if (target) {
      Object.defineProperty(event, "target", { value: target });
    }
    notation.dispatchEvent(event);
  };
  const drag = (from, to, more) =>
    [
      ["pointerdown", from],
      ["pointermove", to],
      ["pointerup", to],
    ].forEach(([type, x]) => pointer(type, x, more));
  const shown = () => notation.layer.boxes.length;
  const edges = () => notation.layer.boxes.map(({ style }) => `${style.left} ${style.width}`).join();
  const handles = () => notation.layer.handles;
  const zoom = (to) => {
    view.zoom = to;
    api.postRenderFinished.trigger();
  };
  return { input, selection, playback, pointer, drag, seeks, ranges, loops, shown, edges, handles, zoom };
}

const last = (list) => list.at(-1);

test("a click goes to its beat and clears the range", () => {
  const { drag, seeks, ranges, shown } = page();
  drag(130, 330);
  drag(560, 560);
  assert.equal(last(seeks), 5 * 960);
  assert.equal(last(ranges), null);
  assert.equal(shown(), 0);
});

test("a drag chooses from the first beat to the end of the last, in either direction, and goes to its beginning", () => {
  for (const [from, to] of [
    [130, 330],
    [330, 130],
  ]) {
    const { drag, seeks, ranges, shown } = page();
    drag(from, to);
    assert.equal(last(ranges).startTick, 960);
    assert.equal(last(ranges).endTick, 4 * 960);
    assert.deepEqual(seeks, [960]);
    assert.equal(shown(), 1);
  }
});

test("a hand that shakes clicks; a longer drag within one beat chooses it", () => {
  const shaken = page();
  shaken.drag(130, 140);
  assert.equal(last(shaken.ranges), null);
  const chosen = page();
  chosen.drag(130, 160);
  assert.equal(last(chosen.ranges).startTick, 960);
});

test("with the shift key the range reaches from where it was begun, or from the position, to the beat", () => {
  const { drag, ranges } = page();
  drag(330, 330);
  drag(730, 730, { shiftKey: true });
  assert.equal(last(ranges).startTick, 3 * 960);
  drag(130, 130, { shiftKey: true });
  assert.equal(last(ranges).startTick, 960);
  assert.ok(last(ranges).endTick > 3 * 960);
  const playing = page({ tick: 2 * 960 + 10 });
  playing.drag(530, 530, { shiftKey: true });
  assert.equal(last(playing.ranges).startTick, 2 * 960);
});

test("other buttons, and presses beside the beats, do nothing", () => {
  const { pointer, drag, seeks, ranges } = page();
  drag(130, 330, { button: 2 });
  pointer("pointerdown", 5000);
  pointer("pointerup", 5000);
  assert.deepEqual([seeks, ranges], [[], []]);
});

test("a drag that ends where the page does not notice leaves the range before", () => {
  for (const end of [
    ["pointermove", { buttons: 0 }],
    ["pointercancel", {}],
  ]) {
    const { pointer, drag, ranges, edges } = page();
    drag(130, 330);
    const [before, shown] = [ranges.length, edges()];
    assert.equal(shown, "100px 300px");
    pointer("pointerdown", 530);
    pointer("pointermove", 830);
    pointer(end[0], 830, end[1]);
    pointer("pointerup", 830);
    assert.equal(ranges.length, before);
    assert.equal(edges(), shown);
  }
});

test("a beat in a bar that is never played stands for the next one that is", () => {
  const { drag, seeks } = page();
  drag(930, 930);
  assert.equal(last(seeks), 3 * 3840);
});

test("another score has no range, and the next extension begins anew", () => {
  const { input, drag, ranges, shown } = page({ tick: 0 });
  drag(330, 730);
  input.leaveScore();
  assert.equal(last(ranges), null);
  assert.equal(shown(), 0);
  drag(530, 530, { shiftKey: true });
  assert.equal(last(ranges).startTick, 0);
});

const bars = (first, end) => ({ startTick: first * 3840, endTick: end * 3840 });

test("a drag beyond its bar chooses whole bars; with Alt or Ctrl it ends at beats", () => {
  const { drag, ranges, seeks, edges } = page();
  drag(130, 530);
  assert.deepEqual(last(ranges), bars(0, 2));
  assert.equal(last(seeks), 0);
  assert.equal(edges(), "0px 800px");
  drag(530, 130);
  assert.deepEqual(last(ranges), bars(0, 2));
  for (const key of ["altKey", "ctrlKey"]) {
    drag(130, 530, { [key]: true });
    assert.deepEqual(last(ranges), { startTick: 960, endTick: 6 * 960 });
    assert.equal(edges(), "100px 500px");
  }
});

test("a double click chooses the bar, goes to its beginning and has it looped", () => {
  const { drag, pointer, ranges, seeks, loops } = page();
  drag(630, 630);
  drag(630, 630);
  pointer("dblclick", 630);
  assert.deepEqual(last(ranges), bars(1, 2));
  assert.equal(last(seeks), 3840);
  assert.deepEqual(loops, [bars(1, 2)]);
});

test("a drag right after a click is no double click where it ends", () => {
  const { drag, pointer, ranges, loops } = page();
  drag(130, 130);
  drag(130, 630);
  pointer("dblclick", 630);
  assert.deepEqual(last(ranges), bars(0, 2));
  assert.deepEqual(loops, []);
});

test("a handle moves its end beat by beat, and no end beyond the other one", () => {
  const { drag, handles, ranges, seeks } = page();
  const pull = (index, from, to) => drag(from, to, { target: handles()[index] });
  drag(130, 330);
  const asked = seeks.length;
  pull(1, 400, 620);
  assert.deepEqual(last(ranges), { startTick: 960, endTick: 7 * 960 });
  pull(0, 100, 250);
  assert.deepEqual(last(ranges), { startTick: 2 * 960, endTick: 7 * 960 });
  pull(0, 200, 950);
  assert.deepEqual(last(ranges), { startTick: 2 * 960, endTick: 7 * 960 });
  pull(1, 700, 10);
  assert.deepEqual(last(ranges), { startTick: 2 * 960, endTick: 7 * 960 });
  assert.equal(seeks.length, asked);
});

test("a click on a handle, and a drag of one that is given up, leave the range", () => {
  const { drag, pointer, handles, ranges, edges } = page();
  drag(130, 330);
  const [before, shown] = [ranges.length, edges()];
  drag(400, 400, { target: handles()[1] });
  pointer("pointerdown", 400, { target: handles()[1] });
  pointer("pointermove", 620);
  pointer("pointercancel", 620);
  pointer("dblclick", 400, { target: handles()[1] });
  assert.equal(ranges.length, before);
  assert.equal(edges(), shown);
});

test("the range is marked where the notation is, at any zoom", () => {
  const { drag, zoom, edges, handles } = page();
  drag(130, 330);
  zoom(2);
  assert.equal(edges(), "200px 600px");
  assert.deepEqual(
    handles().map(({ style }) => style.left),
    ["200px", "800px"],
  );
});

test("the ends of the range are set at the cursor", () => {
  const { selection, playback, ranges } = page();
  playback.tick = 5 * 960 + 10;
  selection.setRangeStart();
  assert.deepEqual(last(ranges), { startTick: 5 * 960, endTick: 4 * 3840 });
  playback.tick = 7 * 960 + 10;
  selection.setRangeEnd();
  assert.deepEqual(last(ranges), { startTick: 5 * 960, endTick: 2 * 3840 });
  playback.tick = 960;
  selection.setRangeEnd();
  assert.deepEqual(last(ranges), { startTick: 0, endTick: 2 * 960 });
});

test("the end of the range moves by beats and bars, not past the start nor past the score", () => {
  const { selection, drag, ranges } = page();
  const move = (unit, direction) => {
    selection.moveRangeEnd(unit, direction);
    return last(ranges);
  };
  drag(130, 330);
  assert.deepEqual(move("beat", 1), { startTick: 960, endTick: 5 * 960 });
  assert.deepEqual(move("bar", 1), { startTick: 960, endTick: 8 * 960 });
  assert.deepEqual(move("bar", -1), { startTick: 960, endTick: 4 * 960 });
  assert.deepEqual(move("beat", -1), { startTick: 960, endTick: 3 * 960 });
  const count = ranges.length;
  move("bar", -1);
  assert.equal(ranges.length, count);
  [1, 2, 3, 4].forEach(() => move("bar", 1));
  assert.deepEqual(last(ranges), { startTick: 960, endTick: 4 * 3840 });
  assert.equal(ranges.length, count + 4);
});

test("without a range its end moves on from the cursor; letting go takes the range away once", () => {
  const { selection, playback, ranges, shown } = page();
  playback.tick = 2 * 960 + 10;
  selection.moveRangeEnd("beat", -1);
  assert.deepEqual(ranges, []);
  selection.moveRangeEnd("beat", 1);
  assert.deepEqual(last(ranges), { startTick: 2 * 960, endTick: 3 * 960 });
  selection.letGo();
  selection.letGo();
  assert.deepEqual(ranges.slice(1), [null]);
  assert.equal(shown(), 0);
});
