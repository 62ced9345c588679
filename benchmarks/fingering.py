#!/usr/bin/python3
# bench: fingering [RUNS] [NOTES]   strings and frets for a converted score: its first lines, and all; in the page and in Node.js
"""Times what instruments, strings and frets of a converted score take: those that its first screen waits for, and all.

usage: fingering.py [RUNS] [NOTES], with the program's build folder beside QUAVERLY_PROGRAM

Each figure is the first time in a fresh program, when nothing of the code has been compiled: what who opens one score meets.
"""

import json
import os
import pathlib
import statistics
import subprocess
import sys
import time

from speedlab.driven import driven_window

TOP = pathlib.Path(__file__).resolve().parent.parent
BUILD = pathlib.Path(os.environ["QUAVERLY_PROGRAM"]).parent
ALPHATAB = BUILD / "page-packages/node_modules/@coderline/alphatab/dist/alphaTab.min.js"
KINDS = {"melody": "one voice", "voices": "a melody and a bass", "chords": "chords of four"}
PATIENCE_S = 60
# What the first step of a layout takes, and the bar behind it.
FIRST_BARS = 32


def expression():
    text = (TOP / "benchmarks/reading/fingering-time.js").read_text(encoding="utf-8")
    return " ".join(line for line in text.splitlines() if not line.startswith("//")).rstrip("; ")


def in_node(kind, notes):
    script = (f'globalThis.alphaTab = require({json.dumps(str(ALPHATAB))}); alphaTab.Logger.logLevel = 0;'
              f'({expression()})({json.dumps((TOP / "web/src").as_uri() + "/")}, "{kind}", {notes}, {FIRST_BARS})'
              '.then((found) => console.log(JSON.stringify(found)))')
    told = subprocess.run(["node", "-e", script], check=True, capture_output=True, text=True)
    return json.loads(told.stdout.splitlines()[-1])


def in_page(kind, notes):
    with driven_window() as (window, _):
        window.rest(4)
        modules = "new URL('src/', document.baseURI).href"
        window.tell(f'js ({expression()})({modules}, "{kind}", {notes}, {FIRST_BARS})'
                    '.then((found) => (window.timed = JSON.stringify(found)), (reason) => (window.timed = String(reason)))')
        deadline = time.monotonic() + PATIENCE_S
        while (told := window.value('window.timed ?? ""')) == "":
            if time.monotonic() > deadline:
                sys.exit("the page does not come to an end")
            window.rest(0.2)
    return json.loads(told)


def main():
    runs = int(sys.argv[1]) if len(sys.argv) > 1 else 3
    notes = int(sys.argv[2]) if len(sys.argv) > 2 else 10000
    print(f"Milliseconds for {notes} notes, the first time in each of {runs} programs: median (least to most)")
    print(f"{'':24}{'in the page, first':>20}{'all':>18}{'in Node.js, first':>20}{'all':>18}")
    for kind, name in KINDS.items():
        line = f"{name:24}"
        for run in (in_page, in_node):
            found = [run(kind, notes) for _ in range(runs)]
            if min(one["placed"] for one in found) < notes:
                sys.exit(f"{name}: notes without a string")
            for part, width in (("first", 20), ("all", 18)):
                times = [one[part] for one in found]
                line += f"{f'{statistics.median(times):.0f} ({min(times):.0f} to {max(times):.0f})':>{width}}"
        print(line, flush=True)


if __name__ == "__main__":
    main()
