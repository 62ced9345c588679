// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { hasAllStrings } from "../score-files/strings/open-fingerings.js";
import { translated } from "../shared/texts.js";
import { instrumentOf, trackToShow } from "./instrument.js";
import { boardLayout, dotsOf, keyboardLayout, keyboardTop } from "./layout.js";
import { notesAt, sliceAt } from "./sounding-notes.js";

/**
 * The strip below the score with the instrument of one track, on which the notes that sound now are lit, and fainter
 * those of the next beat. It is there only while it is wanted.
 *
 * @typedef {import("../shared/alphatab.js").Track} Track
 * @typedef {import("./instrument.js").Instrument} Instrument
 * @typedef {import("./sounding-notes.js").Note} Note
 * @typedef {import("./sounding-notes.js").Slice} Slice
 *
 * @typedef {object} Dependencies
 * @property {import("../alphatab/page-api.js").PageApi} api
 * @property {import("../playback/playback.js").Playback} playback
 * @property {import("../playback/mixer.js").Mixer} mixer
 *
 * @typedef {{ x: number, y: number, radius: number }} Dot
 * @typedef {(note: Note) => Dot | null} DotOf null where a note has no place in the picture
 */

export class Fretboard {
  #dependencies;
  #body;
  #strip = document.createElement("section");
  #notes = drawn("g", { class: "notes" });
  #leftHanded;
  /** @type {Track | null} */
  #track = null;
  /** @type {Instrument | null} */
  #instrument = null;
  /** @type {DotOf} */
  #dotOf = () => null;
  /** What is lit now. @type {Slice | null} */
  #slice = null;
  /** @type {number | null} */
  #loopStart = null;
  /** @type {(() => void)[]} */
  #endings = [];
  #resizes = new ResizeObserver(() => this.#draw());

  /**
   * @param {Dependencies} dependencies
   * @param {HTMLElement} body the strip becomes its last element
   * @param {boolean} leftHanded
   */
  constructor(dependencies, body, leftHanded) {
    this.#dependencies = dependencies;
    this.#body = body;
    this.#leftHanded = leftHanded;
    this.#strip.id = "fretboard";
    body.append(this.#strip);
    body.classList.add("with-fretboard");
    const { api, mixer } = dependencies;
    this.#endings = [
      api.renderStarted.on(() => this.#chooseTrack()),
      api.playerPositionChanged.on(() => this.#light()),
      api.scorePrepared.on(() => {
        this.#chooseTrack();
        this.#light();
      }),
      mixer.soloChanged.on(() => this.#chooseTrack()),
    ];
    this.#chooseTrack();
    // Before sizes are observed: the strip without an instrument is lower, and a size that changes while the browser
    // notifies of sizes is an error of the page.
    this.#draw();
    this.#resizes.observe(this.#strip);
  }

  remove() {
    this.#endings.forEach((end) => end());
    this.#resizes.disconnect();
    this.#strip.remove();
    this.#body.classList.remove("with-fretboard", "bare-fretboard");
  }

  /** @param {boolean} leftHanded */
  setLeftHanded(leftHanded) {
    this.#leftHanded = leftHanded;
    this.#draw();
  }

  #chooseTrack() {
    const { api, mixer } = this.#dependencies;
    if (api.score && !hasAllStrings(api.score)) {
      // How many frets there are shows when the score is prepared, soon.
      return;
    }
    const track = trackToShow(api.score?.tracks ?? [], api.tracks ?? [], mixer.soloed);
    if (track !== this.#track) {
      this.#track = track;
      this.#instrument = track && instrumentOf(track);
      this.#draw();
    }
  }

  /** Draws the instrument without its notes, and then those. */
  #draw() {
    const instrument = this.#instrument;
    const isBare = !instrument || instrument.kind === "percussion";
    this.#dotOf = () => null;
    this.#body.classList.toggle("bare-fretboard", isBare);
    if (isBare) {
      const sentence = document.createElement("p");
      sentence.textContent = instrument ? nothingToShow(this.#track?.name ?? "") : "";
      this.#strip.replaceChildren(sentence);
      return;
    }
    const size = { width: this.#strip.clientWidth, height: this.#strip.clientHeight };
    const picture = drawn("svg", { width: size.width, height: size.height, role: "img" });
    const name = document.createElement("p");
    name.className = "name";
    name.textContent = this.#track?.name ?? "";
    if (instrument.kind === "strings") {
      picture.append(...this.#board(instrument, size));
    } else {
      picture.append(...this.#keyboard(instrument, size));
    }
    picture.setAttribute("aria-label", this.#track?.name ?? "");
    picture.append(this.#notes);
    // Away from the names of the first frets or keys.
    this.#strip.classList.toggle("named-at-end", this.#leftHanded || instrument.kind === "keys");
    this.#strip.replaceChildren(picture, name);
    this.#slice = null;
    this.#light();
  }

  /**
   * @param {import("./instrument.js").Strings} instrument
   * @param {import("./layout.js").Size} size
   */
  #board({ staff, tuning, capo, frets }, size) {
    const layout = boardLayout({ strings: tuning.length, frets, leftHanded: this.#leftHanded }, size);
    const { top, bottom, radius } = layout;
    this.#dotOf = (note) => {
      const fret = note.fret + capo;
      return note.isStringed && note.beat.voice.bar.staff === staff && note.fret >= 0 && fret <= frets
        ? { x: layout.fingerX(fret), y: layout.stringY(tuning.length - note.string), radius }
        : null;
    };
    const middle = (top + bottom) / 2;
    const quarter = (bottom - top) / 4;
    /** @type {(x: number, kind: string) => SVGElement} */
    const across = (x, kind) => drawn("line", { x1: x, x2: x, y1: top, y2: bottom, class: kind });
    return [
      ...dotsOf(frets).flatMap(({ fret, twice }) => [
        ...(twice ? [middle - quarter, middle + quarter] : [middle]).map((cy) =>
          drawn("circle", { cx: layout.fingerX(fret), cy, r: 4, class: "inlay" }),
        ),
        lettering(String(fret), layout.fingerX(fret), layout.numberY, "number"),
      ]),
      ...Array.from({ length: frets }, (_, index) => across(layout.fretX(index + 1), "fret")),
      across(layout.fretX(0), "nut"),
      ...tuning.flatMap((key, string) => {
        const y = layout.stringY(string);
        const thickness = 1 + (string * 1.6) / tuning.length;
        const ends = { x1: layout.fretX(0), x2: layout.fretX(frets), y1: y, y2: y };
        return [
          drawn("line", { ...ends, class: "string", "stroke-width": thickness }),
          lettering(alphaTab.model.Tuning.getTextForTuning(key, false), layout.nameX, y + 4, "name"),
        ];
      }),
      ...(capo > 0 && capo <= frets ? [across(layout.fingerX(capo), "capo")] : []),
    ];
  }

  /**
   * @param {import("./instrument.js").Keys} keyboard
   * @param {import("./layout.js").Size} size
   */
  #keyboard(keyboard, size) {
    const keys = keyboardLayout(keyboard, size);
    const byKey = new Map(keys.map((key) => [key.key, key]));
    this.#dotOf = ({ realValue }) => {
      const key = byKey.get(realValue);
      if (!key) {
        return null;
      }
      const radius = Math.min(key.width / 2 - 1, 9);
      return { x: key.x + key.width / 2, y: keyboardTop + key.height - radius - 4, radius };
    };
    return [
      ...keys.map(({ black, x, width, height }) =>
        drawn("rect", { x, y: keyboardTop, width, height, rx: 2, class: black ? "black-key" : "white-key" }),
      ),
      ...keys
        .filter(({ key }) => key % 12 === 0)
        .map(({ key, x, width }) => lettering(`C${key / 12 - 1}`, x + width / 2, size.height - 7, "number")),
    ];
  }

  /** Lights what sounds at the position, where that is not lit already. */
  #light() {
    const { api, playback } = this.#dependencies;
    const track = this.#track;
    const bars = api.tickCache?.masterBars ?? [];
    const position = track && sliceAt(bars, playback.tick);
    const loop = playback.loop;
    if (position?.slice === this.#slice && (loop?.startTick ?? null) === this.#loopStart && this.#slice) {
      return;
    }
    this.#slice = position?.slice ?? null;
    this.#loopStart = loop?.startTick ?? null;
    const { sounding, next } = position ? notesAt(bars, position, track, loop) : { sounding: [], next: [] };
    this.#notes.replaceChildren(
      ...next.map((note) => this.#dot(note, "next")),
      ...sounding.map((note) => this.#dot(note, "sounding")),
    );
  }

  /**
   * @param {Note} note
   * @param {string} kind
   */
  #dot(note, kind) {
    const dot = this.#dotOf(note);
    if (!dot) {
      return "";
    }
    const { x, y, radius } = dot;
    return note.isDead
      ? lettering("×", x, y + 6, `dead ${kind}`)
      : drawn("circle", { cx: x, cy: y, r: kind === "next" ? radius - 1 : radius, class: kind });
  }
}

/** @param {string} name of a track */
function nothingToShow(name) {
  return translated(`${name} is percussion: there are no strings and no keys to show.`);
}

/**
 * @param {string} text
 * @param {number} x
 * @param {number} y
 * @param {string} kind
 */
function lettering(text, x, y, kind) {
  const element = drawn("text", { x, y, class: kind });
  element.textContent = text;
  return element;
}

/**
 * @param {string} tag
 * @param {Record<string, string | number>} attributes
 * @returns {SVGElement}
 */
function drawn(tag, attributes) {
  const element = document.createElementNS("http://www.w3.org/2000/svg", tag);
  for (const [name, value] of Object.entries(attributes)) {
    element.setAttribute(name, String(value));
  }
  return element;
}
