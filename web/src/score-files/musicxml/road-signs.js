// @ts-check
import { boundedInteger } from "./values.js";

/**
 * Reads what tells in which order bars are played: repeats, endings, and the jumps to and from signs. Files write them in
 * any of the parts, or in all; they hold for all.
 *
 * @typedef {import("../containers/xml-scanner.js").XmlElement} XmlElement
 *
 * @typedef {object} RoadSigns of a bar
 * @property {boolean} repeatStart
 * @property {number} repeatCount how often the section that ends here is played; 0 where none ends
 * @property {number} endings the passes that the bar is for, as bits; 0 for all
 * @property {Set<Sign>} signs
 *
 * @typedef {"segno" | "coda" | "fine" | "toCoda" | "daCapo" | "dalSegno"} Sign
 */

/** How often a section is played at most. */
const mostPasses = 64;

/** How many endings alphaTab tells apart. */
const mostEndings = 8;

/** @returns {RoadSigns} */
export function noSigns() {
  return { repeatStart: false, repeatCount: 0, endings: 0, signs: new Set() };
}

/**
 * @param {XmlElement[][][]} barLines by part and bar
 * @param {RoadSigns[]} bars take what the bar lines say
 */
export function readBarLines(barLines, bars) {
  for (const part of barLines) {
    let endings = 0;
    for (let index = 0; index < bars.length; index++) {
      let ended = false;
      for (const barLine of part[index] ?? []) {
        readRepeat(barLine, index, bars);
        const ending = barLine.child("ending");
        const passes = ending ? passesOf(ending) : 0;
        switch (ending?.attributes.get("type")) {
          case "start":
            endings = passes;
            break;
          case "stop":
          case "discontinue":
            endings ||= passes;
            ended = true;
            break;
        }
      }
      bars[index].endings |= endings;
      endings = ended ? 0 : endings;
    }
  }
  completeEndings(bars);
  countPasses(bars);
}

/** How many bars an ending may have whose bracket does not reach the repeat. */
const longestEnding = 16;

/**
 * Some brackets end before the repeat that closes their ending, and some endings have none at all. The bars before a
 * second ending are the first one.
 *
 * @param {RoadSigns[]} bars
 */
function completeEndings(bars) {
  bars.forEach(({ repeatCount, endings }, index) => {
    const following = bars[index + 1]?.endings ?? 0;
    const passes = (following & -following) - 1;
    if (repeatCount === 0 || endings !== 0 || passes <= 0) {
      return;
    }
    let first = index;
    while (first > 0 && index - first < longestEnding && !bars[first].repeatStart && bars[first].endings === 0) {
      first--;
    }
    const begun = bars[first].endings !== 0 && (bars[first].endings & following) === 0 && bars[first].repeatCount === 0;
    for (let bar = begun ? first + 1 : index; bar <= index; bar++) {
      bars[bar].endings = begun ? bars[first].endings : passes;
    }
  });
}

/**
 * @param {XmlElement} barLine
 * @param {number} index of its bar
 * @param {RoadSigns[]} bars
 */
function readRepeat(barLine, index, bars) {
  const repeat = barLine.child("repeat");
  const location = barLine.attributes.get("location") ?? "right";
  if (repeat?.attributes.get("direction") === "forward") {
    const first = bars[location === "right" ? index + 1 : index];
    if (first) {
      first.repeatStart = true;
    }
  } else if (repeat?.attributes.get("direction") === "backward") {
    const last = bars[location === "left" ? index - 1 : index];
    if (last) {
      // 1 stands for a number that the bar line does not give.
      const times = boundedInteger(repeat.attributes.get("times") ?? "", 2, Number.MAX_VALUE, 1);
      last.repeatCount = Math.max(last.repeatCount, Math.min(times, mostPasses));
    }
  }
}

/**
 * @param {XmlElement} ending
 * @returns {number} bits
 */
function passesOf(ending) {
  const text = ending.attributes.get("number") ?? ending.text;
  let passes = 0;
  for (const [, from, to] of text.matchAll(/(\d{1,3})(?:\s*\.?\s*[-–]\s*(\d{1,3}))?/g)) {
    for (let pass = Number(from); pass <= Math.min(Number(to ?? from), mostEndings); pass++) {
      passes |= pass > 0 && pass <= mostEndings ? 1 << (pass - 1) : 0;
    }
  }
  return passes;
}

/**
 * Sections whose bar lines do not say how often they are played are played twice, or once more than their endings say
 * when another ending follows.
 *
 * @param {RoadSigns[]} bars
 */
function countPasses(bars) {
  bars.forEach((bar, index) => {
    if (bar.repeatCount === 1) {
      const highest = 32 - Math.clz32(bar.endings);
      const another = (bars[index + 1]?.endings ?? 0) >> highest !== 0;
      bar.repeatCount = Math.max(2, highest + (another ? 1 : 0));
    }
  });
}

/** What words say where a direction carries nothing for programs. */
const words = /** @type {[RegExp, Sign][]} */ ([
  [/^\s*(d\.?\s*c\.?|da\s+capo)(\s|$)/i, "daCapo"],
  [/^\s*(d\.?\s*s\.?|dal\s+segno)(\s|$)/i, "dalSegno"],
  [/^\s*(to\s+coda|al\s+coda)\b/i, "toCoda"],
  [/^\s*fine\s*\.?\s*$/i, "fine"],
]);

const attributes = /** @type {[string, Sign][]} */ ([
  ["segno", "segno"],
  ["coda", "coda"],
  ["tocoda", "toCoda"],
  ["fine", "fine"],
  ["dacapo", "daCapo"],
  ["dalsegno", "dalSegno"],
]);

/**
 * @param {XmlElement} element a direction, or a sound
 * @returns {Sign[]}
 */
export function signsOf(element) {
  const sound = element.name === "sound" ? element : element.child("sound");
  const signs = attributes.filter(([name]) => (sound?.attributes.get(name) ?? "no") !== "no").map(([, sign]) => sign);
  if (signs.length > 0) {
    return signs;
  }
  for (const type of element.children) {
    for (const { name, text } of type.name === "direction-type" ? type.children : []) {
      if (name === "segno" || name === "coda") {
        signs.push(name);
      } else if (name === "words") {
        signs.push(...words.filter(([pattern]) => pattern.test(text)).map(([, sign]) => sign));
      }
    }
  }
  // A coda sign beside the words is the place to leave from.
  return signs.includes("toCoda") ? signs.filter((sign) => sign !== "coda") : signs;
}

/**
 * Adds a sign to the bar that it belongs to.
 *
 * @param {RoadSigns[]} bars
 * @param {number} index of the bar that it stands in
 * @param {Sign} sign
 * @param {boolean} atEnd whether it stands where the next bar begins
 */
export function addSign(bars, index, sign, atEnd) {
  const isTarget = sign === "segno" || sign === "coda";
  const bar = (isTarget && atEnd && bars[index + 1]) || bars[index];
  bar.signs.add(sign);
}

/**
 * Many files draw the same sign at the coda and where one leaves for it. Of two, the first is where one leaves.
 *
 * @param {RoadSigns[]} bars
 */
export function tellCodasApart(bars) {
  const codas = bars.filter(({ signs }) => signs.has("coda"));
  if (codas.length >= 2 && !bars.some(({ signs }) => signs.has("toCoda"))) {
    codas[0].signs.delete("coda");
    codas[0].signs.add("toCoda");
  }
}
