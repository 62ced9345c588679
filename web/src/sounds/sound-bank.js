// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { buildClickBank } from "../clicks/click-bank.js";
import { fetchBytes } from "../shared/resources.js";

/**
 * Gives every new synthesizer what it begins with: the light bank, and the metronome's clicks.
 */
export class SoundBank {
  #api;
  #post;
  /** @type {Promise<Uint8Array<ArrayBuffer> | null> | null} the light bank on its way to the next synthesizer */
  #light = null;

  /**
   * @param {import("../alphatab/page-api.js").PageApi} api
   * @param {import("../bridge/bridge.js").Post} post
   */
  constructor(api, post) {
    this.#api = api;
    this.#post = post;
    api.playerStarted.on(() => {
      this.#light = this.#fetch();
      api.player?.ready.on(() => void this.#fill());
    });
  }

  async #fill() {
    const player = this.#api.player;
    if (!player || this.#api.actualPlayerMode !== alphaTab.PlayerMode.EnabledSynthesizer) {
      return;
    }
    // A second synthesizer that comes while this waits needs a copy of its own.
    const coming = this.#light ?? this.#fetch();
    this.#light = null;
    const light = await coming;
    if (light) {
      this.#api.synth?.loadBanks([light, buildClickBank()]);
    }
  }

  /** @returns {Promise<Uint8Array<ArrayBuffer> | null>} null, and said so, where it cannot be read */
  #fetch() {
    return fetchBytes("vendor/soundfont/sonivox.sf2").catch((reason) => {
      this.#post({ type: "error", message: `The instruments cannot be loaded: ${reason.message}` });
      return null;
    });
  }
}
