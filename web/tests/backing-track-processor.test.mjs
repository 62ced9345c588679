// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { fullScale } from "../src/audio/full-scale.js";
import { findOnsets } from "../src/backing-track/decode/onsets.js";
import { AudioThread } from "./support/audio-thread.mjs";
import { watchCollections } from "./support/collections.mjs";
import { levels, onsets, sampleRate, sharpest, sound, strokes } from "./support/sounds.mjs";

const beats = Array.from({ length: 16 }, (_, beat) => 0.5 + 0.5 * beat);
const clicks = {
  times: Float64Array.from(beats, (beat) => beat * 1000),
  levels: Uint8Array.from(beats, (_, beat) => (beat % 4 === 0 ? 0 : 1)),
};
const click = Float32Array.of(0.5, 0.4, 0.3, 0.2, 0.1);
const tone = sound(9, (t) => 0.5 * Math.sin(2 * Math.PI * 220 * t));

/** A backing track that is about to be played. */
function loaded(samples, message = {}) {
  const thread = new AudioThread();
  thread.post({ seek: { position: 0, generation: 1 }, ...message });
  thread.load(samples);
  return thread;
}

test("clicks and strokes are one, at any speed and from pass to pass of a loop", () => {
  for (const speed of [0.25, 0.5, 1, 2]) {
    const loop = { from: 1000, to: 3000 };
    // The strokes come from the left alone, the clicks from both sides.
    const thread = loaded(strokes(9, beats), {
      speed,
      loop,
      clicks,
      ticking: { levels: 2, sounds: [click, click] },
      seek: { position: 900, generation: 1 },
    });
    thread.post({ playing: true });
    const [left] = thread.render(7.8 / speed);
    const wanted = Array.from({ length: 16 }, (_, beat) => (100 + 500 * beat) / speed);
    assert.deepEqual(onsets(left).map(Math.round), wanted.map(Math.round));
    const silent = loaded(new Int16Array(9 * sampleRate), {
      speed,
      loop,
      clicks,
      ticking: { levels: 2, sounds: [click, click] },
      seek: { position: 900, generation: 1 },
    });
    silent.post({ playing: true });
    const ticks = onsets(silent.render(7.8 / speed)[0]);
    assert.equal(ticks.length, wanted.length);
    ticks.forEach((at, beat) => assert.ok(Math.abs(at - wanted[beat]) < 0.2, `${at} instead of ${wanted[beat]}`));
  }
});

test("what was asked for before the backing track came counts", () => {
  const thread = new AudioThread();
  thread.post({ playing: true, speed: 0.5, seek: { position: 900, generation: 3 } });
  assert.ok(thread.render(0.2)[0].every((sample) => sample === 0));
  assert.equal(thread.reports.length, 0);
  thread.load(strokes(9, beats));
  assert.ok(Math.abs(onsets(thread.render(0.5)[0])[0] - 200) < 0.2);
  assert.equal(thread.reports[0].generation, 3);
});

test("the presented position is reported, through changes of speed and loops", () => {
  const thread = loaded(tone, {
    latency: 0.05,
    loop: { from: 1000, to: 2000 },
    seek: { position: 1000, generation: 1 },
  });
  thread.post({ playing: true });
  thread.render(0.5);
  thread.post({ speed: 0.5 });
  thread.render(1.2);
  const positions = thread.reports.map(({ position }) => position);
  // Half a second at full speed, then half of a second and a bit: that is behind the end of the loop.
  assert.ok(Math.abs(positions.at(-1) - (1000 + 500 + 600 - 1000 - 25)) < 12, String(positions.at(-1)));
  assert.equal(thread.reports.filter(({ startsOver }) => startsOver).length, 1);
  assert.ok(Math.max(...positions) <= 2000 && Math.min(...positions) >= 1000);
});

test("the end is reported when it is presented", () => {
  const thread = loaded(
    sound(1, () => 0.5),
    { latency: 0.1 },
  );
  thread.post({ playing: true });
  thread.render(1.05);
  assert.ok(thread.reports.every(({ ended }) => !ended));
  thread.render(0.1);
  const last = thread.reports.at(-1);
  assert.ok(last.ended);
  assert.ok(Math.abs(last.position - 1000) < 1);
});

test("a pause, a start, a seek and a new backing track do not click", () => {
  const thread = loaded(tone);
  const actions = [
    { playing: true },
    { seek: { position: 3003, generation: 2 } },
    { playing: false },
    { playing: true },
    { seek: { position: 1.7, generation: 3 } },
    { sound: null },
  ];
  const chunks = actions.map((action) => {
    thread.post(action);
    return thread.render(0.1)[0];
  });
  // A fade of some samples bends, but a break would bend by half of full scale.
  assert.ok(sharpest(Float32Array.from(chunks.flatMap((chunk) => [...chunk]))) < 0.06);
  assert.ok(Math.max(...levels(chunks[2].subarray(512), 20)) < -100);
  assert.ok(Math.max(...levels(chunks[5].subarray(512), 20)) < -100);
});

test("a backing track is played while it is still being decoded, and waited for where it is not there yet", () => {
  const block = 1 << 16;
  const beginning = tone.slice(0, 2 * block);
  const thread = new AudioThread();
  thread.post({ playing: true, seek: { position: 0, generation: 1 } });
  thread.add([beginning], { first: true });
  const [heard] = thread.render(1);
  assert.ok(Math.min(...levels(heard.subarray(2000), 20)) > -12);
  thread.post({ seek: { position: 5000, generation: 2 } });
  const [waiting] = thread.render(0.5);
  assert.ok(sharpest(waiting) < 0.06);
  assert.ok(Math.max(...levels(waiting.subarray(512), 20)) < -100);
  const { length } = thread.reports;
  thread.add([tone.slice(2 * block)], { last: true });
  const [, right] = thread.render(0.2);
  assert.deepEqual(
    right.subarray(64),
    Float32Array.from(
      tone.subarray(5 * sampleRate + 64, 5 * sampleRate + right.length),
      (sample) => sample / fullScale,
    ),
  );
  assert.ok(thread.reports[length].position < 5100);
});

test("a backing track that is played faster than it comes is broken off and taken up again", () => {
  const block = 1 << 16;
  const thread = new AudioThread();
  thread.post({ playing: true, seek: { position: 0, generation: 1 } });
  thread.add([tone.slice(0, block)], { first: true });
  const [first] = thread.render(2);
  const loud = levels(first, 10).filter((level) => level > -12).length / 100;
  assert.ok(loud > 1.1 && loud < block / sampleRate, `${loud} s were heard`);
  thread.add([tone.slice(block)], { last: true });
  const [second] = thread.render(1);
  const all = Float32Array.from([...first, ...second]);
  assert.ok(sharpest(all) < 0.06);
  assert.ok(Math.min(...levels(second.subarray(512), 20)) > -12);
});

test("onsets that come with a later chunk are kept in time", () => {
  const block = 1 << 16;
  const samples = strokes(9, beats);
  const found = [...findOnsets([samples], sampleRate)];
  const thread = new AudioThread();
  thread.post({ speed: 0.5, playing: true, seek: { position: 0, generation: 1 } });
  const rendered = [];
  for (let at = 0; at < samples.length; at += block) {
    const own = Int32Array.from(found.filter((frame) => frame >= at && frame < at + block));
    thread.add([samples.slice(at, at + block)], { first: at === 0, last: at + block >= samples.length, onsets: own });
    rendered.push(thread.render(0.01)[0]);
  }
  rendered.push(thread.render(17)[0]);
  const heard = onsets(Float32Array.from(rendered.flatMap((chunk) => [...chunk])));
  assert.equal(heard.length, beats.length);
  heard.forEach((at, beat) =>
    assert.ok(Math.abs(at - 2000 * beats[beat]) < 0.3, `${at} instead of ${2000 * beats[beat]}`),
  );
});

test("the memory of a backing track is given back when it is not played any more", () => {
  const bytes = (thread) =>
    thread.reports.flatMap(({ memory }) => memory ?? []).reduce((sum, { byteLength }) => sum + byteLength, 0);
  const thread = loaded(tone);
  thread.post({ playing: true });
  thread.render(0.5);
  assert.equal(bytes(thread), 0);
  thread.post({ sound: null });
  assert.equal(bytes(thread), tone.byteLength);
  const [after] = thread.render(0.1);
  assert.ok(Math.max(...levels(after.subarray(512), 20)) < -100);
  thread.load(tone, tone);
  thread.load(tone);
  assert.equal(bytes(thread), 3 * tone.byteLength);
  assert.ok(Math.min(...levels(thread.render(0.5)[0].subarray(512), 20)) > -12);
});

test("garbage is collected when the page asks for it", () => {
  let collected = 0;
  watchCollections(() => collected++);
  const thread = loaded(tone);
  assert.equal(collected, 0);
  thread.post({ collect: true });
  assert.equal(collected, 1);
});

test("a node that is being disconnected gets no channels, and plays on afterwards", () => {
  const thread = loaded(tone);
  thread.post({ playing: true });
  assert.equal(thread.callDisconnected(), true);
  assert.ok(sharpest(thread.render(0.5)[0]) > 0);
});
