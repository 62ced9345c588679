// @ts-check
import { mostVoices, tolerance } from "./values.js";

/**
 * Sorts a part's events into staves and voices as alphaTab has them: numbered from the first in each staff, and in each of
 * them one event after the other. Files name voices as they like, number those of a lower staff on from the upper one's,
 * let a voice wander between staves, and let notes of one voice overlap.
 *
 * @typedef {import("./events.js").MusicEvent} MusicEvent
 * @typedef {import("./events.js").Measure} Measure
 *
 * @typedef {MusicEvent[][][]} Staves the events of a bar by staff and voice, in order; voices without any are empty
 */

/**
 * @param {Measure[]} measures of one part
 * @param {number} staffCount
 * @returns {Staves[]} for each measure
 */
export function assignVoices(measures, staffCount) {
  const orders = voiceOrders(measures, staffCount);
  return measures.map(({ events }) => {
    /** @type {Staves} */
    const staves = [];
    for (let staff = 1; staff <= staffCount; staff++) {
      staves.push(voicesOf(events, staff, orders[staff - 1]));
    }
    return staves;
  });
}

/**
 * @param {MusicEvent[]} events of a bar
 * @param {number} staff
 * @param {string[]} order of the staff's voices
 */
function voicesOf(events, staff, order) {
  /** @type {MusicEvent[][]} */
  const voices = order.slice(0, mostVoices).map(() => []);
  /** @type {MusicEvent[]} */
  const displaced = [];
  for (const event of events) {
    if (event.staff === staff) {
      // Voices beyond those that a staff can have share the last one.
      voices[Math.min(order.indexOf(event.voice), mostVoices - 1)].push(event);
    }
  }
  voices.forEach((voice, index) => {
    voices[index] = inOrder(voice, displaced);
  });
  for (const event of displaced) {
    place(event, voices);
  }
  return voices;
}

/**
 * @param {MusicEvent[]} events of one voice
 * @param {MusicEvent[]} displaced takes the events that begin before others have ended
 */
function inOrder(events, displaced) {
  // Stable: grace notes stay before the note at the same time, and after the one before it.
  const sorted = events.some(({ onset }, i) => i > 0 && onset < events[i - 1].onset)
    ? [...events].sort((a, b) => a.onset - b.onset)
    : events;
  /** @type {MusicEvent[]} */
  const placed = [];
  let end = 0;
  for (const event of sorted) {
    const last = placed.at(-1);
    if (event.onset >= end - tolerance) {
      event.onset = Math.max(event.onset, end);
      event.end = Math.max(event.end, event.onset);
      if (event.grace || event.end > event.onset) {
        placed.push(event);
        end = event.end;
      }
    } else if (last?.rest && !last.fillsBar && event.onset <= last.onset + tolerance && !event.rest) {
      // A rest beside notes of the same voice says nothing.
      placed.pop();
      placed.push(event);
      end = Math.max(event.end, end);
    } else if (
      last &&
      !event.rest &&
      !last.rest &&
      !last.grace &&
      !event.grace &&
      last.onset === event.onset &&
      last.end === event.end
    ) {
      last.notes.push(...event.notes);
    } else if (!event.rest) {
      displaced.push(event);
    }
  }
  return placed;
}

/**
 * @param {MusicEvent} event
 * @param {MusicEvent[][]} voices of the staff; the event goes where there is room, or into a voice of its own
 */
function place(event, voices) {
  for (let index = 1; index <= Math.min(voices.length, mostVoices - 1); index++) {
    const voice = (voices[index] ??= []);
    const at = voice.findIndex(({ onset }) => onset >= event.end);
    const before = at < 0 ? voice.at(-1) : voice[at - 1];
    if (!before || before.end <= event.onset) {
      voice.splice(at < 0 ? voice.length : at, 0, event);
      return;
    }
  }
}

/**
 * The order of each staff's voices: first those at home there, then those that only visit, each by number.
 *
 * @param {Measure[]} measures
 * @param {number} staffCount
 * @returns {string[][]}
 */
function voiceOrders(measures, staffCount) {
  /** @type {Map<string, number[]>} how many events each voice has in each staff */
  const counts = new Map();
  for (const { events } of measures) {
    for (const { voice, staff } of events) {
      let count = counts.get(voice);
      if (!count) {
        count = new Array(staffCount).fill(0);
        counts.set(voice, count);
      }
      count[staff - 1]++;
    }
  }
  const names = [...counts.keys()].sort((a, b) => (Number(a) || 0) - (Number(b) || 0) || (a < b ? -1 : 1));
  return Array.from({ length: staffCount }, (_, staff) => {
    const present = names.filter((name) => (counts.get(name)?.[staff] ?? 0) > 0);
    const atHome = present.filter((name) =>
      counts.get(name)?.every((count) => count <= (counts.get(name)?.[staff] ?? 0)),
    );
    return [...atHome, ...present.filter((name) => !atHome.includes(name))];
  });
}
