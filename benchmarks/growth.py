#!/usr/bin/python3
# bench: growth [OPENS] FILE...   memory with the first file open and playing, and its growth over opening files in turn
"""Measures memory (PSS of all processes): with a score playing, and what is left over after opening files in turn.

usage: growth.py [OPENS] FILE..., with the program's build folder beside QUAVERLY_PROGRAM

The files are opened in turn, each to its last line. Growth is what the same score takes at the end more than after the
first two rounds, which fill the caches.
"""

import os
import sys

from speedlab.driven import driven_window
from speedlab.processes import memory

SETTLING = 20.0


def rest_and_weigh(window):
    """Megabytes after everything has come to rest."""
    window.rest(SETTLING)
    return memory(window.number)


def main():
    arguments = sys.argv[1:]
    opens = int(arguments.pop(0)) if arguments and arguments[0].isdigit() else 50
    if not arguments:
        sys.exit(__doc__)
    files = [os.path.abspath(name) for name in arguments]
    with driven_window() as (window, _):
        window.open(files[0])
        window.play()
        print(f"{os.path.basename(files[0])} playing: {rest_and_weigh(window):.0f} MB", flush=True)
        window.stop()
        for turn in range(2 * len(files)):
            window.open(files[turn % len(files)])
        window.open(files[0])
        before = rest_and_weigh(window)
        for turn in range(opens):
            window.open(files[turn % len(files)])
        window.open(files[0])
        after = rest_and_weigh(window)
        print(f"{before:.0f} MB before and {after:.0f} MB after {opens} opens: {after - before:+.1f} MB")


if __name__ == "__main__":
    main()
