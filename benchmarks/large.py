#!/usr/bin/python3
# bench: large [MEGABYTES] FILE.gp   a score with a long recording in it: the way to "score", and the window meanwhile
"""Times the opening of a Guitar Pro file with a long recording, until the page says "score".

usage: large.py [MEGABYTES] FILE.gp, with the program's build folder beside QUAVERLY_PROGRAM

FILE is a score with a recording of its own, which is replaced by noise of the wanted length. The window itself tells when
its main thread did not come to its turn.
"""

import os
import time
import wave

from speedlab.asked import number_and_file
from speedlab.driven import driven_window
from speedlab.recordings import with_recording


def with_long_recording(source, target, megabytes):
    recording = target + ".wav"
    with wave.open(recording, "wb") as sound:
        sound.setnchannels(2)
        sound.setsampwidth(2)
        sound.setframerate(44100)
        sound.writeframes(os.urandom(1 << 20) * megabytes)
    with_recording(source, target, recording)
    os.remove(recording)


def main():
    megabytes, score = number_and_file(60, __doc__)
    with driven_window() as (window, folder):
        file = os.path.join(folder, "large.gp")
        with_long_recording(score, file, megabytes)
        window.rest(3)
        began = time.monotonic()
        handed_over = window.tell(f"open {file}")
        scored = window.wait_for("score")
        window.rest(3)
        # Of a stall that began in the call itself, what came after it counts.
        stalls = [min(length, (at - handed_over) * 1000) for at, length in window.stalls if at > handed_over]
        print(f'{os.path.getsize(file) / 1e6:.0f} MB: "score" after {scored - began:.2f} s')
        print(f"the window reads the file and hands it over in {(handed_over - began) * 1000:.0f} ms")
        print(f"its longest stall after that: {max(stalls, default=0):.0f} ms")


if __name__ == "__main__":
    main()
