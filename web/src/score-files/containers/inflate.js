// @ts-check
/**
 * Unpacks DEFLATE data (RFC 1951). Pages may only do so asynchronously, and Chromium 102 not without zlib's header at
 * all; a score is read in one go.
 */

/** Base lengths and distances of the format's tables, and how many bits follow each. */
const lengthBase = [
  3, 4, 5, 6, 7, 8, 9, 10, 11, 13, 15, 17, 19, 23, 27, 31, 35, 43, 51, 59, 67, 83, 99, 115, 131, 163, 195, 227, 258,
];
const lengthBits = [0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0];
const distanceBase = [
  1, 2, 3, 4, 5, 7, 9, 13, 17, 25, 33, 49, 65, 97, 129, 193, 257, 385, 513, 769, 1025, 1537, 2049, 3073, 4097, 6145,
  8193, 12289, 16385, 24577,
];
const distanceBits = [0, 0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6, 7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12, 13, 13];
const codeLengthOrder = [16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15];

const longestCode = 15;

/**
 * @param {Uint8Array} packed
 * @param {number} limit in bytes: how much may come of it
 * @returns {Uint8Array}
 * @throws {Error} when the data is damaged, breaks off, or unpacks to more than the limit
 */
export function inflate(packed, limit) {
  const bits = new BitReader(packed);
  const output = new Output(limit);
  let last = false;
  while (!last) {
    last = bits.read(1) === 1;
    switch (bits.read(2)) {
      case 0:
        output.append(bits.readStored());
        break;
      case 1:
        readBlock(bits, output, fixedLengths, fixedDistances);
        break;
      case 2: {
        const [lengths, distances] = readTables(bits);
        readBlock(bits, output, lengths, distances);
        break;
      }
      default:
        throw damaged();
    }
  }
  return output.taken();
}

function damaged() {
  return new Error("what it packs is damaged");
}

class BitReader {
  #bytes;
  #at = 0;
  #held = 0;
  #count = 0;

  /** @param {Uint8Array} bytes */
  constructor(bytes) {
    this.#bytes = bytes;
  }

  /** @param {number} count of bits, 0 to 16 */
  read(count) {
    while (this.#count < count) {
      this.#take();
    }
    const value = this.#held & ((1 << count) - 1);
    this.#held >>>= count;
    this.#count -= count;
    return value;
  }

  /** @param {Uint16Array} table see `tableOf` */
  readSymbol(table) {
    while (this.#count < longestCode && this.#at < this.#bytes.length) {
      this.#take();
    }
    const entry = table[this.#held & 0x7fff];
    const length = entry & 15;
    if (length === 0 || length > this.#count) {
      throw damaged();
    }
    this.#held >>>= length;
    this.#count -= length;
    return entry >> 4;
  }

  readStored() {
    this.#at -= this.#count >> 3;
    this.#held = 0;
    this.#count = 0;
    const length = this.read(16);
    if ((this.read(16) ^ length) !== 0xffff || this.#at + length > this.#bytes.length) {
      throw damaged();
    }
    this.#at += length;
    return this.#bytes.subarray(this.#at - length, this.#at);
  }

  #take() {
    if (this.#at >= this.#bytes.length) {
      throw new Error("what it packs breaks off");
    }
    this.#held |= this.#bytes[this.#at++] << this.#count;
    this.#count += 8;
  }
}

class Output {
  #bytes = new Uint8Array(1 << 16);
  #length = 0;
  #limit;

  /** @param {number} limit */
  constructor(limit) {
    this.#limit = limit;
  }

  /** @param {number} byte */
  push(byte) {
    this.#reserve(1);
    this.#bytes[this.#length++] = byte;
  }

  /** @param {Uint8Array} bytes */
  append(bytes) {
    this.#reserve(bytes.length);
    this.#bytes.set(bytes, this.#length);
    this.#length += bytes.length;
  }

  /**
   * @param {number} distance
   * @param {number} length
   */
  repeat(distance, length) {
    if (distance > this.#length) {
      throw damaged();
    }
    this.#reserve(length);
    const bytes = this.#bytes;
    // Byte by byte: what is copied may be what was just written.
    for (let from = this.#length - distance, to = this.#length, end = to + length; to < end;) {
      bytes[to++] = bytes[from++];
    }
    this.#length += length;
  }

  taken() {
    return this.#bytes.subarray(0, this.#length);
  }

  /** @param {number} more */
  #reserve(more) {
    const needed = this.#length + more;
    if (needed > this.#limit) {
      throw new Error("it unpacks to more than any score needs");
    }
    if (needed > this.#bytes.length) {
      const larger = new Uint8Array(Math.min(Math.max(needed, this.#bytes.length * 2), this.#limit));
      larger.set(this.#bytes.subarray(0, this.#length));
      this.#bytes = larger;
    }
  }
}

/**
 * @param {BitReader} bits
 * @param {Output} output
 * @param {Uint16Array} lengths
 * @param {Uint16Array} distances
 */
function readBlock(bits, output, lengths, distances) {
  for (;;) {
    const symbol = bits.readSymbol(lengths);
    if (symbol < 256) {
      output.push(symbol);
    } else if (symbol === 256) {
      return;
    } else {
      const index = symbol - 257;
      if (index >= lengthBase.length) {
        throw damaged();
      }
      const length = lengthBase[index] + bits.read(lengthBits[index]);
      const far = bits.readSymbol(distances);
      if (far >= distanceBase.length) {
        throw damaged();
      }
      output.repeat(distanceBase[far] + bits.read(distanceBits[far]), length);
    }
  }
}

/** @param {BitReader} bits */
function readTables(bits) {
  const lengthCount = bits.read(5) + 257;
  const distanceCount = bits.read(5) + 1;
  const orderCount = bits.read(4) + 4;
  const orderLengths = new Uint8Array(19);
  for (let i = 0; i < orderCount; i++) {
    orderLengths[codeLengthOrder[i]] = bits.read(3);
  }
  const orderTable = tableOf(orderLengths);
  const lengths = new Uint8Array(lengthCount + distanceCount);
  for (let i = 0; i < lengths.length;) {
    const symbol = bits.readSymbol(orderTable);
    if (symbol < 16) {
      lengths[i++] = symbol;
      continue;
    }
    if (symbol === 16 && i === 0) {
      throw damaged();
    }
    const value = symbol === 16 ? lengths[i - 1] : 0;
    const times = symbol === 16 ? 3 + bits.read(2) : symbol === 17 ? 3 + bits.read(3) : 11 + bits.read(7);
    if (i + times > lengths.length) {
      throw damaged();
    }
    lengths.fill(value, i, i + times);
    i += times;
  }
  return [tableOf(lengths.subarray(0, lengthCount)), tableOf(lengths.subarray(lengthCount))];
}

/**
 * @param {Uint8Array} lengths of the symbols' codes, in bits; 0 for a symbol that does not occur
 * @returns {Uint16Array} for each value of the next 15 bits, the symbol (shifted by four) and its code's length; 0 where
 *   no code begins like that
 */
function tableOf(lengths) {
  const counts = new Uint16Array(longestCode + 2);
  for (const length of lengths) {
    counts[length]++;
  }
  counts[0] = 0;
  const codes = new Uint16Array(longestCode + 2);
  for (let length = 1; length <= longestCode; length++) {
    codes[length + 1] = (codes[length] + counts[length]) << 1;
    if (codes[length] + counts[length] > 1 << length) {
      throw damaged();
    }
  }
  const table = new Uint16Array(1 << longestCode);
  lengths.forEach((length, symbol) => {
    if (length > 0) {
      // Codes are packed beginning with their highest bit, all else with the lowest.
      let reversed = 0;
      for (let code = codes[length]++, i = 0; i < length; i++, code >>= 1) {
        reversed = (reversed << 1) | (code & 1);
      }
      for (let at = reversed; at < table.length; at += 1 << length) {
        table[at] = (symbol << 4) | length;
      }
    }
  });
  return table;
}

const fixedLengths = tableOf(
  Uint8Array.from({ length: 288 }, (_, symbol) => (symbol < 144 ? 8 : symbol < 256 ? 9 : symbol < 280 ? 7 : 8)),
);
const fixedDistances = tableOf(new Uint8Array(30).fill(5));
