#include "engine_host/bridge/BridgeCalls.h"

#include "engine_host/bridge/Base64Text.h"

#include <QStringBuilder>
#include <QStringList>

#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

using namespace Qt::StringLiterals;

namespace BridgeCalls {

namespace {

QString call(QLatin1StringView function, const QString &arguments = {})
{
    return "window.qv."_L1 % function % u'(' % arguments % u')';
}

QString formatBoolean(bool value) { return value ? u"true"_s : u"false"_s; }

QString formatText(const QString &text) { return u'\'' + text + u'\''; }

} // namespace

QString formatReal(double value)
{
    if (!std::isfinite(value))
        return std::isnan(value) ? u"nan"_s : (value < 0 ? u"-inf"_s : u"inf"_s);

    // The longest result of the fixed form here: sign, "0.000", 17 digits.
    std::array<char, 64> buffer;
    const double magnitude = std::abs(value);
    const bool plain = magnitude == 0 || (magnitude >= 1e-4 && magnitude < 1e16);
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
        plain ? std::chars_format::fixed : std::chars_format::scientific);
    Q_ASSERT(error == std::errc());
    const std::string_view digits(buffer.data(), static_cast<size_t>(end - buffer.data()));
    QString text = QString::fromLatin1(digits.data(), static_cast<qsizetype>(digits.size()));
    if (plain && digits.find('.') == std::string_view::npos)
        text += ".0"_L1;
    return text;
}

QString loadBase64(const QByteArray &file)
{
    // Written into the call, which is never copied: that would hold up the window for a file with a recording in it.
    QString text = call("loadBase64"_L1, formatText({}));
    const QString end = text.last(2);
    text.chop(end.size());
    text.reserve(text.size() + Base64Text::length(file.size()) + end.size());
    Base64Text::append(text, file);
    text += end;
    return text;
}

QString loadSample() { return call("loadSample"_L1); }

QString playPause() { return call("playPause"_L1); }

QString stop() { return call("stop"_L1); }

QString seekToTime(double milliseconds) { return call("seekToTime"_L1, formatReal(milliseconds)); }

QString setSpeed(double ratio) { return call("setSpeed"_L1, formatReal(ratio)); }

QString setMasterVolume(double volume) { return call("setMasterVolume"_L1, formatReal(volume)); }

QString setLooping(bool on) { return call("setLooping"_L1, formatBoolean(on)); }

QString setMetronome(bool on) { return call("setMetronome"_L1, formatBoolean(on)); }

QString setCountIn(bool on) { return call("setCountIn"_L1, on ? u"1"_s : u"0"_s); }

QString configMetronome(double volume, const QString &sound, bool accent, const QString &mode)
{
    const QStringList arguments{ formatReal(volume), formatText(sound), formatBoolean(accent), formatText(mode) };
    return call("configMetronome"_L1, arguments.join(", "_L1));
}

QString previewMetronome() { return call("previewMetronome"_L1); }

QString setSoundSource(bool preferSynth) { return call("setSoundSource"_L1, formatBoolean(preferSynth)); }

QString setLayout(bool horizontal)
{
    return call("setLayout"_L1, formatText(horizontal ? u"horizontal"_s : u"page"_s));
}

QString setZoom(double factor) { return call("setZoom"_L1, formatReal(factor)); }

QString renderTracks(const QList<int> &trackIds)
{
    QStringList ids;
    for (const int id : trackIds)
        ids << QString::number(id);
    return call("renderTracks"_L1, u'[' + ids.join(u',') + u']');
}

QString setTrackMute(int trackId, bool mute)
{
    return call("setTrackMute"_L1, QString::number(trackId) + ", "_L1 + formatBoolean(mute));
}

QString setTrackSolo(int trackId, bool solo)
{
    return call("setTrackSolo"_L1, QString::number(trackId) + ", "_L1 + formatBoolean(solo));
}

QString setTrackVolume(int trackId, double volume)
{
    return call("setTrackVolume"_L1, QString::number(trackId) + ", "_L1 + formatReal(volume));
}

QString exportGp() { return call("exportGp"_L1); }

} // namespace BridgeCalls
