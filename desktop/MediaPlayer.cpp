#include "desktop/MediaPlayer.h"

#include "controller/AlphaTabController.h"
#include "desktop/MediaPlayerInterfaces.h"

#include <QCoreApplication>
#include <QDBusMessage>

using namespace Qt::StringLiterals;

namespace {

constexpr auto controlsInterface = "org.mpris.MediaPlayer2.Player"_L1;

/// What changes without being asked to. The position is not announced but counted on by whoever wants it.
constexpr const char *changingProperties[] = { "PlaybackStatus", "LoopStatus", "Rate", "Metadata", "Volume", "CanPlay",
    "CanPause", "CanSeek" };

} // namespace

MediaPlayer::MediaPlayer(const QDBusConnection &bus, AlphaTabController &controller, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
    , m_controller(controller)
{
    new MediaPlayerRoot(*this);
    const auto *controls = new MediaPlayerControls(*this, controller);
    if (!m_bus.isConnected() || !m_bus.registerObject(path(), this))
        return;
    const QString name = u"org.mpris.MediaPlayer2.quaverly"_s;
    const QString longName = name + u".instance%1"_s.arg(QCoreApplication::applicationPid());
    m_service = m_bus.registerService(name) ? name : m_bus.registerService(longName) ? longName : QString();
    m_clock.start();
    for (const char *property : changingProperties)
        m_announced.insert(QString::fromLatin1(property), controls->property(property));
    observe();
}

MediaPlayer::~MediaPlayer()
{
    if (!m_service.isEmpty())
        m_bus.unregisterService(m_service);
    m_bus.unregisterObject(path());
}

QString MediaPlayer::path() { return u"/org/mpris/MediaPlayer2"_s; }

void MediaPlayer::observe()
{
    const auto changed = [this](const auto &) { announceSoon(); };
    m_controller.playerReady.onChange(this, changed);
    m_controller.hasScore.onChange(this, changed);
    m_controller.title.onChange(this, changed);
    m_controller.artist.onChange(this, changed);
    m_controller.endTime.onChange(this, changed);
    m_controller.looping.onChange(this, changed);
    m_controller.masterVolume.onChange(this, changed);
    const auto moved = [this](const auto &) {
        announceSoon();
        followPosition();
    };
    m_controller.isPlaying.onChange(this, moved);
    m_controller.tempoPercent.onChange(this, moved);
    m_controller.currentTime.onChange(this, moved);
}

/// Once for all that one message of the page changes.
void MediaPlayer::announceSoon()
{
    if (std::exchange(m_announcesSoon, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_announcesSoon = false;
            announce();
        },
        Qt::QueuedConnection);
}

void MediaPlayer::announce()
{
    const auto *controls = findChild<MediaPlayerControls *>();
    QVariantMap changes;
    for (const char *property : changingProperties) {
        const QString name = QString::fromLatin1(property);
        const QVariant now = controls->property(property);
        if (now != m_announced.value(name)) {
            m_announced.insert(name, now);
            changes.insert(name, now);
        }
    }
    if (changes.isEmpty())
        return;
    QDBusMessage signal
        = QDBusMessage::createSignal(path(), u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s);
    signal << QString(controlsInterface) << changes << QStringList();
    m_bus.send(signal);
}

void MediaPlayer::followPosition()
{
    const double position = m_controller.currentTime;
    if (m_position.follow(position, m_controller.isPlaying, m_controller.tempoPercent / 100, m_clock.elapsed()))
        Q_EMIT jumped(position);
}
