#!/usr/bin/python3
# bench: memory [RUNS] FILE   memory of all processes: start screen, at rest, played at once, playing, a long score
"""Measures memory (PSS of all processes) and what the program takes of the processor while it rests.

usage: memory.py [RUNS] FILE, with the program's build folder beside QUAVERLY_PROGRAM

"played at once" is the most in the ten seconds after a score that was just opened begins to play. The long score, of
1000 bars and 12 tracks, is made here. PSS counts a page that processes share in proportion, those of other programs too:
nothing else that uses Qt may run. Each run is of programs of its own.
"""

import contextlib
import os
import shutil
import statistics
import tempfile
import time

from soundlab.room import SoundSystem
from speedlab.asked import number_and_file
from speedlab.driven import driven_window
from speedlab.processes import end, family_time, memory
from speedlab.programs import quaverly
from startup import Screen

# Until the page has collected garbage for the last time, in seconds.
SETTLING = 20.0
# In seconds.
RESTING = 60.0
FIRST_SECONDS = 10.0
SAMPLE_EVERY = 0.25

BARS, PARTS, BEATS = 1000, 12, 4


def long_score(path):
    """Writes a MusicXML score whose parts go up and down, each from a key of its own."""
    steps = "CDEFGAB"
    names = [f"P{number}" for number in range(1, PARTS + 1)]
    with open(path, "w") as file:
        file.write('<?xml version="1.0"?><score-partwise version="4.0"><part-list>')
        for name in names:
            file.write(f'<score-part id="{name}"><part-name>{name}</part-name></score-part>')
        file.write("</part-list>")
        for part, name in enumerate(names):
            file.write(f'<part id="{name}">')
            for bar in range(BARS):
                file.write(f'<measure number="{bar + 1}">')
                if bar == 0:
                    file.write("<attributes><divisions>1</divisions>"
                               "<time><beats>4</beats><beat-type>4</beat-type></time>"
                               "<clef><sign>G</sign><line>2</line></clef></attributes>")
                for beat in range(BEATS):
                    step = steps[(bar + beat + part) % len(steps)]
                    file.write(f"<note><pitch><step>{step}</step><octave>4</octave></pitch><duration>1</duration>"
                               "<voice>1</voice><type>quarter</type></note>")
                file.write("</measure>")
            file.write("</part>")
        file.write("</score-partwise>")


def at_rest(file=None):
    """Megabytes at rest, and the share of a core that rest takes in percent. A driven window counts its own stalls."""
    folder = tempfile.mkdtemp(prefix="quaverly-bench-")
    with contextlib.ExitStack() as after:
        after.callback(shutil.rmtree, folder, ignore_errors=True)
        screen = after.enter_context(contextlib.closing(Screen(folder)))
        system = after.enter_context(contextlib.closing(SoundSystem(folder)))
        process = quaverly().launch(file, screen.display, folder, PULSE_SERVER=system.address)
        after.callback(end, process)
        time.sleep(SETTLING)
        megabytes = memory(process.pid)
        before = family_time(process.pid)
        time.sleep(RESTING)
        return megabytes, (family_time(process.pid) - before) / RESTING * 100


def played_at_once(file):
    """The most megabytes while it begins to play."""
    with driven_window() as (window, _):
        window.tell(f"open {file}")
        window.wait_for("playerReady")
        window.play()
        most = 0.0
        for _ in range(int(FIRST_SECONDS / SAMPLE_EVERY)):
            most = max(most, memory(window.number))
            window.rest(SAMPLE_EVERY)
        return most


def playing(file):
    with driven_window() as (window, _):
        window.open(file)
        window.rest(SETTLING)
        window.play()
        window.rest(SETTLING)
        return memory(window.number)


def main():
    runs, file = number_and_file(3, __doc__)
    rows = {}
    with tempfile.TemporaryDirectory(prefix="quaverly-bench-") as folder:
        long = os.path.join(folder, "long.musicxml")
        long_score(long)
        for _ in range(runs):
            rest, share = at_rest(file)
            for name, figure in {
                "start screen, MB": at_rest()[0],
                "open, at rest, MB": rest,
                "open, at rest, % of a core": share,
                "played at once, at most, MB": played_at_once(file),
                "playing, MB": playing(file),
                f"{BARS} bars, {PARTS} tracks, playing, MB": playing(long),
            }.items():
                rows.setdefault(name, []).append(figure)
    print(f"{os.path.basename(file)}, {runs} runs{'':12}{'median':>8}{'most':>8}")
    for name, figures in rows.items():
        print(f"{name:36}{statistics.median(figures):8.2f}{max(figures):8.2f}", flush=True)


if __name__ == "__main__":
    main()
