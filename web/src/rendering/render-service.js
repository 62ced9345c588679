// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { letterWidths } from "../alphatab/internals/alphatab-internals.js";
import { KeptLooks } from "./kept-looks.js";
import { LayoutRun, firstStep, isIn } from "./layout-run.js";
import { PictureStore } from "./picture-store.js";
import { releaseSystems } from "./released-systems.js";
import { rescaled, rescaledSize, rescaledView } from "./rescaling.js";
import { layOutSample } from "./sample-layout.js";
import { showStaves } from "./shown-staves.js";
import { arrangeStaffNames } from "./staff-names.js";
import { foldLongRests } from "../score-files/guitar-pro/long-rests.js";
import { readForFirstScreen } from "../score-files/score-files.js";
import { chooseStrings } from "../score-files/strings/open-fingerings.js";
import { collectGarbage, collectThoroughly } from "../shared/garbage.js";

/**
 * Draws scores, bit by bit: between two steps of a render pass it receives what the page requests next, partials that
 * came into view or another render pass, which replaces the one under way.
 *
 * When all is laid out it paints what nobody has asked for yet. Then it has all pictures, and lets go of the layout:
 * another zoom, other tracks and another score begin anew anyway. Of a long score it lets go bit by bit, before all is
 * laid out. What the score looked like before is shown again from its pictures.
 *
 * @typedef {import("./worker-renderer.js").Request} Request
 * @typedef {import("./worker-renderer.js").Answer} Answer
 * @typedef {import("./layout-run.js").ScoreRenderer} ScoreRenderer
 * @typedef {import("./layout-run.js").Partial} Partial
 * @typedef {import("./scroll-anchor.js").View} View
 * @typedef {import("../shared/alphatab.js").Score} Score
 *
 * @typedef {{ file: number, score: Score }} ReadFile
 *
 * @typedef {object} EndlessSystem what is painted as a whole, and may be shown at another zoom
 * @property {string} look all that it was drawn with but the zoom
 * @property {number} scale that it was painted with
 * @property {number} width in CSS pixels
 * @property {number} height
 * @property {Map<number, number>} scales that render passes have shown it with, by their number
 */

/** For how long partials are painted that nobody waits for, before somebody may ask for one, in milliseconds. */
const paintStepMs = 20;

/** How long the page has for showing what is in view before all bounds keep it busy, in milliseconds. */
const firstFramesMs = 100;

/** How much is laid out before what is done is let go of, in bars of one track: 15 to 20 MB. */
const longLayout = 600;

/** The same while a score is opened, until `openingSize` are laid out: much else takes memory just then. */
const longLayoutWhileOpening = 300;
const openingSize = 3000;

export class RenderService {
  #post;
  /** The page's settings; a render pass under way keeps those it began with. */
  #settings = new alphaTab.Settings();
  /** @type {Map<string, unknown> | null} as they came */
  #settingsSent = null;
  /** @type {EndlessSystem | null} what is being painted or is */
  #endless = null;
  /** @type {import("./rescaling.js").Rescaling | null} from how the pictures were painted to how they are shown */
  #rescaling = null;
  /** @type {ScoreRenderer | null} null when its layout is not needed any more */
  #renderer = null;
  /** @type {ScoreRenderer | null} keeps two bars when all else is let go of, so that the next layout is quick */
  #sample = null;
  #pictures = new PictureStore();
  /** All that these are drawn with. */
  #look = "";
  #size = { width: 0, height: 0 };
  /** Of the score that is held. */
  #looks = new KeptLooks();
  /** Whether what is painted is for nobody yet: a partial that cannot be painted is told of when it is asked for. */
  #paintsAhead = false;
  /** @type {ReadFile | null} what is drawn */
  #held = null;
  /** Whether all of it has been drawn before, with another zoom or other tracks. */
  #drawsAgain = false;
  /** @type {ReadFile | null} what may be drawn next */
  #read = null;
  /** @type {LayoutRun | null} */
  #run = null;
  /** How much was laid out when the layout was last let go of, in bars of one track. */
  #released = 0;
  #renderId = 0;
  /** How long the render pass waits with its remainder for "resume". */
  #remainderTimeoutMs = 0;
  /** @type {{ work: () => void, timer: ReturnType<typeof setTimeout> } | null} what is done when no message waits */
  #next = null;

  /** @param {(answer: Answer) => void} post */
  constructor(post) {
    this.#post = post;
  }

  /** @returns {boolean} whether a layout takes room */
  get hasLayout() {
    return this.#renderer !== null;
  }

  /** @param {Request} request */
  answer(request) {
    switch (request.cmd) {
      case "settings":
        this.#settings = alphaTab.model.JsonConverter.jsObjectToSettings(request.settings);
        this.#settingsSent = request.settings;
        break;
      case "read": {
        const reading = readForFirstScreen(request.bytes, this.#settings);
        this.#read = reading.score ? { file: request.file, score: reading.score } : null;
        if (reading.score) {
          // While the page is not done with the file yet.
          chooseStrings(reading.score, firstStep(reading.score.tracks.length));
        }
        break;
      }
      case "draw":
        this.#draw(request);
        break;
      case "resume":
        this.#remainderTimeoutMs = 0;
        // What reading and the first lines have left, which nobody waits for any more.
        collectGarbage();
        this.#next?.work();
        break;
      case "stop":
        this.#run = null;
        break;
      case "paint":
        void this.#paint(request.id);
        break;
      case "ping":
        this.#post({ kind: "pong", number: request.number });
        break;
      case "collect":
        collectThoroughly();
        break;
    }
  }

  /** @param {unknown} reason */
  fail(reason) {
    this.#post({ kind: "failed", message: reason instanceof Error ? reason.message : String(reason) });
  }

  /** @param {Extract<Request, { cmd: "draw" }>} request */
  #draw(request) {
    const settings = this.#settings;
    if (request.score) {
      const score = alphaTab.model.JsonConverter.jsObjectToScore(request.score, settings);
      this.#read = { file: request.file, score };
    }
    this.#drawsAgain = this.#held?.file === request.file && (this.#drawsAgain || this.#renderer === null);
    if (this.#read?.file === request.file) {
      this.#held = this.#read;
      this.#read = null;
      this.#sample?.destroy();
      this.#sample = null;
      this.#looks.clear();
    }
    this.#run = null;
    this.#renderId = request.renderId;
    this.#remainderTimeoutMs = request.remainderTimeoutMs;
    if (this.#held?.file !== request.file) {
      this.#post({ kind: "missing", renderId: request.renderId });
      return;
    }
    const { score } = this.#held;
    const endless = this.#endless;
    const look = lookOf(request, this.#settingsSent);
    const { layoutMode, scale } = settings.display;
    if (endless?.look === look && !this.#renderer && endless.scales.has(request.whole ?? NaN)) {
      this.#rescale(request, endless).catch((reason) => this.fail(reason));
      return;
    }
    const sideways = layoutMode === alphaTab.LayoutMode.Horizontal;
    this.#endless = sideways ? { look, scale, width: 0, height: 0, scales: new Map() } : null;
    this.#look = JSON.stringify([look, scale, sideways || request.width, [...request.textWidths.keys()]]);
    const before = this.#looks.find(this.#look);
    if (before) {
      this.#showAgain(request, before).catch((reason) => this.fail(reason));
      return;
    }
    setTextWidths(request.textWidths);
    const renderer = (this.#renderer ??= this.#newRenderer());
    renderer.updateSettings(settings);
    renderer.width = request.width;
    foldLongRests(score);
    showStaves(score, request.staves);
    arrangeStaffNames(score, request.tracks);
    this.#released = 0;
    this.#run = new LayoutRun(renderer, score, request.tracks, request.view, request.anchor, request.atOnce);
    if (request.atOnce) {
      // Another zoom may have been requested already.
      this.#later(() => this.#proceed());
    } else {
      this.#proceed();
    }
  }

  /**
   * Shows the endless system at another zoom.
   *
   * @param {Extract<Request, { cmd: "draw" }>} request
   * @param {EndlessSystem} endless
   */
  async #rescale({ renderId, whole, view, anchor }, endless) {
    const { scale, padding } = this.#settings.display;
    const [left, top] = padding;
    const from = endless.scales.get(whole ?? NaN) ?? scale;
    const rescaling = { ratio: scale / from, left, top };
    const pictures = this.#pictures;
    const painted = { ratio: scale / endless.scale, left, top };
    const size = rescaledSize(endless, painted);
    const seen = rescaledView(view, anchor, rescaling, size.width);
    const partials = pictures.partials.map(async (partial) => {
      const there = rescaled(partial, painted);
      return isIn(there, seen) ? rescaled((await pictures.painted(partial.id)) ?? partial, painted) : there;
    });
    const batch = { first: true, last: true, partials: await Promise.all(partials), bounds: null, rescaling, ...size };
    if (renderId === this.#renderId) {
      this.#rescaling = painted;
      endless.scales.set(renderId, scale);
      this.#post({ kind: "drawn", renderId, batch });
    }
  }

  /**
   * Shows the score as it was shown before.
   *
   * @param {Extract<Request, { cmd: "draw" }>} request
   * @param {import("./kept-looks.js").Look} look
   */
  async #showAgain({ renderId, view, anchor }, { pictures, width, height }) {
    this.#later(null);
    this.#pictures = pictures;
    this.#size = { width, height };
    this.#rescaling = null;
    const endless = this.#endless;
    const seen = viewNear(anchor, pictures.partials, view, height);
    const partials = pictures.partials.map(async (partial) =>
      isIn(partial, seen) ? ((await pictures.painted(partial.id)) ?? partial) : partial,
    );
    // What is in view comes first, and can be clicked at once: bounds take most of the time.
    const systems = pictures.partials.filter(({ firstMasterBarIndex }) => firstMasterBarIndex >= 0);
    const isNear = (/** @type {number} */ index) => systems.length !== pictures.systems || isIn(systems[index], seen);
    const near = await pictures.bounds(isNear);
    const last = near.length === pictures.systems;
    const all = await Promise.all(partials);
    const batch = { first: true, last, partials: all, allPartials: true, bounds: near, width, height };
    if (renderId !== this.#renderId) {
      return;
    }
    this.#post({ kind: "drawn", renderId, batch });
    if (endless) {
      Object.assign(endless, { width, height });
      endless.scales.set(renderId, endless.scale);
    }
    this.#later(
      () => this.#endShowingAgain(renderId, last).catch((reason) => this.fail(reason)),
      last ? 0 : firstFramesMs,
    );
  }

  /**
   * @param {number} renderId
   * @param {boolean} hasAllBounds whether the page has
   */
  async #endShowingAgain(renderId, hasAllBounds) {
    this.#later(null);
    const bounds = hasAllBounds ? [] : await this.#pictures.bounds();
    if (renderId !== this.#renderId) {
      return;
    }
    if (!hasAllBounds) {
      const batch = { first: false, last: true, partials: [], bounds, allBounds: true, ...this.#size };
      this.#post({ kind: "drawn", renderId, batch });
    }
    this.#letGoOfLayout();
  }

  #newRenderer() {
    const renderer = new alphaTab.rendering.ScoreRenderer(this.#settings);
    renderer.error.on((reason) => {
      if (!this.#paintsAhead) {
        this.fail(reason);
      }
    });
    return renderer;
  }

  /**
   * Takes one step of the render pass, and the next one after the messages that wait, or when the page has time for it.
   */
  #proceed() {
    this.#later(null);
    const run = this.#run;
    if (!run) {
      return;
    }
    let wait = 0;
    try {
      const batch = run.step();
      if (batch) {
        this.#post({ kind: "drawn", renderId: this.#renderId, batch });
        if (batch.first) {
          this.#pictures = new PictureStore();
          this.#rescaling = null;
        }
        this.#pictures.add(batch.partials, batch.bounds ?? []);
        this.#size = { width: batch.width, height: batch.height };
        run.delivered(batch);
        if (this.#endless) {
          Object.assign(this.#endless, { width: batch.width, height: batch.height });
          this.#endless.scales = new Map(batch.last ? [[this.#renderId, this.#endless.scale]] : []);
        }
        wait = batch.first ? this.#remainderTimeoutMs : 0;
      }
      this.#run = run.finished ? null : run;
      const opens = !this.#drawsAgain && this.#released < openingSize;
      const paints = run.finished || run.size - this.#released >= (opens ? longLayoutWhileOpening : longLayout);
      this.#later(paints ? () => this.#paintAhead() : () => this.#proceed(), wait);
    } catch (reason) {
      this.#run = null;
      this.fail(reason);
    }
  }

  /**
   * @param {(() => void) | null} work in place of what was to be done later; null for nothing
   * @param {number} [wait] in milliseconds
   */
  #later(work, wait) {
    clearTimeout(this.#next?.timer);
    this.#next = work && { work, timer: setTimeout(work, wait) };
  }

  /** Paints some of what nobody has asked for. What has its picture need not be laid out any more. */
  async #paintAhead() {
    this.#later(null);
    const pictures = this.#pictures;
    const run = this.#run;
    const renderer = this.#renderer;
    if (!renderer) {
      return;
    }
    const look = this.#look;
    const progress = this.#paintSome(renderer);
    await pictures.pack();
    if (pictures !== this.#pictures || run !== this.#run || look !== this.#look) {
      return;
    }
    if (progress === "more to paint") {
      this.#later(() => this.#paintAhead());
    } else if (run) {
      releaseSystems(renderer, (id) => pictures.has(id));
      collectGarbage();
      this.#released = run.size;
      this.#proceed();
    } else if (progress === "all painted") {
      this.#looks.keep(look, { pictures, ...this.#size });
      this.#letGoOfLayout();
    }
  }

  #letGoOfLayout() {
    this.#later(null);
    if (this.#renderer) {
      this.#sample = layOutSample(this.#renderer);
      this.#renderer.destroy();
      this.#renderer = null;
      // One zoom follows another, and would wait for a thorough collection: the page asks for it when none has for a
      // while.
      (this.#drawsAgain ? collectGarbage : collectThoroughly)();
    }
  }

  /**
   * @param {ScoreRenderer} renderer
   * @returns {"all painted" | "more to paint" | "not to be painted"}
   */
  #paintSome(renderer) {
    const pictures = this.#pictures;
    const end = performance.now() + paintStepMs;
    this.#paintsAhead = true;
    try {
      for (let id = pictures.nextMissing; id !== undefined; id = pictures.nextMissing) {
        if (performance.now() >= end) {
          return "more to paint";
        }
        this.#renderPartial(renderer, id);
        if (pictures.nextMissing === id) {
          return "not to be painted";
        }
      }
      return "all painted";
    } finally {
      this.#paintsAhead = false;
    }
  }

  /** @param {string} id of a partial that was laid out */
  async #paint(id) {
    const renderId = this.#renderId;
    const partial = (await this.#pictures.painted(id)) ?? (this.#renderer && this.#renderPartial(this.#renderer, id));
    // As it is shown by now.
    const rescaling = this.#rescaling;
    if (partial) {
      this.#post({ kind: "painted", renderId, partial: rescaling ? rescaled(partial, rescaling) : partial });
    }
  }

  /**
   * @param {ScoreRenderer} renderer
   * @param {string} id
   * @returns {Partial | null} with its picture
   */
  #renderPartial(renderer, id) {
    /** @type {Partial | null} */
    let painted = null;
    const unsubscribe = renderer.partialRenderFinished.on((partial) => {
      painted = { ...partial };
      this.#pictures.keep(partial);
      partial.renderResult = undefined;
    });
    renderer.renderResult(id);
    unsubscribe();
    return painted;
  }
}

/**
 * @param {import("./scroll-anchor.js").ScrollAnchor | null} anchor
 * @param {Partial[]} partials
 * @param {View} view
 * @param {number} height of all
 * @returns {View} where the anchor will be seen, and half as much on each side: its place is known only roughly
 */
function viewNear(anchor, partials, view, height) {
  const shown = anchor && partials.filter(({ firstMasterBarIndex: bar }) => bar >= 0 && bar <= anchor.bar).at(-1);
  if (!anchor || !shown) {
    return view;
  }
  const across = view.right - view.left;
  const down = view.bottom - view.top;
  const top = Math.min(shown.y + anchor.y * shown.height - anchor.top, height - down);
  return {
    left: shown.x - across,
    top: top - down / 2,
    right: shown.x + shown.width + across,
    bottom: top + down * 1.5,
  };
}

/**
 * @param {Extract<Request, { cmd: "draw" }>} request
 * @param {Map<string, unknown> | null} settings
 */
function lookOf({ file, tracks, staves }, settings) {
  const display = settings?.get("display");
  const plain = (/** @type {string} */ _, /** @type {unknown} */ value) =>
    value === display && display instanceof Map
      ? [...display].filter(([name]) => name !== "scale")
      : value instanceof Map
        ? [...value]
        : value;
  return JSON.stringify([file, tracks, staves, settings], plain);
}

/** @param {Map<string, unknown>} widths */
function setTextWidths(widths) {
  const known = letterWidths();
  for (const [family, table] of widths) {
    known.set(family, table);
  }
}
