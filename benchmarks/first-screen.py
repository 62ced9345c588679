#!/usr/bin/python3
# bench: first-screen [LAUNCHES] [FILE...]   from the launch to the first screen complete and still, beside MuseScore 3
"""Times the launch with a file until the first screen of notation is complete and still, and without one.

usage: first-screen.py [LAUNCHES] [FILE...], with the program to start in QUAVERLY_PROGRAM

Both programs are watched in the same way: the time counts from which on the screen showed what it shows in the end. They
take turns, so that what else the machine does meets both. A file that MuseScore cannot open leaves a message there,
which is complete soon: look at --keep FOLDER, where the last screen of each is left as a picture.
"""

import os
import shutil
import statistics
import sys
import tempfile
import time

from speedlab.asked import number_and_files
from speedlab.processes import end
from speedlab.programs import musescore, quaverly
from speedlab.stillness import Film
from startup import Screen

WATCHED = 3.0


def launch(program, file, folder, keep):
    """Milliseconds until the picture was complete."""
    place = tempfile.mkdtemp(dir=folder)
    screen = Screen(place)
    try:
        film = Film(screen)
        began = time.monotonic()
        process = program.launch(file, screen.display, place)
        try:
            film.run(WATCHED)
            if keep:
                name = f"{program.name}-{os.path.basename(file or 'nothing')}.ppm"
                screen.save(os.path.join(keep, name.replace(" ", "-")))
        finally:
            end(process)
        still = film.still_since()
        return (still - began) * 1000 if still else float("nan")
    finally:
        screen.close()
        shutil.rmtree(place, ignore_errors=True)


def main():
    arguments = sys.argv[1:]
    keep = None
    if "--keep" in arguments:
        at = arguments.index("--keep")
        keep = arguments[at + 1]
        del arguments[at:at + 2]
    launches, files = number_and_files(5, arguments)
    peers = [program for program in [musescore()] if program.present]
    folder = tempfile.mkdtemp(prefix="quaverly-bench-")
    try:
        print(f"Milliseconds from the launch to a first screen that stays, medians of {launches} launches")
        print(f"{'':28}" + "".join(f"{program.name:>14}" for program in [quaverly(), *peers]) + f"{'ratio':>8}")
        for file in [*files, None]:
            programs = [quaverly(), *(peers if file else [])]
            times = {program.name: [] for program in programs}
            for turn in range(launches + 1):
                for program in programs:
                    took = launch(program, file, folder, keep)
                    if turn:
                        times[program.name].append(took)
            medians = [statistics.median(times[program.name]) for program in programs]
            line = f"{os.path.basename(file) if file else 'the start screen':28}" + "".join(f"{m:14.0f}" for m in medians)
            print(line + (f"{medians[0] / medians[1]:8.2f}" if len(medians) > 1 else ""), flush=True)
    finally:
        shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    main()
