#!/usr/bin/python3
# bench: growth [RUNS] FILE...   memory with the first file open and playing, and its growth over opening files in turn
"""Measures memory (PSS of all processes): with a score playing, and what is left over after opening files in turn.

usage: growth.py [RUNS] FILE..., with the program's build folder beside QUAVERLY_PROGRAM

The files are opened in turn, each to its last line. Growth is what the same score takes after fifty openings more than
after the first two rounds, which fill the caches. Each run is of a program of its own.
"""

import os
import statistics
import sys

from speedlab.asked import number_and_files
from speedlab.driven import driven_window
from speedlab.processes import memory

OPENS = 50
# Until the page has collected garbage for the last time.
SETTLING = 20.0


def rest_and_weigh(window):
    """Megabytes after everything has come to rest."""
    window.rest(SETTLING)
    return memory(window.number)


def measure(files):
    """Megabytes while playing, and before and after the openings."""
    with driven_window() as (window, _):
        window.open(files[0])
        window.play()
        playing = rest_and_weigh(window)
        window.stop()
        for turn in range(2 * len(files)):
            window.open(files[turn % len(files)])
        window.open(files[0])
        before = rest_and_weigh(window)
        for turn in range(OPENS):
            window.open(files[turn % len(files)])
        window.open(files[0])
        return playing, before, rest_and_weigh(window)


def main():
    runs, files = number_and_files(3)
    if not files:
        sys.exit(__doc__)
    measured = []
    for _ in range(runs):
        playing, before, after = measure(files)
        print(f"{os.path.basename(files[0])} playing: {playing:.0f} MB; at rest {before:.0f} MB before and {after:.0f} MB "
              f"after {OPENS} openings: {after - before:+.1f} MB", flush=True)
        measured.append((playing, after - before))
    playing, growth = (statistics.median(column) for column in zip(*measured))
    print(f"medians of {runs} runs: {playing:.0f} MB playing, {growth:+.1f} MB of growth")


if __name__ == "__main__":
    main()
