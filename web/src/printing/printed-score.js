// @ts-check
import { ScoreFooter } from "../score-view/score-footer.js";
import { ScoreHeader } from "../score-view/score-header.js";
import { systemsFor } from "./print-renderer.js";
import { dividedIntoPages, shrinkage } from "./pages.js";

/**
 * The score as it is printed: pages of whole staff systems, with the title on the first one and a number on each. It
 * lies hidden beside the score page while the program prints, and only then.
 *
 * @typedef {import("./print-renderer.js").System} System
 * @typedef {{ width: number, height: number }} Size
 */

/** Staves at zoom 1 are as large as in printed tablature: 6 mm. */
const scaleAtZoom1 = 0.72;

/** Beside the notation: names of tracks begin left of it. In CSS pixels. */
const sides = { left: 28, right: 2 };

/** For the number of the page, in CSS pixels. */
const numberHeight = 26;

export class PrintedScore {
  #api;
  #body;
  /** @type {HTMLElement | null} */
  #pages = null;
  /** @type {AbortController | null} */
  #pass = null;

  /**
   * @param {import("../alphatab/page-api.js").PageApi} api
   * @param {HTMLElement} body
   */
  constructor(api, body) {
    this.#api = api;
    this.#body = body;
  }

  /**
   * Makes the pages of what is shown of the score. What was made before is gone.
   *
   * @param {Size} room of a page, in CSS pixels
   * @returns {Promise<boolean>} false where there is nothing to print, or something else is printed by now
   */
  async prepare(room) {
    this.remove();
    const { score, tracks, settings } = this.#api;
    const { staves } = this.#api.workerRenderer;
    if (!score || tracks.length === 0) {
      return false;
    }
    const pass = new AbortController();
    this.#pass = pass;
    const indices = tracks.map(({ index }) => index);
    const width = room.width - sides.left - sides.right;
    const pageHeight = room.height - numberHeight;
    const atFirst = settings.display.scale * scaleAtZoom1;
    const { pages, header, footer } = this.#begin(score, tracks, room, atFirst);
    let systems = await systemsFor(score, indices, settings, { width, staves, scale: atFirst }, pass.signal);
    const smaller = shrinkage(heightsOf(systems), pageHeight, header.offsetHeight);
    if (smaller < 1) {
      const scale = atFirst * smaller * 0.98;
      pages.style.setProperty("--zoom", String(scale));
      systems = await systemsFor(score, indices, settings, { width, staves, scale }, pass.signal);
    }
    const surfaceClass = this.#api.notation.querySelector(".at-surface")?.className ?? "at-surface at";
    const blocks = [...systems.map((system) => notation(system, surfaceClass)), footer];
    const heights = [...heightsOf(systems), footer.offsetHeight];
    const division = dividedIntoPages(heights, pageHeight, header.offsetHeight);
    pages.replaceChildren(
      ...division.map((onPage, number) => {
        const page = element("section", "printed-page");
        page.style.height = `${room.height}px`;
        const count = element("p", "page-number");
        count.textContent = `${number + 1} / ${division.length}`;
        page.append(...(number === 0 ? [header] : []), ...onPage.map((index) => blocks[index]), count);
        return page;
      }),
    );
    // Measured: nothing of it is laid out from now on, until it is printed.
    pages.classList.add("ready");
    return true;
  }

  remove() {
    this.#pass?.abort();
    this.#pass = null;
    this.#pages?.remove();
    this.#pages = null;
  }

  /**
   * The pages with nothing but what stands around the notation, for that to be measured.
   *
   * @param {import("../shared/alphatab.js").Score} score
   * @param {readonly import("../shared/alphatab.js").Track[]} tracks
   * @param {Size} room
   * @param {number} scale
   */
  #begin(score, tracks, room, scale) {
    const pages = element("div", "");
    pages.id = "printed";
    pages.style.setProperty("--zoom", String(scale));
    pages.style.width = `${room.width}px`;
    const header = element("header", "score-header");
    new ScoreHeader(header).show(score, tracks);
    const footer = element("footer", "score-footer");
    new ScoreFooter(footer).show(score);
    pages.append(header, footer);
    this.#body.append(pages);
    this.#pages = pages;
    return { pages, header, footer };
  }
}

/** @param {readonly System[]} systems */
function heightsOf(systems) {
  return systems.map(({ height }) => height);
}

/**
 * @param {System} system
 * @param {string} surfaceClass
 */
function notation({ height, picture }, surfaceClass) {
  const block = element("div", surfaceClass);
  block.style.height = `${height}px`;
  block.style.marginLeft = `${sides.left}px`;
  block.innerHTML = picture;
  return block;
}

/**
 * @param {string} tag
 * @param {string} kind
 */
function element(tag, kind) {
  const made = document.createElement(tag);
  made.className = kind;
  return made;
}
