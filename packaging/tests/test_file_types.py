#!/usr/bin/env python3
"""Checks that the desktop's files agree on the types Quaverly opens, and that the desktop can read their definitions."""

import configparser
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
import zipfile

PACKAGING = pathlib.Path(__file__).resolve().parent.parent
MIME = "{http://www.freedesktop.org/standards/shared-mime-info}"
# .xml is not claimed: most files of that name are no scores.
CLAIMED = {"*.gp", "*.gp3", "*.gp4", "*.gp5", "*.gpx", "*.mxl", "*.musicxml"}
# A type that every desktop knows without being told.
KNOWN_EVERYWHERE = {"application/pdf"}


def types_in_desktop_entry():
    entry = configparser.ConfigParser(interpolation=None)
    entry.read(PACKAGING / "org.quaverly.Quaverly.desktop", encoding="utf-8")
    return [name for name in entry["Desktop Entry"]["MimeType"].split(";") if name]


def types_in_metainfo():
    root = ElementTree.parse(PACKAGING / "org.quaverly.Quaverly.metainfo.xml").getroot()
    return [element.text for element in root.findall("provides/mediatype")]


def install(folder):
    """Our definitions as a package installs them, beside the system's; what the desktop said about them."""
    mime = pathlib.Path(folder, "mime")
    packages = mime / "packages"
    packages.mkdir(parents=True)
    shutil.copy(PACKAGING / "quaverly-mime.xml", packages / "org.quaverly.Quaverly.xml")
    return subprocess.run(["update-mime-database", "-V", mime], env=dict(os.environ, XDG_DATA_HOME=str(folder)),
                          capture_output=True, text=True, check=False)


class FileTypes(unittest.TestCase):
    def setUp(self):
        self.definitions = ElementTree.parse(PACKAGING / "quaverly-mime.xml").getroot()

    def test_the_desktop_entry_and_the_metainfo_name_the_same_types(self):
        self.assertEqual(types_in_desktop_entry(), types_in_metainfo())

    def test_every_type_named_is_defined(self):
        defined = {element.get("type") for element in self.definitions}
        self.assertEqual(set(types_in_desktop_entry()), defined | KNOWN_EVERYWHERE)

    def test_the_extensions_claimed_are_those_that_open(self):
        globs = [element.get("pattern") for element in self.definitions.iter(MIME + "glob")]
        self.assertEqual(sorted(globs), sorted(CLAIMED))

    def test_the_desktop_accepts_the_definitions(self):
        with tempfile.TemporaryDirectory() as folder:
            made = install(folder)
            self.assertEqual((made.returncode, made.stderr), (0, ""))
            magic = pathlib.Path(folder, "mime", "magic").read_bytes()
            self.assertIn(b"FICHIER GUITAR PRO v", magic)


class WhatFilesAre(unittest.TestCase):
    """What the desktop takes a file for, asked as a file manager does before it starts a program."""

    @classmethod
    def setUpClass(cls):
        cls.room = tempfile.TemporaryDirectory()
        cls.folder = pathlib.Path(cls.room.name)
        cls.scores = pathlib.Path(os.environ["QUAVERLY_SCORES"])
        install(cls.folder / "data")

    @classmethod
    def tearDownClass(cls):
        cls.room.cleanup()

    def told(self, path, attribute):
        # Only what Debian itself knows counts beside our own definitions, not what other programs brought.
        system = self.folder / "system" / "mime" / "packages"
        if not system.exists():
            system.mkdir(parents=True)
            shutil.copy("/usr/share/mime/packages/freedesktop.org.xml", system)
            subprocess.run(["update-mime-database", system.parent], capture_output=True, check=True)
        surroundings = dict(os.environ, LC_ALL="C.UTF-8", XDG_DATA_HOME=str(self.folder / "data"),
                            XDG_DATA_DIRS=str(self.folder / "system"))
        said = subprocess.run(["gio", "info", "-a", attribute, path], env=surroundings, capture_output=True, text=True,
                              check=True)
        return said.stdout.split(attribute + ":")[1].splitlines()[0].strip()

    def type_of(self, path):
        return self.told(path, "standard::content-type")

    def made(self, name, content):
        path = self.folder / name
        path.write_bytes(content)
        return path

    def test_scores_are_scores(self):
        expected = {"gp3": "application/x-guitar-pro", "gp4": "application/x-guitar-pro",
                    "gp5": "application/x-guitar-pro", "gpx": "application/x-guitar-pro-6",
                    "gp": "application/x-guitar-pro-7", "mxl": "application/vnd.recordare.musicxml",
                    "musicxml": "application/vnd.recordare.musicxml+xml"}
        found = {kind: self.type_of(self.scores / f"ferry.{kind}") for kind in expected}
        self.assertEqual(found, expected)

    def test_scores_are_known_without_their_extension(self):
        for kind, expected in {"gp5": "application/x-guitar-pro", "gpx": "application/x-guitar-pro-6",
                               "gp": "application/x-guitar-pro-7",
                               "musicxml": "application/vnd.recordare.musicxml+xml"}.items():
            copy = self.made(f"score-{kind}", (self.scores / f"ferry.{kind}").read_bytes())
            self.assertEqual(self.type_of(copy), expected, kind)
        uncompressed = self.made("plain.gpx", b"BCFS" + bytes(200))
        self.assertEqual(self.type_of(uncompressed), "application/x-guitar-pro-6")

    def test_scores_look_like_scores(self):
        for kind, icon in {"gp5": "guitar-pro", "gpx": "guitar-pro", "gp": "guitar-pro", "mxl": "musicxml",
                           "musicxml": "musicxml"}.items():
            names = self.told(self.scores / f"ferry.{kind}", "standard::icon").split(", ")
            self.assertIn(f"org.quaverly.Quaverly-{icon}", names, kind)

    def test_plotting_scripts_and_gps_tracks_keep_their_types(self):
        plot = self.made("plot.gp", b'# the tides\nset terminal png\nplot "tides.dat" using 1:2 with lines\n')
        bare_plot = self.made("bare.gp", b"plot sin(x)\n")
        track = self.made("track.gpx", b'<?xml version="1.0" encoding="UTF-8"?>\n<gpx version="1.1" creator="us" '
                                       b'xmlns="http://www.topografix.com/GPX/1/1"><trk><trkseg/></trk></gpx>\n')
        self.assertEqual(self.type_of(plot), "application/x-gnuplot")
        self.assertEqual(self.type_of(bare_plot), "application/x-gnuplot")
        self.assertEqual(self.type_of(track), "application/gpx+xml")

    def test_other_archives_and_other_xml_stay_what_they_are(self):
        with zipfile.ZipFile(self.folder / "photos.zip", "w") as archive:
            archive.writestr("photo.txt", "no score")
        feed = self.made("feed.xml", b'<?xml version="1.0"?><something/>')
        self.assertEqual(self.type_of(self.folder / "photos.zip"), "application/zip")
        self.assertEqual(self.type_of(feed), "application/xml")


if __name__ == "__main__":
    unittest.main()
