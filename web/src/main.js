// @ts-check
import { decodeBase64, encodeBase64 } from "./bridge/base64.js";
import { connect, expose } from "./bridge/bridge.js";
import { Cursor } from "./score-view/cursor.js";
import { keyTable } from "./score-view/keys.js";
import { Movement } from "./score-view/movement.js";
import { markedSections } from "./score-view/steps.js";
import { Viewport } from "./score-view/viewport.js";
import { ScoreSession } from "./session/score-session.js";
import { PageApi } from "./alphatab/page-api.js";
import { FretboardSwitch } from "./fretboard/fretboard-switch.js";
import { FineInstruments } from "./sounds/fine-instruments.js";
import { AutoScroll } from "./score-view/auto-scroll.js";
import { ScoreFooter } from "./score-view/score-footer.js";
import { ScoreHeader } from "./score-view/score-header.js";
import { Metronome } from "./metronome/metronome.js";
import { Mixer } from "./playback/mixer.js";
import { Notice } from "./score-view/notice.js";
import { outputStatus } from "./audio/output-watch.js";
import { providePlayback } from "./playback/build-playback.js";
import { playInOrder } from "./alphatab/play-through.js";
import { Playback } from "./playback/playback.js";
import { scoreOrder } from "./playback/score-order.js";
import { PrintedScore } from "./printing/printed-score.js";
import { Paging } from "./score-view/paging.js";
import { PointerInput } from "./score-view/pointer-input.js";
import { fromHost, toHost } from "./score-view/host-range.js";
import { RangeLayer } from "./score-view/range-layer.js";
import { RangeSelection } from "./score-view/range-selection.js";
import { SynthPlayer } from "./synth/synth-player.js";
import { ScoreView } from "./score-view/score-view.js";
import { SectionMarks } from "./score-view/section-marks.js";
import { SoundBank } from "./sounds/sound-bank.js";
import { IdleCollection } from "./session/idle-collection.js";

/** Wires the page together: every call of the program goes to the one module that answers for it. */

/** What readers are told while there is no sound: the device was there before, or never. */
const lostOutput = "There is no audio output any more. The music goes on when it is back.";
const noOutput = "There is no audio output. The music plays without a sound.";

/** @param {string} id */
function element(id) {
  const found = document.getElementById(id);
  if (!found) {
    throw new Error(`The page has no element ${id}.`);
  }
  return found;
}

playInOrder((score) => scoreOrder(score).bars);
const { post, host, ...wishes } = connect();
const { keyPressed, lookWanted, passCountInWanted, rangeWanted, fretboardWanted, printWanted, printEnded } = wishes;
const scorePage = element("score-page");
const viewport = element("viewport");
const api = new PageApi(element("notation"), new Viewport(viewport, element("notation")));
const playback = new Playback(api, post);
passCountInWanted.on((on) => playback.setCountsInPasses(on));
const metronome = new Metronome(api);
const mixer = new Mixer(api, (anySolo) => metronome.setBesideSolo(anySolo));
providePlayback(api, [api, playback, metronome, mixer]);
const instruments = new FineInstruments(api);
const scoreHeader = new ScoreHeader(element("score-header"));
const scoreFooter = new ScoreFooter(element("score-footer"));
const scoreView = new ScoreView(api, scorePage, viewport, scoreHeader, scoreFooter, () => {
  post({ type: "rendered" });
  instruments.scoreDrawn();
});
lookWanted.on((look) => scoreView.setLook(look));
const rangeSelection = new RangeSelection(api, playback, new RangeLayer(api));
const pointerInput = new PointerInput(api, playback, viewport, rangeSelection, () => host.reportLoopWanted());
const autoScroll = new AutoScroll(api, playback, viewport);
const cursor = new Cursor(api);
const keys = keyTable({
  movement: new Movement(api, playback),
  ranges: rangeSelection,
  paging: new Paging(api, viewport, autoScroll),
});
keyPressed.on((key) => keys[key]?.());
new SectionMarks(api, playback, viewport, element("section-marks"));
const notice = new Notice(element("notice"));
const session = new ScoreSession({ api, playback, mixer, pointerInput, scoreView, cursor, notice, post });
new SoundBank(api, post);
new IdleCollection(api, playback, document);

api.scoreLoaded.on(() => host.reportSections([]));
api.scorePrepared.on(() => {
  const sections = markedSections(api.tickCache?.masterBars ?? []);
  host.reportSections(sections.map(({ title, tick }) => ({ title, start: playback.scoreMs(tick) })));
});

const reportLoopSpan = () => {
  const { range } = playback;
  host.reportLoopSpan(
    range ? playback.scoreMs(range.startTick) : 0,
    range ? playback.scoreMs(range.endTick) : playback.endTime,
  );
};
rangeSelection.changed.on(reportLoopSpan);
api.scorePrepared.on(reportLoopSpan);

// Behind the message of the score that it belongs to.
rangeSelection.changed.on((range) => queueMicrotask(() => host.reportRange(range ? toHost(range) : {})));
rangeWanted.on((range) => rangeSelection.choose(fromHost(range, api.score?.masterBars.length ?? 0)));

const fretboard = new FretboardSwitch({ api, playback, mixer }, document.body);
fretboardWanted.on((state) => fretboard.set(state));

const printedScore = new PrintedScore(api, document.body);
printWanted.on((room) => {
  const failed = (/** @type {unknown} */ reason) => {
    post({ type: "error", message: `The score cannot be printed (${reason}).` });
    host.reportPrintPrepared(false);
  };
  printedScore.prepare(room).then(host.reportPrintPrepared, failed);
});
printEnded.on(() => printedScore.remove());

// Nothing but a page that is loaded anew brings it back.
SynthPlayer.lost.on(() => host.reportSynthLost());
outputStatus.changed.on((working) => {
  host.reportAudioOutput(working);
  notice.keep(!working && outputStatus.hadDevice ? lostOutput : null);
  if (!working && !outputStatus.hadDevice) {
    // The music does not wait for it: said once, it need not cover the score.
    notice.tellProblem(noOutput);
  }
});

// What fails in a task of its own reaches nobody else.
addEventListener("error", ({ message }) =>
  post({ type: "error", message: `Something in the page failed (${message}).` }),
);
addEventListener("unhandledrejection", ({ reason }) =>
  post({
    type: "error",
    message: `Something in the page failed (${reason instanceof Error ? reason.message : reason}).`,
  }),
);
api.error.on((error) => {
  notice.endOpening();
  post({ type: "error", message: error.message });
});
api.workerRenderer.gaveUp.on((sentence) => notice.tellProblem(sentence));
api.backingTrackPlayer.failed.on((message) => {
  post({ type: "error", message });
  session.giveUpBackingTrack();
});

expose({
  loadBase64: (base64) => void session.open(decodeBase64(base64)),
  loadSample: () => void session.openDemo(),
  playPause: () => playback.playPause(),
  stop: () => playback.stop(),
  seekToTime: (ms) => playback.seekToTime(ms),
  setSpeed: (ratio) => playback.setSpeed(ratio),
  setMasterVolume: (volume) => playback.setMasterVolume(volume),
  setLooping: (on) => playback.setLooping(on),
  setMetronome: (on) => metronome.turn(on),
  setCountIn: (on) => playback.setCountIn(on === 1),
  configMetronome: (volume, sound, accent, mode) => metronome.configure({ volume, sound, accent, mode }),
  previewMetronome: () => metronome.preview(),
  setSoundSource: (synthesized) => session.preferSynthesizer(synthesized),
  setLayout: (layout) => scoreView.setLayout(layout),
  setZoom: (zoom) => scoreView.setZoom(zoom),
  renderTracks: (trackIds) => scoreView.showTracks(trackIds),
  setTrackMute: (trackId, mute) => mixer.setMute(trackId, mute),
  setTrackSolo: (trackId, solo) => mixer.setSolo(trackId, solo),
  setTrackVolume: (trackId, volume) => mixer.setVolume(trackId, volume),
  exportGp: () => session.exportGuitarPro(encodeBase64),
});

post({ type: "ready" });
