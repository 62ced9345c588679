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

PACKAGING = pathlib.Path(__file__).resolve().parent.parent
MIME = "{http://www.freedesktop.org/standards/shared-mime-info}"
# .xml is not claimed: most files of that name are no scores.
CLAIMED = {"*.gp", "*.gp3", "*.gp4", "*.gp5", "*.gpx", "*.mxl", "*.musicxml"}
# A type that every desktop knows without being told.
KNOWN_EVERYWHERE = {"application/pdf"}


def types_in_desktop_entry():
    entry = configparser.ConfigParser(interpolation=None)
    entry.read(PACKAGING / "quaverly.desktop", encoding="utf-8")
    return [name for name in entry["Desktop Entry"]["MimeType"].split(";") if name]


def types_in_metainfo():
    root = ElementTree.parse(PACKAGING / "quaverly.metainfo.xml").getroot()
    return [element.text for element in root.findall("provides/mediatype")]


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
            mime = pathlib.Path(folder, "mime")
            packages = mime / "packages"
            packages.mkdir(parents=True)
            shutil.copy(PACKAGING / "quaverly-mime.xml", packages / "quaverly.xml")
            made = subprocess.run(["update-mime-database", "-V", mime], env=dict(os.environ, XDG_DATA_HOME=folder),
                                  capture_output=True, text=True, check=False)
            self.assertEqual((made.returncode, made.stderr), (0, ""))
            magic = (mime / "magic").read_bytes()
            self.assertIn(b"FICHIER GUITAR PRO v", magic)


if __name__ == "__main__":
    unittest.main()
