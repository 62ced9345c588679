// @ts-check
import { inflate } from "./inflate.js";

/**
 * Reads zip archives by their central directory (APPNOTE.TXT, PKWARE). Of what archives can do it knows what score files
 * use: members that are stored or deflated.
 *
 * @typedef {object} Member
 * @property {string} name
 * @property {number} method 0 stored, 8 deflated
 * @property {number} start of its local header, in bytes
 * @property {number} packed size, in bytes
 */

const endSignature = 0x06054b50;
const entrySignature = 0x02014b50;
const localSignature = 0x04034b50;
const endLength = 22;
const longestComment = 0xffff;

export class ZipReader {
  #bytes;
  #view;
  /** @type {Member[]} */
  members = [];

  /**
   * @param {Uint8Array} bytes
   * @throws {Error} when there is no directory, or it is damaged
   */
  constructor(bytes) {
    this.#bytes = bytes;
    this.#view = new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
    const end = this.#findEnd();
    const count = this.#view.getUint16(end + 10, true);
    let at = this.#view.getUint32(end + 16, true);
    for (let i = 0; i < count; i++) {
      if (at + 46 > bytes.length || this.#view.getUint32(at, true) !== entrySignature) {
        throw damaged();
      }
      const nameLength = this.#view.getUint16(at + 28, true);
      this.members.push({
        name: new TextDecoder().decode(bytes.subarray(at + 46, at + 46 + nameLength)),
        method: this.#view.getUint16(at + 10, true),
        packed: this.#view.getUint32(at + 20, true),
        start: this.#view.getUint32(at + 42, true),
      });
      at += 46 + nameLength + this.#view.getUint16(at + 30, true) + this.#view.getUint16(at + 32, true);
    }
  }

  /** @param {string} name */
  find(name) {
    return this.members.find((member) => member.name === name);
  }

  /**
   * @param {Member} member
   * @param {number} limit in bytes: how much may come of it
   * @returns {Uint8Array}
   * @throws {Error} when it is damaged, packed in another way, or unpacks to more than the limit
   */
  read({ method, start, packed }, limit) {
    if (start + 30 > this.#bytes.length || this.#view.getUint32(start, true) !== localSignature) {
      throw damaged();
    }
    const begin = start + 30 + this.#view.getUint16(start + 26, true) + this.#view.getUint16(start + 28, true);
    const data = this.#bytes.subarray(begin, begin + packed);
    if (data.length !== packed) {
      throw damaged();
    }
    if (method === 8) {
      return inflate(data, limit);
    }
    if (method !== 0) {
      throw new Error("it is packed in a way that is not known");
    }
    return data;
  }

  #findEnd() {
    const last = this.#bytes.length - endLength;
    for (let at = last; at >= 0 && at >= last - longestComment; at--) {
      if (this.#view.getUint32(at, true) === endSignature) {
        return at;
      }
    }
    throw damaged();
  }
}

function damaged() {
  return new Error("the archive is damaged");
}
