#include "desktop/MediaPlayerInterfaces.h"

#include "controller/AlphaTabController.h"
#include "controller/FileKinds.h"
#include "controller/SpeedRange.h"
#include "desktop/MediaPlayer.h"
#include "engine_host/bridge/BridgeCalls.h"

#include <QGuiApplication>

#include <algorithm>
#include <chrono>
#include <cmath>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// The page's time to say that it plays or has paused.
constexpr auto stateTimeout = 1s;

/// Of a page that says what cannot be, the nearest time that the bus has.
qlonglong microseconds(double milliseconds)
{
    constexpr double most = 9e18;
    return std::llround(std::clamp(milliseconds * 1000, -most, most));
}

/// On the bus a text ends at its first zero, and a desktop shows it on one line.
QString onOneLine(QString text)
{
    for (QChar &c : text) {
        if (c.category() == QChar::Other_Control)
            c = u' ';
    }
    return text;
}

} // namespace

MediaPlayerRoot::MediaPlayerRoot(MediaPlayer &player)
    : QDBusAbstractAdaptor(&player)
    , m_player(player)
{
}

MediaPlayerRoot::~MediaPlayerRoot() = default;

QString MediaPlayerRoot::identity() { return u"Quaverly"_s; }

QString MediaPlayerRoot::desktopEntry() { return QGuiApplication::desktopFileName(); }

QStringList MediaPlayerRoot::uriSchemes() { return { u"file"_s }; }

QStringList MediaPlayerRoot::mimeTypes()
{
    return { u"application/x-guitar-pro"_s, u"application/x-guitar-pro-6"_s, u"application/x-guitar-pro-7"_s,
        u"application/vnd.recordare.musicxml"_s, u"application/vnd.recordare.musicxml+xml"_s, u"application/pdf"_s };
}

void MediaPlayerRoot::Raise() { Q_EMIT m_player.raiseRequested(); }

void MediaPlayerRoot::Quit() { Q_EMIT m_player.quitRequested(); }

MediaPlayerControls::MediaPlayerControls(MediaPlayer &player, AlphaTabController &controller)
    : QDBusAbstractAdaptor(&player)
    , m_controller(controller)
{
    controller.isPlaying.onChange(this, [this](bool) { m_asked = false; });
    // Each "score" message of the page says so once more.
    controller.hasScore.onChange(this, [this](bool) { ++m_scores; });
    connect(&player, &MediaPlayer::jumped, this, [this](double ms) { Q_EMIT Seeked(microseconds(ms)); });
}

MediaPlayerControls::~MediaPlayerControls() = default;

QString MediaPlayerControls::playbackStatus() const
{
    if (m_controller.isPlaying)
        return u"Playing"_s;
    return m_controller.hasScore && m_controller.currentTime > 0 ? u"Paused"_s : u"Stopped"_s;
}

QString MediaPlayerControls::loopStatus() const { return m_controller.looping ? u"Track"_s : u"None"_s; }

void MediaPlayerControls::setLoopStatus(const QString &status) { m_controller.looping = status != "None"_L1; }

double MediaPlayerControls::rate() const { return m_controller.tempoPercent / 100; }

void MediaPlayerControls::setRate(double rate)
{
    // Nothing plays at no speed, as the standard has it.
    if (rate == 0)
        Pause();
    else if (!std::isnan(rate))
        m_controller.tempoPercent = std::clamp(rate * 100, SpeedRange::slowest, SpeedRange::fastest);
}

double MediaPlayerControls::minimumRate() { return SpeedRange::slowest / 100; }

double MediaPlayerControls::maximumRate() { return SpeedRange::fastest / 100; }

QString MediaPlayerControls::trackId() const
{
    return m_controller.hasScore ? u"/org/quaverly/Quaverly/score/%1"_s.arg(m_scores)
                                 : u"/org/mpris/MediaPlayer2/TrackList/NoTrack"_s;
}

QVariantMap MediaPlayerControls::metadata() const
{
    QVariantMap data{ { u"mpris:trackid"_s, QVariant::fromValue(QDBusObjectPath(trackId())) } };
    if (!m_controller.hasScore)
        return data;
    if (m_controller.endTime > 0)
        data.insert(u"mpris:length"_s, microseconds(m_controller.endTime));
    if (!m_controller.title.value().isEmpty())
        data.insert(u"xesam:title"_s, onOneLine(m_controller.title));
    if (!m_controller.artist.value().isEmpty())
        data.insert(u"xesam:artist"_s, QStringList{ onOneLine(m_controller.artist) });
    return data;
}

double MediaPlayerControls::volume() const { return m_controller.masterVolume; }

void MediaPlayerControls::setVolume(double volume)
{
    if (!std::isnan(volume))
        m_controller.masterVolume = std::clamp(volume, 0.0, 1.0);
}

qlonglong MediaPlayerControls::position() const { return microseconds(m_controller.currentTime); }

bool MediaPlayerControls::canPlay() const { return m_controller.hasScore && m_controller.playerReady; }

bool MediaPlayerControls::canSeek() const { return canPlay() && m_controller.endTime > 0; }

void MediaPlayerControls::Next() { }

void MediaPlayerControls::Previous() { }

void MediaPlayerControls::Pause() { playOrPause(false); }

void MediaPlayerControls::PlayPause()
{
    if (canPlay())
        m_controller.js(BridgeCalls::playPause());
}

void MediaPlayerControls::Stop()
{
    if (canPlay())
        m_controller.js(BridgeCalls::stop());
}

void MediaPlayerControls::Play() { playOrPause(true); }

/// The page knows one call for both. A second "Play" shall not pause it again, also before it has said that it plays.
void MediaPlayerControls::playOrPause(bool play)
{
    const bool awaited = m_asked && !m_askedUntil.hasExpired();
    if (!canPlay() || (awaited ? m_askedToPlay : m_controller.isPlaying.value()) == play)
        return;
    m_asked = true;
    m_askedToPlay = play;
    m_askedUntil.setRemainingTime(stateTimeout);
    m_controller.js(BridgeCalls::playPause());
}

void MediaPlayerControls::Seek(qlonglong offset)
{
    seekTo(m_controller.currentTime + static_cast<double>(offset) / 1000);
}

void MediaPlayerControls::SetPosition(const QDBusObjectPath &trackId, qlonglong position)
{
    // A desktop that speaks of the last score is late, as is one that speaks of another length.
    const double positionMs = static_cast<double>(position) / 1000;
    if (trackId.path() == this->trackId() && positionMs >= 0 && positionMs <= m_controller.endTime)
        seekTo(positionMs);
}

void MediaPlayerControls::seekTo(double positionMs)
{
    if (canSeek())
        m_controller.seek(positionMs / m_controller.endTime);
}

void MediaPlayerControls::OpenUri(const QString &uri)
{
    const QUrl url(uri);
    if (FileKinds::isOpenable(url))
        m_controller.load(url);
}
