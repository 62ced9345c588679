#!/usr/bin/python3
# bench: following [MINUTES] [SEED]   clicks, drags, seeks, loops, zoom, layouts while music plays: cursor in view?
"""Counts the frames in which what is played cannot be seen, while the window is used as a reader uses it.

usage: following.py [MINUTES] [SEED], with the program's build folder beside QUAVERLY_PROGRAM

A song of 120 bars plays in the window, ten minutes where nothing else is said. Every few seconds something is done to
it, in an order that the seed fixes: a click on a note, a drag over some, a seek, a loop, another zoom, the other
layout, another size of the window. What was done may lead away from the music, and then the cursor has until it leaves
its staff system, in the horizontal layout its bar, to be in view again: frames within that time are counted on their
own. The cursor is in view while a quarter of its bar's height and the beat's whole width are.
"""

import json
import os
import random
import sys
import time

from speedlab.driven import driven_window

BARS = 120
# Sets up the counting; a frame counts while music plays.
WATCH = """(() => {
  const viewport = document.getElementById("viewport");
  const bar = document.querySelector(".at-cursor-bar"), beat = document.querySelector(".at-cursor-beat");
  const watch = window.watch = { playing: false, what: "start", deed: 0, line: null, away: true };
  Object.assign(watch, { counts: {}, unseen: [] });
  // An observer of sizes looks when everything in a frame is in its place, before it is painted.
  const probe = document.createElement("div");
  Object.assign(probe.style, { position: "fixed", visibility: "hidden", height: "1px" });
  document.body.append(probe);
  const nextFrame = () => {
    probe.style.width = probe.style.width === "1px" ? "2px" : "1px";
    requestAnimationFrame(nextFrame);
  };
  const look = () => {
    const view = viewport.getBoundingClientRect();
    const b = bar.getBoundingClientRect(), n = beat.getBoundingClientRect();
    if (!watch.playing || b.height === 0) return;
    const horizontal = document.getElementById("score-page").classList.contains("horizontal");
    const line = horizontal ? Math.round(b.left + viewport.scrollLeft) : Math.round(b.top + viewport.scrollTop);
    const drawn = [b.height, viewport.scrollWidth, viewport.scrollHeight, viewport.clientWidth].join();
    if (drawn !== watch.drawn) {
      // Drawn anew: everything is elsewhere, and the music still in the same system.
      watch.drawn = drawn;
      watch.line = null;
    }
    if (watch.line === null) watch.line = line;
    if (line !== watch.line) { watch.line = line; watch.away = false; }
    const bottom = view.top + viewport.clientHeight, right = view.left + viewport.clientWidth;
    const seen = Math.min(b.bottom, bottom) - Math.max(b.top, view.top)
        > 0.25 * Math.min(b.height, viewport.clientHeight)
      && n.left >= view.left - 1 && n.right <= right + 1;
    const key = horizontal ? "horizontal" : "page";
    const count = watch.counts[key] ??= { frames: 0, soon: 0, late: 0 };
    count.frames++;
    if (!seen) {
      count[watch.away ? "soon" : "late"]++;
      const last = watch.unseen.at(-1);
      if (last?.deed !== watch.deed || last.late === watch.away) {
        watch.unseen.push({ deed: watch.deed, late: !watch.away, what: watch.what, key, frames: 0,
          bar: [b.left, b.top, b.right, b.bottom].map(Math.round), beat: [n.left, n.right].map(Math.round),
          view: [viewport.clientWidth, viewport.clientHeight] });
      }
      watch.unseen.at(-1).frames++;
    }
  };
  new ResizeObserver(look).observe(probe);
  nextFrame();
})()"""
# Notes in view, where a reader can click on them.
NOTES = """JSON.stringify([...document.querySelectorAll("#notation .at-surface g[class^=b]")]
  .map((note) => note.getBoundingClientRect())
  .filter(({ width, left, right, top, bottom }) => width > 0 && left > 10 && right < innerWidth - 30 && top > 10
    && bottom < innerHeight - 30)
  .map(({ left, top, width, height }) => [left + Math.min(4, width / 2), top + height / 2]))"""


def song():
    """Quarters and eighths on one staff and its tablature, so that bars differ in width."""
    def note(step, length):
        kind = "quarter" if length == 2 else "eighth"
        return (f"<note><pitch><step>{step}</step><octave>4</octave></pitch><duration>{length}</duration>"
                f"<type>{kind}</type></note>")
    bars = []
    for number in range(1, BARS + 1):
        beginning = ("<attributes><divisions>2</divisions><time><beats>4</beats><beat-type>4</beat-type></time>"
                     '</attributes><sound tempo="120"/>') if number == 1 else ""
        lengths = [(2, 2, 2, 2), (1, 1, 2, 1, 1, 2), (1,) * 8][number * 7 % 5 % 3]
        notes = "".join(note("CEGAFD"[(number + index) % 6], length) for index, length in enumerate(lengths))
        bars.append(f'<measure number="{number}">{beginning}{notes}</measure>')
    parts = ("Guitar", "Bass")
    entries = "".join(f'<score-part id="{name}"><part-name>{name}</part-name></score-part>' for name in parts)
    music = "".join(f'<part id="{name}">{"".join(bars)}</part>' for name in parts)
    return ('<?xml version="1.0" encoding="UTF-8"?><score-partwise version="4.0"><work><work-title>Following'
            f"</work-title></work><part-list>{entries}</part-list>{music}</score-partwise>")


class Reader:
    """Does what readers do, one thing at a time."""

    def __init__(self, window, seed):
        self._window = window
        self._random = random.Random(seed)
        self._horizontal = False
        self._looping = False
        self._deeds = [self.click, self.drag, self.seek, self.loop, self.zoom, self.layout, self.resize]

    def next(self):
        deed = self._random.choice(self._deeds)
        self._window.tell(f"js watch.deed++; watch.what = '{deed.__name__}'; watch.away = true; watch.line = null")
        deed()
        # A deed may take a while; the music has from its end.
        self._window.tell("js watch.away = true; watch.line = null")
        return self._random.uniform(3, 7)

    def _note(self):
        notes = json.loads(self._window.value(" ".join(NOTES.split())) or "[]")
        return self._random.choice(notes) if notes else None

    def _mouse(self, what, place):
        self._window.tell(f"{what} {place[0]:.1f} {place[1]:.1f}")

    def click(self):
        if place := self._note():
            self._mouse("press", place)
            self._mouse("release", place)

    def drag(self):
        place, end = self._note(), self._note()
        if place and end:
            self._mouse("press", place)
            for step in range(1, 6):
                self._mouse("move", [a + (b - a) * step / 5 for a, b in zip(place, end)])
                self._window.rest(0.03)
            self._mouse("release", end)

    def seek(self):
        self._window.call("seekToTime", self._random.uniform(0, BARS * 2000 - 12000))

    def loop(self):
        self._looping = not self._looping
        self._window.tell(f"js window.qv.setLooping({str(self._looping).lower()})")

    def zoom(self):
        self._window.call("setZoom", self._random.choice([0.6, 0.8, 1.0, 1.3, 1.6]))

    def layout(self):
        self._horizontal = not self._horizontal
        self._window.call("setLayout", "horizontal" if self._horizontal else "page")

    def resize(self):
        width, height = self._random.choice([(1180, 780), (900, 560), (1380, 880), (760, 520)])
        self._window.tell(f"resize {width} {height}")


def keep_playing(window):
    """Music that has come to its end begins again somewhere."""
    states = [message["playing"] for _, message in window.messages if message["type"] == "state"]
    if not states or not states[-1]:
        window.tell("js watch.playing = false")
        window.call("seekToTime", 4000)
        window.play()
        # A start has its time like everything else.
        window.tell("js watch.what = 'start'; watch.away = true; watch.line = null; watch.playing = true")


def main():
    minutes = float(sys.argv[1]) if len(sys.argv) > 1 else 10.0
    seed = int(sys.argv[2]) if len(sys.argv) > 2 else 1
    with driven_window() as (window, folder):
        path = os.path.join(folder, "following.musicxml")
        with open(path, "w", encoding="utf-8") as file:
            file.write(song())
        window.open(path)
        window.rest(2)
        window.tell("js " + " ".join(line.strip() for line in WATCH.splitlines() if not line.strip().startswith("//")))
        reader = Reader(window, seed)
        deeds = 0
        deadline = time.monotonic() + 60 * minutes
        while time.monotonic() < deadline:
            keep_playing(window)
            window.rest(reader.next())
            deeds += 1
        found = json.loads(window.value("JSON.stringify(watch)"))
        print(f"{minutes:g} minutes, seed {seed}, {deeds} deeds")
        print(f"{'layout':12}{'frames':>8}{'not in view: within the first line':>36}{'after it':>10}")
        for layout, count in sorted(found["counts"].items()):
            print(f"{layout:12}{count['frames']:8}{count['soon']:36}{count['late']:10}")
        for one in found["unseen"]:
            print(f"{'late after' if one['late'] else 'after'} {one['what']}, {one['key']}: {one['frames']} frames, at "
                  f"first bar {one['bar']}, beat {one['beat']} in a view of {one['view']}")


if __name__ == "__main__":
    main()
