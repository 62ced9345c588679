#!/usr/bin/env python3
# bench: --peers guitar-pro [FOLDER]...   notes of Guitar Pro 3 to 5 files beside those of PyGuitarPro
"""Compares where Quaverly has the notes of Guitar Pro 3, 4 and 5 files with where the Python package PyGuitarPro has them.

A note agrees when track, bar, voice, string, fret and onset are the same. The files are those in the folders, and made ones:
the demo score, and a song with something of everything that these files hold. The package is installed into an environment
of its own in build/.
"""

import collections
import json
import os
import pathlib
import subprocess
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent
WORK = TOP / "build" / "fidelity"
READING = TOP / "benchmarks" / "reading"
BUILD = pathlib.Path(os.environ["QUAVERLY_PROGRAM"]).parent
ALPHATAB = BUILD / "page-packages/node_modules/@coderline/alphatab/dist"
BOUND = 0.999
# Either rounds the lengths of tuplets to whole ticks as it goes on.
TOLERANCE_TICKS = 4
SHOWN = 3


def peer_python():
    """Returns a Python that has PyGuitarPro, installed first where it is not there."""
    environment = WORK / "guitar-pro"
    python = environment / "bin" / "python"
    if not python.exists():
        subprocess.run([sys.executable, "-m", "venv", environment], check=True)
    subprocess.run([python, "-m", "pip", "install", "--quiet", "--no-deps", "-r", READING / "guitar-pro.txt"], check=True)
    return python


def made_files():
    """Returns the files that are made up here."""
    folder = WORK / "made"
    folder.mkdir(parents=True, exist_ok=True)
    maker = TOP / "tests" / "scores" / "make-scores.mjs"
    demo = BUILD / "web" / "demo" / "demo.gp"
    subprocess.run(["node", maker, ALPHATAB / "alphaTab.js", demo, folder], check=True)
    subprocess.run(["node", READING / "make-guitar-pro.mjs", folder], check=True)
    return guitar_pro_files(folder)


def guitar_pro_files(path):
    files = sorted(path.rglob("*")) if path.is_dir() else [path]
    return [file for file in files if file.suffix.lower() in (".gp3", ".gp4", ".gp5")]


def answers(command, paths):
    told = subprocess.run(command, input="\n".join(map(str, paths)), capture_output=True, text=True, check=True)
    return [json.loads(line) for line in told.stdout.splitlines()]


def unmatched(notes, others):
    """Returns the notes that are not among the others, each of which is taken once."""
    onsets = collections.defaultdict(list)
    for *place, onset in others:
        onsets[tuple(place)].append(onset)
    missing = []
    for *place, onset in notes:
        own = onsets[tuple(place)]
        found = next((one for one in own if abs(one - onset) <= TOLERANCE_TICKS), None)
        if found is None:
            missing.append((*place, onset))
        else:
            own.remove(found)
    return missing


def compare(ours, theirs):
    """Returns what agrees, how many notes either has at most, and lines about the rest."""
    agreeing = total = 0
    lines = []
    for kind, width in (("notes", 6), ("graces", 5)):
        # Grace notes have no onset of their own.
        own, peer = ([note if width == 6 else [*note, 0] for note in answer.get(kind, [])] for answer in (ours, theirs))
        missing, extra = unmatched(peer, own), unmatched(own, peer)
        most = max(len(own), len(peer))
        agreeing += most - max(len(missing), len(extra))
        total += most
        for title, notes in (("missing", missing), ("beyond", extra)):
            if notes:
                lines.append(f"    {len(notes)} {kind} {title}: {', '.join(map(str, notes[:SHOWN]))}")
    return agreeing, total, lines


def main():
    given = [argument for argument in sys.argv[1:] if argument != "--peers"]
    paths = made_files() + [file for name in given for file in guitar_pro_files(pathlib.Path(name).resolve())]
    ours = answers(["node", READING / "fretted.mjs", ALPHATAB / "alphaTab.min.js"], paths)
    theirs = answers([peer_python(), READING / "fretted.py"], paths)
    print(" agree  notes  file (track, bar, voice, string, fret, onset in ticks)")
    agreeing = total = read = 0
    for path, own, peer in zip(paths, ours, theirs):
        if "problem" in peer:
            print(f"PyGuitarPro has no answer: {path.name} ({peer['problem']})")
            continue
        read += 1
        file_agreeing, file_total, lines = compare(own, peer)
        agreeing += file_agreeing
        total += file_total
        share = 100 * file_agreeing / max(1, file_total)
        print("\n".join([f"{share:6.2f} {file_total:6}  {path.name}  {own.get('problem', '')}".rstrip(), *lines]))
    share = agreeing / max(1, total)
    verdict = "as it should be" if share >= BOUND else "too few"
    print(f"\n{agreeing} of {total} notes in {read} files agree ({100 * share:.3f} %, bound {100 * BOUND} %): {verdict}")
    return 0 if share >= BOUND else 1


if __name__ == "__main__":
    sys.exit(main())
