// @ts-check

/** What is 1 in samples that are words of 16 bits, as the engine has it. */
export const fullScale = 32767;
