// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { callNames, connect, expose, messageTypes } from "../src/bridge/bridge.js";
import { standIn } from "./support/stand-in.mjs";

/** A channel whose opening the test decides. */
function heldChannel() {
  const received = [];
  let open;
  let object;
  const receivers = {};
  const signal = (name) => ({ connect: (receive) => (receivers[name] = receive) });
  const scope = {
    qt: { webChannelTransport: {} },
    QWebChannel: class {
      constructor(transport, ready) {
        assert.equal(transport, scope.qt.webChannelTransport);
        const qv = { postMessage: (message) => received.push(message) };
        const host = {
          reportAudioOutput: (working) => received.push({ working }),
          reportSynthLost: () => received.push("synth lost"),
          reportSections: (sections) => received.push({ sections }),
          reportRange: (range) => received.push({ range }),
          reportPrintPrepared: (succeeded) => received.push({ succeeded }),
          look: { dark: false, staves: "both" },
          reportLoopSpan: (...loop) => received.push({ loop }),
          reportLoopWanted: () => received.push("loop wanted"),
          ...Object.fromEntries(
            [
              "keyPressed",
              "lookChanged",
              "countsInPassesChanged",
              "rangeWanted",
              "fretboardWanted",
              "printWanted",
              "printEnded",
            ].map((name) => [name, signal(name)]),
          ),
        };
        object = host;
        open = () => ready({ objects: { qv, host } });
      }
    },
  };
  return {
    scope,
    received,
    open: () => open(),
    host: () => object,
    emit: (name, ...values) => receivers[name](...values),
  };
}

test("there are twenty calls and eight messages, each once", () => {
  assert.equal(new Set(callNames).size, 20);
  assert.equal(new Set(messageTypes).size, 8);
});

test("messages posted before the channel stands arrive in order", () => {
  const { scope, received, open } = heldChannel();
  const { post } = connect(scope);
  post({ type: "ready" });
  post({ type: "state", playing: true });
  assert.deepEqual(received, []);
  open();
  post({ type: "rendered" });
  assert.deepEqual(
    received.map((message) => message.type),
    ["ready", "state", "rendered"],
  );
});

test("what the page reports to its host arrives like a message, and is none", () => {
  const { scope, received, open } = heldChannel();
  const { host } = connect(scope);
  host.reportAudioOutput(false);
  open();
  host.reportAudioOutput(true);
  host.reportSynthLost();
  host.reportSections([{ title: "A", start: 5 }]);
  host.reportRange({});
  host.reportPrintPrepared(true);
  host.reportLoopSpan(500, 1500);
  host.reportLoopWanted();
  assert.deepEqual(received, [
    { working: false },
    { working: true },
    "synth lost",
    { sections: [{ title: "A", start: 5 }] },
    { range: {} },
    { succeeded: true },
    { loop: [500, 1500] },
    "loop wanted",
  ]);
});

test("a key that the program hands over arrives in the page", () => {
  const { scope, open, emit } = heldChannel();
  const { keyPressed } = connect(scope);
  const keys = [];
  keyPressed.on((key) => keys.push(key));
  open();
  emit("keyPressed", "Ctrl+Left");
  assert.deepEqual(keys, ["Ctrl+Left"]);
});

test("whether passes are counted in is known from the beginning, and with each change", () => {
  const { scope, open, emit, host } = heldChannel();
  const { passCountInWanted } = connect(scope);
  const told = [];
  passCountInWanted.on((on) => told.push(on));
  open();
  host().countsInPasses = true;
  emit("countsInPassesChanged");
  assert.deepEqual(told, [false, true]);
});

test("how the score is to look is known from the beginning, and with each change", () => {
  const { scope, open, emit, host } = heldChannel();
  const { lookWanted } = connect(scope);
  const looks = [];
  lookWanted.on((wanted) => looks.push(wanted));
  open();
  host().look = { dark: true, staves: "notation" };
  emit("lookChanged");
  assert.deepEqual(looks, [
    { dark: false, staves: "both" },
    { dark: true, staves: "notation" },
  ]);
});

test("what the program wants beside its calls arrives in the page", () => {
  const { scope, open, emit } = heldChannel();
  const wishes = connect(scope);
  const arrived = [];
  for (const name of ["rangeWanted", "fretboardWanted", "printWanted", "printEnded"]) {
    wishes[name].on((value) => arrived.push([name, value]));
  }
  open();
  const range = { startBar: 1, startTick: 0, endBar: 2, endTick: -1 };
  emit("rangeWanted", range);
  emit("fretboardWanted", true, false);
  emit("printWanted", 700, 1000);
  emit("printEnded");
  assert.deepEqual(arrived, [
    ["rangeWanted", range],
    ["fretboardWanted", { shown: true, leftHanded: false }],
    ["printWanted", { width: 700, height: 1000 }],
    ["printEnded", undefined],
  ]);
});

test("no time leaves the page that cannot be shown", () => {
  const { scope, received, open } = heldChannel();
  const { post } = connect(scope);
  const longest = Number.MAX_SAFE_INTEGER;
  const cases = [
    [1500, 1500],
    [NaN, 0],
    [Infinity, longest],
    [-Infinity, 0],
    [1e300, longest],
    [-3, 0],
    [undefined, 0],
  ];
  post({ type: "position", currentTime: NaN, endTime: Infinity });
  open();
  assert.deepEqual(received.pop(), { type: "position", currentTime: 0, endTime: longest });
  for (const [time, told] of cases) {
    post({ type: "position", currentTime: time, endTime: 1000 });
    post({ type: "position", currentTime: 1000, endTime: time });
    assert.deepEqual(received.splice(0), [
      { type: "position", currentTime: told, endTime: 1000 },
      { type: "position", currentTime: 1000, endTime: told },
    ]);
  }
});

test("without a channel around the page messages go nowhere", () => {
  assert.doesNotThrow(() => connect({}).post({ type: "ready" }));
});

test("the calls are reachable and cannot be replaced", () => {
  const calls = standIn(Object.fromEntries(callNames.map((name) => [name, () => name])));
  expose(calls);
  assert.deepEqual(Object.keys(globalThis.qv), [...callNames]);
  assert.equal(globalThis.qv.stop(), "stop");
  assert.throws(() => {
    "use strict";
    globalThis.qv.stop = null;
  });
});
