// @ts-check
/**
 * Guitar Pro's bars have four voices. MusicXML numbers the voices of all staves of a part in one row, so that a piano's
 * lower staff may begin with the fifth.
 */

/** Voices of a bar. */
export const mostVoices = 4;

/**
 * @param {boolean[][]} used of each bar of a staff, which of its voices have anything in them
 * @returns {number[][]} for each bar, the voices that become its first, second, third and fourth; any further ones are
 *     left over. Voices keep their places from bar to bar as long as all that are used anywhere fit in.
 */
export function chooseVoices(used) {
  const everywhere = indicesOf(
    used.reduce((all, bar) => bar.map((is, voice) => is || (all[voice] ?? false)).concat(all.slice(bar.length)), []),
  );
  return used.map((bar) => {
    if (everywhere.every((voice) => voice < mostVoices)) {
      return Array.from(bar.slice(0, mostVoices), (_, voice) => voice);
    }
    const voices = everywhere.length <= mostVoices ? everywhere.filter((voice) => voice < bar.length) : indicesOf(bar);
    return voices.length > 0 ? voices : [0];
  });
}

/** @param {boolean[]} bar */
function indicesOf(bar) {
  return bar.flatMap((is, voice) => (is ? [voice] : []));
}
