// @ts-check
const [less, greater, exclamation, bracket, endBracket] = Array.from("<>![]", (letter) => letter.charCodeAt(0));
const spaces = new Set(Array.from(" \t\n\r", (letter) => letter.charCodeAt(0)));

/**
 * XML as it was, without the white space between two tags: alphaTab would make a node of each, as many as there are
 * elements. To be used where no element has both text and elements.
 *
 * @param {Uint8Array} xml in UTF-8
 * @returns {Uint8Array}
 */
export function withoutGaps(xml) {
  const kept = new Uint8Array(xml.length);
  let length = 0;
  for (let at = 0; at < xml.length;) {
    // What is marked as text may look like tags.
    const isText = xml[at] === less && xml[at + 1] === exclamation && xml[at + 2] === bracket;
    for (const end = isText ? endOfText(xml, at) : at + 1; at < end; at++) {
      kept[length++] = xml[at];
    }
    if (kept[length - 1] === greater) {
      at = nextTag(xml, at);
    }
  }
  return kept.subarray(0, length);
}

/**
 * @param {Uint8Array} xml
 * @param {number} at the beginning of a text marked as such
 */
function endOfText(xml, at) {
  let end = at;
  while (end < xml.length && !(xml[end] === endBracket && xml[end + 1] === endBracket && xml[end + 2] === greater)) {
    end++;
  }
  return Math.min(end + 3, xml.length);
}

/**
 * @param {Uint8Array} xml
 * @param {number} at behind a tag
 * @returns {number} the next tag, or where it was when something else comes before
 */
function nextTag(xml, at) {
  let next = at;
  while (spaces.has(xml[next])) {
    next++;
  }
  return xml[next] === less ? next : at;
}
