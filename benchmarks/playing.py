#!/usr/bin/python3
# bench: playing [RUNS] FILE   processor time and memory while a score plays, with the fretboard too, beside TuxGuitar
"""Measures what playing takes: processor time and memory (PSS) of all processes of each program together.

usage: playing.py [RUNS] FILE, with the program to start in QUAVERLY_PROGRAM

The space bar starts both. They sound into a PulseAudio server of the measurement's own.
"""

import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

from soundlab.room import SoundSystem
from speedlab.asked import number_and_file
from speedlab.processes import end, family_time, memory
from speedlab.programs import quaverly, tuxguitar
from startup import Screen

LOADING = 12.0
# Until the fretboard has taken its place, and what opening and that have left is collected.
SETTLING = 8.0
STARTING = 4.0
MEASURED = 15.0


def sounds(system):
    """Whether some program sounds into the server now."""
    listing = subprocess.run(["pactl", "--server", system.address, "list", "sink-inputs"], capture_output=True,
                             text=True, env=system.environment).stdout
    return "Corked: no" in listing


def play(program, file, folder, fretboard):
    """Cores, and megabytes at the end."""
    place = tempfile.mkdtemp(dir=folder)
    screen = Screen(place)
    system = SoundSystem(place)
    try:
        process = program.launch(file, screen.display, place, PULSE_SERVER=system.address)
        try:
            time.sleep(LOADING)
            # A window takes keys only with the focus, which nobody gives it where no window manager runs.
            keys = dict(os.environ, DISPLAY=screen.display)
            subprocess.run(["xdotool", "mousemove", "700", "40"], env=keys, check=True)
            if fretboard:
                subprocess.run(["xdotool", "key", "b"], env=keys, check=True)
            time.sleep(SETTLING)
            subprocess.run(["xdotool", "key", "space"], env=keys, check=True)
            time.sleep(STARTING)
            if not sounds(system):
                sys.exit(f"playing: {program.name} does not sound")
            before = family_time(process.pid)
            began = time.monotonic()
            time.sleep(MEASURED)
            cores = (family_time(process.pid) - before) / (time.monotonic() - began)
            return cores, memory(process.pid)
        finally:
            end(process)
    finally:
        system.close()
        screen.close()
        shutil.rmtree(place, ignore_errors=True)


def main():
    runs, file = number_and_file(3, __doc__)
    folder = tempfile.mkdtemp(prefix="quaverly-bench-")
    try:
        print(f"Playing {os.path.basename(file)}, medians of {runs} runs")
        print(f"{'':34}{'cores':>10}{'MB':>10}")
        results = {}
        rows = [(program.name, program, False) for program in (quaverly(), tuxguitar()) if program.present]
        rows.insert(1, (f"{quaverly().name} with the fretboard", quaverly(), True))
        for _ in range(runs):
            for name, program, fretboard in rows:
                results.setdefault(name, []).append(play(program, file, folder, fretboard))
        for name, figures in results.items():
            cores, megabytes = (statistics.median(column) for column in zip(*figures))
            print(f"{name:34}{cores:10.3f}{megabytes:10.0f}", flush=True)
    finally:
        shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    main()
