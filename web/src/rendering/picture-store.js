// @ts-check
/**
 * The pictures of all partials of a rendering, and where everything in them is. Whoever has them needs the layout no
 * more, which takes forty times the room: 50 MB for nine tracks of 224 bars, and these 1.4 MB when they are packed.
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
  /** @type {(string | Uint8Array<ArrayBuffer>)[]} packed, or to be packed */
  #bounds = [];

  /** How much is packed, in bytes. */
  get bytes() {
    const packed = [...this.#entries.values()].map((entry) => entry.packed);
    return [...packed, ...this.#bounds].reduce((sum, content) => sum + (content?.length ?? 0), 0);
  }

  /**
   * @param {readonly Partial[]} partials laid out; those that are painted already need not be painted again
   * @param {readonly string[]} [bounds] of the staff systems that they show, as texts
   */
  add(partials, bounds = []) {
    this.#bounds.push(...bounds);
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

  /** Packs what is not packed. */
  async pack() {
    for (const entry of this.#entries.values()) {
      if (entry.text !== null) {
        entry.packed = await packed(entry.text);
        entry.text = null;
      }
    }
    for (const [index, text] of this.#bounds.entries()) {
      if (typeof text === "string") {
        this.#bounds[index] = await packed(text);
      }
    }
  }

  /** Of how many staff systems it is known where everything is. */
  get systems() {
    return this.#bounds.length;
  }

  /**
   * @param {(index: number) => boolean} [isWanted] by the staff system's index; else all
   * @returns {Promise<string[]>} the texts of where everything is, one for each staff system
   */
  async bounds(isWanted = () => true) {
    const wanted = this.#bounds.filter((_, index) => isWanted(index));
    return Promise.all(wanted.map((text) => (typeof text === "string" ? text : unpacked(text))));
  }

  /**
   * @param {string} id
   * @returns {Promise<Partial | null>} with its picture; null where there is none
   */
  async painted(id) {
    const entry = this.#entries.get(id);
    const renderResult = entry?.text ?? (entry?.packed && (await unpacked(entry.packed)));
    return entry && renderResult ? { ...entry.partial, renderResult } : null;
  }
}

/** @param {string} text */
async function packed(text) {
  return new Uint8Array(await through(new CompressionStream(format), encoder.encode(text)).arrayBuffer());
}

/** @param {Uint8Array<ArrayBuffer>} bytes */
async function unpacked(bytes) {
  return through(new DecompressionStream(format), bytes).text();
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
