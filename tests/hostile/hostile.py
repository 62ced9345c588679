#!/usr/bin/env python3
"""Opens hostile files in the running program, and after each a good one.

Each file has to leave the window answering, the memory of all processes within a gigabyte of what it was, the page
alive, and the next good file open. Over a generated file the page may not answer, if it can be stopped then. The named
files are opened three times in one process, or as often as --rounds says; generated ones follow for as long as the time
allows. What goes wrong is written down with its file, which is kept.
"""
import argparse
import itertools
import pathlib
import shutil
import sys
import time

TOP = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TOP / "tests" / "driven"))
import driven  # noqa: E402
import generators  # noqa: E402

# How much more than with a good file open the program may have while it works on a hostile one, in MB.
GROWTH = 1000
# How long a score may take until it is shown or refused, and how long a good one.
READING, GOOD = 30, 20
# How long a page of a PDF is given to be drawn, before the next file comes: most are drawn at once, or never.
DRAWING = 1.5


class Run:
    def __init__(self, build, environment, kept):
        self.build, self.environment, self.kept = build, environment, kept
        self.good = build / "tests" / "scores" / "ferry.gp"
        self.opened, self.faults, self.largest, self.longest = 0, [], 0.0, 0.0
        self.window, self.usual, self.starts = None, 0.0, 0
        # Generated files over which the page did not answer for so long that a reader would have stopped it.
        self.stopped = []

    def start(self):
        self.starts += 1
        self.window = driven.Window(self.build, self.environment)
        if not self.window.wait(lambda state: state["bridgeReady"], 60):
            raise driven.Fault("the page was never ready")
        self.open_good()
        time.sleep(2)
        self.usual = self.window.memory()

    def open_good(self):
        before = self.window.state()["scores"]
        self.window.do("open", str(self.good))
        if not self.window.wait(lambda state: state["scores"] > before and state["playerReady"], GOOD):
            raise driven.Fault("the next good file does not open")

    def measure(self):
        memory = self.window.memory() - self.usual
        self.largest = max(self.largest, memory)
        if memory > GROWTH:
            raise driven.Fault(f"the program has {memory:.0f} MB more than before")

    def open(self, path, generated):
        window = self.window
        said, before = len(window.log), window.state()
        window.do("open", str(path))

        def settled(state):
            refused = any("failed to" in line or "error" in line for line in window.log[said:])
            shown = state["pdf"] == str(path) or state["scores"] > before["scores"]
            return refused or shown or state["health"] != "well"

        state = window.wait(settled, READING, self.measure)
        if state is None:
            raise driven.Fault("the file is neither shown nor refused")
        if state["health"] == "not answering" and generated:
            self.stop_reading(path)
            return
        if state["health"] != "well":
            raise driven.Fault("the page does not answer" if state["health"] == "not answering" else "the page has ended")
        if state["pdf"]:
            end = time.monotonic() + DRAWING
            window.wait(lambda _: time.monotonic() > end, READING, self.measure)
        elif state["scores"] > before["scores"]:
            self.play()

    def stop_reading(self, path):
        """What a reader does who is told that the page does not answer. It may have answered meanwhile."""
        self.stopped.append(path.name)
        print(f"stopped {path.name}", flush=True)
        self.window.do("stopReading")
        if not self.window.wait(lambda state: state["health"] != "not answering", 10):
            raise driven.Fault("the page cannot be stopped")

    def play(self):
        """What is shown is played for a moment, if it can be."""
        window = self.window
        if window.wait(lambda state: state["playerReady"], 5, self.measure):
            window.do("js", "window.qv.playPause()")
            window.wait(lambda state: state["time"] > 200, 1, self.measure)
            window.do("js", "window.qv.stop()")
            if window.state()["health"] != "well" or window.ask("1 + 1", 15) != 2:
                raise driven.Fault("the page does not answer when it plays")

    def try_file(self, path, generated=False):
        self.opened += 1
        try:
            self.open(path, generated)
            self.open_good()
            self.measure()
        except driven.Fault as fault:
            self.faults.append((path.name, str(fault)))
            print(f"FAULT {path.name}: {fault}", flush=True)
            self.kept.mkdir(parents=True, exist_ok=True)
            shutil.copy(path, self.kept / path.name)
            self.stop()
            self.start()

    def stop(self):
        self.longest = max(self.longest, self.window.longest)
        try:
            self.window.close()
        except driven.Fault as fault:
            self.faults.append(("the end", str(fault)))
            print(f"FAULT at the end: {fault}", flush=True)


def named(folder, given):
    """The files that are opened in each round."""
    files = sorted(path for path in given.iterdir() if path.suffix != ".md") if given.is_dir() else []
    if not files:
        print(f"There are no given files: {given} is not there.")
    for name, data in itertools.chain(generators.bombs(), generators.pdfs(1)):
        if not name.startswith("damaged"):
            (folder / name).write_bytes(data)
            files.append(folder / name)
    return files


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("minutes", nargs="?", type=float, default=15, help="how long it may take (else 15)")
    parser.add_argument("--rounds", type=int, default=3, help="how often the named files are opened (else 3)")
    parser.add_argument("--seed", type=int, default=1, help="of the generated files (else 1)")
    parser.add_argument("--build", type=pathlib.Path, default=TOP / "build" / "dev")
    parser.add_argument("--given", type=pathlib.Path, default=TOP.parent / "shared" / "hostile", help="more files, if there")
    chosen = parser.parse_args()
    began = time.monotonic()
    end = began + 60 * chosen.minutes
    display = driven.Display()
    folder = chosen.build / "tests" / "hostile-files"
    folder.mkdir(parents=True, exist_ok=True)
    run = Run(chosen.build, display.environment(), chosen.build / "tests" / "hostile-faults")
    rounds = generated = 0
    try:
        files = named(folder, chosen.given)
        run.start()
        for rounds in range(1, chosen.rounds + 1):
            for path in files:
                if time.monotonic() > end:
                    raise TimeoutError
                run.try_file(path)
        random_pdfs = ((name, data) for name, data in generators.pdfs(chosen.seed) if name.startswith("damaged"))
        first = itertools.chain(generators.counts(), random_pdfs)
        for name, data in itertools.chain(first, generators.mutations(chosen.build / "tests" / "scores", chosen.seed)):
            if time.monotonic() > end:
                break
            path = folder / name
            path.write_bytes(data)
            run.try_file(path, generated=True)
            path.unlink()
            generated += 1
    except TimeoutError:
        print(f"The time is over before all named files were opened {chosen.rounds} times.")
    finally:
        if run.window:
            run.stop()
        display.close()
        shutil.rmtree(folder, ignore_errors=True)
    print(f"{run.opened} files opened ({len(files)} of them named, {rounds} rounds; {generated} generated, seed "
          f"{chosen.seed}) in {(time.monotonic() - began) / 60:.1f} minutes, in {run.starts} "
          f"process{'' if run.starts == 1 else 'es'}: {len(run.faults)} faults, {len(run.stopped)} stopped by hand. Longest "
          f"answer of the window {run.longest:.2f} s, at most {run.largest:.0f} MB more than with a good file.")
    for name, fault in run.faults:
        print(f"  {name}: {fault}")
    return 1 if run.faults else 0


if __name__ == "__main__":
    sys.exit(main())
