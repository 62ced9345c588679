import assert from "node:assert/strict";
import { test } from "node:test";
import { PointerInput } from "../src/score-view/pointer-input.js";
import { Signal } from "./support/signal.mjs";

globalThis.document = {
  createElement: () => ({
    style: {},
    replaceChildren(...boxes) {
      this.boxes = boxes;
    },
  }),
};
globalThis.requestAnimationFrame = () => {};

/** Beats of 960 ticks, each 100 pixels wide, in bars of four; the third bar is never played. */
const beats = Array.from({ length: 16 }, (_, index) => ({
  index: index % 4,
  absolutePlaybackStart: index * 960,
  playbackDuration: 960,
  voice: { bar: { index: index >> 2 } },
}));

/** @returns a page with ten of the beats in view, and what was asked of the playback */
function page({ tick = 0 } = {}) {
  const box = { left: 0, top: 0 };
  const notation = Object.assign(new EventTarget(), {
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
  const bars = [0, 1, 3].map((index) => ({ start: index * 3840, masterBar: { index } }));
  const bounds = (beat) => {
    const barBounds = {
      masterBarBounds: { visualBounds: { x: beats.indexOf(beat) * 100 }, staffSystemBounds: { index: 0 } },
    };
    return { realBounds: { x: beats.indexOf(beat) * 100, w: 100 }, barBounds };
  };
  const api = {
    notation,
    postRenderFinished: new Signal(),
    tracks: [{ index: 0 }],
    boundsLookup: {
      getBeatAtPos: (x) => beats[Math.floor(x / 100)] ?? null,
      findBeat: bounds,
      staffSystems: [{ visualBounds: { x: 0, y: 0, w: 1600, h: 80 }, bars: [] }],
    },
    tickCache: {
      masterBars: bars,
      getBeatStart: (beat) => beat.absolutePlaybackStart,
      findBeat: (_, at) => ({ beat: beats[Math.floor(at / 960)] }),
    },
  };
  const seeks = [];
  const ranges = [];
  const playback = { tick, seekToTick: (to) => seeks.push(to), setRange: (range) => ranges.push(range) };
  const input = new PointerInput(api, playback, viewport);
  const pointer = (type, x, more = {}) =>
    notation.dispatchEvent(
      Object.assign(new Event(type), {
        button: 0,
        buttons: 1,
        clientX: x,
        clientY: 20,
        pointerId: 1,
        shiftKey: false,
        ...more,
      }),
    );
  const drag = (from, to, more) =>
    [
      ["pointerdown", from],
      ["pointermove", to],
      ["pointerup", to],
    ].forEach(([type, x]) => pointer(type, x, more));
  const shown = () => notation.layer.boxes.length;
  const edges = () => notation.layer.boxes.map(({ style }) => `${style.left} ${style.width}`).join();
  return { input, pointer, drag, seeks, ranges, shown, edges };
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
    assert.ok(last(ranges).endTick < 4 * 960 && last(ranges).endTick > 4 * 960 - 100);
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
