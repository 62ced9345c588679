"""Tells when the machine itself stood still: a virtual machine whose processors another one has for a while.

No program can play on through that, so what is heard of it is none of the program's faults. It counts as the machine's
where a thread that comes before all others woke too late, and the kernel says that the processor was taken away.
"""

import os
import subprocess
import sys
import time

# In seconds: how often each processor is looked at, how late it may be, and how soon the kernel has counted.
STEP = 0.002
LATE = 0.008
COUNTED = 0.02

# What is on its way to the loudspeaker is heard so much later, at most.
HEARD_WITHIN = 0.25


class Standstills:
    """Watches all processors until it is closed."""

    def __init__(self):
        self._watches = [
            subprocess.Popen([sys.executable, os.path.abspath(__file__), str(processor)], stdout=subprocess.PIPE, text=True)
            for processor in sorted(os.sched_getaffinity(0))]

    def close(self):
        """Returns the standstills as (beginning, end) pairs of the monotonic clock."""
        found = []
        for watch in self._watches:
            watch.terminate()
            for line in watch.communicate()[0].splitlines():
                begin, end = line.split()
                found.append((float(begin), float(end)))
        return sorted(found)


def explains(standstills, begin, end):
    """Whether one of `standstills` may be what is heard from `begin` to `end`."""
    return any(first - HEARD_WITHIN < end and begin < last + HEARD_WITHIN for first, last in standstills)


def taken(processor):
    """How long the processor was taken away until now, in the kernel's ticks."""
    with open("/proc/stat", encoding="ascii") as counts:
        for line in counts:
            if line.startswith(f"cpu{processor} "):
                return int(line.split()[8])
    return 0


def watch(processor):
    os.sched_setaffinity(0, {processor})
    os.sched_setscheduler(0, os.SCHED_FIFO, os.sched_param(90))
    before = taken(processor)
    read = due = time.monotonic()
    asked_by = os.getppid()
    while os.getppid() == asked_by:
        due += STEP
        time.sleep(max(due - time.monotonic(), 0))
        now = time.monotonic()
        if now - due > LATE:
            time.sleep(COUNTED)
            if taken(processor) > before:
                print(due, now, flush=True)
        if now - read > 0.1:
            before = taken(processor)
            read = now
        due = max(due, time.monotonic() - STEP)


if __name__ == "__main__":
    try:
        watch(int(sys.argv[1]))
    except (KeyboardInterrupt, PermissionError) as error:
        sys.exit(f"standstills of the machine are not seen: {error}" if isinstance(error, PermissionError) else 0)
