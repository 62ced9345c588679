// @ts-check
import { deflateRawSync } from "node:zlib";

/**
 * @param {Record<string, string>} members their texts, by their names
 * @returns {Uint8Array} a zip archive of deflated members
 */
export function zipOf(members) {
  const locals = [];
  const entries = [];
  let start = 0;
  for (const [name, text] of Object.entries(members)) {
    const data = deflateRawSync(Buffer.from(text));
    const header = Buffer.alloc(30);
    header.writeUInt32LE(0x04034b50, 0);
    header.writeUInt16LE(8, 8);
    header.writeUInt32LE(data.length, 18);
    header.writeUInt16LE(name.length, 26);
    const entry = Buffer.alloc(46);
    entry.writeUInt32LE(0x02014b50, 0);
    entry.writeUInt16LE(8, 10);
    entry.writeUInt32LE(data.length, 20);
    entry.writeUInt16LE(name.length, 28);
    entry.writeUInt32LE(start, 42);
    locals.push(header, Buffer.from(name), data);
    entries.push(entry, Buffer.from(name));
    start += 30 + name.length + data.length;
  }
  const directory = Buffer.concat(entries);
  const end = Buffer.alloc(22);
  end.writeUInt32LE(0x06054b50, 0);
  end.writeUInt16LE(Object.keys(members).length, 10);
  end.writeUInt32LE(directory.length, 12);
  end.writeUInt32LE(start, 16);
  return new Uint8Array(Buffer.concat([...locals, directory, end]));
}
