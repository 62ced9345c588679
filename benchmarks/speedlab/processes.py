"""What a program with all its processes takes of the machine."""

import os
import signal
import subprocess

TICK = 1.0 / os.sysconf("SC_CLK_TCK")


def family(process):
    """The numbers of a process and of all that descend from it."""
    children = {}
    for entry in os.listdir("/proc"):
        if entry.isdigit():
            try:
                with open(f"/proc/{entry}/stat") as file:
                    parent = int(file.read().rsplit(")", 1)[1].split()[1])
            except OSError:
                continue
            children.setdefault(parent, []).append(int(entry))
    found, unvisited = [], [process]
    while unvisited:
        one = unvisited.pop()
        found.append(one)
        unvisited += children.get(one, [])
    return found


def processor_time(path):
    """Seconds of processor time from a stat file of a process or a thread."""
    try:
        with open(path) as file:
            fields = file.read().rsplit(")", 1)[1].split()
    except OSError:
        return 0.0
    return (int(fields[11]) + int(fields[12])) * TICK


def family_time(process):
    return sum(processor_time(f"/proc/{one}/stat") for one in family(process))


def main_thread_time(process):
    return processor_time(f"/proc/{process}/task/{process}/stat")


def memory(process):
    """Megabytes of memory, shared pages counted in proportion."""
    total = 0
    for one in family(process):
        try:
            with open(f"/proc/{one}/smaps_rollup") as file:
                total += next(int(line.split()[1]) for line in file if line.startswith("Pss:"))
        except (OSError, StopIteration):
            continue
    return total / 1024


def end(process):
    """Ends a process of ours and what it started."""
    members = family(process.pid)
    process.send_signal(signal.SIGTERM)
    try:
        process.wait(5)
    except subprocess.TimeoutExpired:
        pass
    for one in members:
        try:
            os.kill(one, signal.SIGKILL)
        except OSError:
            pass
    process.wait()
