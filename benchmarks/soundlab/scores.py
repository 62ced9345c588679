"""Scores made up for measuring, as Guitar Pro files, with recordings of their own."""

import io
import os
import subprocess
import wave
import zipfile

import numpy

# Guitar Pro counts the frames of a recording at this rate, whatever the recording's own.
GUITAR_PRO_RATE = 44100
TEMPO = 120
BEAT = 60 / TEMPO


# A bar with a note on each beat.
ON_EACH_BEAT = ":4 0.1 0.1 0.1 0.1 |\n"


class Desk:
    """Writes scores into a folder, with the engine's own exporter."""

    def __init__(self, top, build, folder):
        self._compiler = os.path.join(top, "web", "tools", "compile-demo.mjs")
        self._engine = os.path.join(build, "page-packages", "node_modules", "@coderline", "alphatab", "dist", "alphaTab.js")
        self._folder = folder

    def write(self, name, text):
        source = os.path.join(self._folder, name + ".atex")
        target = os.path.join(self._folder, name + ".gp")
        with open(source, "w", encoding="utf-8") as file:
            file.write(text)
        subprocess.run(["node", self._compiler, self._engine, source, target], check=True)
        return target

    def strokes(self, bars):
        """A sharp stroke on every beat, from the left loudspeaker alone."""
        return self.write(f"strokes{bars}", heading("Strokes", "Woodblock", balance=0) + bars * ON_EACH_BEAT)

    def drone(self, bars):
        """One chord that never decays, from both loudspeakers."""
        return self.write(f"drone{bars}", heading("Drone", "DrawbarOrgan") + ":1 (5.1 5.2 6.3) |\n"
                          + (bars - 1) * ":1 (-.1 -.2 -.3) |\n")

    def recorded(self, bars, bar=":1 r |\n"):
        """A score that carries the recording of a player who never keeps the tempo.

        Returns the file and the time in seconds of each beat in the recording.
        """
        path = self.write(f"recorded{bars}", heading("Recorded", "Woodblock") + bars * bar)
        # Nothing in the file tells how long the last bar is: it is like the one before.
        lengths = [4 * BEAT * (1 + 0.12 * numpy.sin(min(bar, bars - 2))) for bar in range(bars)]
        starts = 0.35 + numpy.concatenate([[0], numpy.cumsum(lengths)])
        beats = [starts[bar] + lengths[bar] * beat / 4 for bar in range(bars) for beat in range(4)]
        embed_recording(path, strokes(beats, starts[-1]), starts[:-1])
        return path, beats

    def hummed(self, bars, bar=":1 r |\n"):
        """A score whose recording is one tone that never ends."""
        path = self.write(f"hummed{bars}", heading("Hummed", "Woodblock") + bars * bar)
        time = numpy.arange(int((bars * 4 * BEAT + 2) * GUITAR_PRO_RATE)) / GUITAR_PRO_RATE
        tone = 0.4 * numpy.sin(2 * numpy.pi * 196 * time)
        embed_recording(path, wave_file(numpy.column_stack([tone, tone])), 4 * BEAT * numpy.arange(bars))
        return path


def heading(title, instrument, balance=8):
    return (f'\\title "{title}"\n\\tempo {TEMPO}\n\\track ("{title}" "{title[:4]}") {{ instrument {instrument} balance {balance} }}\n'
            "\\staff {score}\n\\tuning (E4 B3 G3 D3 A2 E2)\n\\ts (4 4)\n")


def strokes(beats, length):
    """A WAVE file with a stroke on each beat, on the left only."""
    samples = numpy.zeros((int((length + 1) * GUITAR_PRO_RATE), 2))
    time = numpy.arange(int(0.03 * GUITAR_PRO_RATE)) / GUITAR_PRO_RATE
    stroke = 0.8 * numpy.sin(2 * numpy.pi * 1800 * time) * numpy.exp(-time / 0.004)
    for beat in beats:
        start = round(beat * GUITAR_PRO_RATE)
        samples[start:start + len(stroke), 0] += stroke
    return wave_file(samples)


def wave_file(samples):
    """Samples of shape (frames, 2), between -1 and 1, as a WAVE file."""
    target = io.BytesIO()
    with wave.open(target, "wb") as file:
        file.setnchannels(2)
        file.setsampwidth(2)
        file.setframerate(GUITAR_PRO_RATE)
        file.writeframes((samples * 32767).astype("<i2").tobytes())
    return target.getvalue()


def embed_recording(path, audio, bar_starts):
    """Puts a recording into a Guitar Pro file, with a sync point at the start of each bar."""
    name = "Content/Assets/recording.wav"
    with zipfile.ZipFile(path) as archive:
        parts = {entry: archive.read(entry) for entry in archive.namelist()}
    points = "".join(
        "<Automation><Type>SyncPoint</Type><Linear>false</Linear>"
        f"<Bar>{bar}</Bar><Position>0</Position><Visible>true</Visible><Value><BarIndex>{bar}</BarIndex>"
        f"<BarOccurrence>0</BarOccurrence><FrameOffset>{start * GUITAR_PRO_RATE:.3f}</FrameOffset></Value></Automation>"
        for bar, start in enumerate(bar_starts))
    text = parts["Content/score.gpif"].decode()
    text = text.replace("</Automations>", points + "</Automations>", 1)
    text = text.replace(
        "<MasterTrack>", "<BackingTrack><Enabled>true</Enabled><Source>Local</Source><AssetId>0</AssetId>"
        "<FramePadding>0</FramePadding></BackingTrack><MasterTrack>", 1)
    text = text.replace("</GPIF>", f'<Assets><Asset id="0"><EmbeddedFilePath>{name}</EmbeddedFilePath></Asset></Assets></GPIF>')
    parts["Content/score.gpif"] = text.encode()
    parts[name] = audio
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        for entry, data in parts.items():
            archive.writestr(entry, data)
