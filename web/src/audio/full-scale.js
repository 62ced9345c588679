// @ts-check

/** What is 1 in samples that are words of 16 bits, as alphaTab has it. */
export const fullScale = 32767;
