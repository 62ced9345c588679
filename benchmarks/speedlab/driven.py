"""The program's window, driven from here."""

import contextlib
import os
import shutil
import tempfile

from soundlab.room import SoundSystem, Window
from startup import Screen


@contextlib.contextmanager
def driven_window():
    """Gives the window, ready for a score, and a folder; it has a screen and a sound system of its own."""
    player = os.path.join(os.path.dirname(os.environ["QUAVERLY_PROGRAM"]), "sound_player")
    with contextlib.ExitStack() as end:
        folder = tempfile.mkdtemp(prefix="quaverly-bench-")
        end.callback(shutil.rmtree, folder, ignore_errors=True)
        screen = end.enter_context(contextlib.closing(Screen(folder)))
        system = end.enter_context(contextlib.closing(SoundSystem(folder)))
        window = end.enter_context(contextlib.closing(Window(player, screen.display, system, folder)))
        window.wait_for("ready")
        yield window, folder
