// @ts-check
import { alphaTab } from "../../shared/alphatab.js";
import { readMusicXmlElements } from "../../alphatab/internals/alphatab-internals.js";
import { applyHarmonic } from "./harmonics.js";
import { joinLinkedStaves } from "./linked-staves.js";
import { lookUpByString } from "../strings/by-string.js";
import { rewriteMusicXml } from "./rewrite.js";

/** How long after the one before each note of an arpeggio begins, in ticks: 960 to a quarter. */
const arpeggioStep = 80;

/**
 * Reads MusicXML: rewritten for alphaTab's reader, which takes care of what stands at the notes, and with what belongs to
 * whole bars put into the score directly.
 *
 * @typedef {import("../../shared/alphatab.js").Score} Score
 * @typedef {import("../../shared/alphatab.js").Settings} Settings
 * @typedef {import("./rewrite.js").Bar} Bar
 * @typedef {import("./rewrite.js").Leftovers} Leftovers
 * @typedef {import("./road-signs.js").Sign} Sign
 */

/**
 * @param {string} text of a MusicXML document
 * @param {Settings} settings
 * @returns {Score}
 * @throws {Error} when it cannot be read; the message is the rest of a sentence
 */
export function readMusicXml(text, settings) {
  const { root, bars, leftovers } = rewriteMusicXml(text);
  const score = readMusicXmlElements(root, settings);
  const signs = new Set(bars.flatMap((bar) => [...bar.signs.signs]));
  bars.forEach((bar, index) => applyBar(bar, signs, score.masterBars[index]));
  let start = 0;
  for (const bar of score.masterBars) {
    bar.start = start;
    start += bar.calculateDuration();
  }
  score.rebuildRepeatGroups();
  applyLeftovers(leftovers, score);
  applyHammers(leftovers, score, settings);
  for (const { harmonic, ...place } of leftovers.harmonics) {
    const note = noteAt(score, place);
    if (note?.isStringed) {
      applyHarmonic(note, harmonic);
    }
  }
  score.tracks.forEach(giveDrumsHeads);
  for (const staff of score.tracks.flatMap(({ staves }) => staves)) {
    if (staff.isStringed) {
      beatsOf(staff).forEach(spreadArpeggio);
    }
  }
  joinLinkedStaves(score, settings);
  return score;
}

/**
 * @param {Bar} bar
 * @param {Set<Sign>} allSigns of the score
 * @param {import("@coderline/alphatab").model.MasterBar} masterBar
 */
function applyBar({ partial, length, signs, tempos }, allSigns, masterBar) {
  masterBar.isAnacrusis = partial;
  masterBar.isRepeatStart = signs.repeatStart;
  masterBar.repeatCount = signs.repeatCount;
  masterBar.alternateEndings = signs.endings;
  masterBar.directions = null;
  for (const direction of directionsOf(signs.signs, allSigns)) {
    masterBar.addDirection(direction);
  }
  if (masterBar.index > 0 || tempos[0]?.time === 0) {
    masterBar.tempoAutomations = [];
  }
  for (const { time, quartersPerMinute } of tempos) {
    const automation = new alphaTab.model.Automation();
    automation.type = alphaTab.model.AutomationType.Tempo;
    automation.value = quartersPerMinute;
    automation.ratioPosition = time / length;
    masterBar.tempoAutomations.push(automation);
  }
}

/**
 * @param {Set<Sign>} signs of a bar
 * @param {Set<Sign>} all signs of the score, which tell how far one plays after a jump
 */
function directionsOf(signs, all) {
  const { Direction } = alphaTab.model;
  const kind = all.has("toCoda") && all.has("coda") ? "coda" : all.has("fine") ? "fine" : "end";
  const table = {
    segno: Direction.TargetSegno,
    coda: Direction.TargetCoda,
    fine: Direction.TargetFine,
    toCoda: Direction.JumpDaCoda,
    daCapo: { coda: Direction.JumpDaCapoAlCoda, fine: Direction.JumpDaCapoAlFine, end: Direction.JumpDaCapo }[kind],
    dalSegno: { coda: Direction.JumpDalSegnoAlCoda, fine: Direction.JumpDalSegnoAlFine, end: Direction.JumpDalSegno }[
      kind
    ],
  };
  return [...signs].map((sign) => table[sign]);
}

/**
 * @param {Leftovers} leftovers
 * @param {Score} score
 */
function applyLeftovers({ hiddenRests, longGraces, crossTies }, score) {
  for (const place of hiddenRests) {
    const rest = voiceAt(score, place).beats[place.beat];
    if (rest?.isRest) {
      rest.isEmpty = true;
    }
  }
  for (const { first, ticks } of longGraces) {
    applyGraces(voiceAt(score, first).beats.slice(first.beat, first.beat + ticks.length + 1), ticks);
  }
  for (const { from, to } of crossTies) {
    const origin = noteAt(score, from);
    const destination = noteAt(score, to);
    if (origin && destination && !origin.isTieOrigin) {
      destination.isTieDestination = true;
      destination.tieOrigin = origin;
      origin.tieDestination = destination;
    }
  }
}

/**
 * alphaTab's reader gives hammer-ons and pull-offs up, because it looks where they lead to before it knows the strings.
 *
 * @param {Leftovers} leftovers
 * @param {Score} score
 * @param {Settings} settings
 */
function applyHammers({ hammers }, score, settings) {
  for (const staff of hammers.length > 0 ? score.tracks.flatMap(({ staves }) => staves) : []) {
    for (const beat of staff.isStringed ? beatsOf(staff) : []) {
      lookUpByString(beat);
    }
  }
  for (const place of hammers) {
    const note = noteAt(score, place);
    if (note?.isStringed) {
      note.isHammerPullOrigin = true;
      note.finish(settings);
    }
  }
}

/**
 * Notes of drums look like others, unless their document gives them heads of their own. alphaTab's reader gives them none.
 *
 * @param {Score["tracks"][0]} track
 */
function giveDrumsHeads({ percussionArticulations }) {
  const { MusicFontSymbol } = alphaTab.model;
  for (const drum of percussionArticulations) {
    if (drum.noteHeadDefault === MusicFontSymbol.None) {
      drum.noteHeadDefault = MusicFontSymbol.NoteheadBlack;
      drum.noteHeadHalf = MusicFontSymbol.NoteheadHalf;
      drum.noteHeadWhole = MusicFontSymbol.NoteheadWhole;
    }
  }
}

/** @param {Score["tracks"][0]["staves"][0]} staff */
function beatsOf({ bars }) {
  return bars.flatMap(({ voices }) => voices.flatMap(({ beats }) => beats));
}

/**
 * MusicXML does not say how fast an arpeggio is, and alphaTab's reader then has all of its notes at once. Its player
 * spreads the notes of strings only.
 *
 * @param {import("@coderline/alphatab").model.Beat} beat
 */
function spreadArpeggio(beat) {
  if (beat.brushType !== alphaTab.model.BrushType.None && beat.brushDuration === 0) {
    const usual = arpeggioStep * (beat.notes.length - 1);
    beat.brushDuration = Math.round(Math.min(usual, beat.playbackDuration / 2));
  }
}

/**
 * @param {import("@coderline/alphatab").model.Beat[]} beats grace notes, and the note after them
 * @param {number[]} ticks of the grace notes
 */
function applyGraces(beats, ticks) {
  const main = beats[ticks.length];
  let start = beats[0]?.playbackStart;
  const end = main?.playbackStart + main?.playbackDuration;
  if (Number.isNaN(end) || main.graceType !== alphaTab.model.GraceType.None) {
    return;
  }
  ticks.forEach((duration, i) => {
    beats[i].playbackStart = start;
    beats[i].playbackDuration = duration;
    start += duration;
  });
  main.playbackStart = start;
  main.playbackDuration = end - start;
}

/**
 * @param {Score} score
 * @param {import("./rewrite.js").NotePlace} place
 */
function noteAt(score, place) {
  return voiceAt(score, place).beats[place.beat]?.notes[place.note];
}

/**
 * @param {Score} score
 * @param {import("./rewrite.js").BeatPlace} place
 */
function voiceAt(score, { part, staff, bar, voice }) {
  return score.tracks[part].staves[staff].bars[bar].voices[voice];
}
