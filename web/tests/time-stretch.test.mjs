// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { fullScale } from "../src/audio/full-scale.js";
import { findOnsets } from "../src/backing-track/decode/onsets.js";
import { Player, levels, onsets, pitch, sampleRate, sharpest, sound, strokes } from "./support/sounds.mjs";

const speeds = [0.25, 0.5, 0.7, 0.95, 1, 1.3, 2];

/** Beats of a player who never keeps the tempo. */
const beats = Array.from({ length: 40 }, (_, beat) => 0.35 + beat * 0.45 + 0.04 * Math.sin(beat * 2.4));
const length = beats.at(-1) + 1;

const sine = (hertz) => sound(6, (t) => 0.8 * Math.sin(2 * Math.PI * hertz * t));
const chord = (t) =>
  [82.4, 123.5, 164.8, 207.7, 246.9, 329.6].reduce(
    (sum, hertz, i) => sum + 0.15 * Math.sin(2 * Math.PI * hertz * t + i),
    0,
  );

test("at its own speed a backing track is played as it is", () => {
  let seed = 1;
  const noise = sound(2, () => ((seed = (seed * 16807) % 2147483647) / 2147483647) * 2 - 1);
  const [left, right] = new Player([noise, noise.slice().reverse()]).render(3);
  assert.equal(left.length, noise.length);
  assert.deepEqual(
    left.map((sample) => Math.round(sample * fullScale)),
    Float32Array.from(noise),
  );
  assert.deepEqual(
    right.map((sample) => Math.round(sample * fullScale)),
    Float32Array.from(noise).reverse(),
  );
});

for (const speed of speeds) {
  test(`strokes are heard once each and in time at ${speed}`, () => {
    const [left] = new Player([strokes(length, beats)], { speed }).render(length / speed + 1);
    const heard = onsets(left, 0.01);
    assert.equal(heard.length, beats.length);
    heard.forEach((at, beat) =>
      assert.ok(Math.abs(at - (1000 * beats[beat]) / speed) < 0.2, `${at} instead of ${(1000 * beats[beat]) / speed}`),
    );
  });

  test(`strokes among ringing strings are in time at ${speed}`, () => {
    const ringing = sound(length, (t) => 0.25 * chord(t));
    const mixed = strokes(length, beats).map((sample, frame) => sample * 0.7 + ringing[frame]);
    const [left] = new Player([mixed], { speed }).render(length / speed + 1);
    const heard = onsets(left, 0.03);
    assert.equal(heard.length, beats.length);
    heard.forEach((at, beat) =>
      assert.ok(Math.abs(at - (1000 * beats[beat]) / speed) < 2, `${at} instead of ${(1000 * beats[beat]) / speed}`),
    );
  });

  test(`tones keep their pitch and level at ${speed}`, () => {
    // At twice the speed there is no room for a whole swing of the lowest strings in between.
    for (const hertz of speed > 1.5 ? [110, 440, 1000] : [82.4, 110, 440, 1000]) {
      const tone = sine(hertz);
      const [left] = new Player([tone], { speed }).render(5.5 / speed);
      const steady = left.subarray(0.2 * sampleRate);
      assert.ok(Math.abs(pitch(steady) / hertz - 1) < 0.0006, `${pitch(steady)} instead of ${hertz}`);
      const heard = levels(steady);
      const own = 20 * Math.log10((0.8 * 30000) / fullScale / Math.SQRT2);
      assert.ok(
        Math.min(...heard) > own - 0.3 && Math.max(...heard) < own + 0.3,
        `${Math.min(...heard)} to ${Math.max(...heard)}`,
      );
      const bend = ((2 * Math.PI * hertz) / sampleRate) ** 2 * 0.8 * (30000 / fullScale);
      assert.ok(sharpest(left) < bend * 1.5 + 6 / fullScale, `${hertz}: ${sharpest(left)} instead of ${bend}`);
    }
  });
}

test("a chord keeps its level", () => {
  const own = levels(new Player([sound(4, chord)]).render(4)[0], 100);
  for (const speed of speeds) {
    const heard = levels(new Player([sound(4, chord)], { speed }).render(3.5 / speed)[0], 100);
    assert.ok(
      Math.min(...heard) > Math.min(...own) - 1 && Math.max(...heard) < Math.max(...own) + 1,
      `${speed}: ${Math.min(...heard)} to ${Math.max(...heard)}`,
    );
  }
});

test("both channels are stretched alike", () => {
  const [left, right] = new Player([strokes(length, beats), strokes(length, beats).map((sample) => -sample)], {
    speed: 0.6,
  }).render(10);
  assert.ok(left.some((sample) => sample > 0.5));
  assert.ok(left.every((sample, frame) => Math.abs(sample + right[frame]) < 1e-6));
});

test("a change of speed neither jumps nor clicks", () => {
  const player = new Player([sine(330)], { speed: 0.5 });
  const chunks = [0.5, 1, 0.25, 2, 1].map((speed) => {
    player.stretch.speed = speed;
    return player.render(0.713)[0];
  });
  const all = Float32Array.from(chunks.flatMap((chunk) => [...chunk]));
  const bend = ((2 * Math.PI * 330) / sampleRate) ** 2 * 0.8 * (30000 / fullScale);
  assert.ok(sharpest(all) < bend * 1.5 + 6 / fullScale, `${sharpest(all)} instead of ${bend}`);
  assert.ok(Math.abs(player.stretch.position / sampleRate - 0.713 * (0.5 + 1 + 0.25 + 2 + 1)) < 0.001);
});

test("strokes stay in time through changes of speed", () => {
  const player = new Player([strokes(length, beats)], { speed: 0.5 });
  player.render(4.1);
  player.stretch.speed = 1.5;
  player.render(1.9);
  player.stretch.speed = 1;
  const position = player.stretch.position / sampleRate;
  const wanted = beats.filter((beat) => beat > position + 0.05).map((beat) => (beat - position) * 1000);
  const heard = onsets(player.render(20)[0]).filter((at) => at > 50);
  assert.equal(heard.length, wanted.length);
  heard.forEach((at, index) => assert.ok(Math.abs(at - wanted[index]) < 0.2, `${at} instead of ${wanted[index]}`));
});

for (const speed of [0.25, 0.5, 1, 2]) {
  for (const early of [-0.008, 0, 0.006]) {
    test(`a loop starts over in time at ${speed}, its stroke ${early} s off`, () => {
      const even = Array.from({ length: 16 }, (_, beat) => 0.5 + beat * 0.5 + early);
      const loop = { from: 0.5 * sampleRate, to: 4.5 * sampleRate };
      const player = new Player([strokes(9, even)], { speed, loop });
      player.stretch.jump(1 * sampleRate - 0.1 * sampleRate);
      const heard = onsets(player.render(13 / speed)[0], 0.02);
      const wanted = Array.from({ length: 26 }, (_, beat) => (100 + 500 * beat + 1000 * early) / speed);
      assert.equal(heard.length, wanted.length, heard.map(Math.round).join());
      heard.forEach((at, beat) => assert.ok(Math.abs(at - wanted[beat]) < 0.3, `${at} instead of ${wanted[beat]}`));
    });
  }

  test(`nothing is silent at the seam of a loop at ${speed}`, () => {
    const tone = sine(220);
    const player = new Player([tone], { speed, loop: { from: 0.3123 * sampleRate, to: 1.7 * sampleRate } });
    const heard = levels(player.render(12)[0].subarray(2000), 5);
    assert.ok(Math.min(...heard) > Math.max(...heard) - 12, String(Math.min(...heard)));
  });
}

test("a loop from the very beginning starts over in time, and nothing is silent at its seam", () => {
  for (const speed of [0.25, 0.5, 1, 2]) {
    const loop = { from: 0, to: 2 * sampleRate };
    const heard = onsets(
      new Player([strokes(6, [0, 0.5, 1, 1.5, 2, 2.5, 3])], { speed, loop }).render(7.9 / speed)[0],
      0.02,
    );
    assert.equal(heard.length, 16, heard.map(Math.round).join());
    heard.forEach((at, beat) =>
      assert.ok(Math.abs(at - (500 * beat) / speed) < 2, `${at} instead of ${(500 * beat) / speed}`),
    );
    const hum = levels(new Player([sine(196)], { speed, loop }).render(9)[0].subarray(2000), 5);
    assert.ok(Math.min(...hum) > Math.max(...hum) - 12, String(Math.min(...hum)));
  }
});

test("quick notes are heard once each when they are very slow", () => {
  const quick = Array.from({ length: 30 }, (_, note) => 0.2 + 0.07 * note);
  const heard = onsets(new Player([strokes(3, quick)], { speed: 0.25 }).render(12)[0], 0.01);
  assert.equal(heard.length, quick.length);
  heard.forEach((at, note) =>
    assert.ok(Math.abs(at - 4000 * quick[note]) < 0.2, `${at} instead of ${4000 * quick[note]}`),
  );
});

test("a loop that ends behind the backing track starts over at its end", () => {
  const player = new Player([strokes(2, [0.1, 0.6, 1.1, 1.6])], { loop: { from: 0, to: 100 * sampleRate } });
  assert.equal(onsets(player.render(6)[0]).length, 12);
});

test("a loop with nothing in it ends like the backing track", () => {
  for (const loop of [
    { from: 3 * sampleRate, to: 4 * sampleRate },
    { from: 1000, to: 1001 },
    { from: 2 * sampleRate - 1, to: 9 * sampleRate },
  ]) {
    const player = new Player([sound(2, () => 0.1)], { loop });
    player.stretch.jump(sampleRate);
    assert.equal(player.render(3)[0].length, sampleRate);
  }
});

test("a loop that is given up at its seam goes on behind it", () => {
  for (const speed of [0.5, 1]) {
    const player = new Player([strokes(4, [1, 1.5, 2, 2.5, 3])], {
      speed,
      loop: { from: 1.3 * sampleRate, to: 2.3 * sampleRate },
    });
    player.stretch.jump(1.8 * sampleRate);
    player.render(0.498 / speed);
    player.stretch.loop = null;
    const heard = onsets(player.render(2)[0]);
    assert.ok(Math.abs(heard[0] - 202 / speed) < 1, String(heard));
  }
});

test("a backing track ends when its time is over, however short it is", () => {
  for (const frames of [0, 1, 10, 500, 3000]) {
    for (const speed of speeds) {
      const player = new Player([new Int16Array(frames).fill(1000)], { speed });
      const [left] = player.render(1);
      assert.ok(Math.abs(left.length - frames / speed) <= 1, `${left.length} of ${frames} at ${speed}`);
      assert.ok(left.every(Number.isFinite));
    }
  }
});

test("a jump goes where it was told to", () => {
  const player = new Player([strokes(length, beats)], { speed: 0.5 });
  player.render(1);
  player.stretch.jump((beats[20] - 0.1) * sampleRate);
  assert.ok(Math.abs(onsets(player.render(1)[0])[0] - 200) < 0.2);
});

test("onsets are found where they begin, in silence and among strings", () => {
  const ringing = sound(length, (t) => 0.25 * chord(t));
  const plain = strokes(length, beats);
  for (const samples of [plain, plain.map((sample, frame) => sample * 0.7 + ringing[frame])]) {
    const found = [...findOnsets([samples], sampleRate)].filter((frame) => frame > 0.1 * sampleRate);
    assert.equal(found.length, beats.length);
    found.forEach((frame, beat) =>
      assert.ok(
        Math.abs(frame - beats[beat] * sampleRate) < 0.001 * sampleRate,
        `${frame / sampleRate} instead of ${beats[beat]}`,
      ),
    );
  }
});

test("a steady sound has no onsets but its beginning", () => {
  for (const hertz of [41.2, 82.4, 110, 440, 3000]) {
    assert.ok(findOnsets([sine(hertz)], sampleRate).length <= 1, String(hertz));
  }
  assert.ok(findOnsets([sound(5, chord)], sampleRate).length <= 1);
  assert.equal(findOnsets([new Int16Array(5000)], sampleRate).length, 0);
});
