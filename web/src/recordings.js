// @ts-check
/**
 * The recordings that some scores carry, in a form that an audio element plays.
 *
 * The web engine's audio elements refuse some streams that its decoder reads without fault (Ogg files whose first time
 * stamp is negative). Such a recording is decoded here and handed on as plain samples.
 *
 * @typedef {import("./alphatab.js").Score} Score
 */

/** How long an audio element may take to make up its mind, in milliseconds. */
const patience = 3000;

export class Recordings {
  /** @type {WeakMap<Score, Uint8Array<ArrayBuffer> | null>} null for a recording that cannot be played */
  #playable = new WeakMap();

  /**
   * @param {Score} score
   * @returns {boolean} whether prepare() has work to do
   */
  isWaiting(score) {
    return (score.backingTrack?.rawAudioFile?.length ?? 0) > 0 && !this.#playable.has(score);
  }

  /**
   * Makes the score's recording playable. Never fails: a score whose recording nobody can read has none.
   *
   * @param {Score} score
   */
  async prepare(score) {
    const bytes = new Uint8Array(score.backingTrack?.rawAudioFile ?? []);
    if (await anElementPlays(bytes)) {
      this.#playable.set(score, bytes);
      return;
    }
    try {
      this.#playable.set(score, waveFile(await decode(bytes)));
    } catch {
      this.#playable.set(score, null);
    }
  }

  /**
   * @param {Score} score
   * @returns {Uint8Array<ArrayBuffer> | null} an audio file; null without a playable recording
   */
  of(score) {
    return this.#playable.get(score) ?? null;
  }
}

/** @param {Uint8Array<ArrayBuffer>} bytes */
function anElementPlays(bytes) {
  const address = URL.createObjectURL(new Blob([bytes]));
  const audio = new Audio();
  let timer = 0;
  return new Promise((resolve) => {
    timer = setTimeout(() => resolve(false), patience);
    // Not at its metadata: those it reads even from a stream that it refuses afterwards.
    audio.oncanplay = () => resolve(true);
    audio.onerror = () => resolve(false);
    audio.preload = "auto";
    audio.src = address;
  }).finally(() => {
    clearTimeout(timer);
    audio.onerror = null;
    audio.removeAttribute("src");
    audio.load();
    URL.revokeObjectURL(address);
  });
}

/** @param {Uint8Array<ArrayBuffer>} bytes */
function decode(bytes) {
  const context = new OfflineAudioContext(1, 1, vorbisRate(bytes) ?? 44100);
  return context.decodeAudioData(bytes.slice().buffer);
}

/**
 * Decoding resamples to the context's rate; at the recording's own rate nothing is added.
 *
 * @param {Uint8Array} bytes of an Ogg file
 * @returns {number | null} samples a second, where the head of a Vorbis stream tells them
 */
export function vorbisRate(bytes) {
  const head = String.fromCharCode(...bytes.subarray(0, 200)).indexOf("\x01vorbis");
  if (head < 0 || bytes.length < head + 16) {
    return null;
  }
  const rate = new DataView(bytes.buffer, bytes.byteOffset).getUint32(head + 12, true);
  return rate >= 8000 && rate <= 96000 ? rate : null;
}

/**
 * @param {Pick<AudioBuffer, "length" | "numberOfChannels" | "sampleRate" | "getChannelData">} sound
 * @returns {Uint8Array<ArrayBuffer>} a WAVE file of 16-bit samples
 */
export function waveFile(sound) {
  const channels = Array.from({ length: sound.numberOfChannels }, (_, index) => sound.getChannelData(index));
  const headLength = 44;
  const frameLength = channels.length * 2;
  const bytes = new Uint8Array(headLength + sound.length * frameLength);
  const view = new DataView(bytes.buffer);
  /** @type {(at: number, text: string) => void} */
  const tag = (at, text) => bytes.set(new TextEncoder().encode(text), at);
  tag(0, "RIFF");
  view.setUint32(4, bytes.length - 8, true);
  tag(8, "WAVEfmt ");
  view.setUint32(16, 16, true);
  view.setUint16(20, 1, true);
  view.setUint16(22, channels.length, true);
  view.setUint32(24, sound.sampleRate, true);
  view.setUint32(28, sound.sampleRate * frameLength, true);
  view.setUint16(32, frameLength, true);
  view.setUint16(34, 16, true);
  tag(36, "data");
  view.setUint32(40, sound.length * frameLength, true);
  const samples = new Int16Array(bytes.buffer, headLength);
  for (let frame = 0, at = 0; frame < sound.length; frame++) {
    for (const channel of channels) {
      samples[at++] = Math.max(-1, Math.min(1, channel[frame])) * 32767;
    }
  }
  return bytes;
}
