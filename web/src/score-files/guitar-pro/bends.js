// @ts-check
/**
 * Bends as Guitar Pro 6 and later write them: from an origin to a plateau, and from there to a destination. Older files draw
 * a bend as any line of up to 60 points.
 *
 * @typedef {{ offset: number, value: number }} Point offset from 0 to 60 of the note's length, value in quarter tones
 */

/** Points this close to the line between their neighbours add nothing to it. */
const tolerance = 1e-6;

/**
 * @template {Point} P
 * @param {P[]} points in rising order of offset
 * @returns {P[]} at most four of them, of which the two in the middle have the same value. A line with more turns keeps
 *     its ends and its highest or lowest plateau.
 */
export function foldBend(points) {
  const line = withoutStraights(withoutFlatEnds(points));
  if (line.length <= 3 || (line.length === 4 && line[1].value === line[2].value)) {
    return line;
  }
  const [first, last] = [line[0], line[line.length - 1]];
  const inner = line.slice(1, -1);
  const middle = (first.value + last.value) / 2;
  const farthest = inner.reduce((best, point) =>
    Math.abs(point.value - middle) > Math.abs(best.value - middle) ? point : best,
  );
  const plateau = inner.filter(({ value }) => value === farthest.value);
  return [first, plateau[0], plateau[plateau.length - 1], last];
}

/**
 * A bend does not move before its first turn, nor behind its last one.
 *
 * @template {Point} P
 * @param {P[]} points
 */
function withoutFlatEnds(points) {
  let from = 0;
  let to = points.length;
  while (to - from > 2 && points[from + 1].value === points[from].value) {
    from++;
  }
  while (to - from > 2 && points[to - 2].value === points[to - 1].value) {
    to--;
  }
  return points.slice(from, to);
}

/**
 * @template {Point} P
 * @param {P[]} points
 */
function withoutStraights(points) {
  /** @type {P[]} */
  const kept = [];
  points.forEach((point, index) => {
    const [before, behind] = [kept[kept.length - 1], points[index + 1]];
    if (before && behind && behind.offset > before.offset) {
      const part = (point.offset - before.offset) / (behind.offset - before.offset);
      if (Math.abs(before.value + part * (behind.value - before.value) - point.value) < tolerance) {
        return;
      }
    }
    kept.push(point);
  });
  return kept;
}
