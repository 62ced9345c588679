// @ts-check
import { boundedInteger, boundedNumber, mostStaves, tolerance } from "./values.js";

/**
 * Brings what holds for a staff (clefs, keys, transposition, tunings) to the beginnings of bars: alphaTab takes no notice
 * of it anywhere else, so that a clef before a bar line was lost for all that follows.
 *
 * @typedef {import("../containers/xml-scanner.js").XmlElement} XmlElement
 * @typedef {import("../containers/xml-builder.js").XmlBuilder} XmlBuilder
 * @typedef {import("./metres.js").Metre} Metre
 * @typedef {import("./events.js").Measure} Measure
 */

/** What can stand once for each staff, in the order in which it is written. */
const perStaff = ["key", "clef", "staff-details", "transpose"];

/**
 * @param {Measure[]} measures of one part
 * @param {(bar: number, staff: number, time: number) => boolean} isUnplayed whether a staff has no notes in a bar before
 *   that time
 * @returns {XmlElement[][]} what is to be written at each bar's beginning
 */
export function attributesAtBars(measures, isUnplayed) {
  /** @type {Map<string, XmlElement>[]} by kind and staff */
  const bars = measures.map(() => new Map());
  measures.forEach(({ marks }, index) => {
    for (const { element, onset } of marks) {
      for (const child of element.name === "attributes" ? element.children : []) {
        if (perStaff.includes(child.name)) {
          const staff = child.attributes.get("number") ?? "";
          const now = onset <= tolerance || isUnplayed(index, boundedInteger(staff, 1, mostStaves, 1), onset);
          const bar = bars[now ? index : index + 1];
          bar?.set(`${child.name} ${staff}`, child);
        }
      }
    }
  });
  return bars.map((bar) => [...bar.values()].sort((a, b) => perStaff.indexOf(a.name) - perStaff.indexOf(b.name)));
}

/**
 * @param {XmlBuilder} writer
 * @param {XmlElement} element of `attributesAtBars`
 * @param {{ staffCount: number, percussion: boolean }} part
 */
export function writeAttribute(writer, element, part) {
  const number = element.attributes.get("number");
  const staff = number === undefined ? undefined : boundedInteger(number, 1, mostStaves, 1);
  if (staff !== undefined && staff > part.staffCount) {
    return;
  }
  switch (element.name) {
    case "key":
      writer.open("key", { number: staff });
      writer.leaf("fifths", boundedInteger(element.textOf("fifths"), -7, 7, 0));
      writer.leaf("mode", element.textOf("mode"));
      writer.close();
      break;
    case "clef":
      writeClef(writer, element, staff, part.percussion);
      break;
    case "transpose":
      writer.open("transpose", { number: staff });
      writer.leaf("chromatic", boundedInteger(element.textOf("chromatic"), -48, 48, 0));
      writer.leaf("octave-change", boundedInteger(element.textOf("octave-change"), -4, 4, 0));
      writer.close();
      break;
    case "staff-details":
      writeStaffDetails(writer, element, staff);
      break;
  }
}

/**
 * @param {XmlBuilder} writer
 * @param {XmlElement} clef
 * @param {number | undefined} staff
 * @param {boolean} percussion whether the part plays keys of a drum kit
 */
function writeClef(writer, clef, staff, percussion) {
  const sign = clef.textOf("sign");
  writer.open("clef", { number: staff });
  // By this sign alone alphaTab takes keys for drums.
  writer.leaf("sign", sign.toLowerCase() === "percussion" && !percussion ? "none" : sign);
  writer.leaf("line", boundedInteger(clef.textOf("line"), 1, 5, 2));
  const octaves = boundedInteger(clef.textOf("clef-octave-change"), -2, 2, 0);
  if (octaves !== 0) {
    writer.leaf("clef-octave-change", octaves);
  }
  writer.close();
}

const mostLines = 12;

/**
 * @param {XmlBuilder} writer
 * @param {XmlElement} details
 * @param {number | undefined} staff
 */
function writeStaffDetails(writer, details, staff) {
  const tunings = details.children.filter(({ name }) => name === "staff-tuning");
  const lines = boundedInteger(
    details.textOf("staff-lines"),
    1,
    mostLines,
    Math.max(5, Math.min(tunings.length, mostLines)),
  );
  writer.open("staff-details", { number: staff });
  if (details.child("staff-lines") || tunings.length > 0) {
    writer.leaf("staff-lines", lines);
  }
  for (const tuning of tunings) {
    const line = boundedInteger(tuning.attributes.get("line") ?? "", 1, lines, 0);
    if (line > 0) {
      writer.open("staff-tuning", { line });
      writer.leaf("tuning-step", tuning.textOf("tuning-step"));
      writer.leaf("tuning-alter", Math.trunc(boundedNumber(tuning.textOf("tuning-alter"), -2, 2, 0)));
      writer.leaf("tuning-octave", boundedInteger(tuning.textOf("tuning-octave"), 0, 9, 3));
      writer.close();
    }
  }
  const capo = boundedInteger(details.textOf("capo"), 1, 24, 0);
  if (capo > 0) {
    writer.leaf("capo", capo);
  }
  writer.close();
}

/**
 * @param {Measure[]} measures
 * @returns {number} how many staves the part has
 */
export function countStaves(measures) {
  let count = 1;
  for (const { events, marks } of measures) {
    for (const { staff } of events) {
      count = Math.max(count, staff);
    }
    for (const { element } of marks) {
      count = Math.max(count, boundedInteger(element.textOf("staves"), 1, mostStaves, 1));
    }
  }
  return count;
}

/**
 * @param {XmlElement[][]} attributes of `attributesAtBars`
 * @param {number} staff 1 for the uppermost
 * @returns {number} how many strings the staff is tuned for; 0 for none
 */
export function stringsOf(attributes, staff) {
  for (const bar of attributes) {
    for (const element of bar) {
      const own = boundedInteger(element.attributes.get("number") ?? "", 1, mostStaves, 1) === staff;
      if (element.name === "staff-details" && own && element.child("staff-tuning")) {
        const tunings = element.children.filter(({ name }) => name === "staff-tuning").length;
        return boundedInteger(element.textOf("staff-lines"), 1, mostLines, Math.max(5, Math.min(tunings, mostLines)));
      }
    }
  }
  return 0;
}
