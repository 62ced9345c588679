#!/usr/bin/env python3
"""Runs each fuzzer for some minutes, on one processor, one after the other.

What they have learned is kept in corpus/ beside them, and an input over which one ends in faults/. They go on from
small inputs that stand here, and from the project's own scores and sheets where build/dev has them.
"""
import argparse
import pathlib
import re
import shutil
import subprocess
import sys

TOP = pathlib.Path(__file__).resolve().parents[2]

# A result of Audiveris, or another small input; and from which of the project's files a fuzzer goes on beside it.
NOTE = "<note><pitch><step>C</step><octave>4</octave></pitch><duration>4</duration></note>"
SHIFT = '<direction><direction-type><octave-shift type="down" size="8"/></direction-type></direction>'
SCORE = ('<?xml version="1.0" encoding="{}"?><!DOCTYPE score-partwise><!-- a --><score-partwise version="4.0"><part-list>'
         '<score-part id="P1"><part-name>Ä &amp; "B"</part-name></score-part></part-list><part id="P1">'
         '<measure number="1">' + SHIFT + NOTE + "</measure></part></score-partwise>")
SEEDS = {
    "music_xml": [SCORE.format("UTF-8").encode(), SCORE.format("ISO-8859-1").encode("latin1"),
                  SCORE.format("UTF-16").encode("utf16"),
                  b"\x1e".join([SCORE.format("UTF-8").encode()] * 2)],
    "recognition_output": [b"\x20INFO  [sheet#1] | STEP GRID and BEAMS \n\xffjava.lang.OutOfMemoryError\n"],
    "served_paths": [b"src/a%20b.js", b"../secret", b"%2e%2e/secret", b"index.html?a#b", b"//host/%00", "Ä/谱.gp5".encode()],
    "page_messages": [
        b'[{"type":"ready"},{"type":"playerReady"},{"type":"score","title":"A\\u0000","artist":"B","hasBackingTrack":true,'
        b'"tracks":[{"index":0,"name":"Lead"},{"index":-1.5}]},{"type":"position","currentTime":1e308,"endTime":2e308},'
        b'{"type":"state","playing":true},{"type":"error","message":[1,{"a":null}]},{"type":"gpData","data":"eA==",'
        b'"title":"A"},{"type":"rendered"},{"sections":[{"start":1,"title":"Intro"}],"start":1,"end":2,"startBar":1,'
        b'"startTick":0,"endBar":2,"endTick":-1}]'],
    "settings": [
        b'{"pdfPagesAcross":3,"metronomeVolume":0.5,"metronomeSound":"beep","metronomeAccent":true,"metronomeMode":"bar",'
        b'"recentFiles":["/tmp","/a"]}',
        b'{"on":true,"scores":{"a":{"left":1,"tempoPercent":75,"zoom":1,"position":3,"looping":true,"range":{"startBar":1,'
        b'"startTick":0,"endBar":2,"endTick":-1},"tracks":[{"visible":true,"mute":false,"solo":true,"volume":0.5}]}}}'],
}
FROM = {"result_files": "scores/*.mxl", "page_boxes": "sheets/*.pdf"}


def seed(name, corpus, builds):
    corpus.mkdir(parents=True, exist_ok=True)
    for number, data in enumerate(SEEDS.get(name, [])):
        (corpus / f"seed-{number}").write_bytes(data)
    for build in builds:
        for path in sorted((build / "tests").glob(FROM.get(name, "none/*")))[:8]:
            shutil.copy(path, corpus / path.name)


def run(program, folder, seconds, builds):
    """How many inputs were tried, and those over which the fuzzer ended."""
    name = program.name.removeprefix("fuzz_")
    corpus, faults = folder / "corpus" / name, folder / "faults"
    seed(name, corpus, builds)
    faults.mkdir(exist_ok=True)
    # A page of a large PDF needs memory; what takes longer than 20 s counts as endless.
    command = [program, corpus, f"-max_total_time={seconds}", "-timeout=20", "-rss_limit_mb=3000", "-print_final_stats=1",
               "-max_len=65536", f"-artifact_prefix={faults}/{name}-"]
    before = set(faults.iterdir())
    with open(folder / f"{name}.log", "w+", errors="replace") as log:
        subprocess.run(command, stdout=log, stderr=log, check=False, env={"QT_QPA_PLATFORM": "offscreen",
                       "ASAN_OPTIONS": "detect_leaks=0", "UBSAN_OPTIONS": "halt_on_error=1:print_stacktrace=1"})
        log.seek(0)
        said = log.read()
    count = re.search(r"number_of_executed_units: *(\d+)", said)
    tried = count.group(1) if count else (re.findall(r"^#(\d+)", said, re.MULTILINE) or ["0"])[-1]
    found = sorted(set(faults.iterdir()) - before)
    print(f"{name}: {tried} inputs, {len(found)} faults{''.join(f'{chr(10)}  {path}' for path in found)}", flush=True)
    return found


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("minutes", nargs="?", type=float, default=5, help="for each fuzzer (else 5)")
    parser.add_argument("names", nargs="*", help="of the fuzzers (else all)")
    parser.add_argument("--build", type=pathlib.Path, default=TOP / "build" / "fuzz")
    chosen = parser.parse_args()
    folder = chosen.build / "fuzz"
    builds = [TOP / "build" / "dev", chosen.build]
    programs = sorted(path for path in folder.glob("fuzz_*") if path.is_file())
    wanted = [path for path in programs if not chosen.names or path.name.removeprefix("fuzz_") in chosen.names]
    if not wanted:
        print("There is no fuzzer of that name.")
        return 1
    faults = [fault for program in wanted for fault in run(program, folder, int(60 * chosen.minutes), builds)]
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
