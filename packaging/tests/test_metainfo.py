#!/usr/bin/env python3
"""Checks what software centres read about Quaverly, as strictly as their own validator does."""

import pathlib
import re
import subprocess
import unittest
import xml.etree.ElementTree as ElementTree

PACKAGING = pathlib.Path(__file__).resolve().parents[1]
METAINFO = PACKAGING / "org.quaverly.Quaverly.metainfo.xml"
XML_LANG = "{http://www.w3.org/XML/1998/namespace}lang"
# The id is spelled as programs with a window are, and versions before 1.0 know the older name of "developer" only.
EXPECTED = {"cid-contains-uppercase-letter", "unknown-tag developer"}


class Metainfo(unittest.TestCase):
    def setUp(self):
        self.root = ElementTree.parse(METAINFO).getroot()

    def test_the_validator_has_nothing_to_say(self):
        told = subprocess.run(["appstreamcli", "validate", "--pedantic", "--no-net", "--no-color", METAINFO],
                              capture_output=True, text=True, check=False)
        said = [line for line in (told.stdout + told.stderr).splitlines() if re.match(r"[EWIP]: ", line)]
        unexpected = [line for line in said if not any(known in line for known in EXPECTED)]
        self.assertEqual((told.returncode, unexpected), (0, []), told.stdout + told.stderr)

    def test_it_says_who_makes_it_and_where_to_turn(self):
        self.assertTrue(self.root.find("developer").get("id"))
        self.assertTrue(self.root.find("developer/name").text)
        addresses = {url.get("type"): url.text for url in self.root.findall("url")}
        self.assertLessEqual({"homepage", "bugtracker", "help", "vcs-browser"}, set(addresses))
        for address in addresses.values():
            self.assertRegex(address, "^https://quaverly.org/")

    def test_everybody_calls_it_by_the_same_name(self):
        name = self.root.find("id").text
        self.assertEqual(METAINFO.name, f"{name}.metainfo.xml")
        self.assertEqual(self.root.find("launchable").text, f"{name}.desktop")
        entry = (PACKAGING / f"{name}.desktop").read_text(encoding="utf-8")
        self.assertIn(f"\nIcon={name}\n", entry)
        program = (PACKAGING.parent / "app/main.cpp").read_text(encoding="utf-8")
        self.assertIn(f'setDesktopFileName(u"{name}"_s)', program)

    def test_screenshots_have_captions_and_their_true_size(self):
        for screenshot in self.root.findall("screenshots/screenshot"):
            image = screenshot.find("image")
            self.assertTrue(screenshot.find("caption").text)
            picture = (PACKAGING.parent / "docs" / image.text.rsplit("/", 1)[1]).read_bytes()
            size = [int.from_bytes(picture[at:at + 4], "big") for at in (16, 20)]
            self.assertEqual([int(image.get("width")), int(image.get("height"))], size)

    def test_every_text_is_there_in_every_language(self):
        def count(language):
            return sum(element.get(XML_LANG) == language for element in self.root.iter())
        translatable = [element for tag in ("summary", "caption") for element in self.root.iter(tag)]
        translatable += self.root.find("description").iter("p")
        translatable += self.root.find("description").iter("li")
        in_english = sum(element.get(XML_LANG) is None for element in translatable)
        self.assertEqual((count("de"), count("fr")), (in_english, in_english))

    def test_there_is_a_colour_for_light_and_for_dark(self):
        schemes = {color.get("scheme_preference") for color in self.root.findall("branding/color")}
        self.assertEqual(schemes, {"light", "dark"})


if __name__ == "__main__":
    unittest.main()
