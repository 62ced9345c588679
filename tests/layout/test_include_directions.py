"""Includes go down the order of the folders only, so that no folder knows those above it and there is no circle.

usage: python3 -m unittest test_include_directions
"""
import pathlib
import re
import unittest

TOP = pathlib.Path(__file__).resolve().parents[2]

# Each folder of the program, from the top down, with the folders that it may include from.
MAY_INCLUDE = {
    "app": {"app/menus", "views", "desktop", "translations", "controller", "design", "engine_host", "engine_host/bridge", "engine_host/process"},
    "app/menus": {"app/trainer", "views", "controller", "design", "engine_host/bridge"},
    "app/trainer": {"controller", "design", "engine_host/bridge"},
    "views": {"pdf/viewing", "controller", "design", "engine_host", "engine_host/bridge"},
    "desktop": {"controller", "engine_host/bridge"},
    "pdf/viewing": {"controller", "design", "pdf/conversion"},
    "controller": {"engine_host", "engine_host/bridge", "engine_host/process", "engine_host/serving", "pdf/conversion"},
    "design": set(),
    "translations": set(),
    "pdf/conversion": {"pdf/process"},
    "pdf/drawing": {"pdf/process"},
    "pdf/guard": set(),
    "pdf/process": set(),
    "engine_host": {"engine_host/bridge", "engine_host/process", "engine_host/serving"},
    "engine_host/bridge": set(),
    "engine_host/process": set(),
    "engine_host/serving": set(),
}

# Beside the program: these may include from all of it, and it from none of them.
BESIDE = {"tests", "benchmarks"}


def folder_of(path):
    return str(pathlib.PurePosixPath(path).parent)


def top_of(path):
    return pathlib.PurePosixPath(path).parts[0]


def included(source):
    """The files of the project that a source includes, as written: from the top of the tree."""
    return re.findall(r'^\s*#\s*include\s+"([^"]+)"', source, re.MULTILINE)


def wrong(path, include):
    """Why a file may not include another, or None where it may. Both paths start at the top of the tree."""
    if include.endswith(".moc") and "/" not in include:
        return None  # what moc makes of the file itself
    if not (TOP / include).is_file():
        return f'{path}: "{include}" is not written from the top of the tree'
    if top_of(path) in BESIDE or folder_of(path) == folder_of(include):
        return None
    if folder_of(include) in MAY_INCLUDE.get(folder_of(path), set()):
        return None
    return f'{path}: {folder_of(path)} may not include "{include}"'


def sources(folders):
    for folder in folders:
        for suffix in ("*.cpp", "*.h"):
            yield from sorted((TOP / folder).rglob(suffix))


class IncludeDirections(unittest.TestCase):
    def test_order_has_no_circle(self):
        folders = list(MAY_INCLUDE)
        for place, folder in enumerate(folders):
            self.assertLessEqual(MAY_INCLUDE[folder], set(folders[place + 1:]), folder)

    def test_includes_go_down(self):
        faults = []
        seen = set()
        for file in sources({top_of(folder) for folder in MAY_INCLUDE} | BESIDE):
            path = file.relative_to(TOP).as_posix()
            seen.add(folder_of(path))
            faults += filter(None, (wrong(path, include) for include in included(file.read_text(encoding="utf-8"))))
        self.assertEqual(faults, [])
        self.assertEqual({folder for folder in seen if top_of(folder) not in BESIDE}, set(MAY_INCLUDE),
                         "each folder with code has its place in the order")

    def test_what_goes_up_is_noticed(self):
        self.assertIn("may not include", wrong("engine_host/WebEngineHost.cpp", "controller/TrackInfo.h"))
        self.assertIn("may not include", wrong("pdf/conversion/PDFConverter.cpp", "views/Toolbar.h"))
        self.assertIn("may not include", wrong("design/Button.cpp", "views/Toolbar.h"))
        self.assertIn("may not include", wrong("controller/DefaultsStore.cpp", "tests/support/TestSurroundings.h"))
        self.assertIn("top of the tree", wrong("views/Toolbar.cpp", "Toolbar.h"))
        self.assertIsNone(wrong("views/Toolbar.cpp", "design/Button.h"))


if __name__ == "__main__":
    unittest.main()
