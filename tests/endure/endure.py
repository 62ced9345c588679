#!/usr/bin/env python3
"""Drives the real window at random for as long as it is told: opens, plays, seeks, loops, zooms, mixes, resizes,
converts, kills the page and stops the sound server.

At the end of each stretch the window and the page have to agree, nothing may be in the log but what was caused, and
over all stretches the memory must not grow. The same seed drives the same way.
"""
import argparse
import os
import pathlib
import random
import re
import shutil
import statistics
import subprocess
import sys
import time

TOP = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TOP / "tests" / "driven"))
import driven  # noqa: E402

# By how much the memory may be larger in the last third of the stretches than in the first, in MB.
DRIFT = 80
# What the log may say, and behind which actions: all of it is caused from here.
EXPECTED = {
    "the page has ended": {"kill_the_page"},
    "there is no audio output": {"stop_the_sound_server", "kill_the_audio_service"},
    "the audio output works again": {"stop_the_sound_server", "kill_the_audio_service"},
}


class SoundServer:
    """A sound server of our own, where there is one to start."""

    def __init__(self, folder):
        self.folder, self.process = folder, None
        self.environment = dict(os.environ, XDG_RUNTIME_DIR=str(folder), HOME=str(folder))
        self.environment.pop("PULSE_SERVER", None)
        self.there = bool(shutil.which("pulseaudio"))

    def start(self):
        if self.there and not self.process:
            command = ["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no",
                       "-L", "module-null-sink", "-L", "module-native-protocol-unix"]
            self.process = subprocess.Popen(command, env=self.environment, stderr=subprocess.DEVNULL)

    def stop(self):
        if self.process:
            self.process.kill()
            self.process.wait()
            self.process = None


class Driver:
    def __init__(self, build, seed, stretch):
        self.random = random.Random(seed)
        self.build, self.stretch = build, stretch
        self.display = driven.Display()
        stand_in = build / "tests" / "stand_in_audiveris"
        environment = dict(self.display.environment(), QV_AUDIVERIS=str(stand_in))
        self.window = driven.Window(build, environment)
        self.sound = SoundServer(pathlib.Path(self.window.home) / "run")
        scores = sorted((build / "tests" / "scores").glob("ferry.*"))
        recordings = sorted((build / "tests" / "recordings").glob("*.gp"))
        self.sheets = sorted((build / "tests" / "sheets").glob("*.pdf"))[:4]
        self.scores = scores + recordings
        self.done, self.faults, self.memory = {}, [], []
        # What was done since the last look at everything, and before it: what that caused may be said late.
        self.trail, self.trail_before = [], []

    def fault(self, text):
        self.faults.append(text)
        print(f"FAULT {text}\n  behind: {', '.join(self.trail)}\n  in the log: {self.window.log}", flush=True)

    def is_expected(self, line):
        """Whether something that was done explains what the log says."""
        done = self.trail_before + self.trail
        return any(text in line and causes.intersection(done) for text, causes in EXPECTED.items())

    # What can be done, with how often it is.

    def open_score(self):
        self.window.do("open", str(self.random.choice(self.scores)))

    def open_sheet(self):
        if self.sheets:
            self.window.do("open", str(self.random.choice(self.sheets)))

    def convert(self):
        self.open_sheet()
        self.window.wait(lambda state: state["pdf"], 10)
        self.window.do("convert")
        self.window.wait(lambda state: not state["converting"], 30)
        self.window.do("dismiss")

    def play_or_pause(self):
        self.window.do("js", "window.qv.playPause()")

    def stop(self):
        self.window.do("js", "window.qv.stop()")

    def seek(self):
        self.window.do("seek", self.random.random())

    def switch(self):
        name = self.random.choice(["looping", "metronome", "countIn", "horizontalLayout", "preferSynth"])
        self.window.do("set", name, self.random.random() < 0.5)

    def slide(self):
        name, least, most = self.random.choice([("tempoPercent", 25, 200), ("masterVolume", 0, 1), ("zoom", 0.5, 2)])
        self.window.do("set", name, self.random.uniform(least, most))

    def mix(self):
        tracks = self.window.state()["tracks"]
        if tracks:
            word = self.random.choice(["mute", "solo", "visible", "volume"])
            self.window.do(word, self.random.choice(tracks)["id"], self.random.random())

    def resize(self):
        self.window.do("resize", self.random.randrange(760, 1390), self.random.randrange(520, 880))

    def wait_a_little(self):
        time.sleep(self.random.uniform(0.1, 2))

    def kill_the_page(self):
        page = self.window.state()["page"]
        if page:
            os.kill(page, 9)
            if not self.window.wait(lambda state: state["health"] == "ended", 5):
                self.fault("nobody noticed that the page has ended")
            self.window.do("startAgain")
            if not self.window.wait(lambda state: state["bridgeReady"], 30):
                self.fault("the page did not start again")

    def kill_the_audio_service(self):
        self.window.kill("audio.mojom.AudioService")

    def stop_the_sound_server(self):
        if self.sound.there:
            self.sound.stop()
            time.sleep(self.random.uniform(0, 3))
            self.sound.start()

    actions = {open_score: 8, open_sheet: 2, convert: 1, play_or_pause: 12, stop: 2, seek: 10, switch: 8, slide: 8, mix: 12,
               resize: 6, wait_a_little: 16, kill_the_page: 1, kill_the_audio_service: 1, stop_the_sound_server: 3}

    def drive(self, seconds):
        self.trail_before, self.trail = self.trail, []
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            action = self.random.choices(list(self.actions), list(self.actions.values()))[0]
            self.done[action.__name__] = self.done.get(action.__name__, 0) + 1
            self.trail.append(action.__name__)
            action(self)

    def score_called(self, title):
        """A score with a title that no other has: one that was opened before may still be on its way."""
        text = (self.build / "tests" / "scores" / "ferry.musicxml").read_text(encoding="utf-8")
        text, count = re.subn("<work-title>.*?</work-title>", f"<work-title>{title}</work-title>", text)
        if count != 1:
            raise ValueError("ferry.musicxml has no title")
        score = pathlib.Path(self.window.home) / "settled.musicxml"
        score.write_text(text, encoding="utf-8")
        return score

    def settle(self):
        """Brings everything back to one score that stands still, for comparison."""
        window = self.window
        for name, value in (("looping", False), ("countIn", False), ("metronome", False), ("horizontalLayout", False),
                            ("tempoPercent", 100), ("zoom", 1), ("preferSynth", True)):
            window.do("set", name, value)
        window.do("resize", 1200, 800)
        title = f"Settled {len(self.memory)}"
        window.do("open", str(self.score_called(title)))
        if not window.wait(lambda state: state["title"] == title and state["playerReady"] and state["positions"] > 0, 30):
            raise driven.Fault("a good score does not open")
        window.do("js", "window.qv.stop()")
        if not window.wait(lambda state: not state["playing"] and state["time"] < 1, 10):
            raise driven.Fault("the playback does not stop")

    def compare(self):
        """Whether the window shows what the page does."""
        window = self.window
        state = window.state()
        heading = window.ask("document.querySelector('#score-header, #heading')?.textContent")
        if heading is None or state["title"] not in heading:
            self.fault(f"the window says {state['title']!r}, the page {heading!r}")
        window.do("seek", 0.5)
        half = state["end"] / 2
        if not window.wait(lambda state: abs(state["time"] - half) < 1500, 10):
            self.fault(f"the window is at {window.state()['time']:.0f} ms after a seek to {half:.0f} ms")
        window.do("js", "window.qv.playPause()")
        if not window.wait(lambda state: state["playing"] and state["time"] > half + 500, 15):
            state = window.state()
            self.fault(f"the music does not go on from {half:.0f} ms, where it was put, but is at {state['time']:.0f} ms"
                       f" and {'plays' if state['playing'] else 'stands still'}, the page is {state['health']}")
        window.do("js", "window.qv.stop()")
        if not window.wait(lambda state: not state["playing"], 10):
            self.fault("the playback does not stop after it was compared")
        for line in [line for line in window.log if not self.is_expected(line)]:
            self.fault(f"in the log: {line}")
        window.log.clear()

    def run(self, minutes):
        end = time.monotonic() + 60 * minutes
        self.sound.start()
        try:
            if not self.window.wait(lambda state: state["bridgeReady"], 60):
                raise driven.Fault("the page was never ready")
            self.settle()
            while time.monotonic() < end:
                self.drive(min(self.stretch, max(end - time.monotonic(), 1)))
                self.settle()
                self.compare()
                time.sleep(3)
                self.memory.append(self.window.memory())
                print(f"{sum(self.done.values())} actions, {self.memory[-1]:.0f} MB, {len(self.faults)} faults", flush=True)
        except driven.Fault as fault:
            self.fault(str(fault))
        finally:
            try:
                self.window.close()
            except driven.Fault as fault:
                self.fault(str(fault))
            self.sound.stop()
            self.display.close()

    def drift(self):
        """How much more memory there was in the last third of the stretches than in the first, in MB; None for few."""
        third = len(self.memory) // 3
        if third < 2:
            return None
        # The first stretch fills what is filled once.
        return statistics.median(self.memory[-third:]) - statistics.median(self.memory[1 : third + 1])


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("minutes", nargs="?", type=float, default=30, help="how long (else 30)")
    parser.add_argument("--seed", type=int, default=1, help="of what is done (else 1)")
    parser.add_argument("--stretch", type=float, default=30,
                        help="how long is driven between two looks at everything, in seconds (else 30)")
    parser.add_argument("--build", type=pathlib.Path, default=TOP / "build" / "dev")
    chosen = parser.parse_args()
    driver = Driver(chosen.build, chosen.seed, chosen.stretch)
    driver.run(chosen.minutes)
    drift = driver.drift()
    if drift is not None and drift > DRIFT:
        driver.fault(f"the memory has grown by {drift:.0f} MB")
    print(", ".join(f"{name.replace('_', ' ')} {count}" for name, count in sorted(driver.done.items())))
    print(f"Seed {chosen.seed}, {chosen.minutes:g} minutes, {'with' if driver.sound.there else 'without'} a sound server: "
          f"{sum(driver.done.values())} actions, {len(driver.faults)} faults, memory "
          f"{'not compared' if drift is None else f'{drift:+.0f} MB'}, longest answer of the window {driver.window.longest:.2f} s.")
    return 1 if driver.faults else 0


if __name__ == "__main__":
    sys.exit(main())
