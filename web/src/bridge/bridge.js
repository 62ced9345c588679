// @ts-check
import { Emitter } from "../shared/emitter.js";

/**
 * Both directions between the page and the program around it, in one place: the calls the program makes on
 * `window.qv` and the messages the page posts back.
 *
 * Times are milliseconds of score time, which run at the score's own tempo whatever the playback speed.
 *
 * @typedef {object} Calls
 * @property {(base64: string) => void} loadBase64 Opens a Guitar Pro or MusicXML file; the format is found out here.
 * @property {() => void} loadSample Opens the demo score.
 * @property {() => void} playPause
 * @property {() => void} stop
 * @property {(ms: number) => void} seekToTime
 * @property {(ratio: number) => void} setSpeed 1 is the score's own tempo.
 * @property {(volume: number) => void} setMasterVolume 0 is silent, 1 is full.
 * @property {(on: boolean) => void} setLooping
 * @property {(on: boolean) => void} setMetronome
 * @property {(on: number) => void} setCountIn 1 or 0.
 * @property {(volume: number, sound: string, accent: boolean, mode: string) => void} configMetronome
 * @property {() => void} previewMetronome
 * @property {(synthesized: boolean) => void} setSoundSource false plays the file's backing track where it has one.
 * @property {(layout: string) => void} setLayout "page" or "horizontal".
 * @property {(zoom: number) => void} setZoom 1 is the engraved size.
 * @property {(trackIds: number[]) => void} renderTracks
 * @property {(trackId: number, mute: boolean) => void} setTrackMute
 * @property {(trackId: number, solo: boolean) => void} setTrackSolo
 * @property {(trackId: number, volume: number) => void} setTrackVolume
 * @property {() => void} exportGp
 *
 * @typedef {{ index: number, name: string }} TrackEntry
 * @typedef {{ title: string, artist: string, tracks?: TrackEntry[], hasBackingTrack: boolean }} ScoreFacts Without tracks
 *     those of the last message stay as they are.
 *
 * @typedef {{ type: "ready" }
 *   | { type: "playerReady" }
 *   | { type: "score" } & ScoreFacts
 *   | { type: "state", playing: boolean }
 *   | { type: "position", currentTime: number, endTime: number }
 *   | { type: "error", message: string }
 *   | { type: "gpData", data: string, title: string }
 *   | { type: "rendered" }} Message
 *
 * @typedef {(message: Message) => void} Post
 *
 * @typedef {object} Host What the page reports of itself to what is around it; the program's state does not depend on it.
 * @property {(working: boolean) => void} reportAudioOutput The page has no audio output any more, or has one again.
 * @property {() => void} reportSynthLost Nothing but a page that is loaded anew has a synthesizer again.
 * @property {(sections: { title: string, start: number }[]) => void} reportSections Those of the score that is shown; they
 *     start at a score time.
 * @property {(range: HostRange | {}) => void} reportRange What looping loops; without members for the whole score.
 * @property {(succeeded: boolean) => void} reportPrintPrepared The pages for a printer are there, or cannot be made.
 * @property {(startMs: number, endMs: number) => void} reportLoopSpan What looping loops, in score time.
 * @property {() => void} reportLoopWanted The range that was just chosen is to be looped.
 *
 * @typedef {{ startBar: number, startTick: number, endBar: number, endTick: number }} HostRange of the score as it is
 *     written; an end tick below 0 is the end of the bar
 *
 * @typedef {"both" | "tablature" | "notation"} ShownStaves What staves with strings show.
 * @typedef {{ dark: boolean, staves: ShownStaves }} Look
 *
 * @typedef {object} Wishes what the program wants of the page beside its calls
 * @property {Emitter<string>} keyPressed One of the keys of keys.js.
 * @property {Emitter<Look>} lookWanted How the score is to look, at the beginning and with each change.
 * @property {Emitter<boolean>} passCountInWanted Whether the count-in, where it is on, is before each pass of a loop; at the
 *     beginning and with each change.
 * @property {Emitter<HostRange>} rangeWanted Looping is to loop that.
 * @property {Emitter<{ shown: boolean, leftHanded: boolean }>} fretboardWanted
 * @property {Emitter<{ width: number, height: number }>} printWanted Pages for a printer are to be made, each with so much
 *     room in CSS pixels.
 * @property {Emitter<void>} printEnded Nobody needs those pages any more.
 */

/** @type {readonly (keyof Calls)[]} */
export const callNames = [
  "loadBase64",
  "loadSample",
  "playPause",
  "stop",
  "seekToTime",
  "setSpeed",
  "setMasterVolume",
  "setLooping",
  "setMetronome",
  "setCountIn",
  "configMetronome",
  "previewMetronome",
  "setSoundSource",
  "setLayout",
  "setZoom",
  "renderTracks",
  "setTrackMute",
  "setTrackSolo",
  "setTrackVolume",
  "exportGp",
];

/** @type {readonly Message["type"][]} */
export const messageTypes = ["ready", "playerReady", "score", "state", "position", "error", "gpData", "rendered"];

/**
 * Makes the calls reachable for the program around the page.
 *
 * @param {Calls} calls
 */
export function expose(calls) {
  Object.defineProperty(globalThis, "qv", { value: Object.freeze({ ...calls }) });
}

/**
 * Opens the way to the program. Messages posted before the channel stands wait for it in order; in a page without a
 * channel around it (a plain browser) they go nowhere.
 *
 * @param {any} [scope] where the channel's two globals are looked up
 * @returns {{ post: Post, host: Host } & Wishes}
 */
export function connect(scope = globalThis) {
  /** @type {Wishes} */
  const wishes = {
    keyPressed: new Emitter(),
    lookWanted: new Emitter(),
    passCountInWanted: new Emitter(),
    rangeWanted: new Emitter(),
    fretboardWanted: new Emitter(),
    printWanted: new Emitter(),
    printEnded: new Emitter(),
  };
  const transport = scope.qt?.webChannelTransport;
  if (!transport || !scope.QWebChannel) {
    const nothing = () => {};
    const host = {
      reportAudioOutput: nothing,
      reportSynthLost: nothing,
      reportSections: nothing,
      reportRange: nothing,
      reportPrintPrepared: nothing,
      reportLoopSpan: nothing,
      reportLoopWanted: nothing,
    };
    return { post: nothing, host, ...wishes };
  }
  /** @typedef {{ qv?: { postMessage: Post }, host?: Host & HostSignals }} Receivers */
  /** @type {((receivers: Receivers) => void)[] | null} */
  let waiting = [];
  /** @type {Receivers} */
  let receivers = {};
  new scope.QWebChannel(transport, (/** @type {{ objects: Receivers }} */ channel) => {
    receivers = channel.objects;
    passOn(receivers.host ?? {}, wishes);
    for (const send of waiting ?? []) {
      send(receivers);
    }
    waiting = null;
  });
  /** @param {(receivers: Receivers) => void} send */
  const deliver = (send) => {
    if (waiting) {
      waiting.push(send);
    } else {
      send(receivers);
    }
  };
  return {
    post: (message) => {
      const bounded = message.type === "position" ? boundedPosition(message) : message;
      deliver(({ qv }) => qv?.postMessage(bounded));
    },
    host: {
      reportAudioOutput: (working) => deliver(({ host }) => host?.reportAudioOutput(working)),
      reportSynthLost: () => deliver(({ host }) => host?.reportSynthLost()),
      reportSections: (sections) => deliver(({ host }) => host?.reportSections(sections)),
      reportRange: (range) => deliver(({ host }) => host?.reportRange(range)),
      reportPrintPrepared: (succeeded) => deliver(({ host }) => host?.reportPrintPrepared(succeeded)),
      reportLoopSpan: (startMs, endMs) => deliver(({ host }) => host?.reportLoopSpan(startMs, endMs)),
      reportLoopWanted: () => deliver(({ host }) => host?.reportLoopWanted()),
    },
    ...wishes,
  };
}

/**
 * @typedef {{ connect: (receive: (...values: any[]) => void) => void }} Signal of an object of the program
 *
 * @typedef {Partial<Record<keyof Wishes | "lookChanged" | "countsInPassesChanged", Signal>>} Signals
 * @typedef {Signals & { look?: Look, countsInPasses?: boolean }} HostSignals `look` and `countsInPasses` as they are now
 *
 * @param {HostSignals} signals
 * @param {Wishes} wishes
 */
function passOn(signals, wishes) {
  signals.keyPressed?.connect((key) => wishes.keyPressed.trigger(key));
  const tellLook = () => signals.look && wishes.lookWanted.trigger(signals.look);
  signals.lookChanged?.connect(tellLook);
  tellLook();
  const tellCountIn = () => wishes.passCountInWanted.trigger(Boolean(signals.countsInPasses));
  signals.countsInPassesChanged?.connect(tellCountIn);
  tellCountIn();
  signals.rangeWanted?.connect((range) => wishes.rangeWanted.trigger(range));
  signals.fretboardWanted?.connect((shown, leftHanded) => wishes.fretboardWanted.trigger({ shown, leftHanded }));
  signals.printWanted?.connect((width, height) => wishes.printWanted.trigger({ width, height }));
  signals.printEnded?.connect(() => wishes.printEnded.trigger());
}

/**
 * The longest time that is told, in milliseconds: the largest number that counts them exactly. The program shows any time
 * up to that, and has no answer to one that is none.
 */
const longestTime = Number.MAX_SAFE_INTEGER;

/** @param {Extract<Message, { type: "position" }>} message */
function boundedPosition({ type, currentTime, endTime }) {
  return { type, currentTime: boundedTime(currentTime), endTime: boundedTime(endTime) };
}

/** @param {number} ms */
function boundedTime(ms) {
  return ms > 0 ? Math.min(ms, longestTime) : 0;
}
