#!/usr/bin/env python3
# bench: startup [LAUNCHES] [FILE]   from the launch to the window, the page, the score, its picture and its sound
"""Times the start of Quaverly: what a user waits for between the launch and a score that can be played.

usage: startup.py [LAUNCHES] [FILE], with the program to start in QUAVERLY_PROGRAM

Every launch runs on an X server of its own making whose picture lies in a file, so that "first notation visible" is
what is on the screen, not what the program says. One launch ahead of the others fills the caches and is not counted.
"""

import mmap
import os
import shutil
import signal
import statistics
import struct
import subprocess
import sys
import tempfile
import threading
import time

WIDTH, HEIGHT = 1400, 900
PATIENCE = 60.0
# Looking costs the program processor time: seldom enough not to be felt, often enough for a figure in hundredths.
LOOK_EVERY = 0.02

# What the program writes to standard error, by the name of the event in the table.
LOGGED = {
    "window shown": "window shown",
    'page "ready"': '"type": "ready"',
    '"score"': '"type": "score"',
    '"rendered"': '"type": "rendered"',
    '"playerReady"': '"type": "playerReady"',
}
NOTATION = "first notation visible"
EVENTS = ["window shown", 'page "ready"', '"score"', NOTATION, '"rendered"', '"playerReady"']


class Screen:
    """An X server whose frame buffer can be read as memory."""

    def __init__(self, folder):
        read_end, write_end = os.pipe()
        self._server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-fbdir", folder, "-nolisten", "tcp",
             "-screen", "0", f"{WIDTH}x{HEIGHT}x24"],
            pass_fds=[write_end], stderr=subprocess.DEVNULL)
        os.close(write_end)
        with os.fdopen(read_end) as pipe:
            number = pipe.readline().strip()
        if not number:
            raise RuntimeError("the X server Xvfb did not start")
        self.display = f":{number}"
        with open(os.path.join(folder, "Xvfb_screen0"), "rb") as file:
            self._memory = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
        # The picture is in the X window dump format: 25 big-endian words, the window's name, colours, pixels.
        header = struct.unpack(">25I", self._memory[:100])
        self._stride = header[12]
        self._pixels = header[0] + header[19] * 12

    def column(self, x):
        """The green of every pixel at `x`, from the top of the screen to the bottom."""
        start = self._pixels + x * 4 + 1
        return self._memory[start:start + self._stride * HEIGHT:self._stride]

    def sample(self, step):
        """The green of every `step`th pixel of every `step`th row."""
        rows = range(self._pixels + 1, self._pixels + 1 + HEIGHT * self._stride, step * self._stride)
        return b"".join(self._memory[row:row + WIDTH * 4:step * 4] for row in rows)

    def save(self, path):
        """Writes the picture as a portable pixmap."""
        with open(path, "wb") as file:
            file.write(b"P6\n%d %d\n255\n" % (WIDTH, HEIGHT))
            for y in range(HEIGHT):
                start = self._pixels + y * self._stride
                row = self._memory[start:start + WIDTH * 4]
                line = bytearray(WIDTH * 3)
                line[0::3], line[1::3], line[2::3] = row[2::4], row[1::4], row[0::4]
                file.write(line)

    def rows(self, top, bottom):
        """The pixels from row `top` to before row `bottom`: blue, green, red and an unused byte each."""
        start = self._pixels + top * self._stride
        return self._memory[start:start + (bottom - top) * self._stride]

    def close(self):
        self._server.terminate()
        self._server.wait()


def staff_rows(column):
    """The rows where a staff begins: five or more thin lines at one distance, on a ground of one colour."""
    lines = []
    for y in range(2, len(column) - 2):
        ground = column[y - 2]
        if column[y + 2] == ground and abs(column[y] - ground) > 24:
            if not lines or y - lines[-1] > 2:
                lines.append(y)
    return {lines[i] for i in range(len(lines) - 4)
            if len({lines[i + k + 1] - lines[i + k] for k in range(4)}) <= 2
            and 5 <= lines[i + 1] - lines[i] <= 20
            and abs((lines[i + 4] - lines[i]) - 4 * (lines[i + 1] - lines[i])) <= 2}


def shows_notation(screen):
    """True when a staff runs through at least half of the columns looked at, right of the window's sidebar."""
    found = {}
    columns = range(WIDTH * 2 // 5, WIDTH - 100, 97)
    for x in columns:
        for row in staff_rows(screen.column(x)):
            found[row] = found.get(row, 0) + 1
    return max(found.values(), default=0) * 2 >= len(columns)


class Launch:
    """One start of the program, from the launch until every event was seen."""

    def __init__(self, program, file, screen, home):
        self.seen = {}
        self.trouble = None
        environment = dict(
            os.environ, QV_SMOKE="1", QV_LOGFILE=os.path.join(home, "messages.log"),
            QV_SHOT=os.path.join(home, "score.png"), QT_LOGGING_RULES="quaverly.startup=true",
            DISPLAY=screen.display, QT_QPA_PLATFORM="xcb", XDG_CONFIG_HOME=os.path.join(home, "config"),
            XDG_CACHE_HOME=os.path.join(home, "cache"), XDG_DATA_HOME=os.path.join(home, "data"),
            XDG_RUNTIME_DIR=home)
        environment.pop("WAYLAND_DISPLAY", None)
        self._began = time.monotonic()
        self._process = subprocess.Popen([program, *([file] if file else [])], stderr=subprocess.PIPE,
                                         stdout=subprocess.DEVNULL, env=environment)
        self._reader = threading.Thread(target=self._read)
        self._reader.start()
        self._watch(screen)

    def _mark(self, event):
        self.seen.setdefault(event, (time.monotonic() - self._began) * 1000)

    def _read(self):
        for line in self._process.stderr:
            text = line.decode(errors="replace")
            for event, sign in LOGGED.items():
                if sign in text:
                    self._mark(event)
            if '"type": "error"' in text or "[Quaverly] failed to" in text:
                self.trouble = text.strip()

    def _watch(self, screen):
        while len(self.seen) < len(EVENTS) and self.trouble is None:
            if self._process.poll() is not None:
                self.trouble = f"the program ended by itself with status {self._process.returncode}"
            elif time.monotonic() - self._began > PATIENCE:
                self.trouble = f"not seen within {PATIENCE:.0f} s: " + ", ".join(e for e in EVENTS if e not in self.seen)
            elif NOTATION not in self.seen and shows_notation(screen):
                self._mark(NOTATION)
            time.sleep(LOOK_EVERY)
        self._process.send_signal(signal.SIGTERM)
        try:
            self._process.wait(5)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()
        self._reader.join()


def measure(program, launches, file, folder):
    home = os.path.join(folder, "home")
    os.mkdir(home, 0o700)
    results = []
    for number in range(launches + 1):
        picture = os.path.join(folder, f"screen{number}")
        os.mkdir(picture)
        screen = Screen(picture)
        try:
            launch = Launch(program, file, screen, home)
        finally:
            screen.close()
        if launch.trouble:
            sys.exit(f"startup: {launch.trouble}")
        if number:
            results.append(launch.seen)
    return results


def main():
    program = os.environ["QUAVERLY_PROGRAM"]
    launches = int(sys.argv[1]) if len(sys.argv) > 1 else 5
    file = os.path.abspath(sys.argv[2]) if len(sys.argv) > 2 else None
    folder = tempfile.mkdtemp(prefix="quaverly-bench-")
    try:
        results = measure(program, launches, file, folder)
    finally:
        shutil.rmtree(folder, ignore_errors=True)
    print(f"Milliseconds from process start, {launches} launches, {os.path.basename(file) if file else 'the demo score'}")
    print(f"{'':24}{'median':>8}{'least':>8}{'most':>8}")
    for event in EVENTS:
        times = [seen[event] for seen in results]
        print(f"{event:24}{statistics.median(times):8.0f}{min(times):8.0f}{max(times):8.0f}")


if __name__ == "__main__":
    main()
