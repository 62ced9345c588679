// @ts-check
/**
 * Writes XML, part by part.
 *
 * @typedef {import("./xml-scanner.js").XmlElement} XmlElement
 */

export class XmlWriter {
  #text = `<?xml version="1.0" encoding="UTF-8"?>\n`;

  /**
   * @param {string} name
   * @param {Record<string, string | number | undefined>} [attributes] those that are undefined are left out
   */
  open(name, attributes) {
    this.#text += `<${name}${attributes ? attributesOf(Object.entries(attributes)) : ""}>`;
  }

  /** @param {string} name */
  close(name) {
    this.#text += `</${name}>`;
  }

  /**
   * @param {string} name
   * @param {string | number} text
   * @param {Record<string, string | number | undefined>} [attributes]
   */
  leaf(name, text, attributes) {
    const inside = typeof text === "number" ? text : escaped(text);
    this.#text += `<${name}${attributes ? attributesOf(Object.entries(attributes)) : ""}>${inside}</${name}>`;
  }

  /** @param {string} name of an element without anything in it */
  empty(name) {
    this.#text += `<${name}/>`;
  }

  /**
   * Writes an element as it is, with all that it holds.
   *
   * @param {XmlElement} element
   */
  copy(element) {
    const { name, attributes, children, text } = element;
    this.#text += `<${name}`;
    if (attributes.size > 0) {
      this.#text += attributesOf(attributes);
    }
    if (children.length === 0 && text === "") {
      this.#text += "/>";
      return;
    }
    this.#text += `>${escaped(text)}`;
    for (const child of children) {
      this.copy(child);
    }
    this.#text += `</${name}>`;
  }

  taken() {
    return this.#text;
  }
}

/** @param {Iterable<[string, string | number | undefined]>} attributes */
function attributesOf(attributes) {
  let text = "";
  for (const [name, value] of attributes) {
    if (value !== undefined) {
      text += ` ${name}="${escaped(String(value))}"`;
    }
  }
  return text;
}

/** @param {string} text */
function escaped(text) {
  if (!/[&<>"]/.test(text)) {
    return text;
  }
  return text.replaceAll("&", "&amp;").replaceAll("<", "&lt;").replaceAll(">", "&gt;").replaceAll('"', "&quot;");
}
