// @ts-check

/** Full scale of 16-bit samples: what stands for 1, as in alphaTab. */
export const fullScale = 32767;
