"""What the command line asks of a measurement."""

import os
import sys


def number_and_files(usual, arguments=None):
    """The number that may stand first, else the usual one, and the full paths of the files behind it."""
    given = list(sys.argv[1:] if arguments is None else arguments)
    number = int(given.pop(0)) if given and given[0].isdigit() else usual
    return number, [os.path.abspath(name) for name in given]


def number_and_file(usual, usage):
    """As above, with the one file that has to be there."""
    number, files = number_and_files(usual)
    if len(files) != 1:
        sys.exit(usage)
    return number, files[0]
