#!/usr/bin/env python3
# bench: --peers fidelity [PART OF A NAME]   notes of MusicXML files beside those of MuseScore 3, over a public collection
"""Compares what Quaverly plays of MusicXML files with what MuseScore 3 does.

The collection is the corpus inside the Python package music21, installed into an environment of its own in build/. For each
file it prints the share of MuseScore's notes that Quaverly plays with the same key within an eighth of a quarter note, the
share of Quaverly's that MuseScore plays, and where the first one is missing; the worst files come last. Files that do not
agree are compared again without repeats and jumps, without grace notes and ornaments, and without either: that tells what
the two read in another way. MuseScore's answers are kept, so that only the first run takes long.
"""

import bisect
import collections
import hashlib
import json
import os
import pathlib
import subprocess
import sys

from reading import variants

TOP = pathlib.Path(__file__).resolve().parent.parent
WORK = TOP / "build" / "fidelity"
ALPHATAB = pathlib.Path(os.environ["QUAVERLY_PROGRAM"]).parent / "page-packages/node_modules/@coderline/alphatab/dist/alphaTab.min.js"
TOLERANCE = 0.125 + 1e-6
GOOD = 0.98
FILES_A_PROCESS = 15
# MuseScore takes a minute for the longest of the files, and hangs on some.
PEER_TIMEOUT_S = 300


def corpus():
    """Returns the corpus's folder, installed first where it is not there."""
    python = WORK / "environment" / "bin" / "python"
    if not python.exists():
        subprocess.run([sys.executable, "-m", "venv", WORK / "environment"], check=True)
    requirements = TOP / "benchmarks" / "reading" / "requirements.txt"
    subprocess.run([python, "-m", "pip", "install", "--quiet", "--no-deps", "-r", requirements], check=True)
    found = subprocess.run([python, "-c", "import sysconfig; print(sysconfig.get_path('purelib'))"], check=True,
                           capture_output=True, text=True)
    return pathlib.Path(found.stdout.strip()) / "music21" / "corpus"


def peer_file(path):
    return WORK / "musescore" / (hashlib.sha256(path.read_bytes()).hexdigest()[:24] + ".mid")


def ask_peer(paths):
    """Has MuseScore write the MIDI files that are not there yet."""
    (WORK / "musescore").mkdir(parents=True, exist_ok=True)
    missing = [path for path in paths if not peer_file(path).exists()]
    surroundings = dict(os.environ, QT_QPA_PLATFORM="offscreen", HOME=str(WORK))
    for start in range(0, len(missing), FILES_A_PROCESS):
        job = WORK / "job.json"
        batch = missing[start:start + FILES_A_PROCESS]
        job.write_text(json.dumps([{"in": str(path), "out": str(peer_file(path))} for path in batch]))
        try:
            subprocess.run(["mscore3", "-j", job], env=surroundings, timeout=PEER_TIMEOUT_S, capture_output=True, check=False)
        except subprocess.TimeoutExpired:
            print(f"MuseScore did not come back from {batch[0].name} and those after it", file=sys.stderr)


def read_midi(data):
    """Returns the notes of a MIDI file as pairs of time in quarters and key."""
    division = int.from_bytes(data[12:14], "big")
    at = 8 + int.from_bytes(data[4:8], "big")
    notes = []
    while at + 8 <= len(data):
        end = at + 8 + int.from_bytes(data[at + 4:at + 8], "big")
        notes += read_track(data, at + 8, end, division)
        at = end
    return notes


def read_track(data, at, end, division):
    notes, time, status = [], 0, 0
    while at < end:
        delta, at = read_number(data, at)
        time += delta
        if data[at] & 0x80:
            status = data[at]
            at += 1
        if status in (0xF0, 0xF7, 0xFF):
            length, at = read_number(data, at + (status == 0xFF))
            at += length
        else:
            if status >> 4 == 9 and data[at + 1] > 0:
                notes.append((time / division, data[at]))
            at += 1 if status >> 4 in (0xC, 0xD) else 2
    return notes


def read_number(data, at):
    value = 0
    while True:
        value = value << 7 | data[at] & 0x7F
        at += 1
        if not data[at - 1] & 0x80:
            return value, at


def share(notes, others):
    """Returns which share of the notes is among the others, and the first one that is not."""
    times = {}
    for time, key in sorted(others):
        times.setdefault(key, []).append(time)
    missing = []
    for time, key in sorted(notes):
        own = times.get(key, [])
        at = bisect.bisect_left(own, time - TOLERANCE)
        if at == len(own) or own[at] > time + TOLERANCE:
            missing.append((time, key))
    return (1 - len(missing) / len(notes) if notes else 1), (missing[0] if missing else None)


def own_notes(paths):
    """Returns what Quaverly plays of each file, or why it plays nothing."""
    reader = TOP / "benchmarks" / "reading" / "sounding.mjs"
    told = subprocess.run(["node", reader, ALPHATAB], input="\n".join(map(str, paths)), capture_output=True, text=True,
                          check=True)
    return {pathlib.Path(answer["path"]): answer for answer in map(json.loads, told.stdout.splitlines())}


def peer_notes(path):
    """Returns what MuseScore plays; nothing where it did not come back in time."""
    return read_midi(peer_file(path).read_bytes()) if peer_file(path).exists() else []


def kinds_of(failing):
    """Returns by file without what it agrees."""
    changed = {path: variants.write(path, WORK / "variants") for path in failing}
    every = [variant for paths in changed.values() for variant in paths.values()]
    ask_peer(every)
    own = own_notes(every)
    kinds = {}
    for path, paths in changed.items():
        kinds[path] = "something else"
        if not any(peer_notes(variant) for variant in paths.values()):
            kinds[path] = "not told: MuseScore did not come back in time"
        for kind, variant in paths.items():
            notes, peer = own[variant].get("notes", []), peer_notes(variant)
            if peer and min(share(peer, notes)[0], share(notes, peer)[0]) >= GOOD:
                kinds[path] = kind
                break
    return kinds


def main():
    arguments = [argument for argument in sys.argv[1:] if argument != "--peers"]
    folder = corpus()
    paths = sorted(path for path in folder.rglob("*") if path.suffix in (".mxl", ".xml", ".musicxml"))
    paths = [path for path in paths if not arguments or arguments[0] in str(path.relative_to(folder))]
    ask_peer(paths)
    rows = []
    for path, answer in own_notes(paths).items():
        peer = peer_notes(path)
        if not peer:
            print(f"MuseScore has no answer: {path.relative_to(folder)}")
            continue
        found, first_missing = share(peer, answer.get("notes", []))
        told, first_extra = share(answer.get("notes", []), peer)
        rows.append((min(found, told), found, told, first_missing, first_extra, str(path.relative_to(folder)), answer.get("problem", "")))
    kinds = kinds_of([folder / row[5] for row in rows if row[0] < GOOD and not row[6]])
    for worst, found, told, missing, extra, name, problem in sorted(rows, reverse=True):
        differs = f"{kinds.get(folder / name)}: first missing {missing}, first beyond {extra} (quarter, key)"
        note = problem or ("" if worst >= GOOD else differs)
        print(f"{100 * found:6.1f} {100 * told:6.1f}  {name}  {note}".rstrip())
    good = sum(row[0] >= GOOD for row in rows)
    print(f"\n{good} of {len(rows)} files ({100 * good / max(1, len(rows)):.1f} %) agree to {100 * GOOD:.0f} % or better both ways")
    for kind, count in collections.Counter(kinds.values()).most_common():
        print(f"{count:4} differ in {kind}")


if __name__ == "__main__":
    main()
