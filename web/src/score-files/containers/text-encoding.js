// @ts-check
/**
 * Finds out how a text file encodes its characters. What XML files declare about themselves is often wrong, because a
 * program wrote the declaration and another one the bytes; so the bytes are believed first.
 */

/** How many bytes are looked at to tell which half of each pair is empty. */
const sampleLength = 512;

/**
 * @param {Uint8Array} bytes of an XML file
 * @returns {string} its text, without the mark for the order of bytes
 */
export function decodeText(bytes) {
  const wide = wideEncodingOf(bytes);
  if (wide) {
    return new TextDecoder(wide).decode(bytes);
  }
  const declared = declaredEncodingOf(bytes);
  // UTF-16 was ruled out; what claims to be it has been converted.
  if (declared && !/^(utf-?(8|16|32)|ucs-?[24]|iso-10646)/i.test(declared)) {
    try {
      return new TextDecoder(declared).decode(bytes);
    } catch {
      // No encoding of that name is known.
    }
  }
  try {
    return new TextDecoder("utf-8", { fatal: true }).decode(bytes);
  } catch {
    // A file is also read from its beginning alone, which may end within a character.
    const text = new TextDecoder("utf-8").decode(bytes);
    return text.slice(0, -2).includes("\ufffd") ? new TextDecoder("windows-1252").decode(bytes) : text;
  }
}

/**
 * @param {Uint8Array} bytes
 * @returns {"utf-16le" | "utf-16be" | null}
 */
function wideEncodingOf(bytes) {
  if (bytes[0] === 0xff && bytes[1] === 0xfe) {
    return "utf-16le";
  }
  if (bytes[0] === 0xfe && bytes[1] === 0xff) {
    return "utf-16be";
  }
  // An XML file begins with markup, whose characters leave one byte of each pair empty.
  const zeros = [0, 0];
  const length = Math.min(bytes.length, sampleLength);
  for (let i = 0; i < length; i++) {
    zeros[i & 1] += bytes[i] === 0 ? 1 : 0;
  }
  if (zeros[1] > length / 4 && zeros[0] < length / 8) {
    return "utf-16le";
  }
  return zeros[0] > length / 4 && zeros[1] < length / 8 ? "utf-16be" : null;
}

/** @param {Uint8Array} bytes */
function declaredEncodingOf(bytes) {
  const declaration = String.fromCharCode(...bytes.subarray(0, 200));
  return /^[^<]{0,3}<\?xml[^>]*encoding=["']([A-Za-z0-9._-]+)["']/.exec(declaration)?.[1];
}
