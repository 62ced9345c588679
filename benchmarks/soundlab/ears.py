"""Finds what was asked for in a recording. Times are seconds from its beginning."""

import numpy

from .room import RATE


def onsets(sound, apart, share=0.5):
    """The beginnings of the strokes in `sound`, which are at least `apart` seconds from each other.

    A stroke is what reaches `share` of the loudest; it begins where a twentieth of its own peak is first exceeded.
    """
    level = numpy.abs(sound)
    threshold = level.max() * share
    if threshold < 1e-3:
        return numpy.array([])
    loud = numpy.flatnonzero(level > threshold)
    found = []
    next_allowed = 0
    lead = int(0.02 * RATE)
    for frame in loud:
        if frame < next_allowed:
            continue
        next_allowed = frame + int(apart * RATE)
        peak = level[frame:frame + lead].max()
        start = max(frame - lead, 0)
        found.append(start + int(numpy.argmax(level[start:frame + 1] > peak / 20)))
    return numpy.array(found) / RATE


def errors(these, those):
    """How late each of `these` is against the nearest of `those`, in milliseconds."""
    return numpy.array([1000 * (one - those[numpy.argmin(numpy.abs(those - one))]) for one in these])


def last_sound(sound, start, threshold):
    """When `sound` was last louder than `threshold` after `start`."""
    heard = numpy.flatnonzero(numpy.abs(sound[int(start * RATE):]) > threshold)
    return start + heard[-1] / RATE if len(heard) else start


def silences(sound, shortest, edge=0.003, audible=1e-3, silent=1e-5):
    """The silences of at least `shortest` seconds with sound right before and right after, as (time, length) pairs."""
    level = numpy.abs(sound)
    quiet = numpy.concatenate([[False], level < silent, [False]])
    edges = numpy.flatnonzero(quiet[1:] != quiet[:-1])
    around = int(edge * RATE)
    found = []
    for start, end in zip(edges[::2], edges[1::2]):
        if end - start < shortest * RATE or start < around or end + around > len(level):
            continue
        if level[start - around:start].max() > audible and level[end:end + around].max() > audible:
            found.append((start / RATE, (end - start) / RATE))
    return found
