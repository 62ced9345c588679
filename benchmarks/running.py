#!/usr/bin/python3
# bench: running [RUNS] FILE...   in the running program: opening, zoom and a hidden track, new and back, layouts, until redrawn
"""Times what a user asks of the running program until the screen shows it, complete and still.

usage: running.py [RUNS] FILE..., with the program's build folder beside QUAVERLY_PROGRAM

Each file is opened several times, each time after another score; then, with the last one open, the zoom is changed and
a track is hidden, each time in a way that was not shown before, and back, at the beginning, at the end, and in the
horizontal layout. The time counts from the order until the screen shows what it shows in the end.
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
ZOOM_STEP = 0.07


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
    # Each zoom and each choice of tracks is one that was not there before, and then it is there once more.
    zooms = [1.02 + ZOOM_STEP * turn for turn in range(runs)]
    times = [(desk.until_still(f"js window.qv.setZoom({zoom})"), desk.until_still("js window.qv.setZoom(1)"))
             for zoom in zooms]
    show(f"zoom{where}, {tracks} tracks", [time for time, _ in times])
    show(f"zoom{where}, back", [time for _, time in times])
    every = list(range(tracks))
    hidden = [[track for track in every if track != turn % tracks] or [0] for turn in range(min(runs, tracks))]
    times = [(desk.until_still(f"js window.qv.renderTracks({json.dumps(ids)})"),
              desk.until_still(f"js window.qv.renderTracks({json.dumps(every)})")) for ids in hidden]
    show(f"a track hidden{where}", [time for time, _ in times])
    show(f"a track hidden{where}, back", [time for _, time in times])


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
