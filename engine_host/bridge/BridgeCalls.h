#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// Everything the program ever says to the page: twenty calls on `window.qv`, one function each.
///
/// Each function returns the script text. Reals are written with formatReal(); text arguments stand between single
/// quotes without escaping, because every one of them is base64 or a word from a fixed set.
namespace BridgeCalls {

/// The whole file as standard base64 without line breaks; the page detects the format.
QString loadBase64(const QByteArray &file);
QString loadSample();
QString playPause();
QString stop();
/// @param milliseconds score time
QString seekToTime(double milliseconds);
/// @param ratio playback rate, 1.0 is the written tempo
QString setSpeed(double ratio);
/// @param volume 0...1
QString setMasterVolume(double volume);
QString setLooping(bool on);
QString setMetronome(bool on);
/// Sent as 1 or 0, unlike every other switch.
QString setCountIn(bool on);
/// @param volume 0...1
/// @param sound "woodblock", "beep", "click" or "tick"
/// @param accent whether the first beat of a bar sounds different
/// @param mode "bar", "beat", "half" or "quarter"
QString configMetronome(double volume, const QString &sound, bool accent, const QString &mode);
QString previewMetronome();
/// @param preferSynth true for synthesized instruments, false for the file's own recording
QString setSoundSource(bool preferSynth);
QString setLayout(bool horizontal);
/// @param factor 1.0 is the natural size
QString setZoom(double factor);
QString renderTracks(const QList<int> &trackIds);
QString setTrackMute(int trackId, bool mute);
QString setTrackSolo(int trackId, bool solo);
QString setTrackVolume(int trackId, double volume);
/// Answered by the page with a "gpData" message.
QString exportGp();

/// The shortest decimal form that reads back as the same double, with at least one fractional digit ("1.0", "0.75");
/// exponent form below 1e-4 and from 1e16 on ("1e-05").
QString formatReal(double value);

} // namespace BridgeCalls
