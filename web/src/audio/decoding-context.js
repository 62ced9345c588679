// @ts-check
/**
 * The contexts that decode sounds: one for each rate, as a context that is not used any more keeps part of its memory.
 *
 * @type {Map<number, OfflineAudioContext>}
 */
const contexts = new Map();

/**
 * @param {number} sampleRate that everything is decoded to, in samples a second
 * @returns {OfflineAudioContext}
 */
export function decodingContext(sampleRate) {
  const context = contexts.get(sampleRate) ?? new OfflineAudioContext(1, 1, sampleRate);
  contexts.set(sampleRate, context);
  return context;
}
