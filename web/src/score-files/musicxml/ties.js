// @ts-check
import { keyOf, tolerance } from "./values.js";

/**
 * Finds the notes that are tied. Files mark where ties start and stop, for the eye or for the ear or for both, and forget
 * one or the other. Two notes of the same key are tied here when one starts a tie, the other begins when the first one
 * ends, and it either stops a tie, or follows in the same voice where the tie is drawn.
 *
 * @typedef {import("../containers/xml-scanner.js").XmlElement} XmlElement
 * @typedef {import("./voices.js").Staves} Staves
 *
 * @typedef {object} Tie
 * @property {XmlElement} from
 * @property {XmlElement} to
 * @property {boolean} acrossStaves
 *
 * @typedef {object} Open a note that starts a tie
 * @property {XmlElement} note
 * @property {number} staff
 * @property {number} voice
 * @property {number} end in ticks from the beginning of the score
 * @property {boolean} drawn whether the tie is there for the eye
 */

/** How many ties of one key wait for their end. */
const mostOpenTies = 32;

/**
 * @param {Staves[]} bars of one part
 * @param {number[]} starts of the bars, in ticks
 * @returns {Tie[]}
 */
export function findTies(bars, starts) {
  /** @type {Tie[]} */
  const ties = [];
  /** @type {Map<number, Open[]>} by key */
  const open = new Map();
  bars.forEach((staves, bar) => {
    dropPassed(open, starts[bar]);
    for (const { notes, onset, end, staff, voice } of inTime(staves, starts[bar + 1] - starts[bar])) {
      /** @type {[number, Open][]} */
      const started = [];
      for (const note of notes) {
        const marks = tieMarks(note);
        const key = marks.start || open.size > 0 ? keyOf(note.child("pitch")) : null;
        if (key === null) {
          continue;
        }
        const candidates = open.get(key);
        const from = candidates ? take(candidates, starts[bar] + onset, staff, voice, marks.stop) : null;
        if (from) {
          ties.push({ from: from.note, to: note, acrossStaves: from.staff !== staff });
        }
        if (marks.start) {
          started.push([key, { note, staff, voice, end: starts[bar] + end, drawn: marks.drawn }]);
        }
      }
      for (const [key, start] of started) {
        const others = open.get(key);
        if (others) {
          others.push(start);
          // Ties that nothing stops are not looked at for ever.
          others.splice(0, Math.max(0, others.length - mostOpenTies));
        } else {
          open.set(key, [start]);
        }
      }
    }
  });
  return ties;
}

/**
 * @param {Map<number, Open[]>} open loses those whose end has passed
 * @param {number} time
 */
function dropPassed(open, time) {
  for (const [key, starts] of open) {
    const left = starts.filter(({ end }) => end >= time - tolerance);
    if (left.length === 0) {
      open.delete(key);
    } else {
      open.set(key, left);
    }
  }
}

/**
 * @param {Staves} staves of a bar
 * @param {number} length of the bar; what is last in its voice leads to the next one, also where the voice is too short
 */
function inTime(staves, length) {
  /** @type {{ notes: XmlElement[], onset: number, end: number, staff: number, voice: number }[]} */
  const all = [];
  staves.forEach((voices, staff) => {
    voices.forEach((events, voice) => {
      events.forEach(({ notes, onset, end, rest }, i) => {
        if (!rest) {
          all.push({ notes, onset, end: i + 1 === events.length ? length : end, staff, voice });
        }
      });
    });
  });
  return all.sort((a, b) => a.onset - b.onset || a.end - b.end);
}

/**
 * @param {XmlElement} note
 * @returns {{ start: boolean, stop: boolean, drawn: boolean }}
 */
function tieMarks(note) {
  const marks = { start: false, stop: false, drawn: false };
  for (const child of note.children) {
    if (child.name === "tie") {
      mark(child, marks);
    } else if (child.name === "notations") {
      for (const notation of child.children) {
        if (notation.name === "tied") {
          mark(notation, marks);
          marks.drawn ||= notation.attributes.get("type") !== "stop";
        }
      }
    }
  }
  return marks;
}

/**
 * @param {XmlElement} element
 * @param {{ start: boolean, stop: boolean }} marks
 */
function mark(element, marks) {
  const type = element.attributes.get("type");
  marks.start ||= type === "start" || type === "continue";
  marks.stop ||= type === "stop" || type === "continue";
}

/**
 * @param {Open[]} candidates loses the one that is taken
 * @param {number} time
 * @param {number} staff
 * @param {number} voice
 * @param {boolean} stops whether the note says that it stops a tie
 * @returns {Open | null}
 */
function take(candidates, time, staff, voice, stops) {
  let best = -1;
  let bestScore = -1;
  candidates.forEach((candidate, index) => {
    const score = (candidate.staff === staff ? 2 : 0) + (candidate.voice === voice ? 1 : 0);
    const meant = stops || (candidate.drawn && score === 3);
    if (meant && Math.abs(candidate.end - time) <= tolerance && score > bestScore) {
      best = index;
      bestScore = score;
    }
  });
  return best < 0 ? null : candidates.splice(best, 1)[0];
}
