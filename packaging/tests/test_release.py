#!/usr/bin/env python3
"""Makes releases of copies of this repository, without the checks and the package that take long."""

import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

TOP = pathlib.Path(__file__).resolve().parents[2]
METAINFO = "packaging/org.quaverly.Quaverly.metainfo.xml"
VERSION = "987.6.5"


class Release(unittest.TestCase):
    def setUp(self):
        room = tempfile.TemporaryDirectory()
        self.addCleanup(room.cleanup)
        self.top = pathlib.Path(room.name)
        # What a release reads and writes, and what the checks on it read.
        for name in ["CMakeLists.txt", "CHANGELOG.md", "README.md", "release", "app/main.cpp", "docs", "packaging",
                     *(f"{folder}/{file}" for folder in ("web", "design/icons")
                       for file in ("package.json", "package-lock.json"))]:
            target = self.top / name
            target.parent.mkdir(parents=True, exist_ok=True)
            (shutil.copytree if (TOP / name).is_dir() else shutil.copy)(TOP / name, target)
        self.git("init", "-q")
        self.git("config", "user.name", "Somebody")
        self.git("config", "user.email", "somebody@quaverly.org")
        self.change("CHANGELOG.md", r"^## .*", "## 987.0.0, not released yet\n\n- Plays <loud> & `soft`,\n"
                    "  on two lines.\n- Stays.\n\n## 0.0.1, 2026-01-01")
        self.change(METAINFO, r"<releases>", '<releases>\n    <release version="987.0.0" date="2026-01-02" '
                    'type="development">\n      <description>\n        <p>Not yet.</p>\n      </description>\n'
                    '    </release>\n    <release version="0.0.1" date="2026-01-01"/>')
        self.commit()

    def git(self, *arguments):
        return subprocess.run(["git", *arguments], cwd=self.top, capture_output=True, text=True, check=True).stdout

    def change(self, name, pattern, text):
        content = (self.top / name).read_text(encoding="utf-8")
        changed = re.sub(pattern, text.replace("\\", r"\\"), content, count=1, flags=re.MULTILINE)
        self.assertNotEqual(content, changed)
        (self.top / name).write_text(changed, encoding="utf-8")

    def commit(self):
        self.git("add", "-A")
        self.git("commit", "-q", "-m", "all of it")

    def release(self, *arguments):
        return subprocess.run(["./release", "--no-tests", "--no-package", *arguments], cwd=self.top,
                              capture_output=True, text=True, check=False)

    def assert_refused(self, arguments, reason):
        before = self.git("log", "--oneline"), self.git("status", "--porcelain")
        refused = self.release(*arguments)
        self.assertNotEqual(refused.returncode, 0)
        self.assertIn(reason, refused.stderr)
        self.assertEqual((self.git("log", "--oneline"), self.git("status", "--porcelain")), before)
        self.assertEqual(self.git("tag"), "")

    def test_a_release_is_committed_and_tagged(self):
        made = self.release(VERSION)
        self.assertEqual(made.returncode, 0, made.stderr)
        self.assertEqual(self.git("tag"), f"v{VERSION}\n")
        self.assertEqual(self.git("rev-parse", f"v{VERSION}^{{commit}}"), self.git("rev-parse", "HEAD"))
        self.assertEqual(self.git("status", "--porcelain"), "")
        changed = self.git("diff", "--name-only", "HEAD~1").split()
        self.assertEqual(changed, ["CHANGELOG.md", "CMakeLists.txt", METAINFO])
        self.assertIn(f"project(quaverly VERSION {VERSION} ", (self.top / "CMakeLists.txt").read_text())

    def test_the_metainfo_tells_what_is_new(self):
        self.release(VERSION)
        content = (self.top / METAINFO).read_text(encoding="utf-8")
        self.assertNotIn("development", content.split("<releases>")[1].split("0.0.1")[0])
        self.assertIn("<li>Plays &lt;loud&gt; &amp; soft, on two lines.</li>\n          <li>Stays.</li>", content)
        self.assertIn('<release version="0.0.1" date="2026-01-01"/>', content)
        for test in ("test_version.py", "test_metainfo.py"):
            passed = subprocess.run(["python3", "-B", self.top / "packaging/tests" / test], capture_output=True,
                                    text=True, check=False)
            self.assertEqual(passed.returncode, 0, passed.stderr)

    def test_a_release_says_what_is_wrong_and_changes_nothing(self):
        self.assert_refused(["0.0.0"], "older than")
        self.assert_refused(["1.2"], "Usage")
        (self.top / "README.md").write_text("changed")
        self.assert_refused([VERSION], "not committed")

    def test_a_release_needs_something_new(self):
        self.change("CHANGELOG.md", r"not released yet", "2026-01-02")
        self.commit()
        self.assert_refused([VERSION], "what is new is missing")
        self.change("CHANGELOG.md", r"^## .*", "## 987.7.0, not released yet\n\n## 987.0.0, 2026-01-02")
        self.commit()
        self.assert_refused([VERSION], "says nothing")

    def test_there_is_one_release_of_a_version(self):
        self.git("tag", f"v{VERSION}")
        refused = self.release(VERSION)
        self.assertIn("already", refused.stderr)
        self.assertNotEqual(refused.returncode, 0)


if __name__ == "__main__":
    unittest.main()
