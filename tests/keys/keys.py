#!/usr/bin/env python3
"""Presses every key of the menus at every place that the keys can be in the window, and the space bar there too.

A key has to choose its item, that one only and once, and may not move the focus; an item that is disabled may not be
chosen. Items that open another window are left out. The window is seen by an X server and a window manager of its own.
"""
import argparse
import pathlib
import shutil
import subprocess
import sys
import time

TOP = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TOP / "tests" / "driven"))
import driven  # noqa: E402

# What opens another window, ends this one or has it fill the screen.
LEFT_OUT = {"Ctrl+O", "Ctrl+P", "Ctrl+E", "Ctrl+Q", "F1", "F", "F11", "Ctrl+F"}
# How the keys that have no letter are called by X.
X_NAMES = {"Ctrl": "ctrl", "Shift": "shift", "Alt": "alt", "Backspace": "BackSpace", "[": "bracketleft",
           "]": "bracketright", "-": "minus", "=": "equal", "Esc": "Escape", "PgUp": "Prior", "PgDown": "Next"}
# How long a key may take to be felt, and for how long one that must do nothing is watched, in seconds.
FELT = 2.0
WATCHED = 0.15
# More places than that are a walk that does not end.
MOST_PLACES = 150


def x_keys(key):
    """A key as Qt has it, as xdotool presses it; None for one that no American keyboard has as such."""
    parts = key[:-2].split("+") + ["+"] if key.endswith("++") else [key] if key == "+" else key.split("+")
    if parts[-1] == "+":
        # Its equals sign, with Shift.
        return None
    return [X_NAMES.get(part, part.lower() if len(part) == 1 else part) for part in parts]


class Keyboard:
    def __init__(self, display):
        self.environment = {"DISPLAY": f":{display.number}", "PATH": "/usr/bin:/bin"}

    def _xdotool(self, *words):
        subprocess.run(["xdotool", *words], env=self.environment, check=True, stdout=subprocess.DEVNULL)

    def press(self, keys):
        # Alt alone shows the menus' letters: as a hand does, it comes first.
        for key in keys[:-1]:
            self._xdotool("keydown", key)
        self._xdotool("key", keys[-1])
        for key in keys[-2::-1]:
            self._xdotool("keyup", key)

    def click(self, x, y):
        self._xdotool("mousemove", str(x), str(y), "click", "1")


class Walk:
    def __init__(self, window, keyboard):
        self.window, self.keyboard = window, keyboard
        self.pressed, self.faults = 0, []

    def items(self):
        return self.window.do("items")["items"]

    def focus(self):
        return self.window.state()["focus"]

    def fault(self, text):
        self.faults.append(text)
        print(f"FAULT {text}", flush=True)

    def press(self, place, item, key):
        window, name, before = self.window, item["keys"][0], self.focus()
        window.chosen.clear()
        self.keyboard.press(x_keys(key))
        self.pressed += 1
        if item["enabled"] and not window.wait_for_choice(name, FELT):
            self.fault(f"{place}: {key} does not choose {item['title']!r}")
        time.sleep(WATCHED)
        window.state()
        wanted = [name] if item["enabled"] else []
        if window.chosen != wanted:
            self.fault(f"{place}: {key} chooses {window.chosen}, and not {wanted}")
        if self.focus() != before:
            self.fault(f"{place}: {key} moves the focus to {self.focus()}")

    def press_space(self, place):
        if not self.window.state()["hasScore"]:
            return
        for playing in (True, False):
            self.keyboard.press(["space"])
            self.pressed += 1
            if not self.window.wait(lambda state: state["playing"] == playing, 5):
                self.fault(f"{place}: the space bar does not {'play' if playing else 'pause'}")

    def at(self, place):
        before = len(self.faults)
        for name in [item["keys"][0] for item in self.items()]:
            # What one key chose may have enabled or disabled the next.
            item = next(item for item in self.items() if item["keys"][0] == name)
            for key in item["keys"]:
                # With an arrow that no item takes a button hands the focus on.
                own = key in LEFT_OUT or not x_keys(key) or (key.endswith(("Left", "Right")) and not item["enabled"])
                if not own:
                    self.press(place, item, key)
        self.press_space(place)
        print(f"{place}: {len(self.faults) - before} faults", flush=True)

    def go(self):
        seen = []
        self.keyboard.click(700, 450)
        while len(seen) < MOST_PLACES:
            place = self.focus()
            if place in seen:
                break
            seen.append(place)
            self.at(place)
            self.keyboard.press(["Tab"])
            if not self.window.wait(lambda state: state["focus"] != place, 2):
                break
        return len(seen)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--dark", action="store_true", help="in dark colours")
    parser.add_argument("--open", type=pathlib.Path, help="a score or a PDF instead of the tests' own score")
    parser.add_argument("--build", type=pathlib.Path, default=TOP / "build" / "dev")
    chosen = parser.parse_args()
    missing = [name for name in ("Xvfb", "openbox", "xdotool") if not shutil.which(name)]
    if missing:
        sys.exit(f"keys: there is no {', '.join(missing)}")
    score = chosen.open or chosen.build / "tests" / "scores" / "ferry.musicxml"
    display = driven.Display()
    manager = subprocess.Popen(["openbox"], env={"DISPLAY": f":{display.number}", "PATH": "/usr/bin:/bin"},
                               stderr=subprocess.DEVNULL)
    window = driven.Window(chosen.build, display.environment())
    try:
        window.wait(lambda state: state["bridgeReady"], 60)
        window.do("dark", chosen.dark)
        window.do("resize", 1390, 880)
        window.do("open", str(score.resolve()))
        if not window.wait(lambda state: state["pdf"] or (state["playerReady"] and state["positions"] > 0), 30):
            sys.exit(f"keys: {score} does not open")
        walk = Walk(window, Keyboard(display))
        places = walk.go()
    finally:
        window.close()
        manager.terminate()
        manager.wait()
        display.close()
    print(f"{walk.pressed} keys at {places} places, {len(walk.faults)} faults.")
    return 1 if walk.faults else 0


if __name__ == "__main__":
    sys.exit(main())
