"""The program itself in a session: what a second launch does, and what the desktop sees of the one that runs.

usage: test_session.py PROGRAM
"""
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM = sys.argv.pop(1)
SCORE = """<?xml version="1.0"?><score-partwise version="3.1"><part-list><score-part id="P1"><part-name>G</part-name>
</score-part></part-list><part id="P1"><measure number="1"><attributes><divisions>1</divisions></attributes><note><pitch>
<step>C</step><octave>4</octave></pitch><duration>4</duration></note></measure></part></score-partwise>"""


def wait_until(condition, seconds=60):
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            return False
        time.sleep(0.05)
    return True


class Session(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.home = pathlib.Path(folder.name)
        (self.home / "run").mkdir(mode=0o700)
        self.environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", HOME=folder.name)
        for name in ("CONFIG", "CACHE", "DATA", "STATE"):
            self.environment[f"XDG_{name}_HOME"] = str(self.home / name)
        self.environment["XDG_RUNTIME_DIR"] = str(self.home / "run")
        self.environment.pop("QV_SMOKE", None)
        # Without this variable a program may find the bus of whoever runs the test.
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={self.home}/no-bus"

    def start_bus(self):
        bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--print-address",
                                f"--address=unix:dir={self.home}/run"], stdout=subprocess.PIPE, text=True)
        self.addCleanup(bus.stdout.close)
        self.addCleanup(bus.wait)
        self.addCleanup(bus.terminate)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()

    def start(self, name, **more):
        score = self.home / name
        score.write_text(SCORE, encoding="utf-8")
        program = subprocess.Popen([PROGRAM, score], env=dict(self.environment, **more), stderr=subprocess.DEVNULL)
        self.addCleanup(program.wait)
        self.addCleanup(program.kill)
        return program

    def opened(self):
        """The files that a program has opened, by name, the last one first."""
        files = list((self.home / "CONFIG").rglob("*.json"))
        paths = json.loads(files[0].read_text(encoding="utf-8")).get("recentFiles", []) if files else []
        return [pathlib.Path(path).name for path in paths]

    def second_goes_to_first(self):
        first = self.start("first.musicxml")
        self.assertTrue(wait_until(lambda: self.opened() == ["first.musicxml"]), self.opened())
        second = self.start("second.musicxml")
        self.assertEqual(second.wait(timeout=30), 0)
        self.assertTrue(wait_until(lambda: self.opened() == ["second.musicxml", "first.musicxml"]), self.opened())
        self.assertIsNone(first.poll())
        return first

    def test_over_the_bus(self):
        self.start_bus()
        first = self.second_goes_to_first()
        # Not even killed does it keep others from starting.
        first.kill()
        first.wait()
        third = self.start("third.musicxml")
        self.assertTrue(wait_until(lambda: self.opened()[0] == "third.musicxml"), self.opened())
        # A run that nobody watches is alone.
        alone = self.start("alone.musicxml", QV_SMOKE="1", QV_LOGFILE=str(self.home / "log"),
                           QV_SHOT=str(self.home / "shot.png"))
        self.assertTrue(wait_until(lambda: self.opened()[0] == "alone.musicxml"), self.opened())
        self.assertIsNone(alone.poll())
        self.assertIsNone(third.poll())

    def test_over_the_socket(self):
        self.second_goes_to_first().kill()

    def ask(self, service, path, method, *arguments):
        """What another program on the bus is answered, as gdbus writes it; nothing where it is refused."""
        answer = subprocess.run(["gdbus", "call", "--session", "--dest", service, "--object-path", path,
                                 "--method", method, *arguments], env=self.environment, text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
        return answer.stdout.strip()

    def player(self, method, *arguments):
        return self.ask("org.mpris.MediaPlayer2.quaverly", "/org/mpris/MediaPlayer2",
                        f"org.mpris.MediaPlayer2.{method}", *arguments)

    def player_property(self, name):
        return self.ask("org.mpris.MediaPlayer2.quaverly", "/org/mpris/MediaPlayer2",
                        "org.freedesktop.DBus.Properties.Get", "org.mpris.MediaPlayer2.Player", name)

    def test_media_player(self):
        self.start_bus()
        program = self.start("song.musicxml")
        self.assertTrue(wait_until(lambda: self.player_property("CanPlay") == "(<true>,)"))
        self.assertTrue(wait_until(lambda: "mpris:length" in self.player_property("Metadata")))
        self.player("Player.Play")
        # The score is short, so it may be at its end already.
        self.assertTrue(wait_until(lambda: self.player_property("Position") != "(<int64 0>,)"))
        names = self.ask("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.ListNames")
        self.assertEqual(names.count("org.mpris."), 1, names)
        self.player("Quit")
        self.assertEqual(program.wait(timeout=30), 0)


if __name__ == "__main__":
    unittest.main()
