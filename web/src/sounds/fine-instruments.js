// @ts-check
import { alphaTab } from "../shared/alphatab.js";
import { decodingContext } from "../audio/decoding-context.js";
import { fetchBytes } from "../shared/resources.js";

/**
 * Music starts with a light bank, which is there at once. When the score can be played and has been drawn, the sounds
 * that it plays are replaced one by one by those of the fine bank, where the page was built with one.
 */

/** How long the page may be busy before the sounds are loaded all the same, in milliseconds. */
const idleTimeoutMs = 2000;

export class FineInstruments {
  #api;
  /** @type {Promise<Set<string>> | null} what there is of the fine bank */
  #names = null;
  #ready = false;
  #drawn = false;
  /** Which of the upgrades is under way; the ones before are given up. */
  #upgrade = 0;
  /** @type {Worker | null} */
  #loader = null;

  /** @param {import("../alphatab/page-api.js").PageApi} api */
  constructor(api) {
    this.#api = api;
    api.renderStarted.on(() => {
      this.#drawn = false;
    });
    api.playerReady.on(() => {
      this.#ready = true;
      this.#begin();
    });
  }

  /** To be called when what can be seen of the score is on the score page. */
  scoreDrawn() {
    this.#drawn = true;
    this.#begin();
  }

  #begin() {
    const synthesized = this.#api.actualPlayerMode === alphaTab.PlayerMode.EnabledSynthesizer;
    if (this.#ready && this.#drawn && synthesized) {
      this.#ready = false;
      const upgrade = ++this.#upgrade;
      this.#loader?.terminate();
      requestIdleCallback(() => void this.#replaceAll(upgrade), { timeout: idleTimeoutMs });
    }
  }

  /** @param {number} upgrade */
  async #replaceAll(upgrade) {
    const { synth } = this.#api;
    this.#names ??= fetchBytes("sounds/index.json").then((bytes) => new Set(JSON.parse(new TextDecoder().decode(bytes))));
    const names = await this.#names;
    if (!synth || names.size === 0) {
      return;
    }
    const sounds = (await synth.soundsInUse()).filter(({ bank, program }) => names.has(`${bank}-${program}`));
    if (upgrade === this.#upgrade && sounds.length > 0) {
      this.#load(sounds, synth);
    }
  }

  /**
   * @param {import("../soundfont/sounds-in-use.js").SoundInUse[]} sounds
   * @param {import("../synth/synth-player.js").SynthPlayer} synth
   */
  #load(sounds, synth) {
    const loader = new Worker(new URL("./sound-loader.js", import.meta.url), { type: "module", name: "sounds" });
    /** @type {(message: import("./sound-loader.js").ToLoader, handedOver?: ArrayBufferLike[]) => void} */
    const post = (message, handedOver = []) => loader.postMessage(message, { transfer: handedOver });
    loader.onmessage = async ({ data }) => {
      const message = /** @type {import("./sound-loader.js").FromLoader} */ (data);
      if ("stream" in message) {
        const samples = await decode(message.stream, message.rate);
        post({ samples }, samples ? [samples.buffer] : []);
      } else if ("index" in message) {
        synth.replaceSound(message.index, message.sound);
      } else if ("refused" in message) {
        console.warn(`A light sound stays in the place of ${message.refused}`);
      } else {
        loader.terminate();
      }
    };
    post({ sounds });
    this.#loader = loader;
  }
}

/**
 * @param {Uint8Array} stream all of its buffer, which is gone afterwards
 * @param {number} rate its own, in samples a second: decoding resamples to any other
 * @returns {Promise<Float32Array | null>} null for a stream that cannot be decoded
 */
async function decode({ buffer }, rate) {
  const sound = await decodingContext(rate).decodeAudioData(/** @type {ArrayBuffer} */ (buffer)).catch(() => null);
  return sound && sound.getChannelData(0);
}
