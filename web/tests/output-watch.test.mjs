// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { OutputStatus, OutputWatch } from "../src/audio/output-watch.js";
import { standIn } from "./support/stand-in.mjs";

/** A sound system with a context on it, and a clock that goes on when it is told to. */
class SoundSystem {
  time = 0;
  /** Whether there is a device, and whether the context got one when it was last resumed. */
  hasDevice = true;
  plays = true;
  calls = [];
  told = [];
  due = [];
  answers = true;
  /** How many answers still come from before the device was gone. */
  staleAnswers = 0;
  /** Whether the context was resumed when its device was gone. */
  isDead = false;

  constructor({ hasDevice = true } = {}) {
    const system = this;
    this.hasDevice = hasDevice;
    this.status = new OutputStatus();
    this.status.changed.on((working) => this.told.push(working));
    this.context = {
      state: "running",
      currentTime: 0,
      async suspend() {
        this.state = "suspended";
        system.calls.push("suspend");
      },
      async resume() {
        system.calls.push(system.hasDevice ? "resume" : "resume to nobody");
        system.isDead ||= !system.hasDevice && system.status.hadDevice;
        this.state = system.isDead ? "suspended" : "running";
        system.plays = !system.isDead;
      },
      destination: {
        maxChannelCount: 2,
        channels: 2,
        get channelCount() {
          return this.channels;
        },
        set channelCount(count) {
          system.isDead &&= count === this.channels;
          this.channels = count;
        },
      },
    };
    this.watch = new OutputWatch(standIn(this.context), {
      devices: async () => {
        await (this.answers || new Promise(() => {}));
        return this.hasDevice || this.staleAnswers-- > 0 ? [{ kind: "audiooutput" }] : [];
      },
      status: this.status,
      now: () => this.time,
      after: (work, ms) => this.due.push({ at: this.time + ms, work }),
    });
  }

  /** The device goes: what plays stands still. */
  unplug() {
    this.hasDevice = false;
    this.plays = false;
  }

  async pass(ms, step = 50) {
    for (const end = this.time + ms; this.time < end;) {
      this.time += step;
      if (this.plays && this.context.state === "running") {
        this.context.currentTime += step / 1000;
      }
      const now = this.due.filter(({ at }) => at <= this.time);
      this.due = this.due.filter(({ at }) => at > this.time);
      now.forEach(({ work }) => work());
      await settle();
    }
  }
}

async function settle() {
  for (let i = 0; i < 10; i++) {
    await Promise.resolve();
  }
}

async function playing(options) {
  const system = new SoundSystem(options);
  await settle();
  system.watch.wake();
  await system.pass(1000);
  return system;
}

test("a context that plays is left alone", async () => {
  const system = await playing();
  await system.pass(60000);
  assert.deepEqual(system.calls, []);
  assert.deepEqual(system.told, []);
});

test("without its device a context is suspended within a second and a half, and told of once", async () => {
  const system = await playing();
  system.unplug();
  await system.pass(1500);
  assert.deepEqual(system.told, [false]);
  assert.deepEqual(system.calls, ["suspend"]);
  await system.pass(60000);
  assert.deepEqual(system.calls, ["suspend"], "nothing plays to nobody");
  assert.deepEqual(system.told, [false]);
});

test("it goes on where it was as soon as there is a device again", async () => {
  const system = await playing();
  system.unplug();
  await system.pass(4000);
  const { currentTime } = system.context;
  system.hasDevice = true;
  await system.pass(500);
  assert.deepEqual(system.told, [false, true]);
  assert.equal(system.context.state, "running");
  assert.ok(system.context.currentTime - currentTime < 0.5);
});

test("a device that goes while it is given anew is given once more when it is back", async () => {
  const system = await playing();
  system.unplug();
  system.staleAnswers = 1;
  await system.pass(1500);
  assert.ok(system.calls.includes("resume to nobody"), "the answer was of before");
  await system.pass(4000);
  system.hasDevice = true;
  await system.pass(4000);
  assert.equal(system.context.state, "running");
  const { currentTime } = system.context;
  await system.pass(1000);
  assert.ok(system.context.currentTime - currentTime > 0.9);
  assert.equal(system.context.destination.channelCount, 2);
});

test("a context that stands still on a device that is there gets it anew, more and more seldom", async () => {
  const system = await playing();
  system.plays = false;
  system.context.resume = async () => void system.calls.push("resume");
  await system.pass(1500);
  assert.deepEqual(system.calls, ["suspend", "resume"]);
  system.context.state = "running";
  await system.pass(60000);
  assert.ok(system.calls.length < 30, `${system.calls.length} calls`);
  assert.deepEqual(system.told, []);
});

test("where it stands on a connection that is dead, its output is gone until there is another one", async () => {
  const system = await playing();
  system.plays = false;
  system.answers = false;
  system.context.resume = async () => {
    system.context.state = "running";
    system.plays = system.answers;
  };
  await system.pass(1700);
  assert.deepEqual(system.told, [], "its device is given anew first");
  await system.pass(4000);
  assert.deepEqual(system.told, [false]);
  assert.equal(system.context.state, "suspended", "nothing plays to nobody");
  const { currentTime } = system.context;
  system.answers = true;
  await system.pass(2000);
  assert.deepEqual(system.told, [false, true]);
  assert.equal(system.context.state, "running");
  assert.ok(system.context.currentTime - currentTime > 0.5);
});

test("another dead connection is given up sooner, and each further one later", async () => {
  const system = await playing();
  system.context.resume = async () => {
    system.context.state = "running";
    system.answers = false;
  };
  system.plays = false;
  system.answers = false;
  system.status.changed.on((working) => (system.answers = !working));
  /** @type {number[]} */
  const given = [];
  system.status.changed.on((working) => working || given.push(system.time));
  await system.pass(120000);
  const apart = given.slice(1).map((time, index) => time - given[index]);
  assert.ok(apart[0] < 3000, `${apart[0]} ms`);
  assert.ok(apart.length < 20, `${apart.length + 1} in two minutes`);
  assert.ok(apart.at(-1) > 8000);
});

test("a page that stood still itself says nothing about its sound", async () => {
  const system = await playing();
  system.plays = false;
  await system.pass(20000, 20000);
  system.plays = true;
  await system.pass(3000);
  assert.deepEqual(system.calls, []);
});

test("a start without the device that was there waits for it", async () => {
  const system = await playing();
  system.watch.sleep();
  system.unplug();
  await system.pass(60000);
  assert.deepEqual(system.told, [], "while nobody listens, nobody is told");
  system.watch.wake();
  await system.pass(100);
  assert.deepEqual(system.told, [false]);
  assert.ok(!system.calls.includes("resume to nobody"));
  system.hasDevice = true;
  await system.pass(500);
  assert.deepEqual(system.told, [false, true]);
  assert.equal(system.context.state, "running");
});

test("a context made while the device is gone does not play to nobody", async () => {
  const before = await playing();
  before.unplug();
  const system = new SoundSystem({ hasDevice: false });
  system.status.hadDevice = true;
  await settle();
  assert.equal(system.context.state, "suspended");
  system.watch.wake();
  await system.pass(1000);
  assert.deepEqual(system.told, [false]);
  assert.ok(!system.calls.includes("resume to nobody"));
});

test("where there never was a device the music runs, and is told of; the first device gets it", async () => {
  const system = await playing({ hasDevice: false });
  assert.deepEqual(system.told, [false]);
  assert.equal(system.context.state, "running");
  const { currentTime } = system.context;
  await system.pass(10000);
  assert.ok(system.context.currentTime > currentTime + 9);
  system.hasDevice = true;
  await system.pass(3000);
  assert.deepEqual(system.told, [false, true]);
  assert.deepEqual(system.calls.slice(-2), ["suspend", "resume"]);
});

test("a pause while the device is gone stays a pause when it is back", async () => {
  const system = await playing();
  system.unplug();
  await system.pass(2000);
  system.watch.sleep();
  await system.pass(1000);
  system.hasDevice = true;
  await system.pass(5000);
  assert.deepEqual(system.told, [false, true]);
  assert.equal(system.context.state, "suspended");
});

test("a sound system that does not answer holds up a start for a second", async () => {
  const system = await playing();
  system.watch.sleep();
  system.answers = false;
  system.watch.wake();
  await system.pass(1100);
  assert.equal(system.context.state, "running");
});
