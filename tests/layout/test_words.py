"""Checks that code, tests and comments say one word for one thing, as docs/glossary.md has it, and that documents keep
to the width of the code."""
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

# The same for the page, its tests in Node and in Chromium, and its tools.
BANNED_IN_PAGE = {
    r"patience": "...TimeoutMs, named for what is waited for",
    r"courtesy": "...DelayMs, named for what is put off",
    r"glideTime": "glideMs",
    r"\bdesk\b": "viewport",
    r"\bpaper\b": "score page",
    r"\bheading": "score header",
    r"[.#]sheet\b|getElementById\(.sheet|\"sheet\"": "notation, score view",
    r"[.#]drawing\b|\bdrawings\b|\b(?:a|the|one|another|whichever|each|first) drawing\b(?! (?:worker|time))":
        "renderer, render pass, renderId",
    r"markedBar|\bmark on the score": "cursor",
    r"tidy": "idle garbage collection",
    r"loudspeaker": "audio output",
    r"timeline": "tempo map",
    r"recording": "backing track",
    r"rehears": "warm-up",
    r"hearing": "output latency",
    r"heard(?:Time|Clock|Place|Frame)": "presentation-time map, playback clock, presented",
    r"\battacks?\b": "onset",
    r"\bborders?\b": "boundary",
    r"\bpieces?\b|[.#]pieces?\b": "layout batch, overlap-add segment, chunk",
    r"#places?\b": "position, frame, tick, anchor",
    r"\bengine\b": "alphaTab, Chromium, api",
    r"#(?:hear|tell|listen|ask|wish)\b": "receive, post",
    r"turnOfSound|#turn\b": "audio callback, render quantum, generation",
    r"(?:16-bit|16 bit) words|words of 16 bit": "16-bit samples",
    r"\b3276[78]\b": "fullScale",
}

# Words of alphaTab, of file formats and of CSS, the envelope of a click, numbers of tests, and texts that users see.
ALLOWED_IN_PAGE = re.compile(
    r"core\.engine|tests/engine|The recording cannot be played|facts\.recording|\"recording\"|Assets/recording"
    r"|\"rehearsal\"|no piece has|pieces that guitarists|\* piece \(|same piece|recipe\.attack|\battack: (?:0|number)"
    r"|border(?:-\w+)?:|box-sizing: border-box|[Rr]ecordings?\.h|TestPageRecordings|test_page_recordings|isRecording|recordings\+\+"
    r"|let recordings|isRecording|One of the recordings that are encoded"
    r"|200 \+ 32768|coarse = 32768|- 32768\)|fullScale = 32767|-?32767(?=[,)])|/ 32767\)|\* 32767\)\)"
    r"|fftSize = 32768|Float32Array\(32768\)|QUAVERLY_TEST_RECORDINGS|\w*RECORDINGS?\w*")

PAGE = [("web/src", {".js"}), ("web/tests", {".mjs"}), ("web/tools", {".mjs", ".cpp"}), ("web", {".css", ".html"}),
        ("tests/engine", {".cpp", ".h"})]

FOLDERS = ["app", "benchmarks", "controller", "design", "desktop", "engine_host", "pdf", "tests", "translations",
           "views"]
SUFFIXES = {".cpp", ".h"}


def faults(text, banned=None, allowed=ALLOWED):
    """The words of a text that must not be said, with what is said instead."""
    spoken = allowed.sub("", text)
    for pattern, instead in (BANNED if banned is None else banned).items():
        for match in re.finditer(pattern, spoken, re.IGNORECASE):
            yield f"{match.group()}: say {instead}"


def files():
    for folder in FOLDERS:
        for path in sorted((TOP / folder).rglob("*")):
            # The page's tests in Chromium talk about the page, in its words.
            if path.suffix in SUFFIXES and path.parent != TOP / "tests" / "engine":
                yield path.relative_to(TOP).as_posix(), path


def page_files():
    for folder, suffixes in PAGE:
        paths = (TOP / folder).iterdir() if folder == "web" else (TOP / folder).rglob("*")
        for path in sorted(paths):
            if path.suffix in suffixes:
                yield path.relative_to(TOP).as_posix(), path


def page_faults(text):
    """The same for a text of the page."""
    return faults(text, BANNED_IN_PAGE, ALLOWED_IN_PAGE)


def found_in(paths, faults_of):
    """All faults in files and in their names."""
    found = []
    for name, path in paths:
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            found += [f"{name}:{number}: {fault}" for fault in faults_of(line)]
        found += [f"{name}: {fault}" for fault in faults_of(path.name)]
    return "\n".join(found)


WIDTH = 120


def documents():
    for pattern in ("*.md", "docs/**/*.md", "design/**/*.md", "web/*.md", "packaging/**/*.md", "benchmarks/*.md"):
        for path in sorted(TOP.glob(pattern)):
            if "node_modules" not in path.parts:
                yield path.relative_to(TOP).as_posix(), path


def too_wide(text):
    """The numbers of lines that are longer than WIDTH. The row of a table cannot be broken."""
    return [number for number, line in enumerate(text.splitlines(), 1) if len(line) > WIDTH and line[0] != "|"]


class Documents(unittest.TestCase):
    def test_no_line_is_too_wide(self):
        found = [f"{name}:{number}" for name, path in documents() for number in too_wide(path.read_text(encoding="utf-8"))]
        self.assertEqual(found, [])

    def test_what_is_too_wide_is_noticed(self):
        self.assertEqual(too_wide("short\n" + "x" * 121 + "\n| " + "x" * 200 + "\n" + "\u00b7" * 120), [2])


class Words(unittest.TestCase):
    maxDiff = None

    def test_one_word_for_one_thing(self):
        self.assertEqual(found_in(files(), faults), "")

    def test_one_word_for_one_thing_in_the_page(self):
        self.assertEqual(found_in(page_files(), page_faults), "")

    def test_what_must_not_be_said_is_noticed(self):
        for text in ("constexpr int patience = 2;", "class Lookout;", "SoundPrecedence", "// the web engine's own",
                     "the recognition engine", "auto *sheet = page;", "colors.desk", "Outcome<int> outcome;"):
            self.assertTrue(list(faults(text)), text)
        for text in ("PDFSheetView *view", "u\"Sheet music\"_s", "a style sheet", "EngineHost &host"):
            self.assertEqual(list(faults(text)), [], text)

    def test_what_must_not_be_said_in_the_page_is_noticed(self):
        for text in ("const desk = 1;", "#paper {", "this.#sheet", "api.drawing.read()", "// of another drawing",
                     "tidying.js", "the loudspeaker", "new Timeline()", "recordingPlayer", "warm-up or rehearsal",
                     "hearingDelay", "this.#heardTime", "findAttacks = attacks", "the borders of parts", "piece by piece",
                     "this.#place", "the engine's own", "this.#tell(", "#turn = 0", "16-bit words", "* 32767;"):
            self.assertTrue(list(page_faults(text)), text)
        for text in ("settings.core.engine = 1", "  border-radius: 3px;", "The recording cannot be played", "viewport",
                     "  attack: 0.002,", "drawing takes longer", "in its place", "backing track"):
            self.assertEqual(list(page_faults(text)), [], text)


if __name__ == "__main__":
    unittest.main()
