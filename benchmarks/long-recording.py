#!/usr/bin/python3
# bench: long-recording [MINUTES] FILE.gp   a score with a long recording as MP3: memory, and how soon it is heard
"""Opens a Guitar Pro file with a long recording and plays it at once; weighs the program before, meanwhile and after.

usage: long-recording.py [MINUTES] FILE.gp, with the program's build folder beside QUAVERLY_PROGRAM

FILE is a score with a recording of its own, which is replaced by 20 minutes of stereo, or as many as wanted. Memory is
the proportional set size of all processes. It is held against the same score with a recording of one second.
"""

import os
import subprocess
import sys
import threading
import time

import numpy

from soundlab.ears import silences
from soundlab.room import RATE, Tape
from speedlab.driven import driven_window
from speedlab.processes import memory
from speedlab.recordings import with_recording

# The page cleans up when it has had nothing to do for a while.
SETTLING = 25.0
DECODING = 30.0
# A tone in each ear, with noise beneath it, so that the encoder has something to do.
SOUND = "aevalsrc=0.3*sin(2*PI*220*t)+0.03*random(0)|0.3*sin(2*PI*277*t)+0.03*random(1):s=44100:d={seconds}"


def score(folder, name, source, seconds):
    """FILE with a recording of so many seconds."""
    recording = os.path.join(folder, name + ".mp3")
    subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", SOUND.format(seconds=seconds), "-b:a", "128k", recording],
                   check=True)
    target = os.path.join(folder, name + ".gp")
    with_recording(source, target, recording)
    return target


class Scales:
    """Weighs a program ten times a second."""

    def __init__(self, process):
        self.most = 0.0
        self._process = process
        self._over = threading.Event()
        self._thread = threading.Thread(target=self._weigh, daemon=True)
        self._thread.start()

    def _weigh(self):
        while not self._over.wait(0.1):
            self.most = max(self.most, memory(self._process))

    def finish(self):
        self._over.set()
        self._thread.join()


def first_sound(sound, began):
    loud = numpy.flatnonzero(numpy.abs(sound[:, 0]) > 0.01)
    return began + loud[0] / RATE if len(loud) else None


def main():
    arguments = sys.argv[1:]
    minutes = float(arguments.pop(0)) if len(arguments) > 1 else 20
    if len(arguments) != 1:
        sys.exit(__doc__)
    source = os.path.abspath(arguments[0])
    with driven_window() as (window, folder):
        short = score(folder, "short", source, 1)
        long = score(folder, "long", source, 60 * minutes)
        window.open(short)
        window.rest(SETTLING)
        before = memory(window.number)
        scales = Scales(window.number)
        window.stalls.clear()
        tape = Tape(window.system)
        tape.wait_for_sound()
        window.open(long)
        asked = time.monotonic()
        window.play()
        window.rest(DECODING)
        sound, began = tape.finish()
        window.stop()
        window.rest(SETTLING)
        scales.finish()
        after = memory(window.number)
        size = os.path.getsize(long) / 1e6
        stalls = [length for _, length in window.stalls]
    heard = first_sound(sound, began)
    holes = silences(numpy.abs(sound).max(axis=1), 0.0015)
    waited = f"{1000 * (heard - asked):.0f} ms after it was asked for" if heard else "never"
    print(f"{minutes:g} minutes, {size:.0f} MB: heard {waited}")
    print(f"memory: {before:.0f} MB before, {scales.most:.0f} MB at most, {after:.0f} MB after: {after - before:+.0f} MB")
    print(f"drop-outs while it was decoded, in {len(sound) / RATE:.0f} s: {len(holes)}")
    print(f"longest stall of the window: {max(stalls, default=0):.0f} ms")


if __name__ == "__main__":
    main()
