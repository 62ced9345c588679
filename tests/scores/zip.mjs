// Zip archives for the tests: what one holds, and one of files as they are.
import { inflateRawSync } from "node:zlib";

const localHead = 0x04034b50;
const entryHead = 0x02014b50;
const listEnd = 0x06054b50;

/** The checksum of zip archives (ISO 3309). @param {Uint8Array} bytes */
function checksum(bytes) {
  let sum = -1;
  for (const byte of bytes) {
    sum ^= byte;
    for (let bit = 0; bit < 8; bit++) {
      sum = (sum >>> 1) ^ (sum & 1 ? 0xedb88320 : 0);
    }
  }
  return ~sum >>> 0;
}

/** The files of a well-formed archive, by their names. @param {Uint8Array} archive */
export function unzip(archive) {
  const bytes = Buffer.from(archive);
  const end = bytes.lastIndexOf(Buffer.from(Uint32Array.of(listEnd).buffer));
  /** @type {Record<string, Buffer>} */
  const files = {};
  let at = bytes.readUInt32LE(end + 16);
  for (let left = bytes.readUInt16LE(end + 10); left > 0; left--) {
    const method = bytes.readUInt16LE(at + 10);
    const length = bytes.readUInt32LE(at + 20);
    const [name, extra, comment] = [28, 30, 32].map((offset) => bytes.readUInt16LE(at + offset));
    const head = bytes.readUInt32LE(at + 42);
    const start = head + 30 + bytes.readUInt16LE(head + 26) + bytes.readUInt16LE(head + 28);
    const content = bytes.subarray(start, start + length);
    files[bytes.toString("utf8", at + 46, at + 46 + name)] = method === 8 ? inflateRawSync(content) : content;
    at += 46 + name + extra + comment;
  }
  return files;
}

/** An archive of files, uncompressed and in their order. @param {Record<string, Uint8Array>} files by their names */
export function zip(files) {
  const parts = [];
  const list = [];
  let at = 0;
  for (const [title, content] of Object.entries(files)) {
    const name = Buffer.from(title);
    const about = Buffer.alloc(26);
    about.writeUInt16LE(20, 0);
    about.writeUInt32LE(checksum(content), 10);
    about.writeUInt32LE(content.length, 14);
    about.writeUInt32LE(content.length, 18);
    about.writeUInt16LE(name.length, 22);
    const entry = Buffer.alloc(46);
    entry.writeUInt32LE(entryHead, 0);
    entry.writeUInt16LE(20, 4);
    about.copy(entry, 6);
    entry.writeUInt32LE(at, 42);
    list.push(entry, name);
    parts.push(Buffer.from(Uint32Array.of(localHead).buffer), about, name, content);
    at += 30 + name.length + content.length;
  }
  const end = Buffer.alloc(22);
  end.writeUInt32LE(listEnd, 0);
  end.writeUInt16LE(list.length / 2, 8);
  end.writeUInt16LE(list.length / 2, 10);
  end.writeUInt32LE(Buffer.concat(list).length, 12);
  end.writeUInt32LE(at, 16);
  return Buffer.concat([...parts, ...list, end]);
}
