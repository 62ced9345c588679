#!/usr/bin/env python3
# bench: pdf [ROUNDS]   a PDF: pages made ready for recognition beside other programs, memory, the first page
"""Times what Quaverly does with PDFs, on sheets of its own, and measures what memory that takes.

usage: pdf.py [ROUNDS], with the program in QUAVERLY_PROGRAM and what measures beside it in its folder

Other programs draw the same pages at the same resolution to the same kind of file in the same run; those that are not
installed are left out.
"""

import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

BUILD = os.path.dirname(os.environ["QUAVERLY_PROGRAM"])
MEASURE = os.path.join(BUILD, "benchmarks", "measure_pdf")
ENGINE = os.path.join(BUILD, "tests", "stand_in_audiveris")
PAGES = 8
# What a page is drawn at in a window of 1400 points with two pages across.
SHOWN_WIDTH = 1100

PEERS = {
    "mutool draw -r 600 -c gray": ["mutool", "draw", "-q", "-r", "600", "-c", "gray", "-o", "{folder}/%d.png", "{pdf}"],
    "pdftoppm -gray -r 600 -png": ["pdftoppm", "-gray", "-r", "600", "-png", "{pdf}", "{folder}/page"],
}


def sheet(name):
    return os.path.join(BUILD, "tests", "sheets", f"{name}.pdf")


def measure(*arguments):
    """The figures that the measuring program prints, by name."""
    environment = dict(os.environ, QT_QPA_PLATFORM="offscreen")
    answer = subprocess.run([MEASURE, *arguments], env=environment, check=True, stdout=subprocess.PIPE, text=True)
    words = answer.stdout.split()
    return {name: float(figure) for name, figure in zip(words[::2], words[1::2])}


def timed(command, folder, pdf):
    """Milliseconds a page of a whole run of another program."""
    command = [part.format(folder=folder, pdf=pdf) for part in command]
    began = time.monotonic()
    subprocess.run(command, check=True, stderr=subprocess.DEVNULL)
    return (time.monotonic() - began) * 1000 / PAGES


def own_run(folder, pdf):
    """The same of this program's own, with its start and its end; and what its steps took."""
    began = time.monotonic()
    steps = measure("pages", pdf, folder)
    return (time.monotonic() - began) * 1000 / PAGES, steps


def compare_pages(rounds, folder):
    pdf = sheet(f"pages-{PAGES}")
    peers = {name: command for name, command in PEERS.items() if shutil.which(command[0])}
    own, steps, others = [], [], {name: [] for name in peers}
    own_run(folder, pdf)  # fills the caches
    for _ in range(rounds):
        total, parts = own_run(folder, pdf)
        own.append(total)
        steps.append(parts)
        for name, command in peers.items():
            others[name].append(timed(command, folder, pdf))
    print(f"Milliseconds a page of A4 at 600 dpi to a gray PNG, whole runs over {PAGES} pages, median of {rounds}")
    mine = statistics.median(own)
    print(f"  {'Quaverly, tablature erased':30}{mine:8.1f}")
    for step in ("opening", "drawing", "erasing", "writing"):
        print(f"    {step:28}{statistics.median(parts[step] for parts in steps):8.1f}")
    for name, times in others.items():
        median = statistics.median(times)
        print(f"  {name:30}{median:8.1f}   Quaverly takes {mine / median:.2f} times as long")
    for name in PEERS.keys() - peers.keys():
        print(f"  {name:30} is not installed")


def main():
    rounds = int(sys.argv[1]) if len(sys.argv) > 1 else 5
    folder = tempfile.mkdtemp(prefix="quaverly-bench-")
    try:
        compare_pages(rounds, folder)
    finally:
        shutil.rmtree(folder, ignore_errors=True)

    passes = [measure("eraser", "4961", "7016") for _ in range(rounds)]
    eraser = statistics.median(figures["eraser"] for figures in passes)
    read = statistics.median(figures["read"] for figures in passes)
    print("\nGB/s over the pixels of such a page")
    print(f"  {'the eraser':30}{eraser:8.1f}   {eraser / read:.2f} times a plain read")
    print(f"  {'a plain read':30}{read:8.1f}")

    memory = [measure("memory", sheet(f"pages-{PAGES}"), ENGINE) for _ in range(rounds)]
    peak = max(figures["peak"] for figures in memory)
    raster = memory[0]["raster"]
    print(f"\nMiB at the peak of a conversion of {PAGES} pages, beyond the program's own, most of {rounds}")
    print(f"  {'the conversion':30}{peak:8.1f}   {peak / raster:.2f} page rasters")
    print(f"  {'one page raster':30}{raster:8.1f}")

    starts = [measure("first-page", sheet("pages-1000"), str(SHOWN_WIDTH)) for _ in range(rounds)]
    opening = statistics.median(figures["opening"] for figures in starts)
    drawing = statistics.median(figures["drawing"] for figures in starts)
    print(f"\nMilliseconds from opening a PDF of 1000 pages to its first page, {SHOWN_WIDTH} pixels wide")
    print(f"  {'first page drawn':30}{opening + drawing:8.1f}   {opening:.1f} of them for opening")


if __name__ == "__main__":
    main()
