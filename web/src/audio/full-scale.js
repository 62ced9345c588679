// @ts-check

/** What is 1 in 16-bit samples, as alphaTab has it. */
export const fullScale = 32767;
