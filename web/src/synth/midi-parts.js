// @ts-check
import { alphaTab } from "../shared/alphatab.js";

/**
 * What is to be played, on its way to the synthesizer's worker. alphaTab hands it over as one value, of which there are
 * three for a while: 50 MB for a score of 1000 bars and twelve tracks. In parts it is only ever a little of it.
 *
 * @typedef {import("../shared/alphatab.js").MidiFile} MidiFile
 *
 * @typedef {object} MidiPart
 * @property {Map<string, unknown> | null} head all but the events; null for further parts
 * @property {number} track that the events are of
 * @property {Map<string, unknown>[]} events
 * @property {boolean} last
 */

/** How many events go at a time. */
const partLength = 2000;

/**
 * @param {MidiFile} midi
 * @returns {Generator<MidiPart>} in the order in which they are to be received
 */
export function* inParts(midi) {
  const { JsonConverter } = alphaTab.model;
  const { division, tickShift, tracks } = midi;
  const shells = tracks.map(() => new Map([["events", []]]));
  /** @type {Map<string, unknown>} */
  const head = new Map(Object.entries({ division, tickShift, tracks: shells }));
  yield { head, track: 0, events: [], last: tracks.every(({ events }) => events.length === 0) };
  for (const [track, { events }] of tracks.entries()) {
    for (let from = 0; from < events.length; from += partLength) {
      const part = events.slice(from, from + partLength).map((event) => JsonConverter.midiEventToJsObject(event));
      const last =
        from + partLength >= events.length && tracks.slice(track + 1).every((one) => one.events.length === 0);
      yield { head: null, track, events: part, last };
    }
  }
}

export class MidiInParts {
  /** @type {MidiFile | null} what there is of it */
  #midi = null;

  /**
   * @param {MidiPart} part
   * @returns {MidiFile | null} all of it, with the last part
   */
  add({ head, track, events, last }) {
    const { JsonConverter } = alphaTab.model;
    this.#midi = head ? JsonConverter.jsObjectToMidiFile(head) : this.#midi;
    const midi = this.#midi;
    for (const event of events) {
      midi?.tracks[track].events.push(JsonConverter.jsObjectToMidiEvent(event));
    }
    this.#midi = last ? null : midi;
    return last ? midi : null;
  }
}
