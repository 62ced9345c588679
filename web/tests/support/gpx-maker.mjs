// @ts-check
// Makes Guitar Pro 6 files: containers of sectors, and their compression.

const sectorLength = 4096;
const sectorList = 148;

/**
 * @param {Record<string, Uint8Array>} files by their names
 * @param {(count: number) => number[]} order of all sectors of content, for files whose sectors lie apart
 */
export function makeContainer(files, order = (count) => Array.from({ length: count }, (_, index) => index)) {
  const entries = Object.entries(files).map(([name, content]) => {
    const count = Math.ceil(content.length / sectorLength);
    return { name, content, count, heads: Math.ceil((sectorList + 4 * count) / sectorLength) };
  });
  const total = entries.reduce((sum, { count }) => sum + count, 0);
  // Heads come first, and the content of all files behind them.
  const behind = entries.reduce((sum, { heads }) => sum + heads, 1);
  const places = order(total).map((index) => behind + index);
  const container = Buffer.alloc(4 + (behind + total) * sectorLength);
  container.write("BCFS");
  const disk = container.subarray(4);
  let at = sectorLength;
  for (const { name, content, count, heads } of entries) {
    disk.writeUInt32LE(2, at);
    disk.write(name, at + 4, "latin1");
    disk.writeUInt32LE(content.length, at + 140);
    places.splice(0, count).forEach((sector, i) => {
      disk.writeUInt32LE(sector, at + sectorList + 4 * i);
      disk.set(content.subarray(i * sectorLength, (i + 1) * sectorLength), sector * sectorLength);
    });
    at += heads * sectorLength;
  }
  return new Uint8Array(container);
}

/** Bits one by one, the highest of each byte first. */
export class BitWriter {
  #bits = [];

  /** @param {number} value written with its highest bit first */
  high(value, count) {
    for (let bit = count - 1; bit >= 0; bit--) {
      this.#bits.push((value >> bit) & 1);
    }
    return this;
  }

  /** @param {number} value written with its lowest bit first */
  low(value, count) {
    for (let bit = 0; bit < count; bit++) {
      this.#bits.push((value >> bit) & 1);
    }
    return this;
  }

  /** @param {number[]} bytes up to three */
  literals(...bytes) {
    this.low(0, 1).low(bytes.length, 2);
    bytes.forEach((byte) => this.high(byte, 8));
    return this;
  }

  repetition(back, count, width) {
    return this.low(1, 1).high(width, 4).low(back, width).low(count, width);
  }

  /** @param {number} announced how many bytes the stream is said to hold */
  file(announced) {
    const stream = new Uint8Array(Math.ceil(this.#bits.length / 8));
    this.#bits.forEach((bit, index) => (stream[index >> 3] |= bit << (7 - (index & 7))));
    return new Uint8Array(Buffer.concat([Buffer.from("BCFZ"), Buffer.from(Uint32Array.of(announced).buffer), stream]));
  }
}

/** Packs in the simplest way: what was there before, by its next four bytes, is repeated. @param {Uint8Array} content */
export function pack(content) {
  const writer = new BitWriter();
  const seen = new Map();
  for (let at = 0; at < content.length;) {
    const key = content.subarray(at, at + 4).join();
    const back = at - (seen.get(key) ?? -Infinity);
    seen.set(key, at);
    let count = 0;
    const longest = back <= 0x7fff ? back : 0;
    while (count < longest && at + count < content.length && content[at + count] === content[at + count - back]) {
      count++;
    }
    if (count > 3) {
      writer.repetition(back, count, 32 - Math.clz32(Math.max(back, count)));
    } else {
      count = Math.min(3, content.length - at);
      writer.literals(...content.subarray(at, at + count));
    }
    at += count;
  }
  return writer.file(content.length);
}
