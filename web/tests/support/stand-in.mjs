// @ts-check
/**
 * Something that stands in for a larger thing, and has as much of it as the test needs. What the test itself does with
 * it is checked where it keeps the part.
 *
 * @param {unknown} part
 * @returns {any}
 */
export const standIn = (part) => part;
