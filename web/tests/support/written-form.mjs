// @ts-check
// Scores as one line of signs, for tests of the order in which bars are played.

/**
 * Bars as they are written, one after a blank each: "|:" a start sign, "1." or "1-3." or "1,3." an ending, "-" a bar with
 * nothing of that, names of directions, ":|" an end sign, or ":|3" one that has everything played three times.
 */
export function written(form) {
  return form.split(" ").map((bar) => {
    const [, start, endings, names, end] = /^(\|:)?(?:([\d,-]+)\.)?([A-Za-z+]*|-)?(:\|\d*)?$/.exec(bar);
    return {
      repeatStart: start !== undefined,
      endings: endings ? maskOf(endings) : 0,
      directions: names && names !== "-" ? names.split("+") : [],
      repeatCount: end ? Number(end.slice(2) || 2) : 0,
    };
  });
}

function maskOf(endings) {
  let mask = 0;
  for (const range of endings.split(",")) {
    const [from, to = from] = range.split("-").map(Number);
    for (let pass = from; pass <= to; pass++) {
      mask |= 1 << (pass - 1);
    }
  }
  return mask;
}
