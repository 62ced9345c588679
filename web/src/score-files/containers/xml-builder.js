// @ts-check
import { XmlElement } from "./xml-scanner.js";

/** An element whose content is made while it is read, which happens once: less of it has to be there at a time. */
export class LateElement extends XmlElement {
  #make;

  /**
   * @param {string} name
   * @param {() => Iterable<XmlElement>} make
   */
  constructor(name, make) {
    super(name);
    this.#make = make;
  }

  /** @override */
  childElements() {
    return this.#make();
  }
}

/** Builds a tree of elements, in the order in which a document has them. */
export class XmlBuilder {
  #holder = new XmlElement("");
  #parent = this.#holder;
  /** @type {XmlElement[]} what the open element lies in, outermost first */
  #open = [];

  /**
   * @param {string} name
   * @param {Record<string, string | number | undefined>} [attributes] those that are undefined are left out
   */
  open(name, attributes) {
    const element = this.#add(name, attributes);
    this.#open.push(this.#parent);
    this.#parent = element;
  }

  close() {
    this.#parent = this.#open.pop() ?? this.#holder;
  }

  /**
   * @param {string} name
   * @param {string | number} text
   * @param {Record<string, string | number | undefined>} [attributes]
   */
  leaf(name, text, attributes) {
    this.#add(name, attributes).text = typeof text === "number" ? String(text) : text;
  }

  /** @param {string} name of an element without anything in it */
  empty(name) {
    this.#add(name);
  }

  /**
   * Takes an element as it is, with all that it holds.
   *
   * @param {XmlElement} element
   */
  copy(element) {
    this.#parent.append(element);
  }

  /** @returns {XmlElement} the outermost element; the next one is built from nothing */
  taken() {
    const [element] = this.#holder.children;
    this.#holder = new XmlElement("");
    this.#parent = this.#holder;
    return element;
  }

  /**
   * @param {string} name
   * @param {Record<string, string | number | undefined>} [attributes]
   */
  #add(name, attributes) {
    const element = new XmlElement(name);
    if (attributes) {
      const given = new Map();
      for (const key in attributes) {
        if (attributes[key] !== undefined) {
          given.set(key, String(attributes[key]));
        }
      }
      if (given.size > 0) {
        element.attributes = given;
      }
    }
    this.#parent.append(element);
    return element;
  }
}
