"""Checks that code, tests and documents of the program say one word for one thing, as docs/glossary.md has it.

The page's own half is checked beside its sources.
"""
import pathlib
import re
import unittest

TOP = pathlib.Path(__file__).resolve().parents[2]

# What must not be said, and what is said instead. Found at the beginning of a word, in any case, in names too.
BANNED = {
    r"patience": "...TimeoutMs, named for what is waited for",
    r"courtesy": "...DelayMs, named for what is put off",
    r"lookout": "watcher",
    r"precedence": "priority",
    r"outcome": "result",
    r"web engine\b": "Chromium",
    r"(?<!music-)recognition engine\b": "Audiveris",
    r"\bdesk\b": "viewport",
    r"colorDesk": "viewport",
    r"\bsheets?\b": "PDF page, score view",
    r"SheetPage": "PageExtractor, ExtractedPage",
}

# Names from elsewhere and texts that users see, in which such a word may stand.
ALLOWED = re.compile(
    r"PDFSheetView|test_pdf_sheet_view|TestPDFSheetView|[Ss]heet music|TAB-only sheets|style sheets?|musicSheet"
    r"|\"?sheets?/|tests/sheets|SHEETS|(engraved|assembled|assemble)_sheet\w*|sheet_folder|\bsheets\b(?=[ )}]|$)"
    r"|page_sheet|PageSheet")

FOLDERS = ["app", "benchmarks", "controller", "design", "desktop", "engine_host", "pdf", "tests", "views"]
SUFFIXES = {".cpp", ".h"}


def faults(text):
    """The words of a text that must not be said, with what is said instead."""
    spoken = ALLOWED.sub("", text)
    for pattern, instead in BANNED.items():
        for match in re.finditer(pattern, spoken, re.IGNORECASE):
            yield f"{match.group()}: say {instead}"


def files():
    for folder in FOLDERS:
        for path in sorted((TOP / folder).rglob("*")):
            # The page's tests in Chromium talk about the page, in its words.
            if path.suffix in SUFFIXES and path.parent != TOP / "tests" / "engine":
                yield path.relative_to(TOP).as_posix(), path


class Words(unittest.TestCase):
    def test_one_word_for_one_thing(self):
        found = []
        for name, path in files():
            for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
                found += [f"{name}:{number}: {fault}" for fault in faults(line)]
            found += [f"{name}: {fault}" for fault in faults(path.name)]
        self.assertFalse(found, "\n" + "\n".join(found))

    def test_what_must_not_be_said_is_noticed(self):
        for text in ("constexpr int patience = 2;", "class Lookout;", "SoundPrecedence", "// the web engine's own",
                     "the recognition engine", "auto *sheet = page;", "colors.desk", "Outcome<int> outcome;"):
            self.assertTrue(list(faults(text)), text)
        for text in ("PDFSheetView *view", "u\"Sheet music\"_s", "a style sheet", "EngineHost &host"):
            self.assertEqual(list(faults(text)), [], text)


if __name__ == "__main__":
    unittest.main()
