"""How Quaverly and the programs it is measured beside are started, each in a fresh home that asks no questions."""

import os
import shutil
import subprocess

MUSESCORE_SETTINGS = """[application]
startup\\firstStart=false

[ui]
application\\startup\\showSplashScreen=false
application\\startup\\showStartCenter=false
application\\startup\\showTours=false
application\\startup\\checkUpdate=false
application\\startup\\showNavigator=false
application\\startup\\showPlayPanel=false
"""


class Program:
    def __init__(self, name, command, prepare=lambda home: None):
        self.name = name
        self.present = shutil.which(command) is not None
        self._command = command
        self._prepare = prepare

    def launch(self, file, display, folder, **variables):
        """Starts the program in a home of its own below `folder`."""
        home = os.path.join(folder, "home-" + self.name.replace(" ", "-"))
        shutil.rmtree(home, ignore_errors=True)
        os.mkdir(home, 0o700)
        self._prepare(home)
        environment = dict(
            os.environ, HOME=home, DISPLAY=display, QT_QPA_PLATFORM="xcb", XDG_CONFIG_HOME=os.path.join(home, "config"),
            XDG_CACHE_HOME=os.path.join(home, "cache"), XDG_DATA_HOME=os.path.join(home, "data"), XDG_RUNTIME_DIR=home,
            # No bus: libdbus would start one for each launch, and that the desktop's services, beside what is measured.
            DBUS_SESSION_BUS_ADDRESS=f"unix:path={home}/no-bus", _JAVA_OPTIONS=f"-Duser.home={home}", **variables)
        environment.pop("WAYLAND_DISPLAY", None)
        return subprocess.Popen([self._command, *([file] if file else [])], env=environment,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def prepare_musescore(home):
    folder = os.path.join(home, "config", "MuseScore")
    os.makedirs(folder)
    with open(os.path.join(folder, "MuseScore3.ini"), "w") as file:
        file.write(MUSESCORE_SETTINGS)


def quaverly():
    return Program("Quaverly", os.environ["QUAVERLY_PROGRAM"])


def musescore():
    return Program("MuseScore 3", "mscore3", prepare_musescore)


def tuxguitar():
    return Program("TuxGuitar", "tuxguitar")
