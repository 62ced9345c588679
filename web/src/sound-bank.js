// @ts-check
import { alphaTab } from "./alphatab.js";
import { buildClickBank } from "./click-bank.js";
import { fetchBytes } from "./resources.js";

/**
 * Gives every new synthesizer its instruments: the bank that ships with the page and the metronome's clicks.
 */
export class SoundBank {
  #api;
  /** @type {Promise<Uint8Array | null>} */
  #instruments = Promise.resolve(null);

  /**
   * @param {import("./engine.js").Engine} api
   * @param {import("./bridge.js").Post} post
   */
  constructor(api, post) {
    this.#api = api;
    api.playerStarted.on(() => {
      this.#instruments = fetchBytes("vendor/soundfont/sonivox.sf2");
      this.#instruments.catch((reason) => post({ type: "error", message: `The instruments cannot be loaded: ${reason.message}` }));
      api.player?.ready.on(() => void this.#fill());
    });
  }

  async #fill() {
    const player = this.#api.player;
    if (!player || this.#api.actualPlayerMode !== alphaTab.PlayerMode.EnabledSynthesizer) {
      return;
    }
    const instruments = await this.#instruments.catch(() => null);
    if (instruments) {
      this.#api.synth?.loadBanks([instruments, buildClickBank()]);
    }
  }
}
