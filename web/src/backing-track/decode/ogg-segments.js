// @ts-check
import { boundariesOf } from "./segment-boundaries.js";

/**
 * Cuts Ogg files with Vorbis or Opus in them, page by page. The header of a page says how many samples there are up to
 * the end of the last packet that ends in it. See RFC 3533 for pages, the description of Vorbis I (4.3, A.2) and RFC
 * 7845 for what is in them.
 *
 * @typedef {import("./segments.js").SegmentedFile} SegmentedFile
 *
 * @typedef {object} Page
 * @property {number} from its first byte
 * @property {number} to
 * @property {number} end samples of the stream up to its end
 */

/**
 * Decoding begins so long before a segment: until the decoder has forgotten that it began in the middle. In seconds.
 */
const lead = { vorbis: 0.4, opus: 1 };

const pageHeadLength = 27;

/** "OggS", which each page begins with, and what the first one says of itself. */
const pageMark = 0x4f676753;
const firstOfStream = 2;

/**
 * @param {Uint8Array} bytes
 * @returns {SegmentedFile | null}
 */
export function oggSegments(bytes) {
  const codec = codecOf(bytes);
  const stream = codec && pagesOf(bytes, codec.headers);
  if (!codec || !stream) {
    return null;
  }
  const { pages, head } = stream;
  const { sampleRate } = codec;
  /** @type {(index: number) => number} */
  const endBefore = (index) => (index > 0 ? pages[index - 1].end : 0);
  const boundaries = boundariesOf(pages.length, sampleRate, endBefore);
  const segments = boundaries.slice(1).map((boundary, index) => {
    const start = boundaries[index];
    let first = start;
    while (first > 0 && (first > start - 2 || endBefore(start) - endBefore(first) < codec.lead * sampleRate)) {
      first--;
    }
    return {
      from: pages[first].from,
      to: pages[boundary - 1].to,
      // The first page may begin anywhere.
      length: start > 0 ? Math.max(endBefore(boundary) - endBefore(start), 0) : 0,
      lead: 0,
      after: 0,
      // The last packet lasts longer than the stream, and is played to its end.
      ...(boundary === pages.length && start > 0 ? { leadTo: pages[start].from } : {}),
    };
  });
  return { sampleRate, segments, fileOf: ({ from, to }) => joined(head, bytes.subarray(from, to)) };
}

/** @param {Uint8Array} bytes */
function codecOf(bytes) {
  const view = new DataView(bytes.buffer, bytes.byteOffset, bytes.length);
  const at = pageHeadLength + (bytes[pageHeadLength - 1] ?? 0);
  const kind = String.fromCharCode(...bytes.subarray(at, at + 8));
  if (kind.startsWith("\x01vorbis") && at + 16 <= bytes.length) {
    return { sampleRate: view.getUint32(at + 12, true), headers: 3, lead: lead.vorbis };
  }
  // Whatever was encoded, Opus decodes to this rate.
  return kind === "OpusHead" ? { sampleRate: 48000, headers: 2, lead: lead.opus } : null;
}

/**
 * @param {Uint8Array} bytes
 * @param {number} headers packets before the sound
 * @returns {{ head: Uint8Array, pages: Page[] } | null} the pages with sound, in each of which a packet ends; null
 *     where there is more than one stream
 */
function pagesOf(bytes, headers) {
  /** @type {Page[]} */
  const pages = [];
  let stream = -1;
  let headersLeft = headers;
  let from = 0;
  for (const page of allPages(bytes)) {
    if (page.isFirst !== stream < 0 || (stream >= 0 && page.stream !== stream)) {
      return null;
    }
    stream = page.stream;
    if (headersLeft > 0) {
      headersLeft -= page.packets;
      from = page.to;
    } else if (page.end >= 0) {
      pages.push({ from, to: page.to, end: page.end });
      from = page.to;
    }
  }
  return headersLeft === 0 && pages.length > 0 ? { head: bytes.subarray(0, pages[0].from), pages } : null;
}

/**
 * @param {Uint8Array} bytes
 * @returns {Generator<{ to: number, end: number, stream: number, isFirst: boolean, packets: number }>} end: -1 for a
 *     page in the midst of a packet; packets: how many end in it. What is damaged in between is left out.
 */
function* allPages(bytes) {
  const view = new DataView(bytes.buffer, bytes.byteOffset, bytes.length);
  for (let at = 0; at + pageHeadLength <= bytes.length;) {
    const table = bytes.subarray(at + pageHeadLength, at + pageHeadLength + bytes[at + pageHeadLength - 1]);
    const to = at + pageHeadLength + table.length + table.reduce((length, segment) => length + segment, 0);
    if (view.getUint32(at) !== pageMark || to > bytes.length) {
      at++;
      continue;
    }
    yield {
      to,
      end: Number(view.getBigInt64(at + 6, true)),
      stream: view.getUint32(at + 14, true),
      isFirst: (bytes[at + 5] & firstOfStream) !== 0,
      packets: table.filter((segment) => segment < 255).length,
    };
    at = to;
  }
}

/**
 * @param {Uint8Array} head
 * @param {Uint8Array} pages
 */
function joined(head, pages) {
  const file = new Uint8Array(head.length + pages.length);
  file.set(head);
  file.set(pages, head.length);
  return file;
}
