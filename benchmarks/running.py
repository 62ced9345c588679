#!/usr/bin/python3
# bench: running [RUNS] FILE...   in the running program: opening, zoom, a hidden track, layouts, until redrawn
"""Times what a user asks of the running program until the screen shows it, complete and still.

usage: running.py [RUNS] FILE..., with the program's build folder beside QUAVERLY_PROGRAM

Each file is opened several times, each time after another score; then, with the last one open, the zoom is changed and
a track is hidden, at the beginning, at the end, and in the horizontal layout. The time counts from the order until the
screen shows what it shows in the end.
"""

import json
import os
import shutil
import statistics
import sys
import tempfile
import time

from soundlab.room import SoundSystem, Window
from speedlab.asked import number_and_files
from speedlab.stillness import Film
from startup import Screen

SETTLING = 3.0
WATCHED = 1.5


class Desk:
    def __init__(self, folder):
        self._screen = Screen(folder)
        self._system = SoundSystem(folder)
        player = os.path.join(os.path.dirname(os.environ["QUAVERLY_PROGRAM"]), "sound_player")
        self.window = Window(player, self._screen.display, self._system, folder)
        self.window.wait_for("ready")
        time.sleep(SETTLING)

    def until_still(self, order):
        """Milliseconds from the order until the screen stays as it is."""
        film = Film(self._screen)
        began = self.window.tell(order)
        film.run(WATCHED)
        still = film.still_since()
        self.window.rest(SETTLING)
        return (still - began) * 1000 if still else float("nan")

    def close(self):
        self.window.close()
        self._system.close()
        self._screen.close()


def show(what, times):
    print(f"{what:36}{statistics.median(times):8.0f}{min(times):8.0f}{max(times):8.0f}", flush=True)


def measure(desk, files, runs):
    print(f"Milliseconds until the first screen stays, {runs} runs{'':6}median   least    most")
    for file in files:
        times = []
        for _ in range(runs):
            desk.window.call("loadSample")
            desk.window.rest(SETTLING)
            times.append(desk.until_still(f"open {file}"))
        show("open " + os.path.basename(file), times)
    tracks = len(next(message for _, message in reversed(desk.window.messages) if message["type"] == "score")["tracks"])
    redraw(desk, tracks, runs, "")
    desk.window.tell("js document.getElementById('viewport').scrollTop = 1e9")
    desk.window.rest(SETTLING)
    redraw(desk, tracks, runs, " at the end")
    desk.window.tell("js document.getElementById('viewport').scrollTop = 0")
    desk.window.rest(SETTLING)
    layouts = [("horizontal", "page")[turn % 2] for turn in range(2 * runs)]
    times = [desk.until_still(f"js window.qv.setLayout('{layout}')") for layout in layouts]
    show("to the horizontal layout", times[0::2])
    show("to pages", times[1::2])
    desk.window.call("setLayout", "horizontal")
    desk.window.rest(SETTLING)
    redraw(desk, tracks, runs, ", horizontally")


def redraw(desk, tracks, runs, where):
    zooms = [1.15 if turn % 2 == 0 else 1.0 for turn in range(runs)]
    show(f"zoom{where}, {tracks} tracks", [desk.until_still(f"js window.qv.setZoom({zoom})") for zoom in zooms])
    desk.window.call("setZoom", 1.0)
    desk.window.rest(SETTLING)
    every = list(range(tracks))
    some = [every if turn % 2 else every[1:] or [0] for turn in range(runs)]
    show(f"a track hidden{where}",
         [desk.until_still(f"js window.qv.renderTracks({json.dumps(ids)})") for ids in some])
    desk.window.call("renderTracks", every)
    desk.window.rest(SETTLING)


def main():
    runs, files = number_and_files(5)
    if not files:
        sys.exit(__doc__)
    folder = tempfile.mkdtemp(prefix="quaverly-bench-")
    try:
        desk = Desk(folder)
        try:
            measure(desk, files, runs)
        finally:
            desk.close()
    finally:
        shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    main()
