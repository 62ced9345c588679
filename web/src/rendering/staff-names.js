// @ts-check
import { alphaTab } from "../shared/alphatab.js";

/**
 * Has the names beside the staves drawn so that each can be read: upright where every name is shorter than its staves
 * are high, otherwise lying, where they have the room of a margin. alphaTab draws upright names over one another, and out
 * of the score page.
 *
 * The names are changed in the score: to be used on a copy that is only drawn.
 *
 * @typedef {import("../shared/alphatab.js").Score} Score
 * @typedef {import("../shared/alphatab.js").Track} Track
 * @typedef {{ name: string, shortName: string }} Names
 */

/** How wide a letter is, in CSS pixels at zoom 1: the broad side of the average of the names' font. */
const letterWidth = 6.5;

/** From one staff to the next, in CSS pixels at zoom 1, by what the staff shows. */
const notationHeight = 52;
const tablatureHeight = 75;

/** As many letters of a lying name as do not take more than a bar's width from the first system. */
const longestName = 24;

/** @type {WeakMap<Track, Names>} what the file calls each track */
const written = new WeakMap();

/**
 * @param {Score} score
 * @param {readonly number[]} trackIds the tracks that are drawn
 */
export function arrangeStaffNames(score, trackIds) {
  const { TrackNameMode, TrackNameOrientation } = alphaTab.model;
  const { Horizontal, Vertical } = TrackNameOrientation;
  const tracks = trackIds.map((id) => score.tracks[id]).filter(Boolean);
  for (const track of tracks) {
    const names = written.get(track) ?? { name: track.name, shortName: track.shortName };
    written.set(track, names);
    track.name = shortened(names.name);
    track.shortName = shortened(names.shortName);
  }
  const style = score.stylesheet;
  /** @param {import("@coderline/alphatab").model.TrackNameMode} mode */
  const orientation = (mode) =>
    tracks.every((track) => isUprightLegible(mode === TrackNameMode.FullName ? track.name : track.shortName, track))
      ? Vertical
      : Horizontal;
  style.firstSystemTrackNameOrientation = orientation(style.firstSystemTrackNameMode);
  style.otherSystemsTrackNameOrientation = orientation(style.otherSystemsTrackNameMode);
}

/** @param {string} name */
function shortened(name) {
  const letters = Array.from(name);
  return letters.length > longestName
    ? `${letters
        .slice(0, longestName - 1)
        .join("")
        .trimEnd()}…`
    : name;
}

/**
 * @param {string} name
 * @param {Track} track
 */
function isUprightLegible(name, track) {
  let height = 0;
  for (const { showStandardNotation, showTablature, showSlash, showNumbered } of track.staves) {
    const others = Number(showSlash) + Number(showNumbered);
    height += (Number(showStandardNotation) + others) * notationHeight + Number(showTablature) * tablatureHeight;
  }
  return Array.from(name).length * letterWidth <= height;
}
