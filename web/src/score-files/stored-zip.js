// @ts-check
const entryMark = 0x04034b50;
const endMark = 0x06054b50;
const entryHeadLength = 30;
const endLength = 22;

/**
 * A zip of files as they are, for a reader that goes through it from the front: without checksums and without a
 * directory at its end.
 *
 * @param {Map<string, Uint8Array>} files by their names
 * @returns {Uint8Array}
 */
export function storedZip(files) {
  const entries = Array.from(files, ([name, content]) => ({ name: new TextEncoder().encode(name), content }));
  const length = entries.reduce(
    (sum, { name, content }) => sum + entryHeadLength + name.length + content.length,
    endLength,
  );
  const zip = new Uint8Array(length);
  const view = new DataView(zip.buffer);
  let at = 0;
  for (const { name, content } of entries) {
    view.setUint32(at, entryMark, true);
    view.setUint32(at + 18, content.length, true);
    view.setUint32(at + 22, content.length, true);
    view.setUint16(at + 26, name.length, true);
    zip.set(name, at + entryHeadLength);
    zip.set(content, at + entryHeadLength + name.length);
    at += entryHeadLength + name.length + content.length;
  }
  view.setUint32(at, endMark, true);
  return zip;
}
