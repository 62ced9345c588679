"""The real window in a process of its own, driven from here: see DrivenWindow."""
import json
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import threading
import time


class Fault(Exception):
    """Something that must not happen; the text says what."""


def machine_is_busy():
    """By how much longer things may take while others use the processors too; at least 1."""
    return max(1.0, os.getloadavg()[0] / (os.cpu_count() or 1))


class Display:
    """An X server of our own."""

    def __init__(self):
        self.number, self.process = None, None
        if shutil.which("Xvfb"):
            reading, writing = os.pipe()
            command = ["Xvfb", "-displayfd", str(writing), "-screen", "0", "1400x900x24", "-nolisten", "tcp"]
            self.process = subprocess.Popen(command, pass_fds=[writing], stderr=subprocess.DEVNULL)
            os.close(writing)
            with os.fdopen(reading) as line:
                self.number = line.readline().strip()

    def environment(self):
        if self.number:
            return {"QT_QPA_PLATFORM": "xcb", "DISPLAY": f":{self.number}"}
        return {"QT_QPA_PLATFORM": "offscreen"}

    def close(self):
        if self.process:
            self.process.terminate()
            self.process.wait()


class Window:
    """A running program with its window."""

    def __init__(self, build, environment=None):
        build = pathlib.Path(build)
        self.home = tempfile.mkdtemp(prefix="quaverly-driven.")
        runtime = os.path.join(self.home, "run")
        os.mkdir(runtime, 0o700)
        own = dict(os.environ, HOME=self.home, XDG_CONFIG_HOME=f"{self.home}/config", XDG_CACHE_HOME=f"{self.home}/cache",
                   XDG_DATA_HOME=f"{self.home}/data", XDG_RUNTIME_DIR=runtime)
        own.pop("WAYLAND_DISPLAY", None)
        own.update(environment or {"QT_QPA_PLATFORM": "offscreen"})
        self.errors = open(os.path.join(self.home, "stderr"), "w+", errors="replace")
        self.process = subprocess.Popen([build / "quaverly_driven"], env=own, stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=self.errors, text=True, bufsize=1)
        self.log = []
        # The first keys of the menus' items that were chosen, once they were asked for.
        self.chosen = []
        self.longest = 0.0
        self._answers, self._count = {}, 0
        self._arrived = threading.Condition()
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()

    def _read(self):
        for line in self.process.stdout:
            try:
                said = json.loads(line)
            except ValueError:
                continue
            with self._arrived:
                if "log" in said:
                    self.log.append(said["log"])
                elif "chosen" in said:
                    self.chosen.append(said["chosen"])
                else:
                    self._answers[said["id"]] = said
                self._arrived.notify_all()

    def _call(self, within, *words):
        if self.process.poll() is not None:
            raise Fault(f"the program has ended with {self.process.returncode}")
        self._count += 1
        number = self._count
        try:
            self.process.stdin.write(json.dumps([number, *words]) + "\n")
            self.process.stdin.flush()
        except BrokenPipeError:
            raise Fault(f"the program has ended with {self.process.wait()}") from None
        with self._arrived:
            there = self._arrived.wait_for(lambda: number in self._answers or self.process.poll() is not None, within)
            answer = self._answers.pop(number, None)
        if answer is None and (there or self.process.poll() is not None):
            raise Fault(f"the program has ended with {self.process.wait()}")
        return answer

    def do(self, *words):
        """Has the window do something; it has to answer within a second."""
        began = time.monotonic()
        answer = self._call(30, *words)
        took = time.monotonic() - began
        self.longest = max(self.longest, took)
        if answer is None or took > 1.0 * machine_is_busy():
            raise Fault(f"the window did not answer for {took:.1f} s ({words[0]})")
        if "unknown" in answer:
            raise ValueError(f"nobody knows {words}")
        return answer

    def state(self):
        return self.do("state")["state"]

    def ask(self, script, within=10):
        """What the page answers; None where it does not."""
        answer = self._call(within * machine_is_busy(), "ask", script)
        return answer and answer.get("value")

    def wait(self, condition, within, each=None):
        """The first state for which `condition` holds; None when there is none in that time."""
        end = time.monotonic() + within * machine_is_busy()
        while True:
            state = self.state()
            if each:
                each()
            if condition(state):
                return state
            if time.monotonic() > end:
                return None
            time.sleep(0.05)

    def wait_for_choice(self, key, within):
        """Whether the menus' item with that first key was chosen in that time."""
        with self._arrived:
            return self._arrived.wait_for(lambda: key in self.chosen, within * machine_is_busy())

    def processes(self):
        """The numbers of the program's processes with their command lines, itself first."""
        found = {self.process.pid: "quaverly"}
        waiting = [self.process.pid]
        while waiting:
            for path in pathlib.Path(f"/proc/{waiting.pop()}/task").glob("*/children"):
                try:
                    for child in map(int, path.read_text().split()):
                        found[child] = pathlib.Path(f"/proc/{child}/cmdline").read_text().replace("\0", " ")
                        waiting.append(child)
                except OSError:
                    pass
        return found

    def memory(self):
        """What all processes of the program have, in MB; memory that they share counts once."""
        kilobytes = 0
        for number in self.processes():
            try:
                for line in pathlib.Path(f"/proc/{number}/smaps_rollup").read_text().splitlines():
                    if line.startswith("Pss:"):
                        kilobytes += int(line.split()[1])
            except OSError:
                pass
        return kilobytes / 1000

    def kill(self, mark):
        """Ends the first process with `mark` in its command line; False where there is none."""
        for number, line in self.processes().items():
            if mark in line:
                os.kill(number, signal.SIGKILL)
                return True
        return False

    def said(self):
        """What the program and Chromium said beside the log."""
        self.errors.flush()
        self.errors.seek(0)
        return self.errors.read()

    def close(self):
        """Ends the program. It has two seconds, as it would have from the system."""
        late = False
        if self.process.poll() is None:
            self.process.terminate()
            try:
                self.process.wait(2 * machine_is_busy() + 1)
            except subprocess.TimeoutExpired:
                late = True
                self.process.kill()
                self.process.wait()
        self.errors.close()
        shutil.rmtree(self.home, ignore_errors=True)
        if late:
            raise Fault("the program did not end when it was asked to")
