// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { WorkerWatch } from "../src/shared/worker-watch.js";

/** A worker that answers as long as it is well, and a clock that goes on when it is told to. */
class Scene {
  time = 0;
  due = [];
  pings = [];
  lost = 0;
  busy = false;
  well = true;

  watch = new WorkerWatch(
    (number) => {
      this.pings.push(number);
      if (this.well) {
        this.due.push({ at: this.time + 1, work: () => this.watch.answer(number) });
      }
    },
    () => this.lost++,
    () => this.busy,
    20000,
    { now: () => this.time, after: (work, ms) => this.due.push({ at: this.time + ms, work }) },
  );

  pass(ms, step = 100) {
    for (const end = this.time + ms; this.time < end;) {
      this.time += step;
      const now = this.due.filter(({ at }) => at <= this.time);
      this.due = this.due.filter(({ at }) => at > this.time);
      now.forEach(({ work }) => work());
    }
  }
}

test("a worker that answers is left in peace, and not asked while it rests", () => {
  const scene = new Scene();
  scene.watch.asked();
  scene.pass(600000);
  assert.deepEqual(scene.pings, [1]);
  assert.equal(scene.lost, 0);
  // What is asked behind a ping gets one of its own.
  scene.watch.asked();
  scene.watch.asked();
  assert.deepEqual(scene.pings, [1, 2]);
  scene.pass(600000);
  assert.deepEqual(scene.pings, [1, 2, 3]);
});

test("one that does not answer is lost, once", () => {
  const scene = new Scene();
  scene.well = false;
  scene.watch.asked();
  scene.pass(19000);
  assert.equal(scene.lost, 0);
  scene.pass(2000);
  assert.equal(scene.lost, 1);
  scene.watch.asked();
  scene.pass(600000);
  assert.equal(scene.lost, 1);
});

test("one that works on by itself is asked again and again", () => {
  const scene = new Scene();
  scene.busy = true;
  scene.watch.asked();
  scene.pass(30000);
  assert.ok(scene.pings.length >= 5);
  scene.well = false;
  scene.pass(30000);
  assert.equal(scene.lost, 1);
});

test("it has less time while something else waits for it", () => {
  const scene = new Scene();
  scene.well = false;
  scene.watch.hurry();
  scene.pass(60000);
  assert.equal(scene.lost, 0, "it does nothing that something could wait for");
  scene.watch.asked();
  scene.pass(1000);
  scene.watch.hurry();
  scene.pass(4100);
  assert.equal(scene.lost, 1);
});

test("a late answer is one", () => {
  const scene = new Scene();
  scene.well = false;
  scene.watch.asked();
  scene.pass(18000);
  scene.watch.answer(1);
  scene.pass(60000);
  assert.equal(scene.lost, 0);
});

test("a page that stood still itself gives the worker its time once more", () => {
  const scene = new Scene();
  scene.well = false;
  scene.watch.asked();
  scene.pass(60000, 60000);
  assert.equal(scene.lost, 0);
  scene.pass(21000);
  assert.equal(scene.lost, 1);
});

test("one that is let go is not missed", () => {
  const scene = new Scene();
  scene.well = false;
  scene.watch.asked();
  scene.watch.end();
  scene.pass(60000);
  assert.equal(scene.lost, 0);
});
