"""When a picture is complete: the moment after which nothing on the screen changes any more."""

import time

# Looking costs the programs processor time: seldom enough not to be felt.
LOOK_EVERY = 0.02
# Every so many pixels across and down are looked at.
STEP = 4
# A pixel has changed when its brightness has, by more than this of 255; a picture, when more than this part of it has.
NOTICED = 16
MOVED = 0.005


class Film:
    """The different pictures that a screen showed, each with the time at which it was first seen."""

    def __init__(self, screen):
        self._screen = screen
        self._pictures = [(time.monotonic(), screen.sample(STEP))]

    def run(self, seconds, until=lambda: False):
        """Watches for some seconds, or until somebody has seen enough."""
        end = time.monotonic() + seconds
        while time.monotonic() < end and not until():
            began = time.monotonic()
            picture = self._screen.sample(STEP)
            if picture != self._pictures[-1][1]:
                self._pictures.append((began, picture))
            time.sleep(max(0.0, LOOK_EVERY - (time.monotonic() - began)))

    def still_since(self):
        """The time from which on every picture was as the last one; None when nothing ever changed."""
        last = self._pictures[-1][1]
        since = None
        for at, picture in reversed(self._pictures):
            if changed(picture, last) > MOVED:
                return since
            since = at
        return None


def changed(one, other):
    """The part of the pixels in which two pictures differ noticeably."""
    if one == other:
        return 0.0
    return sum(1 for a, b in zip(one, other) if a - b > NOTICED or b - a > NOTICED) / max(len(one), 1)
