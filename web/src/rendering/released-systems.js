// @ts-check
import { changePageLayouts } from "../alphatab/internals/alphatab-internals.js";

/**
 * alphaTab keeps each staff system with all that is drawn in it until the whole score is let go of, and those too that
 * were laid out anew in the meantime. Here they are let go of one by one, as soon as their pictures are there.
 *
 * What lies in a system is looked up by what is laid out later, where a tie or a slur leads from it into a system
 * behind it. A system stays as long as that may be, and with it all that follow.
 *
 * @typedef {import("./layout-run.js").ScoreRenderer} ScoreRenderer
 * @typedef {import("../shared/alphatab.js").Beat} Beat
 * @typedef {import("@coderline/alphatab").model.Note} Note
 * @typedef {import("@coderline/alphatab").model.Bar} Bar
 * @typedef {import("../alphatab/internals/alphatab-internals.js").BarRenderer} BarRenderer
 * @typedef {import("../alphatab/internals/alphatab-internals.js").PageLayout} PageLayout
 * @typedef {import("../alphatab/internals/alphatab-internals.js").System} System
 *
 * @typedef {{ id: string, system: System, first: number, last: number, forget: () => void }} Kept bars by their index
 */

/** What each renderer holds of the page that it lays out. @type {WeakMap<object, KeptSystems>} */
const keptBy = new WeakMap();

/** From now on the staff systems of pages can be let go of. */
export function makeSystemsReleasable() {
  changePageLayouts((layout, renderer) => keptBy.set(renderer, new KeptSystems(layout)));
}

/**
 * @param {ScoreRenderer} renderer between two steps of a render pass
 * @param {(id: string) => boolean} hasPicture whether the layout of this partial is not needed for its own sake
 */
export function releaseSystems(renderer, hasPicture) {
  keptBy.get(renderer)?.release(renderer, hasPicture);
}

class KeptSystems {
  /** @type {Kept[]} those that are not let go of, in the order of the score */
  #kept = [];
  /** @type {System | null} what the next partial shows */
  #newest = null;
  /** What alphaTab looks up, by the staff's kind and the bar's id. @type {Map<string, Map<number, BarRenderer>>} */
  #bars = new Map();

  /** @param {PageLayout} layout */
  constructor(layout) {
    const { createEmptyStaffSystem, registerPartial, doLayoutAndRender } = layout;
    layout.doLayoutAndRender = (hints) => {
      this.#kept = [];
      this.#bars.clear();
      doLayoutAndRender.call(layout, hints);
    };
    layout.createEmptyStaffSystem = (index) => {
      this.#newest = createEmptyStaffSystem.call(layout, index);
      return this.#newest;
    };
    layout.registerPartial = (partial, paint) => {
      /** @type {typeof paint | null} */
      let painting = paint;
      registerPartial.call(layout, partial, (canvas) => painting?.(canvas));
      if (this.#newest && partial.firstMasterBarIndex >= 0) {
        this.#keep(partial.id, this.#newest, () => (painting = null));
        this.#newest = null;
      }
    };
    layout.registerBarRenderer = (staff, renderer) => {
      const ofStaff = this.#bars.get(staff) ?? new Map();
      this.#bars.set(staff, ofStaff);
      for (const { id } of [renderer.bar, ...(renderer.additionalMultiRestBars ?? [])]) {
        ofStaff.set(id, renderer);
      }
    };
    layout.getRendererForBar = (staff, { id }) => this.#bars.get(staff)?.get(id) ?? null;
  }

  /**
   * @param {string} id
   * @param {System} system
   * @param {() => void} forget what its picture is painted with
   */
  #keep(id, system, forget) {
    const first = system.masterBarsRenderers[0].masterBar.index;
    const last = system.masterBarsRenderers[system.masterBarsRenderers.length - 1].lastMasterBarIndex;
    // Laid out anew, with the bars that follow.
    for (let before = this.#kept.at(-1); before && before.last >= first; before = this.#kept.at(-1)) {
      hollowOut(before);
      this.#kept.pop();
    }
    this.#kept.push({ id, system, first, last, forget });
  }

  /**
   * @param {ScoreRenderer} renderer
   * @param {(id: string) => boolean} hasPicture
   */
  release({ tracks }, hasPicture) {
    // The last one may be laid out anew, and what follows it looks at the one before.
    const open = this.#kept.at(-2)?.first ?? 0;
    const isDone = (/** @type {Kept} */ { id, first, last }) =>
      last < open && hasPicture(id) && reach(barsOf(tracks, first, last)) < open;
    let done = 0;
    while (done < this.#kept.length && isDone(this.#kept[done])) {
      done++;
    }
    for (const kept of this.#kept.splice(0, done)) {
      hollowOut(kept);
      for (const { id } of barsOf(tracks, kept.first, kept.last)) {
        this.#bars.forEach((ofStaff) => ofStaff.delete(id));
      }
    }
  }
}

/** Where its bars are, and which, stays known. @param {Kept} kept */
function hollowOut({ system, forget }) {
  forget();
  for (const bar of system.masterBarsRenderers) {
    bar.renderers = [];
    bar.layoutingInfo = null;
  }
  for (const staff of system.allStaves) {
    staff.barRenderers = [];
  }
}

/**
 * @param {ScoreRenderer["tracks"]} tracks
 * @param {number} first
 * @param {number} last
 */
function barsOf(tracks, first, last) {
  return (tracks ?? []).flatMap(({ staves }) => staves.flatMap(({ bars }) => bars.slice(first, last + 1)));
}

/**
 * @param {Bar[]} bars
 * @returns {number} the last bar that a tie, a slur or a slide leads to from one of these, by its index; -1 for none
 */
function reach(bars) {
  let furthest = -1;
  for (const beat of bars.flatMap(({ voices }) => voices.flatMap(({ beats }) => beats))) {
    for (const destination of destinations(beat)) {
      furthest = Math.max(furthest, destination?.voice.bar.index ?? -1);
    }
  }
  return furthest;
}

/** @param {Beat} beat */
function* destinations(beat) {
  yield beat.effectSlurDestination;
  if (beat.isLegatoOrigin) {
    let end = beat.nextBeat;
    while (end?.nextBeat?.isLegatoDestination) {
      end = end.nextBeat;
    }
    yield end;
  }
  for (const note of beat.notes) {
    for (const name of leads) {
      yield note[name]?.beat;
    }
  }
}

const leads = /** @type {const} */ ([
  "tieDestination",
  "slurDestination",
  "effectSlurDestination",
  "hammerPullDestination",
  "slideTarget",
]);
