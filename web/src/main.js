// @ts-check
import { decodeBase64, encodeBase64 } from "./base64.js";
import { connect, expose } from "./bridge.js";
import { Cursor } from "./cursor.js";
import { Desk } from "./desk.js";
import { Documents } from "./documents.js";
import { DrumChannels } from "./drum-channels.js";
import { Engine } from "./engine.js";
import { FineInstruments } from "./fine-instruments.js";
import { Follow } from "./follow.js";
import { Heading } from "./heading.js";
import { Metronome } from "./metronome.js";
import { Mixer } from "./mixer.js";
import { Playback } from "./playback.js";
import { Selection } from "./selection.js";
import { Sheet } from "./sheet.js";
import { SoundBank } from "./sound-bank.js";
import { Tidying } from "./tidying.js";

/** Wires the page together: every call of the program goes to the one module that answers for it. */

/** @param {string} id */
function element(id) {
  const found = document.getElementById(id);
  if (!found) {
    throw new Error(`The page has no element ${id}.`);
  }
  return found;
}

const post = connect();
const paper = element("paper");
const desk = element("desk");
const engine = new Engine(element("sheet"), new Desk(desk, element("sheet")));
const playback = new Playback(engine, post);
// Before the metronome, which takes the channels above all others.
const channels = new DrumChannels(engine);
const metronome = new Metronome(engine, playback);
playback.countWith((tick) => metronome.countInAt(tick));
const mixer = new Mixer(engine, channels, (anySolo) => metronome.setBesideSolo(anySolo));
const instruments = new FineInstruments(engine);
const sheet = new Sheet(engine, paper, desk, new Heading(element("heading")), () => {
  post({ type: "rendered" });
  instruments.scoreDrawn();
});
const selection = new Selection(engine, playback);
new Follow(engine, playback, desk);
new Cursor(engine);
const documents = new Documents({ engine, playback, mixer, selection, sheet, post });
new SoundBank(engine, post);
new Tidying(engine, playback, document);

engine.error.on((error) => post({ type: "error", message: error.message }));
engine.recordingPlayer.failed.on((message) => {
  post({ type: "error", message });
  documents.giveUpRecording();
});

expose({
  loadBase64: (base64) => void documents.open(decodeBase64(base64)),
  loadSample: () => void documents.openDemo(),
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
  setSoundSource: (synthesized) => documents.preferSynthesizer(synthesized),
  setLayout: (layout) => sheet.setLayout(layout),
  setZoom: (zoom) => sheet.setZoom(zoom),
  renderTracks: (trackIds) => sheet.showTracks(trackIds),
  setTrackMute: (trackId, mute) => mixer.setMute(trackId, mute),
  setTrackSolo: (trackId, solo) => mixer.setSolo(trackId, solo),
  setTrackVolume: (trackId, volume) => mixer.setVolume(trackId, volume),
  exportGp: () => documents.exportGuitarPro(encodeBase64),
});

post({ type: "ready" });
