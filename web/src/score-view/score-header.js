// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { translated } from "../shared/texts.js";

/**
 * What stands over the notation: title, people, and how the instruments are tuned. The page sets these lines itself,
 * because alphaTab neither breaks a long title nor keeps lines of text apart.
 *
 * @typedef {import("../shared/alphatab.js").Score} Score
 * @typedef {import("../shared/alphatab.js").Track} Track
 */

export class ScoreHeader {
  #element;

  /** @param {HTMLElement} element an empty element over the notation */
  constructor(element) {
    this.#element = element;
  }

  /**
   * @param {Score} score
   * @param {readonly Track[]} tracks the ones that are drawn
   */
  show(score, tracks) {
    const lines = [
      line("h1", "title", score.title),
      line("p", "subtitle", score.subTitle),
      line("p", "artist", [score.artist, score.album].filter(Boolean).join(" · ")),
      line("p", "people", people(score)),
      ...tunings(tracks).map((text) => line("p", "tuning", text)),
    ];
    this.#element.replaceChildren(...lines.filter((element) => element !== null));
  }
}

/**
 * @param {string} tag
 * @param {string} kind
 * @param {string} text
 */
function line(tag, kind, text) {
  if (!text) {
    return null;
  }
  const element = document.createElement(tag);
  element.className = kind;
  element.textContent = text;
  return element;
}

/** @param {Score} score */
function people(score) {
  const { words, music } = score;
  if (words && words === music) {
    return translated(`Words and music by ${words}`);
  }
  return [words && translated(`Words by ${words}`), music && translated(`Music by ${music}`)]
    .filter(Boolean)
    .join(", ");
}

/**
 * One line for each way in which instruments differ from what everybody expects, with the tracks it holds for.
 *
 * @param {readonly Track[]} tracks
 */
function tunings(tracks) {
  /** @type {Map<string, string[]>} */
  const tracksByTuning = new Map();
  for (const track of tracks) {
    const text = tuning(track);
    if (text) {
      tracksByTuning.set(text, [...(tracksByTuning.get(text) ?? []), track.name]);
    }
  }
  return Array.from(tracksByTuning, ([text, names]) => `${names.filter(Boolean).join(", ")}: ${text}`);
}

/**
 * alphaTab's "Guitar Dropped D Tuning" is the player's "Dropped D".
 *
 * @param {string} name
 */
function tuningName(name) {
  return name
    .replace(/^(Guitar|Bass)\s/, "")
    .replace(/\sTuning$/, "")
    .trim();
}

/**
 * The strings from low to high where they are not in standard tuning, with the tuning's name, and the capo.
 *
 * @param {Track} track
 */
function tuning(track) {
  const staff = track.staves.find((candidate) => candidate.stringTuning.tunings.length > 0 && !candidate.isPercussion);
  if (!staff) {
    return "";
  }
  const strings = staff.stringTuning;
  const facts = [];
  if (!strings.isStandard) {
    const notes = strings.tunings.map((note) => alphaTab.model.Tuning.getTextForTuning(note, false));
    const pitches = notes.reverse().join(" ");
    const name = tuningName(strings.name);
    facts.push(name ? `${name} (${pitches})` : pitches);
  }
  if (staff.capo > 0) {
    facts.push(`Capo ${staff.capo}`);
  }
  return facts.join(", ");
}
