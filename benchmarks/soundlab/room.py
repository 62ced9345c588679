"""A screen, a sound system and a window of our own: nothing of the user's is touched, seen or heard."""

import contextlib
import json
import os
import queue
import re
import signal
import subprocess
import threading
import time

import numpy

RATE = 48000
PATIENCE = 60.0


def stop(process):
    process.send_signal(signal.SIGTERM)
    try:
        process.wait(10)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


class SoundSystem:
    """A PulseAudio server whose loudspeaker is a tape."""

    def __init__(self, folder):
        self.address = f"unix:{folder}/sound"
        self.environment = dict(os.environ, HOME=folder, XDG_RUNTIME_DIR=folder, XDG_CONFIG_HOME=folder,
                                PULSE_RUNTIME_PATH=folder, PULSE_STATE_PATH=folder)
        self.environment.pop("PULSE_SERVER", None)
        sink = f"module-null-sink sink_name=tape rate={RATE} format=float32le channels=2"
        self._server = subprocess.Popen(
            ["pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1", "--log-level=error",
             "--realtime=no", "--high-priority=yes", "-L", sink, "-L",
             f"module-native-protocol-unix socket={folder}/sound auth-anonymous=1"],
            env=self.environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        deadline = time.monotonic() + PATIENCE
        while not os.path.exists(f"{folder}/sound"):
            if self._server.poll() is not None or time.monotonic() > deadline:
                raise RuntimeError("the sound server pulseaudio did not start")
            time.sleep(0.05)

    def close(self):
        stop(self._server)


class Tape:
    """Everything that sounds from now on, with the time of the monotonic clock at which it did."""

    def __init__(self, system):
        self._recorder = subprocess.Popen(
            ["parec", "--server", system.address, "-d", "tape.monitor", "--format=float32le", f"--rate={RATE}",
             "--channels=2", "--latency-msec=5", "--raw"],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, env=system.environment)
        self._blocks = []
        self._length = 0
        # A block never arrives before it has sounded: the earliest arrival tells when the recording began.
        self._began = float("inf")
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()

    def _read(self):
        pipe = self._recorder.stdout
        frame = 8
        rest = b""
        while True:
            block = pipe.read1(65536)
            now = time.monotonic()
            if not block:
                return
            block = rest + block
            whole = len(block) // frame * frame
            rest = block[whole:]
            self._blocks.append(block[:whole])
            self._length += whole // frame
            self._began = min(self._began, now - self._length / RATE)

    def wait_for_sound(self):
        deadline = time.monotonic() + PATIENCE
        while not self._length:
            if time.monotonic() > deadline:
                raise RuntimeError("the recorder parec does not record")
            time.sleep(0.02)

    def finish(self):
        """Returns the recording as an array of shape (frames, 2), and the time at which it began."""
        stop(self._recorder)
        self._reader.join()
        return numpy.frombuffer(b"".join(self._blocks), dtype=numpy.float32).reshape(-1, 2), self._began


class Window:
    """The program's window, on a lead."""

    def __init__(self, program, display, system, folder):
        environment = dict(system.environment, PULSE_SERVER=system.address, DISPLAY=display, QT_QPA_PLATFORM="xcb",
                           XDG_CACHE_HOME=os.path.join(folder, "cache"), XDG_DATA_HOME=os.path.join(folder, "data"))
        environment.pop("WAYLAND_DISPLAY", None)
        environment.pop("QV_SMOKE", None)
        self.system = system
        self.launched = time.monotonic()
        self._process = subprocess.Popen([program], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                         stderr=subprocess.PIPE, env=environment, text=True)
        self.number = self._process.pid
        self._news = queue.Queue()
        self.messages = []
        # When the main thread was busy for long, and for how many milliseconds.
        self.stalls = []
        self.complaints = []
        self._readers = [threading.Thread(target=read, daemon=True) for read in (self._read, self._read_complaints)]
        for reader in self._readers:
            reader.start()

    def _read(self):
        for line in self._process.stdout:
            seconds, kind, text = line.rstrip("\n").split(" ", 2)
            if kind == "stalled":
                self.stalls.append((float(seconds), float(text)))
            self._news.put((float(seconds), kind, text))
        self._news.put(None)

    def _read_complaints(self):
        for line in self._process.stderr:
            if line.startswith("[Quaverly]"):
                self.complaints.append(line.strip())

    def tell(self, line):
        """Has `line` carried out; returns the time at which it was."""
        self._process.stdin.write(line + "\n")
        self._process.stdin.flush()
        return self._wait(lambda kind, text: kind == "did" and text == line)

    def value(self, expression):
        """What the page makes of an expression, whose value has to be a text."""
        self.tell(f"value {expression}")
        found = []
        self._wait(lambda kind, text: kind == "value" and (found.append(text) or True))
        return found[0]

    def call(self, name, *arguments):
        return self.tell(f"js window.qv.{name}({', '.join(json.dumps(one) for one in arguments)})")

    def wait_for(self, kind, condition=lambda message: True):
        """Waits for a page message from now on; returns when it came."""
        def wanted(sort, text):
            return sort == "message" and json.loads(text).get("type") == kind and condition(json.loads(text))
        return self._wait(wanted)

    def _wait(self, wanted):
        deadline = time.monotonic() + PATIENCE
        while True:
            try:
                news = self._news.get(timeout=max(deadline - time.monotonic(), 0))
            except queue.Empty:
                raise RuntimeError("the window does not answer: " + "; ".join(self.complaints)) from None
            if news is None:
                raise RuntimeError("the window is gone: " + "; ".join(self.complaints))
            seconds, kind, text = news
            if kind == "message":
                self.messages.append((seconds, json.loads(text)))
            if wanted(kind, text):
                return seconds

    def rest(self, seconds):
        """Lets the music play; what the page says meanwhile is kept."""
        deadline = time.monotonic() + seconds
        while (left := deadline - time.monotonic()) > 0:
            try:
                news = self._news.get(timeout=left)
            except queue.Empty:
                return
            if news is None:
                raise RuntimeError("the window is gone: " + "; ".join(self.complaints))
            if news[1] == "message":
                self.messages.append((news[0], json.loads(news[2])))

    def open(self, path, drawn=True):
        self.tell(f"open {path}")
        self.wait_for("rendered" if drawn else "score")

    def play(self):
        self.call("playPause")
        return self.wait_for("state", lambda message: message["playing"])

    def stop(self):
        self.call("stop")
        self.rest(0.5)

    def close(self):
        with contextlib.suppress(RuntimeError):
            self.rest(0.5)  # a call under way would count as failed
        self._process.stdin.close()
        try:
            self._process.wait(10)
        except subprocess.TimeoutExpired:
            stop(self._process)
        for reader in self._readers:
            reader.join()
        faults = [line for line in self.complaints if re.search(r"error|failed", line)]
        if faults:
            raise RuntimeError("the page complained: " + "; ".join(faults))
