// @ts-check
// Damages files, always in the same way.

/** Numbers from 0 up to 1. @param {number} seed above 0 */
export function randomFrom(seed) {
  let state = seed;
  return () => (state = (state * 48271) % 2147483647) / 2147483647;
}

const edges = [0, 1, 2, 127, 128, 254, 255];
const wideEdges = [-1, 0x7fffffff, -0x80000000, 0x10000, 0xffffff, 1000, 100, 240, -2];
const textEdges = [
  "0",
  "-1",
  "1",
  "255",
  "1000000000",
  "-1000000000",
  "1e300",
  "NaN",
  "",
  "2147483648",
  "0.000001",
  "99999999999999999999",
];

/**
 * @param {Uint8Array} bytes
 * @param {() => number} random
 * @returns {Uint8Array} with one to three damages
 */
export function damagedBytes(bytes, random) {
  let damaged = Uint8Array.from(bytes);
  const at = () => Math.floor(random() * damaged.length);
  const one = (list) => list[Math.floor(random() * list.length)];
  for (let count = 1 + Math.floor(random() * 3); count > 0; count--) {
    const place = at();
    const length = Math.floor(random() * 40);
    switch (Math.floor(random() * 8)) {
      case 0:
        damaged[place] ^= 1 << Math.floor(random() * 8);
        break;
      case 1:
        damaged[place] = one(edges);
        break;
      case 2:
        damaged[place] = Math.floor(random() * 256);
        break;
      case 3:
      case 4:
        new DataView(damaged.buffer).setInt32(Math.min(place, damaged.length - 4), one(wideEdges), true);
        break;
      case 5:
        damaged = Uint8Array.from([...damaged.subarray(0, place), ...damaged.subarray(place + length)]);
        break;
      case 6:
        damaged = Uint8Array.from([...damaged.subarray(0, place + length), ...damaged.subarray(place)]);
        break;
      default:
        damaged = damaged.slice(0, random() < 0.2 ? place : damaged.length);
        damaged.fill(one(edges), place, place + length);
    }
    if (damaged.length < 8) {
      return damaged;
    }
  }
  return damaged;
}

/**
 * @param {string} xml
 * @param {() => number} random
 * @returns {string} with one to three of its numbers or elements damaged
 */
export function damagedXml(xml, random) {
  let damaged = xml;
  for (let count = 1 + Math.floor(random() * 3); count > 0; count--) {
    const numbers = [...damaged.matchAll(/-?\d+(\.\d+)?/g)];
    const number = numbers[Math.floor(random() * numbers.length)];
    const elements = [...damaged.matchAll(/<(\w+)[^<>]*>[^<]*<\/\1>/g)];
    const element = elements[Math.floor(random() * elements.length)];
    if (random() < 0.75 && number) {
      const value = textEdges[Math.floor(random() * textEdges.length)];
      damaged = damaged.slice(0, number.index) + value + damaged.slice(number.index + number[0].length);
    } else if (element) {
      const times = random() < 0.5 ? 0 : 3;
      damaged =
        damaged.slice(0, element.index) + element[0].repeat(times) + damaged.slice(element.index + element[0].length);
    }
  }
  return damaged;
}
