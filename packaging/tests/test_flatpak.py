#!/usr/bin/env python3
"""Checks the Flatpak manifest as far as that goes without a network: its shape, its sources and its permissions."""

import json
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

PACKAGING = pathlib.Path(__file__).resolve().parents[1]
TOP = PACKAGING.parent
MANIFEST = "org.quaverly.Quaverly.yml"


class Flatpak(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        # As a builder has it: with the sources that flatpak-sources wrote.
        with tempfile.TemporaryDirectory() as folder:
            packaging = pathlib.Path(folder, "packaging")
            packaging.mkdir()
            shutil.copy(PACKAGING / MANIFEST, packaging)
            cls.npm = subprocess.run([PACKAGING / "flatpak-sources", "https://registry.invalid"], capture_output=True,
                                     text=True, check=True).stdout
            (packaging / "npm-sources.json").write_text(cls.npm)
            shown = subprocess.run(["flatpak-builder", "--show-manifest", MANIFEST], cwd=packaging,
                                   capture_output=True, text=True, check=False)
        cls.complaints = (shown.returncode, shown.stderr)
        cls.manifest = json.loads(shown.stdout or "{}")

    def test_the_builder_understands_all_of_it(self):
        self.assertEqual(self.complaints, (0, ""))
        self.assertEqual(MANIFEST, self.manifest["id"] + ".yml")
        self.assertEqual(self.manifest["command"], "quaverly")
        self.assertGreaterEqual(float(self.manifest["runtime-version"]), 6.8)
        self.assertEqual(self.manifest["runtime-version"], self.manifest["base-version"])

    def test_it_may_do_what_it_needs_and_no_more(self):
        permissions = {argument for argument in self.manifest["finish-args"] if not argument.startswith("--env=")}
        self.assertEqual(permissions, {"--socket=wayland", "--socket=fallback-x11", "--share=ipc",
                                       "--socket=pulseaudio", "--device=dri",
                                       "--own-name=org.mpris.MediaPlayer2.quaverly"})

    def test_every_source_from_elsewhere_is_pinned(self):
        for module in self.manifest["modules"]:
            for source in module["sources"]:
                if "url" in source:
                    self.assertRegex(source["url"], "^https://")
                    self.assertTrue(re.fullmatch("[0-9a-f]{64}", source.get("sha256", ""))
                                    or re.fullmatch("[0-9a-f]{128}", source.get("sha512", "")), source)
                    self.assertNotIn("/", source.get("dest-filename", ""))

    def test_it_has_every_package_of_the_page(self):
        found = {source["dest"]: source["sha512"] for source in self.manifest["modules"][-1]["sources"]
                 if source.get("dest", "").startswith("npm/")}
        self.assertEqual(set(found), {"npm/node_modules/@coderline/alphatab", "npm/node_modules/lucide-static"})

    def test_modules_are_built_as_releases(self):
        for module in self.manifest["modules"]:
            self.assertEqual(module["buildsystem"], "cmake-ninja")
            self.assertIn("-DCMAKE_BUILD_TYPE=Release", module["config-opts"])

    def test_the_program_is_built_beside_its_sources(self):
        # The page is assembled in the build's web/, and the sources have a web/ of their own.
        self.assertTrue(self.manifest["modules"][-1]["builddir"])

    def test_no_registry_is_named_in_what_is_committed(self):
        self.assertNotIn("npm-sources.json", subprocess.run(
            ["git", "-c", "safe.directory=*", "ls-files"], cwd=PACKAGING, capture_output=True, text=True,
            check=True).stdout)


if __name__ == "__main__":
    unittest.main()
