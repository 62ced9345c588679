#!/usr/bin/python3
# bench: sound [ROW...] [--quick] [--fretboard]   what is heard: clicks, loops, drop-outs, mutes, the mark on the score
"""Measures what Quaverly sounds like, from a recording of the loudspeaker, and prints each figure beside its bound.

usage: sound.py [ROW...] [--quick] [--fretboard] [--score FILE] [--keep FOLDER], with the program in QUAVERLY_PROGRAM

Without a ROW every one is measured; "drift" takes five minutes, "dropouts" and "recordingdropouts" ten each. --quick
makes these a minute long. The worst case counts: a row fails by its worst figure, and with a failed row the script ends
with 1.
"""

import argparse
import contextlib
import os
import shutil
import sys
import tempfile
import threading
import time

import numpy

from soundlab.ears import errors, last_sound, onsets, silences
from soundlab.practice import ranges, trainer
from soundlab.room import RATE, SoundSystem, Tape, Window
from soundlab.scores import BEAT, ON_EACH_BEAT, Desk
from soundlab.standstills import Standstills, explains
from startup import Screen

TOP = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
LAUNCHES = 5
SPEEDS = [0.25, 1.0, 2.0]
RECORDING_SPEEDS = [0.25, 0.5, 1.0, 2.0]


class Room:
    """One window with everything around it, ready to play; and a tape that runs while something is measured."""

    def __init__(self, build, folder, keep):
        self._keep = keep
        self.desk = Desk(TOP, build, folder)
        picture = os.path.join(folder, "screen")
        os.mkdir(picture)
        with contextlib.ExitStack() as opened:
            self._system = SoundSystem(folder)
            opened.callback(self._system.close)
            self.screen = Screen(picture)
            opened.callback(self.screen.close)
            self.window = Window(os.path.join(build, "sound_player"), self.screen.display, self._system, folder)
            opened.callback(self.window.close)
            self.window.wait_for("ready")
            self._opened = opened.pop_all()

    def listen(self, name, during):
        """Records what sounds `during`; returns the recording, its beginning and what `during` returned."""
        tape = Tape(self._system)
        tape.wait_for_sound()
        try:
            answer = during()
        finally:
            sound, began = tape.finish()
        if self._keep:
            sound.tofile(os.path.join(self._keep, name + ".f32"))
        return sound, began, answer

    def click(self, mode="beat", sound="woodblock", volume=0.8, accent=False):
        self.window.call("configMetronome", volume, sound, accent, mode)
        self.window.call("setMetronome", True)

    def close(self):
        self._opened.close()


class Table:
    """The figures with their bounds, printed as they come."""

    def __init__(self):
        self.failed = False

    def row(self, what, value, bound, unit="ms", note=""):
        met = value <= bound
        self.failed |= not met
        print(f"{what:58}{value:9.2f} {unit:4} at most {bound:6g}   {'met' if met else 'MISSED'}{note and '   ' + note}",
              flush=True)


def left_and_right(sound):
    """The score's own strokes, which come from the left alone, and the clicks, which come from both sides alike."""
    return sound[:, 0] - sound[:, 1], sound[:, 1]


def clicks(room, table, options):
    """Clicks against the score's own notes, at the same places."""
    room.window.open(room.desk.strokes(16))
    room.click()
    for speed in SPEEDS:
        room.window.call("setSpeed", speed)

        def music():
            room.window.play()
            room.window.rest(min(20 * BEAT / speed + 1, 42))
            room.window.stop()
        sound, _, _ = room.listen(f"clicks-{speed}", music)
        notes, beats = (onsets(part, 0.6 * BEAT / speed) for part in left_and_right(sound))
        late = errors(beats, notes)
        if len(late) < 8:
            raise RuntimeError(f"only {len(late)} clicks and {len(notes)} notes were heard at {speed:g}")
        name = f"click against note, synthesizer, {speed:.0%}"
        note = f"{len(late)} clicks, mean {late.mean():+.2f}"
        table.row(f"{name}: spread", late.std(), 1, note=note)
        table.row(f"{name}: worst", numpy.abs(late).max(), 5)
    room.window.call("setSpeed", 1.0)
    room.window.call("setMetronome", False)


def recording(room, table, options):
    """Clicks against a recording whose beats are known."""
    path, _ = room.desk.recorded(24)
    room.window.open(path)
    room.click()
    for speed in RECORDING_SPEEDS:
        room.window.call("setSpeed", speed)

        def music():
            room.window.play()
            room.window.rest(24)
            room.window.stop()
        sound, _, _ = room.listen(f"recording-{speed}", music)
        beside(table, sound, speed, f"click against the recording, {speed:.0%}")
    room.window.call("setSpeed", 1.0)
    room.window.call("setMetronome", False)


def beside(table, sound, speed, name):
    """The clicks beside a recording; returns when its strokes were heard."""
    strokes, beats = (onsets(part, 0.6 * BEAT / speed) for part in left_and_right(sound))
    late = errors(strokes, beats)
    if len(late) < 8:
        raise RuntimeError(f"only {len(late)} strokes and {len(beats)} clicks were heard at {speed:g}")
    table.row(f"{name}: worst", numpy.abs(late).max(), 15,
              note=f"{len(late)} strokes, mean {late.mean():+.2f}, spread {late.std():.2f}")
    return strokes


def recordingseam(room, table, options):
    """What a loop adds between the last beat and the first of a recording."""
    bars = 2
    path, beats = room.desk.recorded(bars)
    steps = numpy.diff(beats + [2 * beats[-1] - beats[-2]])
    room.window.open(path)
    room.click()
    room.window.call("setLooping", True)
    for speed in RECORDING_SPEEDS:
        room.window.call("setSpeed", speed)

        def music():
            room.window.play()
            room.window.rest((2.2 + 1.5 * speed) * sum(steps) / speed)
            room.window.stop()
        sound, _, _ = room.listen(f"recordingseam-{speed}", music)
        strokes = beside(table, sound, speed, f"click against the recording in a loop, {speed:.0%}")
        late = 1000 * (numpy.diff(strokes) - numpy.resize(steps / speed, len(strokes) - 1))
        seams = late[len(beats) - 1::len(beats)]
        table.row(f"late after the recording's seam, {speed:.0%}", numpy.abs(seams).max(), 20,
                  note=f"{len(seams)} seams, mean {seams.mean():+.2f}")
    room.window.call("setMetronome", False)
    room.window.open(room.desk.hummed(bars))
    for speed in RECORDING_SPEEDS[1:3]:
        room.window.call("setSpeed", speed)
        sound, _, _ = room.listen(f"recordingseam-hum-{speed}", music)
        gaps = [length for _, length in silences(sound[:, 0], 0.0015, edge=0.05)]
        table.row(f"silence at the recording's seam, {speed:.0%}", 1000 * max(gaps, default=0), 20, note=f"{len(gaps)} silences")
    room.window.call("setSpeed", 1.0)
    room.window.call("setLooping", False)


def drift(room, table, options):
    """The clicks of five minutes against an even beat."""
    seconds = 60 if options.quick else 300
    room.window.open(room.desk.strokes(seconds // 2 + 8))
    room.click()

    def music():
        room.window.play()
        room.window.rest(seconds + 2)
        room.window.stop()
    sound, _, _ = room.listen("drift", music)
    beats = onsets(sound[:, 1], 0.6 * BEAT)
    off = 1000 * (beats - beats[0] - BEAT * numpy.arange(len(beats)))
    table.row(f"drift of the clicks over {beats[-1] - beats[0]:.0f} s", numpy.abs(off).max(), 1, note=f"{len(beats)} clicks")
    room.window.call("setMetronome", False)


def seam(room, table, options):
    """What a loop adds between its last beat and its first."""
    bars = 2
    room.window.open(room.desk.strokes(bars))
    room.window.call("setLooping", True)

    def music():
        room.window.play()
        room.window.rest(8 * bars * 4 * BEAT)
        room.window.stop()
    sound, _, _ = room.listen("seam-strokes", music)
    notes = onsets(sound[:, 0], 0.6 * BEAT)
    steps = 1000 * (numpy.diff(notes) - BEAT)
    seams = steps[bars * 4 - 1::bars * 4]
    table.row("late after the loop's seam", numpy.abs(seams).max(), 20, note=f"{len(seams)} seams, mean {seams.mean():+.2f}")
    room.window.open(room.desk.drone(bars))
    sound, _, _ = room.listen("seam-drone", music)
    gaps = [length for _, length in silences(sound[:, 0], 0.0015, edge=0.05)]
    table.row("silence at the loop's seam", 1000 * max(gaps, default=0), 20, note=f"{len(gaps)} silences")
    room.window.call("setLooping", False)


def dropouts(room, table, options):
    """Holes in a real score while its window is scrolled and resized."""
    room.window.open(options.score)
    holes_in_motion(room, table, options, "drop-outs")


def recordingdropouts(room, table, options):
    """The same in a recording."""
    room.window.open(room.desk.hummed(48, ":16" + 16 * " 0.1" + " |\n"))
    holes_in_motion(room, table, options, "drop-outs of a recording")


def holes_in_motion(room, table, options, name):
    seconds = 60 if options.quick else 600
    room.window.call("setLooping", True)

    def music():
        room.window.play()
        end = time.monotonic() + seconds
        turn = 0
        while time.monotonic() < end:
            room.window.rest(0.4)
            room.window.tell(f"wheel {-3 if turn % 20 < 10 else 3}")
            if turn % 5 == 0:
                room.window.tell(f"resize {1000 + turn * 37 % 390} {640 + turn * 23 % 250}")
            turn += 1
        room.window.stop()
    machine = Standstills()
    try:
        sound, began, _ = room.listen(name, music)
    finally:
        standstills = machine.close()
    holes = silences(numpy.abs(sound).max(axis=1), 0.0015)
    own = [(at, hole) for at, hole in holes if not explains(standstills, began + at, began + at + hole)]
    length = len(sound) / RATE
    listed = ", ".join(f"{1000 * hole:.0f} ms at {at:.1f} s" for at, hole in own[:6])
    table.row(f"{name} in {length / 60:.1f} minutes", len(own), 0, unit="",
              note=f"{listed}{listed and '; '}{len(holes) - len(own)} more of {len(standstills)} standstills of the machine")
    room.window.call("setLooping", False)


def mute(room, table, options):
    """From a call of the mixer to silence."""
    room.window.open(room.desk.drone(32))
    room.window.call("setLooping", True)
    ways = {
        "mute": ("mute 0", "mute 0"),
        "track volume": ("js window.qv.setTrackVolume(0, 0.0)", "js window.qv.setTrackVolume(0, 1.0)"),
        "master volume": ("js window.qv.setMasterVolume(0.0)", "js window.qv.setMasterVolume(1.0)"),
    }

    def music():
        calls = []
        room.window.play()
        room.window.rest(2)
        for name, (off, on) in ways.items():
            for turn in range(8):
                before = time.monotonic()
                room.window.tell(off)
                room.window.rest(0.5 + 0.013 * turn)
                calls.append((name, before, time.monotonic()))
                room.window.tell(on)
                room.window.rest(0.6)
        room.window.stop()
        return calls
    sound, began, calls = room.listen("mute", music)
    part = sound[:, 0]
    threshold = numpy.abs(part).max() / 1000
    for name in ways:
        waits = [1000 * (last_sound(part[:int((end - began) * RATE)], start - began, threshold) - (start - began))
                 for way, start, end in calls if way == name]
        table.row(f"{name} to silence", max(waits), 150, note=f"{len(waits)} calls, median {numpy.median(waits):.0f}")
    room.window.call("setLooping", False)


class Marks:
    """Watches the screen for the band that stands at what is playing, and writes down when it stands elsewhere."""

    # Where the first line of music is. Looking at more costs the program processor time.
    TOP, BOTTOM = 225, 345
    # The band runs through the whole system; the note it stands at is marked in the same colour, but not as high.
    HIGHEST_NOTE = 60
    # Two notes are farther apart than this, in pixels.
    STEP = 14

    def __init__(self, screen):
        self._screen = screen
        self.changes = []
        self._stopped = threading.Event()
        self._watcher = threading.Thread(target=self._watch, daemon=True)
        self._watcher.start()

    def _place(self):
        pixels = numpy.frombuffer(self._screen.rows(self.TOP, self.BOTTOM), dtype=numpy.uint8)
        blue, green, red = (pixels.reshape(self.BOTTOM - self.TOP, -1, 4)[:, :, colour].astype(numpy.int16)
                            for colour in range(3))
        marked = (green - red > 6) & (green - blue > 4)
        band = numpy.flatnonzero(marked.sum(axis=0) > self.HIGHEST_NOTE)
        return numpy.median(band) if len(band) else None

    def _watch(self):
        before = None
        while not self._stopped.is_set():
            now = time.monotonic()
            place = self._place()
            # Where it stands at first it stands before the note is heard.
            if place is not None and before is not None and abs(place - before) > self.STEP:
                self.changes.append(now)
            before = place if place is not None else before
            self._stopped.wait(0.006)

    def finish(self):
        self._stopped.set()
        self._watcher.join()
        return numpy.array(self.changes)


def mark(room, table, options):
    """The mark on the score against the note that is heard."""
    room.window.open(room.desk.strokes(4))
    mark_against(room, table, "mark on the score against the sound")


def recordingmark(room, table, options):
    """The same with a recording whose beats are known."""
    path, _ = room.desk.recorded(4, ON_EACH_BEAT)
    room.window.open(path)
    mark_against(room, table, "mark on the score against the recording")


def mark_against(room, table, name):
    room.window.call("setLooping", True)
    for speed in (1.0, 0.5):
        room.window.call("setSpeed", speed)

        def music():
            marks = Marks(room.screen)
            room.window.play()
            room.window.rest(20)
            changes = marks.finish()
            room.window.stop()
            return changes
        sound, began, changes = room.listen(f"{name}-{speed}", music)
        notes = onsets(sound[:, 0], 0.6 * BEAT / speed)
        late = errors(changes - began, notes)
        late = late[numpy.abs(late) < 400 * BEAT / speed]
        if len(late) < 8:
            raise RuntimeError(f"only {len(late)} marks were seen, and {len(notes)} notes heard")
        table.row(f"{name}, {speed:.0%}: worst", numpy.abs(late).max(), 50,
                  note=f"{len(late)} notes, mean {late.mean():+.1f} (late is positive), spread {late.std():.1f}")
    room.window.call("setSpeed", 1.0)
    room.window.call("setLooping", False)


def ready(build, table, options):
    """How long the finer instruments keep a musician waiting: launches with them and with the small bank alone."""
    with tempfile.TemporaryDirectory(dir=build, prefix="small-bank-") as bare:
        shutil.copy(os.path.join(build, "sound_player"), bare)
        shutil.copytree(os.path.join(build, "web"), os.path.join(bare, "web"), copy_function=os.link)
        listing = os.path.join(bare, "web", "sounds", "index.json")
        os.remove(listing)
        with open(listing, "w") as file:
            file.write("[]")
        waits = {build: [], bare: []}
        for _ in range(LAUNCHES):
            for place, times in waits.items():
                with (tempfile.TemporaryDirectory(prefix="quaverly-sound-", ignore_cleanup_errors=True) as folder,
                      contextlib.closing(Room(place, folder, None)) as room):
                    room.window.tell(f"open {options.score}")
                    times.append(room.window.wait_for("playerReady") - room.window.launched)
        fine, small = (numpy.median(times) for times in waits.values())
    table.row("playerReady after the launch, beside the small bank", fine / small, 1.2, unit="x",
              note=f"medians of {LAUNCHES}: {1000 * fine:.0f} and {1000 * small:.0f} ms")


def in_a_room(row):
    """A row that is measured in one window, opened for it."""
    def measure(build, table, options):
        with (tempfile.TemporaryDirectory(prefix="quaverly-sound-", ignore_cleanup_errors=True) as folder,
              contextlib.closing(Room(build, folder, options.keep)) as room):
            if options.fretboard:
                room.window.tell("choose Fretboard")
            row(room, table, options)
    return measure


ROWS = {row.__name__: in_a_room(row)
        for row in (clicks, recording, recordingseam, recordingmark, recordingdropouts, seam, ranges, trainer, mute, mark, drift,
                    dropouts)}
ROWS["ready"] = ready


def main():
    parser = argparse.ArgumentParser(description="Measures what is heard.")
    parser.add_argument("rows", nargs="*", metavar="ROW", help=", ".join(ROWS))
    parser.add_argument("--quick", action="store_true", help="a minute for the rows that take longer")
    parser.add_argument("--fretboard", action="store_true", help="shows the fretboard in all rows but ready")
    parser.add_argument("--score", default=os.path.join(TOP, "..", "shared", "samples", "canon.gp5"),
                        help="the score of the rows dropouts and ready")
    parser.add_argument("--keep", metavar="FOLDER", help="keeps the recordings: 32-bit floats, stereo")
    options = parser.parse_args()
    options.score = os.path.abspath(options.score)
    unknown = [row for row in options.rows if row not in ROWS]
    if unknown:
        parser.error(f"no such row: {', '.join(unknown)}")
    build = os.path.dirname(os.environ["QUAVERLY_PROGRAM"])
    table = Table()
    for name in options.rows or ROWS:
        ROWS[name](build, table, options)
    sys.exit(table.failed)


if __name__ == "__main__":
    main()
