// @ts-check
import { collectGarbage } from "../shared/garbage.js";
import { fetchBytes } from "../shared/resources.js";
import { readSoundFile, to16BitSamples, zonesFor } from "../soundfont/sound-file.js";

/**
 * The worker that loads sounds of the fine bank. It lives as long as that takes: what is read and decoded on the way is
 * several times what is wanted in the end, and goes with it at once. Only the page can decode streams.
 *
 * @typedef {import("../soundfont/sounds-in-use.js").SoundInUse} SoundInUse
 * @typedef {import("../soundfont/fine-preset.js").FineSound} FineSound
 *
 * @typedef {{ stream: Uint8Array, rate: number } | { index: number, sound: FineSound } | { refused: string } | { done: true }} FromLoader
 *     a stream to be decoded, one at a time; a sound in the place of the one with this index
 * @typedef {{ sounds: SoundInUse[] } | { samples: Float32Array | null }} ToLoader what is to be loaded, once; what a
 *     stream holds, null where it cannot be decoded
 */

/** How long the processor is left to others after each stream, in milliseconds: music may be playing. */
const nextStreamDelayMs = 10;

/** @type {(samples: Float32Array | null) => void} */
let decoded = () => {};

/**
 * @param {FromLoader} message
 * @param {ArrayBufferLike[]} [handedOver]
 */
function post(message, handedOver = []) {
  postMessage(message, { transfer: handedOver });
}

/**
 * @param {Uint8Array<ArrayBuffer>} stream
 * @param {import("../soundfont/sound-file.js").Stream} description
 * @returns {Promise<Int16Array>}
 */
async function decode(stream, { rate, frames }) {
  const copy = stream.slice();
  post({ stream: copy, rate }, [copy.buffer]);
  const samples = await new Promise((resolve) => {
    decoded = resolve;
  });
  if (!samples) {
    throw new Error("a stream in it cannot be decoded");
  }
  return to16BitSamples(samples, frames);
}

/**
 * @param {SoundInUse} notes
 * @returns {Promise<FineSound>} what the notes sound from, and no more
 */
async function load(notes) {
  const file = new URL(`../../sounds/${notes.bank}-${notes.program}`, import.meta.url).href;
  const { description, streamOf } = readSoundFile(await fetchBytes(file));
  const zones = zonesFor(description.zones, notes);
  const used = [...new Set(zones.map(({ sample }) => sample))];
  const samples = [];
  for (const index of used) {
    const { rate, root, correction } = description.samples[index];
    samples.push({ samples: await decode(streamOf(index), description.samples[index]), rate, root, correction });
    // V8 hardly counts what buffers take: those of decoded streams, up to 33 MB, would wait for the worker's end.
    collectGarbage();
    await new Promise((resolve) => setTimeout(resolve, nextStreamDelayMs));
  }
  return { ...description, zones: zones.map((zone) => ({ ...zone, sample: used.indexOf(zone.sample) })), samples };
}

/** @param {SoundInUse[]} sounds */
async function loadAll(sounds) {
  for (const notes of sounds) {
    try {
      const sound = await load(notes);
      post({ index: notes.index, sound }, sound.samples.map(({ samples }) => samples.buffer));
    } catch (error) {
      post({ refused: `${notes.bank}-${notes.program}: ${/** @type {Error} */ (error).message}` });
    }
  }
  post({ done: true });
}

addEventListener("message", ({ data }) => {
  const message = /** @type {ToLoader} */ (data);
  if ("sounds" in message) {
    void loadAll(message.sounds);
  } else {
    decoded(message.samples);
  }
});
