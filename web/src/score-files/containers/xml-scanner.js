// @ts-check
/**
 * Reads XML into a tree of elements, for documents that nobody vouches for: what a document may ask for is bounded, and
 * no document type is ever expanded. It knows as much of XML as score files use: elements, attributes, texts, CDATA
 * sections, comments and processing instructions. Namespaces are left in the names.
 *
 * Neither worker nor Node.js has a DOMParser, and building a DOM would take longer than reading the score.
 */

/** How deep elements may lie within each other. Scores come to a dozen. */
const deepest = 200;

/** How many elements a document may have: four times those of a score of 100 MB. */
const mostElements = 20_000_000;

/** Most elements have neither; they share these. @type {ReadonlyMap<string, string>} */
const noAttributes = new Map();
/** @type {XmlElement[]} */
const noChildren = [];

/** @type {ReadonlySet<string>} */
const noNames = new Set();

const predefined = new Map([
  ["lt", "<"],
  ["gt", ">"],
  ["amp", "&"],
  ["quot", '"'],
  ["apos", "'"],
]);

/** An element with its attributes, the elements within it, and its text without the space around it. */
export class XmlElement {
  /** @param {string} name */
  constructor(name) {
    this.name = name;
    /** @type {ReadonlyMap<string, string>} */
    this.attributes = noAttributes;
    /** Add with `append`. */
    this.children = noChildren;
    this.text = "";
  }

  /** @param {XmlElement} child */
  append(child) {
    if (this.children === noChildren) {
      this.children = [child];
    } else {
      this.children.push(child);
    }
  }

  /**
   * @param {string} name
   * @returns {XmlElement | undefined} the first element of that name within this one
   */
  child(name) {
    for (const child of this.children) {
      if (child.name === name) {
        return child;
      }
    }
    return undefined;
  }

  /** @param {string} name @returns {string} the text of the first element of that name, or nothing */
  textOf(name) {
    return this.child(name)?.text ?? "";
  }

  // What follows is for alphaTab's reader, under the names that it uses.

  get localName() {
    return this.name;
  }

  get innerText() {
    return this.text;
  }

  /** The one element within this one, for kinds of element that hold one. @returns {XmlElement | null} */
  get firstElement() {
    return this.children.at(-1) ?? null;
  }

  /** @returns {Iterable<XmlElement>} */
  childElements() {
    return this.children;
  }

  /** @param {string} name */
  findChildElement(name) {
    return this.child(name) ?? null;
  }

  /**
   * @param {string} name
   * @param {string} [otherwise]
   */
  getAttribute(name, otherwise = "") {
    return this.attributes.get(name) ?? otherwise;
  }
}

/**
 * @param {string} source
 * @param {ReadonlySet<string>} [ignored] names of attributes that nobody asks for
 * @returns {XmlElement} the root element
 * @throws {Error} when the document is not well-formed, or exceeds a bound; the message is the rest of a sentence
 */
export function scanXml(source, ignored = noNames) {
  const end = source.length;
  const holder = new XmlElement("");
  /** @type {XmlElement[]} the elements that are open, outermost first */
  const open = [holder];
  let parent = holder;
  let elements = 0;
  let at = 0;
  while (at < end) {
    const markup = source.indexOf("<", at);
    if (markup !== at) {
      addText(parent, source.slice(at, markup < 0 ? end : markup));
    }
    if (markup < 0) {
      break;
    }
    const kind = source.charCodeAt(markup + 1);
    if (kind === slash) {
      at = after(source, ">", markup);
      const name = parent.name;
      const exact = at - markup - 3 === name.length && source.startsWith(name, markup + 2);
      if (parent === holder || (!exact && source.slice(markup + 2, at - 1).trimEnd() !== name)) {
        throw malformed();
      }
      if (parent.text !== "") {
        parent.text = parent.text.trim();
      }
      open.pop();
      parent = open[open.length - 1];
    } else if (kind === questionMark) {
      at = after(source, "?>", markup);
    } else if (kind === exclamationMark) {
      at = afterDeclaration(source, markup, parent);
    } else {
      if (++elements > mostElements) {
        throw new Error("it has more elements than any score needs");
      }
      const element = new XmlElement("");
      at = readTag(source, markup + 1, element, ignored);
      if (parent === holder && holder.children.length > 0) {
        throw malformed();
      }
      parent.append(element);
      if (source.charCodeAt(at - 2) !== slash) {
        open.push(element);
        parent = element;
        if (open.length > deepest) {
          throw new Error("its elements lie too deep within each other");
        }
      }
    }
  }
  if (parent !== holder || holder.children.length === 0) {
    throw malformed();
  }
  return holder.children[0];
}

const slash = 0x2f;
const questionMark = 0x3f;
const exclamationMark = 0x21;
const greaterThan = 0x3e;
const equalsSign = 0x3d;
const quotationMark = 0x22;
const apostrophe = 0x27;

function malformed() {
  return new Error("it is not well-formed XML");
}

/**
 * @param {string} source
 * @param {string} mark
 * @param {number} from
 * @returns {number} where the text goes on after the mark
 */
function after(source, mark, from) {
  const at = source.indexOf(mark, from);
  if (at < 0) {
    throw malformed();
  }
  return at + mark.length;
}

/** Names that were met before. @type {Map<string, string>} */
const names = new Map();

/** More than any kind of score file has. */
const mostNames = 2000;

/**
 * Names are compared far more often than they are read. JavaScript keeps each name of a property once, and compares such
 * texts by where they are.
 *
 * @param {string} name
 */
function known(name) {
  const same = names.get(name);
  if (same !== undefined) {
    return same;
  }
  if (names.size >= mostNames) {
    names.clear();
  }
  const [property] = Object.keys({ [name]: 0 });
  names.set(property, property);
  return property;
}

/**
 * Reads an element's name and attributes.
 *
 * @param {string} source
 * @param {number} start of the name
 * @param {XmlElement} element takes them
 * @param {ReadonlySet<string>} ignored names of attributes that it does not take
 * @returns {number} where the text goes on after the tag
 */
function readTag(source, start, element, ignored) {
  let at = nameEnd(source, start);
  element.name = known(source.slice(start, at));
  /** @type {Map<string, string> | null} */
  let attributes = null;
  for (;;) {
    at = spaceEnd(source, at);
    const code = source.charCodeAt(at);
    if (code === greaterThan) {
      break;
    }
    if (code === slash && source.charCodeAt(at + 1) === greaterThan) {
      at++;
      break;
    }
    const nameStart = at;
    at = nameEnd(source, at);
    const name = known(source.slice(nameStart, at));
    at = spaceEnd(source, at);
    if (source.charCodeAt(at) !== equalsSign) {
      throw malformed();
    }
    at = spaceEnd(source, at + 1);
    const quote = source.charCodeAt(at);
    if (quote !== quotationMark && quote !== apostrophe) {
      throw malformed();
    }
    const close = source.indexOf(quote === quotationMark ? '"' : "'", at + 1);
    if (close < 0) {
      throw malformed();
    }
    if (!ignored.has(name)) {
      attributes ??= new Map();
      attributes.set(name, resolved(source.slice(at + 1, close)));
    }
    at = close + 1;
  }
  if (attributes) {
    element.attributes = attributes;
  }
  return at + 1;
}

/**
 * @param {string} source
 * @param {number} start
 * @returns {number} the end of the name that begins there
 */
function nameEnd(source, start) {
  let at = start;
  for (;;) {
    const code = source.charCodeAt(at);
    // Space, "/", ">", "=", "<", quotation marks, and the end of the text, which is NaN.
    if (
      !(code > 0x20) ||
      code === slash ||
      code === greaterThan ||
      code === equalsSign ||
      code === 0x3c ||
      code === 0x22
    ) {
      break;
    }
    at++;
  }
  if (at === start) {
    throw malformed();
  }
  return at;
}

/**
 * @param {string} source
 * @param {number} start
 */
function spaceEnd(source, start) {
  let at = start;
  while (source.charCodeAt(at) <= 0x20) {
    at++;
  }
  return at;
}

/**
 * @param {string} source
 * @param {number} start of a comment, a CDATA section or a document type
 * @param {XmlElement} parent takes the section's text
 * @returns {number} where the text goes on
 */
function afterDeclaration(source, start, parent) {
  if (source.startsWith("<!--", start)) {
    return after(source, "-->", start + 4);
  }
  if (source.startsWith("<![CDATA[", start)) {
    const end = after(source, "]]>", start);
    parent.text += source.slice(start + 9, end - 3);
    return end;
  }
  return afterDocumentType(source, start);
}

/**
 * Steps over a document type with what it declares, read only as far as needed to find its end.
 *
 * @param {string} source
 * @param {number} start
 */
function afterDocumentType(source, start) {
  let depth = 0;
  for (let at = start; at < source.length; at++) {
    const code = source.charCodeAt(at);
    if (code === quotationMark || code === apostrophe) {
      at = source.indexOf(source[at], at + 1);
      if (at < 0) {
        break;
      }
    } else if (source.startsWith("<!--", at)) {
      at = after(source, "-->", at + 4) - 1;
    } else if (code === 0x3c || code === 0x5b) {
      depth++;
    } else if (code === 0x5d) {
      depth--;
    } else if (code === greaterThan && --depth === 0) {
      return at + 1;
    }
  }
  throw malformed();
}

/**
 * @param {XmlElement} parent
 * @param {string} text
 */
function addText(parent, text) {
  // Most texts are the space that puts elements on lines of their own.
  for (let i = 0; i < text.length; i++) {
    if (text.charCodeAt(i) > 0x20) {
      if (parent.name === "" && text.charCodeAt(i) !== 0xfeff) {
        throw malformed();
      }
      parent.text += resolved(text);
      return;
    }
  }
}

/**
 * Puts characters in the place of references. What a document declares itself is not among them: such a reference
 * stands for nothing.
 *
 * @param {string} text
 */
function resolved(text) {
  if (!text.includes("&")) {
    return text;
  }
  return text.replace(/&(#x[0-9a-f]{1,6}|#[0-9]{1,7}|[a-z_][\w.-]*);/gi, (_, /** @type {string} */ name) => {
    if (!name.startsWith("#")) {
      return predefined.get(name) ?? "";
    }
    const code = /^#x/i.test(name) ? Number.parseInt(name.slice(2), 16) : Number.parseInt(name.slice(1), 10);
    return code > 0 && code <= 0x10ffff ? String.fromCodePoint(code) : "";
  });
}
