#!/usr/bin/python3
# bench: position [SECONDS]   processor time of the window's main thread for each "position" message
"""Measures what one "position" message costs the window's main thread: taking it in, the slider, the time label.

usage: position.py [SECONDS], with the program's build folder beside QUAVERLY_PROGRAM

The window is handed messages fifteen a second while nothing plays; what it takes when idle is subtracted.
"""

import sys

from speedlab.driven import driven_window
from speedlab.processes import main_thread_time


def main():
    seconds = float(sys.argv[1]) if len(sys.argv) > 1 else 20.0
    with driven_window() as (window, _):
        window.call("loadSample")
        window.wait_for("rendered")
        window.rest(5)
        begin = main_thread_time(window.number)
        window.rest(seconds)
        idle = main_thread_time(window.number) - begin
        begin = main_thread_time(window.number)
        window.tell(f"positions {int(seconds * 15)}")
        window.rest(seconds)
        busy = main_thread_time(window.number) - begin
        print(f"{(busy - idle) * 1000 / (seconds * 15):.2f} ms a message ({idle * 1000 / seconds:.1f} ms a second idle)")


if __name__ == "__main__":
    main()
