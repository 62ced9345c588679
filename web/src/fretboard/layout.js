// @ts-check
/**
 * Where strings, frets and keys lie in the strip, in CSS pixels: geometry alone.
 *
 * @typedef {{ width: number, height: number }} Size
 */

/** How much narrower each fret is than the one before. Half of what instruments have: high frets stay readable. */
const fretRatio = 2 ** (-1 / 24);

/** Beside the nut, for the names of the strings and the notes on open ones. */
const openWidth = 52;

const margin = { top: 10, bottom: 22, side: 14 };

/** The frets at which instruments have dots; twice at octaves. */
const dottedFrets = [3, 5, 7, 9, 12];

/**
 * @param {{ strings: number, frets: number, leftHanded: boolean }} board
 * @param {Size} size
 */
export function boardLayout({ strings, frets, leftHanded }, { width, height }) {
  const nut = margin.side + openWidth;
  const length = Math.max(width - nut - margin.side, 1);
  const whole = 1 - fretRatio ** frets;
  /** @param {number} x */
  const mirrored = (x) => (leftHanded ? width - x : x);
  /** @param {number} fret 0 is the nut */
  const fretX = (fret) => mirrored(nut + (length * (1 - fretRatio ** fret)) / whole);
  const gap = (height - margin.top - margin.bottom) / Math.max(strings, 1);
  return {
    fretX,
    /** Where a finger presses. @param {number} fret 0 is the open string */
    fingerX: (fret) => (fret === 0 ? mirrored(nut - 14) : (fretX(fret - 1) + fretX(fret)) / 2),
    nameX: mirrored(margin.side + 8),
    /** @param {number} string 0 is the highest, on top as in tablature */
    stringY: (string) => margin.top + gap * (string + 0.5),
    top: margin.top + gap / 2,
    bottom: margin.top + gap * (strings - 0.5),
    numberY: height - 7,
    radius: Math.min(gap / 2, 9),
  };
}

/**
 * @param {number} frets
 * @returns {{ fret: number, twice: boolean }[]}
 */
export function dotsOf(frets) {
  return Array.from({ length: frets }, (_, index) => index + 1)
    .filter((fret) => dottedFrets.includes(((fret - 1) % 12) + 1))
    .map((fret) => ({ fret, twice: fret % 12 === 0 }));
}

/** The keys of an octave that are black. */
const blackKeys = new Set([1, 3, 6, 8, 10]);

/**
 * @param {{ low: number, high: number }} keyboard from a C to a B
 * @param {Size} size
 * @returns {{ key: number, black: boolean, x: number, width: number, height: number }[]} white keys first: the black ones
 *     lie on them
 */
export function keyboardLayout({ low, high }, { width, height }) {
  const keys = Array.from({ length: high - low + 1 }, (_, index) => low + index);
  const white = keys.filter((key) => !blackKeys.has(key % 12));
  const wide = Math.min((width - 2 * margin.side) / white.length, 30);
  const left = (width - wide * white.length) / 2;
  const tall = height - margin.top - margin.bottom;
  const place = (/** @type {number} */ key) => {
    const black = blackKeys.has(key % 12);
    const before = white.filter((other) => other < key).length;
    return black
      ? { key, black, x: left + wide * (before - 0.3), width: wide * 0.6, height: tall * 0.6 }
      : { key, black, x: left + wide * before, width: wide, height: tall };
  };
  const placed = keys.map(place);
  return [...placed.filter(({ black }) => !black), ...placed.filter(({ black }) => black)];
}

export const keyboardTop = margin.top;
