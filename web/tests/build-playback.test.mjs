// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { alphaTab, scoreOf } from "./support/played-score.mjs";
import { standIn } from "./support/stand-in.mjs";

const { buildPlayback, providePlayback } = await import("../src/playback/build-playback.js");

const bar = "c4.4 d4.4 e4.4 f4.4 |";

/**
 * @param {import("@coderline/alphatab").midi.MidiFile} midi
 * @returns {import("@coderline/alphatab").midi.NoteOnEvent[]} its notes
 */
const noteEvents = (midi) => standIn(midi.events.filter((event) => event instanceof alphaTab.midi.NoteOnEvent));

/** A score of tracks that are all written for the percussion channel. */
function drums(count) {
  const score = scoreOf(Array(count).fill("\\track \\staff {score} :4 c4 d4 e4 f4 |").join(" "));
  score.tracks.forEach(({ playbackInfo }) => Object.assign(playbackInfo, { primaryChannel: 9, secondaryChannel: 9 }));
  return score;
}

function generated(score) {
  const midi = new alphaTab.midi.MidiFile();
  const generator = new alphaTab.midi.MidiFileGenerator(
    score,
    new alphaTab.Settings(),
    new alphaTab.midi.AlphaSynthMidiFileHandler(midi),
  );
  generator.generate();
  return { midi, bars: generator.tickLookup.masterBars, trackChannels: new Map() };
}

test("a score's times, clicks and count-in come from one step", () => {
  const built = buildPlayback(scoreOf(`\\tempo 120 ${bar} \\ts 3 4 \\tempo 60 c4.4 d4.4 e4.4 |`), generated);
  assert.ok(Math.abs(built.tempoMap.endMs - 5000) < 1);
  assert.equal(built.clicks.pattern.length, 28);
  assert.equal(built.clicks.pattern.filter(({ level }) => level === 0).length, 2);
  const [first, second] = [0, 3840].map((tick) => built.countIn(tick));
  assert.deepEqual(
    [first.beats, Math.round(first.beatLength), second.beats, Math.round(second.beatLength)],
    [4, 500, 3, 1000],
  );
  assert.ok(Math.abs(built.syncPoints.at(-1).synthTime - built.tempoMap.endMs) < 1);
});

test("an upbeat is counted in by a whole bar and by the beats of its own that are not written", () => {
  const upbeat = scoreOf(`\\ac c4.4 | ${bar}`);
  upbeat.masterBars[0].isAnacrusis = true;
  const built = buildPlayback(upbeat, generated);
  const [before, inside] = [0, 960].map((tick) => built.countIn(tick));
  assert.deepEqual([before.beats, before.barBeats], [7, 4]);
  // In a bar that is written whole, also from its middle.
  assert.deepEqual([inside.beats, built.countIn(1920).beats], [4, 4]);
});

test("the clicks lie on channels above all others, in time with the notes, and end before the track does", () => {
  const { midi, clicks } = buildPlayback(scoreOf(`${bar} ${bar}`), generated);
  const notes = noteEvents(midi);
  const own = notes.filter(({ channel }) => channel >= clicks.firstChannel);
  assert.deepEqual(
    own.map(({ tick }) => tick),
    clicks.pattern.map(({ tick }) => tick),
  );
  assert.ok(notes.filter((note) => !own.includes(note)).every(({ channel }) => channel < clicks.firstChannel));
  const ticks = midi.tracks[0].events.map(({ tick }) => tick);
  assert.deepEqual(
    ticks,
    [...ticks].sort((one, other) => one - other),
  );
});

test("each track plays on channels that no other plays on, drums too, and clicks on none of them", () => {
  const { channels, clicks, midi } = buildPlayback(drums(2), generated);
  const [one, two] = [channels.get(0), channels.get(1)];
  assert.equal(one.filter((channel) => two.includes(channel)).length, 0);
  assert.ok([...one, ...two].every((channel) => channel < clicks.firstChannel));
  const played = noteEvents(midi).filter(
    ({ noteVelocity, channel }) => noteVelocity > 0 && channel < clicks.firstChannel,
  );
  assert.equal(played.filter(({ channel }) => two.includes(channel)).length, 4);
});

test("building again gives the same", () => {
  const score = scoreOf(`${bar} ${bar}`);
  const facts = ({ tempoMap, channels, clicks, countIn, midi }) => [
    tempoMap.endMs,
    [...channels],
    clicks,
    countIn(960),
    midi.events.length,
  ];
  assert.deepEqual(facts(buildPlayback(score, generated)), facts(buildPlayback(score, generated)));
});

test("everybody gets the same value, in whatever order", () => {
  const score = scoreOf(bar);
  const { midi, bars } = generated(score);
  const received = [];
  /** @type {(midi: import("@coderline/alphatab").midi.MidiFile) => void} */
  let load = () => assert.fail("nobody wants the notes");
  const api = standIn({
    score,
    tickCache: { masterBars: bars },
    trackChannels: new Map(),
    midiLoad: { on: (receive) => (load = receive) },
  });
  providePlayback(
    api,
    [1, 2, 3].map((user) => ({ use: (built) => received.push([user, built]) })),
  );
  load(midi);
  assert.deepEqual(
    received.map(([user]) => user),
    [1, 2, 3],
  );
  assert.ok(received.every(([, built]) => built === received[0][1] && built.midi === midi));
});
