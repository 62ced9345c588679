// @ts-check
/**
 * The compression of Guitar Pro 6 files. Behind the mark "BCFZ" and the length of what is packed, in four bytes with the
 * lowest first, comes a stream of bits, the highest of each byte first. A clear bit begins literal bytes: a number of two
 * bits says how many. A set bit begins a repetition: four bits say how many bits the two numbers have that follow, which
 * are how far back to look and how many bytes to take from there. Numbers come with the lowest bit first.
 */

const markLength = 4;
const headLength = 8;

/** The longest repetition, which is the most that comes of the fewest bits: in bytes, and in bits of the stream. */
const longest = { yields: 0x7fff, takes: 1 + 4 + 2 * 15 };

/** The bits of every byte in the opposite order. */
const mirrored = new Uint8Array(256);
for (let byte = 0; byte < 256; byte++) {
  mirrored[byte] = (mirrored[byte >> 1] >> 1) | ((byte & 1) << 7);
}

/** Bits of which up to 25 are taken at a time. */
class BitStream {
  #bytes;
  #end;
  #at = 0;

  /** @param {Uint8Array} bytes */
  constructor(bytes) {
    // With something behind the end, four bytes can be fetched from anywhere.
    this.#bytes = new Uint8Array(bytes.length + 4);
    this.#bytes.set(bytes);
    this.#end = 8 * bytes.length;
  }

  /** @param {number} count */
  has(count) {
    return this.#end - this.#at >= count;
  }

  /** @param {number} count at most 25, and no more than there are */
  take(count) {
    const bytes = this.#bytes;
    const byte = this.#at >>> 3;
    const word = (bytes[byte] << 24) | (bytes[byte + 1] << 16) | (bytes[byte + 2] << 8) | bytes[byte + 3];
    const wanted = word << (this.#at & 7);
    this.#at += count;
    // In two steps, because a shift by 32 is none.
    return (wanted >>> 1) >>> (31 - count);
  }

  /** @param {number} count at most 16, and no more than there are */
  takeNumber(count) {
    const bits = this.take(count) << (16 - count);
    return mirrored[bits >> 8] | (mirrored[bits & 0xff] << 8);
  }
}

/**
 * @param {Uint8Array} packed the whole file, mark included
 * @param {number} limit in bytes
 * @returns {Uint8Array | null} what is packed, as far as it goes in a file that breaks off; null when it looks back to
 *   before its beginning, or announces more than the limit or than so many bits can stand for
 */
export function unpack(packed, limit) {
  if (packed.length < headLength) {
    return null;
  }
  const announced = new DataView(packed.buffer, packed.byteOffset).getUint32(markLength, true);
  const most = Math.ceil((8 * (packed.length - headLength)) / longest.takes) * longest.yields;
  if (announced > Math.min(limit, most)) {
    return null;
  }
  const content = new Uint8Array(announced);
  const length = fill(content, new BitStream(packed.subarray(headLength)));
  return length === null ? null : content.subarray(0, length);
}

/**
 * @param {Uint8Array} content
 * @param {BitStream} bits
 * @returns {number | null} how many bytes came; null when a repetition looks back to before the beginning
 */
function fill(content, bits) {
  let at = 0;
  while (at < content.length && bits.has(3)) {
    if (bits.take(1) === 0) {
      const count = bits.takeNumber(2);
      if (!bits.has(8 * count)) {
        break;
      }
      const literals = bits.take(8 * count);
      for (let left = count; left > 0; left--) {
        content[at++] = literals >> (8 * (left - 1));
      }
    } else {
      if (!bits.has(4)) {
        break;
      }
      const width = bits.take(4);
      if (!bits.has(2 * width)) {
        break;
      }
      const back = bits.takeNumber(width);
      // Nothing is repeated that is only just being written.
      const count = Math.min(bits.takeNumber(width), back, content.length - at);
      if (back > at) {
        return null;
      }
      for (const end = at + count; at < end; at++) {
        content[at] = content[at - back];
      }
    }
  }
  return Math.min(at, content.length);
}
