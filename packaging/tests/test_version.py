#!/usr/bin/env python3
"""Checks that the version is in one place, CMakeLists.txt, and that what tells of releases agrees with it."""

import json
import os
import pathlib
import re
import subprocess
import unittest
import xml.etree.ElementTree as ElementTree

TOP = pathlib.Path(__file__).resolve().parents[2]
METAINFO = TOP / "packaging" / "org.quaverly.Quaverly.metainfo.xml"


def version():
    return re.search(r"project\(quaverly VERSION ([0-9.]+) ", (TOP / "CMakeLists.txt").read_text())[1]


def newest_change():
    return next(line[3:] for line in (TOP / "CHANGELOG.md").read_text().splitlines() if line.startswith("## "))


class Version(unittest.TestCase):
    def test_the_changelog_begins_with_it(self):
        self.assertRegex(newest_change(), rf"^{re.escape(version())}, (not released yet|\d{{4}}-\d\d-\d\d)$")

    def test_the_metainfo_begins_with_it(self):
        release = ElementTree.parse(METAINFO).getroot().find("releases/release")
        self.assertEqual(release.get("version"), version())
        released = "not released" not in newest_change()
        self.assertEqual(release.get("type", "stable"), "stable" if released else "development")

    def test_the_npm_packages_have_none_of_their_own(self):
        for folder in ("web", "design/icons"):
            for name in ("package.json", "package-lock.json"):
                self.assertNotIn("version", json.loads((TOP / folder / name).read_text()), f"{folder}/{name}")

    def test_debian_reads_the_changelog(self):
        made = subprocess.run([TOP / "packaging/debian/make-changelog", TOP / "CHANGELOG.md", "9.8.7+deb12",
                               "Somebody <somebody@quaverly.org>"], capture_output=True, check=True,
                              env=dict(os.environ, SOURCE_DATE_EPOCH="1795350000"))
        self.assertLessEqual(max(map(len, made.stdout.decode().splitlines())), 80)
        told = subprocess.run(["dpkg-parsechangelog", "-l-", "--all", "--format", "rfc822"], input=made.stdout,
                              capture_output=True, check=True)
        self.assertEqual(told.stderr, b"")
        entries = told.stdout.decode()
        self.assertTrue(entries.startswith("Source: quaverly\nVersion: 9.8.7+deb12\n"), entries[:200])
        self.assertEqual(entries.count("\nVersion: "), sum(
            line.startswith("## ") for line in (TOP / "CHANGELOG.md").read_text().splitlines()))


if __name__ == "__main__":
    unittest.main()
