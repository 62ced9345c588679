"""What is heard of practising: which bars a range loops, and when the speed trainer makes its steps."""

import numpy

from .ears import onsets
from .room import RATE
from .scores import BEAT, heading

# A score whose bars can be told by their strokes: a repeat with two endings, and a bar behind it.
TOLD_BARS = {"A": (":4 0.1 0.1 0.1 0.1", 4), "B": (":2 0.1 0.1", 2), "C": (":1 0.1", 1), "D": (8 * " 0.1", 8)}
# From which bar to which one the mouse is drawn, and what has to sound over and over.
RANGES = [("A", "B", "AB"), ("A", "C", "ABAC"), ("B", "C", "BAC"), ("C", "D", "CD"), ("D", "D", "D")]


def bar_boxes(window):
    """Where the mouse finds each bar, left and right, and a height in its line: a double click marks a bar."""
    def box(marked):
        return [float(edge) for edge in window.value(
            f"(({{ left, right, top, bottom }}) => [left, right, top, bottom].join(' '))"
            f"(document.querySelector('{marked}').getBoundingClientRect())").split()]
    left, right, top, bottom = box(".at-cursor-bar")
    boxes = []
    x, y = left + 0.8 * (right - left), (top + bottom) / 2
    for _ in TOLD_BARS:
        double_click(window, x, y)
        left, right, _, _ = box(".range")
        boxes.append((left, right, y))
        x = right + 30
    return dict(zip(TOLD_BARS, boxes))


def double_click(window, x, y):
    for what in ("press", "release", "press", "release"):
        window.tell(f"{what} {x} {y}")
    window.rest(0.8)


def mark_range(window, boxes, first, last):
    """Draws the mouse from the middle of a bar to the middle of another one."""
    (x, y), (to_x, to_y) = (((left + right) / 2, y) for left, right, y in (boxes[first], boxes[last]))
    window.tell(f"press {x} {y}")
    for share in (0.3, 0.6, 1):
        window.tell(f"move {x + share * (to_x - x)} {y + share * (to_y - y)}")
    window.tell(f"release {to_x} {to_y}")
    window.rest(0.5)


def ranges(room, table, options):
    """Which bars sound of a range over repeats and endings, and what its loop adds."""
    a, b, c, d = (text for text, _ in TOLD_BARS.values())
    text = f"\\ro {a} | \\ae 1 \\rc 2 {b} | \\ae 2 {c} | :8 {d} |\n"
    room.window.open(room.desk.write("told", heading("Told", "Woodblock", balance=0) + text))
    boxes = bar_boxes(room.window)
    room.window.call("setLooping", True)
    bar = 4 * BEAT
    strokes_in = {name: strokes for name, (_, strokes) in TOLD_BARS.items()}
    for first, last, wanted in RANGES:
        if first == last:
            left, right, y = boxes[first]
            double_click(room.window, (left + right) / 2, y)
        else:
            mark_range(room.window, boxes, first, last)

        def music():
            room.window.play()
            room.window.rest(3 * len(wanted) * bar + 0.3)
            room.window.stop()
        sound, _, _ = room.listen(f"ranges-{wanted}", music)
        heard = onsets(sound[:, 0], 0.4 * BEAT)
        due = [at * bar + stroke * bar / strokes_in[name] for at, name in enumerate(3 * wanted)
               for stroke in range(strokes_in[name])]
        found = heard[:len(due)] - heard[0]
        late = 1000 * (found - numpy.array(due)[:len(found)]) if len(found) == len(due) else numpy.array([numpy.inf])
        table.row(f"range {first} to {last}, {wanted} three times: worst stroke", numpy.abs(late).max(), 5,
                  note=f"{len(found)} of {len(due)} strokes")
    room.window.call("setLooping", False)


def trainer(room, table, options):
    """When the speed trainer's steps are heard, and how much of a pass before its count-in is."""
    bars, speeds = 2, [60, 70, 80, 90, 100]
    room.window.open(room.desk.strokes(bars))
    # The trainer begins with a player that is ready; the first start waits for it.
    room.window.play()
    room.window.stop()
    room.window.tell("choose Speed Trainer…")
    for name, value in (("From", speeds[0]), ("To", speeds[-1]), ("Step", 10), ("Passes per step", 1)):
        room.window.tell(f"set {name} {value}")

    def music():
        room.window.tell("push Begin Training")
        room.window.rest(sum(bars * 4 * BEAT * 100 / speed for speed in speeds + speeds[-1:]) + 1)
        room.window.tell("push End Training")
        room.window.stop()
    sound, _, _ = room.listen("trainer", music)
    steps = numpy.diff(onsets(sound[:, 0], 0.5 * BEAT))
    passes = [steps[at:at + bars * 4] for at in range(0, len(steps) - bars * 4 + 2, bars * 4)][:len(speeds) + 1]
    heard = [100 * BEAT / numpy.median(steps_of[1:]) for steps_of in passes]
    wrong = sum(abs(one - other) > 0.5 for one, other in zip(heard, speeds + speeds[-1:]))
    table.row("passes at another speed than the trainer's", wrong + abs(len(heard) - len(speeds) - 1), 0, unit="",
              note=", ".join(f"{speed:.1f} %" for speed in heard))
    # The beats before and behind the loop's start have the two speeds, and something of each where the step is early or
    # late: that much of the old one is in the first beat, or of the new one in the last.
    waits = [1000 * ((after * new - 100 * BEAT) - (100 * BEAT - before * old)) / (new - old)
             for before, after, old, new in zip((steps_of[-1] for steps_of in passes), (steps_of[0] for steps_of in passes[1:]),
                                                speeds, speeds[1:])]
    table.row("trainer's step from the loop's start", numpy.abs(waits).max(), 100,
              note=", ".join(f"{wait:+.0f}" for wait in waits))

    room.window.open(room.desk.drone(1))
    for name in ("From", "To"):
        room.window.tell(f"set {name} 100")
    room.window.tell("tick Count in before each pass")
    bar = 4 * BEAT

    def counted():
        room.window.tell("push Begin Training")
        room.window.rest(8 * bar)
        room.window.tell("push End Training")
        room.window.stop()
    sound, _, _ = room.listen("trainer-count-in", counted)
    longest = [length - bar for length in chords(sound[:, 0]) if length > 0.98 * bar]
    if not longest:
        raise RuntimeError("no pass was heard")
    table.row("heard of a pass before it is counted in", 1000 * max(longest), 20,
              note=f"{len(longest)} passes: " + ", ".join(f"{1000 * more:.0f}" for more in longest))


def chords(sound, apart=0.2):
    """How long the drone sounds each time, in seconds: its sound is held, and that of a click is not."""
    block = int(0.01 * RATE)
    level = numpy.sqrt((sound[:len(sound) // block * block].reshape(-1, block) ** 2).mean(axis=1))
    loud = numpy.flatnonzero(level > 0.25 * level.max())
    runs = numpy.split(loud, numpy.flatnonzero(numpy.diff(loud) > apart * RATE / block) + 1)
    return [(run[-1] - run[0] + 1) * block / RATE for run in runs]
