// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { Signal } from "./support/signal.mjs";
import { alphaTab } from "./support/played-score.mjs";
import { bytesOf, document as musicXml, note, attributes } from "./support/musicxml-maker.mjs";
import { standIn } from "./support/stand-in.mjs";

// The render worker is ready at once.
globalThis.Worker = standIn(
  class {
    addEventListener(type, receive) {
      if (type === "message") {
        queueMicrotask(receive);
      }
    }
  },
);
globalThis.OfflineAudioContext = standIn(
  class {
    decodeAudioData = async () => ({});
  },
);
const { ScoreSession } = await import("../src/session/score-session.js");

const file = (title) =>
  bytesOf(
    musicXml([attributes() + note("C4", 4)], { head: "" }).replace(
      "<part-list>",
      `<work><work-title>${title}</work-title></work><part-list>`,
    ),
  );
const unreadable = Uint8Array.of(1, 2, 3);

function session() {
  const log = [];
  const messages = [];
  const paints = [];
  const leaving = (name) => ({ leaveScore: () => log.push(`${name} leaves`) });
  const settings = new alphaTab.Settings();
  const api = {
    settings,
    score: null,
    playerReady: new Signal(),
    prepareSound: () => log.push("sound"),
    backingTrack: null,
    otherPlayer: false,
    workerRenderer: {
      batchShown: new Signal(),
      remainderShown: new Signal(),
      gaveUp: new Signal(),
      read: () => 1,
      recognize: () => {},
      holdRemainder: () => log.push("remainder held"),
      resume: () => log.push("remainder"),
    },
    choosePlayer: (mode) => {
      log.push(`player ${alphaTab.PlayerMode[mode]}`);
      return api.otherPlayer;
    },
    updateSettings: () => log.push("player changes"),
  };
  const playback = {
    ...leaving("playback"),
    handOver: () => log.push("playback hands over"),
    announceLength: () => log.push("length"),
    repeatPosition: () => log.push("position again"),
  };
  const scoreView = {
    ...leaving("view"),
    showPage: () => {},
    scrollToTop: () => log.push("top"),
    show: (score) => {
      api.score = score;
      log.push(`shows ${score.title}`);
    },
  };
  const notice = {
    beginOpening: () => {},
    continueOpening: () => {},
    endOpening: () => log.push("notice ends"),
    tellProblem: () => {},
  };
  const timing = {
    after: () => 0,
    cancel: () => {},
    afterPaint: (work) => paints.push(work),
    afterSight: (work) => work(),
  };
  const own = new ScoreSession(
    standIn({
      api,
      playback,
      mixer: leaving("mixer"),
      pointerInput: leaving("pointer"),
      scoreView,
      cursor: { showAtStart: () => log.push("cursor") },
      notice,
      post: (message) => messages.push(message),
      timing,
    }),
  );
  return { own, api, log, messages, paints, types: () => messages.map(({ type }) => type) };
}

test("another score replaces range, position and mix of the one before, and then is shown from its top", async () => {
  const { own, log, messages } = session();
  await own.open(file("First"));
  assert.deepEqual(log, [
    "view leaves",
    "pointer leaves",
    "playback leaves",
    "mixer leaves",
    "player EnabledSynthesizer",
    "top",
    "remainder held",
    "shows First",
  ]);
  const [{ type, title, tracks, hasBackingTrack }] = messages;
  assert.deepEqual(
    { type, title, tracks, hasBackingTrack },
    { type: "score", title: "First", tracks: [{ index: 0, name: "Part 0" }], hasBackingTrack: false },
  );
});

test("a file that cannot be read leaves everything as it is, and says why", async () => {
  const { own, log, types } = session();
  await own.open(file("First"));
  const before = [...log];
  await own.open(unreadable);
  await own.open(null);
  assert.deepEqual(log, before);
  assert.deepEqual(types(), ["score", "error", "error"]);
});

test("of files in quick succession the last that can be read stays, however long each takes", async () => {
  const { own, api, log, paints } = session();
  // A long file waits for the notice.
  const first = own.open(file("First".padEnd(100_000)));
  await Promise.all([own.open(file("Second")), own.open(unreadable)]);
  assert.equal(paints.length, 1);
  paints[0]();
  await first;
  assert.equal(api.score.title, "Second");
  assert.deepEqual(
    log.filter((entry) => entry.startsWith("shows")),
    ["shows Second"],
  );
});

test("a score is seen before its sound is prepared, and its remainder laid out when it can be played", async () => {
  const { own, api, log } = session();
  await own.open(file("First"));
  log.length = 0;
  api.workerRenderer.batchShown.trigger({ first: true, last: false });
  assert.deepEqual(log.splice(0), ["notice ends", "cursor", "sound", "length"]);
  api.playerReady.trigger();
  assert.deepEqual(log.splice(0), ["remainder"]);
  api.workerRenderer.remainderShown.trigger();
  api.workerRenderer.batchShown.trigger({ first: false, last: true });
  assert.deepEqual(log, ["notice ends"]);
});

test("what a score leaves on its way is collected when it can be played, of a long one at each station", async (context) => {
  const { own, api, log, paints } = session();
  globalThis.gc = standIn(() => log.push("collection"));
  context.after(() => delete globalThis.gc);
  const open = async (bytes) => {
    const opened = own.open(bytes);
    await new Promise((resolve) => setImmediate(resolve));
    paints.splice(0).forEach((work) => work());
    await opened;
    api.workerRenderer.batchShown.trigger({ first: true, last: false });
    log.push("waits");
    api.playerReady.trigger();
    return log.splice(0).filter((entry) => /collection|shows|sound|waits|remainder$/.test(entry));
  };
  assert.deepEqual(await open(file("First")), ["shows First", "sound", "waits", "remainder", "collection"]);
  const long = musicXml(
    Array.from({ length: 3000 }, () => attributes() + note("C4", 4)),
    { head: "" },
  );
  assert.deepEqual(await open(bytesOf(long)), [
    ...["shows ", "collection", "sound", "collection", "waits", "remainder", "collection"],
  ]);
});

test("a backing track plays unless the synthesizer is preferred, and changing that hands the playback over", async () => {
  const { own, api, log } = session();
  await own.open(file("First"));
  own.preferSynthesizer(true);
  assert.equal(log.includes("playback hands over"), false);
  api.otherPlayer = true;
  own.preferSynthesizer(false);
  assert.deepEqual(log.slice(-2), ["playback hands over", "player changes"]);
});

test("a backing track is given up only where the score has one", async () => {
  const { own, types } = session();
  own.giveUpBackingTrack();
  await own.open(file("First"));
  own.giveUpBackingTrack();
  assert.deepEqual(types(), ["score"]);
});

test("without a score there is nothing to export; with one its bytes are posted", async () => {
  const { own, messages } = session();
  own.exportGuitarPro(() => "");
  assert.equal(messages.at(-1).type, "error");
  await own.open(file("First"));
  own.exportGuitarPro((bytes) => `${bytes.length > 1000}`);
  assert.deepEqual(messages.at(-1), { type: "gpData", data: "true", title: "First" });
});
