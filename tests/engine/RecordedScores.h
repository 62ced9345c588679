#pragma once

#include <QByteArray>
#include <QString>

/// Guitar Pro files with backing tracks, made up on the spot.
namespace RecordedScores {

/// An even tone of a third of full scale, as a WAVE file in mono.
QByteArray tone(double seconds);

/// One of the recordings that are encoded with the tests: even.mp3, vorbis.ogg and others.
QByteArray encoded(const QString &name);

/// A score of two tracks with a note on each beat, at 120 beats a minute: `bars` bars of 2000 milliseconds, beside
/// which the audio file `backingTrack` plays from its beginning.
QByteArray score(const QByteArray &backingTrack, int bars);

} // namespace RecordedScores
