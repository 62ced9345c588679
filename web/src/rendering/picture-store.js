// @ts-check
/**
 * The pictures of all partials of a rendering. Whoever has them needs the layout no more, which takes fifty times the
 * room: 50 MB for nine tracks of 224 bars, and their pictures 1 MB when they are packed.
 *
 * @typedef {import("./layout-run.js").Partial} Partial
 *
 * @typedef {object} Entry
 * @property {Partial} partial as it was laid out
 * @property {string | null} text its picture as SVG, until it is packed
 * @property {Uint8Array<ArrayBuffer> | null} packed
 */

/** Chromium before 103 does not know it without its checksum. */
const format = "deflate";

const encoder = new TextEncoder();

export class PictureStore {
  /** @type {Map<string, Entry>} */
  #entries = new Map();
  /** @type {Set<string>} ids of partials without a picture */
  #missing = new Set();

  /** @param {readonly Partial[]} partials laid out; those that are painted already need not be painted again */
  add(partials) {
    for (const partial of partials) {
      this.#entries.set(partial.id, { partial, text: null, packed: null });
      this.#missing.add(partial.id);
      this.keep(partial);
    }
  }

  /** @param {Partial} partial that may have been painted */
  keep({ id, renderResult }) {
    const entry = this.#entries.get(id);
    if (entry && typeof renderResult === "string" && this.#missing.delete(id)) {
      entry.text = renderResult;
    }
  }

  /** @param {string} id */
  has(id) {
    return this.#entries.has(id) && !this.#missing.has(id);
  }

  /** @returns {Partial[]} as they were laid out, without their pictures */
  get partials() {
    return [...this.#entries.values()].map(({ partial }) => partial);
  }

  /** @returns {string | undefined} the id of a partial that is still to be painted */
  get nextMissing() {
    const [id] = this.#missing;
    return id;
  }

  /** Packs the pictures that are not packed. */
  async pack() {
    for (const entry of this.#entries.values()) {
      if (entry.text !== null) {
        const packed = through(new CompressionStream(format), encoder.encode(entry.text));
        entry.packed = new Uint8Array(await packed.arrayBuffer());
        entry.text = null;
      }
    }
  }

  /**
   * @param {string} id
   * @returns {Promise<Partial | null>} with its picture; null where there is none
   */
  async painted(id) {
    const entry = this.#entries.get(id);
    const renderResult =
      entry?.text ?? (entry?.packed && (await through(new DecompressionStream(format), entry.packed).text()));
    return entry && renderResult ? { ...entry.partial, renderResult } : null;
  }
}

/**
 * Without a Blob, which Chromium would keep in the window's process.
 *
 * @param {CompressionStream | DecompressionStream} stream
 * @param {BufferSource} content
 */
function through(stream, content) {
  const writer = stream.writable.getWriter();
  void writer.write(content);
  void writer.close();
  return new Response(stream.readable);
}
