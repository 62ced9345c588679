"""Where PyGuitarPro has the notes of Guitar Pro files: the same lines as fretted.mjs, for the same paths."""

import json
import sys

import guitarpro
from guitarpro.models import NoteType

PERCUSSION_CHANNEL = 9


def fretted(path):
    song = guitarpro.parse(path)
    notes, graces = [], []
    for track, played in enumerate(song.tracks):
        drums = played.isPercussionTrack or played.channel.isPercussionChannel
        for bar, measure in enumerate(played.measures):
            for voice, line in enumerate(measure.voices):
                for beat in line.beats:
                    for note in beat.notes:
                        if note.type == NoteType.rest:
                            continue
                        place = [track, bar, voice, 0 if drums else note.string]
                        # Within tuplets a beat may begin between two ticks.
                        notes.append([*place, note.value, float(beat.start - measure.start)])
                        if note.effect.grace:
                            graces.append([*place, note.effect.grace.fret])
    return {"notes": notes, "graces": graces}


for line in sys.stdin:
    name = line.rstrip("\n")
    try:
        answer = fretted(name)
    except Exception as reason:  # pylint: disable=broad-exception-caught; whatever it does not read is no answer
        answer = {"problem": f"{type(reason).__name__}: {reason}"}
    print(json.dumps({"path": name, **answer}))
