// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import "./corrections.js";
import { musicXmlIn } from "./compressed-musicxml.js";
import { decodeText } from "./containers/text-encoding.js";
import { detectFormat } from "./formats.js";
import { boundScore } from "./score-bounds.js";
import { repackGp } from "./gp-archive.js";
import { repackGpx } from "./gpx-archive.js";
import { endBeforeBarLines } from "./late-graces.js";
import { readMusicXml } from "./musicxml/read.js";
import { assignInstruments, isRecognised } from "./recognised-parts.js";
import { chooseStrings } from "./strings/open-fingerings.js";

/**
 * Reads score files with alphaTab's importers, and tells in a sentence why one cannot be read.
 *
 * @typedef {import("../shared/alphatab.js").Score} Score
 * @typedef {import("../shared/alphatab.js").Settings} Settings
 * @typedef {{ score: Score, problem?: undefined } | { score?: undefined, problem: string }} Reading
 */

/** How much the score of a Guitar Pro file may unpack to, in bytes: many times what the longest scores do. */
const largestScore = 32 << 20;

const importers = { guitarPro: importBytes, gpx: importGpx, archive: importArchive, musicXml: importMusicXml };

/**
 * @param {Uint8Array | null} bytes null when the transport text could not be decoded
 * @param {Settings} settings
 * @returns {Reading}
 */
export function readScore(bytes, settings) {
  const reading = readForFirstScreen(bytes, settings);
  if (reading.score) {
    chooseStrings(reading.score);
  }
  return reading;
}

/**
 * The same, but for strings that the file does not name: they are left open (`strings/open-fingerings.js`).
 *
 * @param {Uint8Array | null} bytes
 * @param {Settings} settings
 * @returns {Reading}
 */
export function readForFirstScreen(bytes, settings) {
  if (!bytes) {
    return { problem: "The file arrived damaged: its base64 text cannot be decoded." };
  }
  if (bytes.length === 0) {
    return { problem: "The file is empty." };
  }
  const format = detectFormat(bytes);
  if (!format) {
    return { problem: "The file is neither a Guitar Pro nor a MusicXML score." };
  }
  try {
    const score = importers[format](bytes, settings);
    if (score.tracks.length === 0 || score.tracks.some(({ staves }) => staves.some(({ bars }) => bars.length === 0))) {
      return { problem: "The score has no music in it." };
    }
    boundScore(score);
    endBeforeBarLines(score);
    placeAutomations(score);
    breakableSpaces(score);
    wholeTrackNames(score);
    return { score };
  } catch (reason) {
    return { problem: `The score file is damaged or cut short (${sentenceOf(reason)}).` };
  }
}

/**
 * Old Guitar Pro files carry their texts in the code page of the machine that wrote them and do not say which. Read
 * as UTF-8 first; a text that is none is read again as Windows' western code page.
 *
 * @param {Uint8Array} bytes
 * @param {Settings} settings
 */
function importBytes(bytes, settings) {
  const score = quietly(() => alphaTab.importer.ScoreLoader.loadScoreFromBytes(bytes, settings));
  if (!textsOf(score).includes("\ufffd")) {
    return score;
  }
  const encoding = settings.importer.encoding;
  settings.importer.encoding = "windows-1252";
  try {
    return quietly(() => alphaTab.importer.ScoreLoader.loadScoreFromBytes(bytes, settings));
  } finally {
    settings.importer.encoding = encoding;
  }
}

/**
 * @param {Uint8Array} bytes
 * @param {Settings} settings
 */
function importGpx(bytes, settings) {
  const zip = repackGpx(bytes, largestScore);
  if (!zip) {
    throw new Error("not all of what it packs is there");
  }
  try {
    return importBytes(zip, settings);
  } catch (reason) {
    const alone = repackGpx(bytes, largestScore, true);
    if (!alone) {
      throw reason;
    }
    return importBytes(alone, settings);
  }
}

/**
 * @param {Uint8Array} bytes
 * @param {Settings} settings
 */
function importArchive(bytes, settings) {
  const musicXml = musicXmlIn(bytes, settings.importer.maxDecodingBufferSize);
  return musicXml ? importMusicXml(musicXml, settings) : importBytes(repackGp(bytes, largestScore) ?? bytes, settings);
}

/**
 * @param {Uint8Array} bytes
 * @param {Settings} settings
 */
function importMusicXml(bytes, settings) {
  const text = decodeText(bytes);
  const score = quietly(() => readMusicXml(text, settings));
  if (isRecognised(text)) {
    assignInstruments(score);
  }
  return score;
}

/**
 * alphaTab's MusicXML reader puts no-break spaces in place of all spaces; nobody searches or names files by those.
 *
 * @param {Score} score
 */
function breakableSpaces(score) {
  /** @type {("title" | "subTitle" | "artist" | "album" | "words" | "music" | "copyright")[]} */
  const fields = ["title", "subTitle", "artist", "album", "words", "music", "copyright"];
  for (const field of fields) {
    score[field] = score[field].replaceAll("\u00a0", " ");
  }
  for (const track of score.tracks) {
    track.name = track.name.replaceAll("\u00a0", " ");
    track.shortName = track.shortName.replaceAll("\u00a0", " ");
  }
}

/**
 * Newer Guitar Pro files say where in its bar a sound changes. alphaTab changes it at the bar's beginning.
 *
 * @param {Score} score
 */
function placeAutomations(score) {
  for (const staff of score.tracks.flatMap(({ staves }) => staves)) {
    for (const bar of staff.bars) {
      const [first, ...others] = bar.voices[0]?.beats ?? [];
      const late = first?.automations.filter(({ ratioPosition }) => ratioPosition > 0) ?? [];
      for (const automation of late) {
        const tick = automation.ratioPosition * bar.masterBar.calculateDuration();
        const beat = others.find(({ playbackStart }) => playbackStart >= Math.floor(tick));
        if (beat) {
          first.automations.splice(first.automations.indexOf(automation), 1);
          beat.automations.push(automation);
        }
      }
    }
  }
}

/**
 * Files without short track names are given the first letters of the long ones. At the first line there is room for
 * the whole names instead.
 *
 * @param {Score} score
 */
function wholeTrackNames(score) {
  const cutOff = score.tracks.some(
    ({ name, shortName }) => shortName.length >= 10 && name !== shortName && name.startsWith(shortName),
  );
  if (cutOff) {
    score.stylesheet.firstSystemTrackNameMode = alphaTab.model.TrackNameMode.FullName;
  }
}

/** @param {Score} score */
function textsOf(score) {
  const names = score.tracks.map((track) => track.name);
  return [score.title, score.subTitle, score.artist, score.album, score.words, score.music, ...names].join("\n");
}

/**
 * A file that cannot be read is an answer here and not a fault of the page: alphaTab's own report of it stays out
 * of the console.
 *
 * @template T
 * @param {() => T} work
 * @returns {T}
 */
function quietly(work) {
  const level = alphaTab.Logger.logLevel;
  alphaTab.Logger.logLevel = alphaTab.LogLevel.None;
  try {
    return work();
  } finally {
    alphaTab.Logger.logLevel = level;
  }
}

/** @param {unknown} reason */
function sentenceOf(reason) {
  const text = reason instanceof Error ? reason.message : String(reason);
  return text.trim().replace(/\.$/, "") || "no reason given";
}
