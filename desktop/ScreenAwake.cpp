#include "desktop/ScreenAwake.h"

#include "controller/AlphaTabController.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

using namespace Qt::StringLiterals;

namespace {

constexpr auto portal = "org.freedesktop.portal.Desktop"_L1;
constexpr auto portalPath = "/org/freedesktop/portal/desktop"_L1;
constexpr auto portalInhibit = "org.freedesktop.portal.Inhibit"_L1;
constexpr auto portalRequest = "org.freedesktop.portal.Request"_L1;
constexpr auto screenSaver = "org.freedesktop.ScreenSaver"_L1;
constexpr auto screenSaverPath = "/org/freedesktop/ScreenSaver"_L1;

/// The portal's flag for a session that is not to be taken for idle.
constexpr uint idle = 8;

} // namespace

ScreenAwake::ScreenAwake(const QDBusConnection &bus, AlphaTabController &controller, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
{
    if (m_bus.isConnected())
        controller.isPlaying.observe(this, [this](bool playing) { follow(playing); });
}

ScreenAwake::~ScreenAwake() { release(); }

void ScreenAwake::follow(bool playing)
{
    if (m_wanted == playing)
        return;
    m_wanted = playing;
    if (m_state == State::Free && playing)
        askPortal();
    else if (m_state != State::Asking && !playing)
        release();
}

void ScreenAwake::askPortal()
{
    m_state = State::Asking;
    QDBusMessage ask = QDBusMessage::createMethodCall(portal, portalPath, portalInhibit, u"Inhibit"_s);
    ask << QString() << idle << QVariantMap{ { u"reason"_s, tr("Music is playing") } };
    auto *answer = new QDBusPendingCallWatcher(m_bus.asyncCall(ask), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QDBusObjectPath> reply = *answer;
        answer->deleteLater();
        if (reply.isError())
            askScreenSaver();
        else
            portalHolds(reply.value());
    });
}

void ScreenAwake::portalHolds(const QDBusObjectPath &request)
{
    m_state = State::HeldByPortal;
    m_request = request.path();
    m_bus.connect(portal, m_request, portalRequest, u"Response"_s, this, SLOT(portalResponded(uint)));
    if (!m_wanted)
        release();
}

void ScreenAwake::portalResponded(uint response)
{
    // A portal without a desktop behind it that could do it.
    if (response == 0 || m_state != State::HeldByPortal)
        return;
    release();
    if (m_wanted)
        askScreenSaver();
}

void ScreenAwake::askScreenSaver()
{
    m_state = State::Asking;
    QDBusMessage ask = QDBusMessage::createMethodCall(screenSaver, screenSaverPath, screenSaver, u"Inhibit"_s);
    ask << u"Quaverly"_s << tr("Music is playing");
    auto *answer = new QDBusPendingCallWatcher(m_bus.asyncCall(ask), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<uint> reply = *answer;
        answer->deleteLater();
        if (reply.isError()) {
            m_state = State::Free;
            return;
        }
        m_state = State::HeldByScreenSaver;
        m_cookie = reply.value();
        if (!m_wanted)
            release();
    });
}

void ScreenAwake::release()
{
    if (m_state == State::HeldByPortal) {
        m_bus.disconnect(portal, m_request, portalRequest, u"Response"_s, this, SLOT(portalResponded(uint)));
        m_bus.send(QDBusMessage::createMethodCall(portal, m_request, portalRequest, u"Close"_s));
    } else if (m_state == State::HeldByScreenSaver) {
        QDBusMessage end = QDBusMessage::createMethodCall(screenSaver, screenSaverPath, screenSaver, u"UnInhibit"_s);
        end << m_cookie;
        m_bus.send(end);
    }
    m_state = State::Free;
}
