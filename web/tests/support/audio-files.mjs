// @ts-check
// Audio files made up for the tests: their frames and pages are in order, what is in them sounds of nothing.

/** Bytes that differ from each other and are the same each time. */
export function noise(length, seed = 1) {
  let state = seed;
  return Uint8Array.from({ length }, () => ((state = (state * 16807) % 2147483647) >> 8) & 0x7f);
}

export function joined(...parts) {
  const bytes = new Uint8Array(parts.reduce((length, part) => length + part.length, 0));
  let at = 0;
  for (const part of parts) {
    bytes.set(part, at);
    at += part.length;
  }
  return bytes;
}

export const text = (letters) => new TextEncoder().encode(letters);

/** @param {{ format?: number, channels?: number, rate?: number, bits?: number, data: Uint8Array, before?: Uint8Array }} file */
export function wave({ format = 1, channels = 2, rate = 44100, bits = 16, data, before = new Uint8Array() }) {
  const head = new DataView(new ArrayBuffer(24));
  const frame = (channels * bits) / 8;
  text("fmt ").forEach((letter, at) => head.setUint8(at, letter));
  head.setUint32(4, 16, true);
  head.setUint16(8, format, true);
  head.setUint16(10, channels, true);
  head.setUint32(12, rate, true);
  head.setUint32(16, rate * frame, true);
  head.setUint16(20, frame, true);
  head.setUint16(22, bits, true);
  const chunks = joined(text("WAVE"), before, new Uint8Array(head.buffer), text("data"), little(data.length), data);
  return joined(text("RIFF"), little(chunks.length), chunks);
}

/** Four bytes, the lowest first. */
export const little = (value) => new Uint8Array(Uint32Array.of(value).buffer);

/** A frame of MPEG-1 layer III in stereo at 44.1 kHz and 128 kbit/s: 417 bytes, 1152 samples. */
export function frame(seed) {
  return joined([0xff, 0xfb, 0x90, 0x00], noise(413, seed));
}

/** The first frame of a file, with what an encoder tells of the others. */
export function infoFrame(frames, before, after) {
  const bytes = joined([0xff, 0xfb, 0x90, 0x00], new Uint8Array(413));
  bytes.set(text("Info"), 36);
  bytes.set([0, 0, 0, 1, 0, 0, frames >> 8, frames & 255], 40);
  bytes.set(text("LAME3.100"), 48);
  bytes.set([before >> 4, ((before & 15) << 4) | (after >> 8), after & 255], 48 + 21);
  return bytes;
}

/** An Ogg page with packets of a stream; `end` is -1 where none of them ends. */
export function page({ packets, end, first = false, stream = 7, open = false }) {
  const table = packets.flatMap((packet, index) => {
    const whole = Array(Math.floor(packet.length / 255)).fill(255);
    return open && index === packets.length - 1 ? whole : [...whole, packet.length % 255];
  });
  const head = new DataView(new ArrayBuffer(27));
  text("OggS").forEach((letter, at) => head.setUint8(at, letter));
  head.setUint8(5, first ? 2 : 0);
  head.setBigInt64(6, BigInt(end), true);
  head.setUint32(14, stream, true);
  head.setUint8(26, table.length);
  return joined(new Uint8Array(head.buffer), table, ...packets);
}

/** The pages of a Vorbis stream's three heads. */
export function vorbisHead(rate = 44100) {
  const first = joined(text("\x01vorbis"), new Uint8Array(4), [2], little(rate), noise(14));
  return [page({ packets: [first], end: 0, first: true }), page({ packets: [noise(60), noise(700, 3)], end: 0 })];
}
