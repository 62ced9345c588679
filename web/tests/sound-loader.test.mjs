// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";

/** The loading worker's surroundings, as the page and Chromium make them. */
class Surroundings {
  /** @type {object[]} what the worker posted, and "collected" for each collection */
  course = [];
  /** @type {(event: { data: object }) => void} */
  tell = () => {};

  /** @param {Uint8Array} file what the page's scheme answers with */
  constructor(file) {
    const { course } = this;
    let done = () => {};
    this.done = new Promise((resolve) => {
      done = () => resolve(undefined);
    });
    Object.assign(globalThis, {
      addEventListener: (/** @type {string} */ _, /** @type {typeof this.tell} */ listener) => {
        this.tell = listener;
      },
      postMessage: (/** @type {object} */ message) => {
        course.push(message);
        if ("stream" in message) {
          queueMicrotask(() => this.tell({ data: { samples: Float32Array.of(0, 0.5, 0) } }));
        } else if ("done" in message) {
          done();
        }
      },
      gc: () => course.push({ collected: true }),
      XMLHttpRequest: class {
        response = file.slice().buffer;
        onload = () => {};
        open() {}
        send() {
          queueMicrotask(() => this.onload());
        }
      },
    });
  }
}

/** @returns {Uint8Array} a sound file with two streams, the lower keys on one and the upper keys on the other */
function soundFile() {
  const velocities = [0, 127];
  const zone = { velocities, loop: [0, 0], generators: [] };
  const sample = { length: 2, frames: 3, rate: 44100, root: 60, correction: 0 };
  const description = {
    ...{ name: "Guitar", bank: 0, program: 25 },
    zones: [
      { ...zone, keys: [0, 59], sample: 0 },
      { ...zone, keys: [60, 127], sample: 1 },
    ],
    samples: [
      { ...sample, at: 0 },
      { ...sample, at: 2 },
    ],
  };
  const head = Buffer.from(JSON.stringify(description));
  return new Uint8Array(
    Buffer.concat([Buffer.from(Uint32Array.of(head.length).buffer), head, Buffer.from([1, 2, 3, 4])]),
  );
}

test("what each stream was decoded from is collected before the next one comes", async () => {
  const surroundings = new Surroundings(soundFile());
  await import("../src/sounds/sound-loader.js");
  const keys = () => new Uint8Array(128).fill(80);
  const sound = { index: 7, bank: 0, program: 25, softest: keys(), loudest: keys() };
  surroundings.tell({ data: { sounds: [sound] } });
  await surroundings.done;
  assert.deepEqual(
    surroundings.course.map((message) => Object.keys(message)[0]),
    ["stream", "collected", "stream", "collected", "index", "done"],
  );
  const [{ stream }, , second, , { index, sound: loaded }] = /** @type {any[]} */ (surroundings.course);
  assert.deepEqual([stream, second.stream], [Uint8Array.of(1, 2), Uint8Array.of(3, 4)]);
  assert.equal(index, 7);
  assert.deepEqual(
    loaded.samples.map((/** @type {{ samples: Int16Array }} */ { samples }) => samples),
    [Int16Array.of(0, 16383, 0), Int16Array.of(0, 16383, 0)],
  );
});
