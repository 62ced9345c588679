#include "controller/PortalRequest.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QGuiApplication>

using namespace Qt::StringLiterals;

namespace {

const QString &portal()
{
    static const QString name = u"org.freedesktop.portal.Desktop"_s;
    return name;
}

const QString &requestInterface()
{
    static const QString name = u"org.freedesktop.portal.Request"_s;
    return name;
}

} // namespace

PortalRequest::PortalRequest(const QDBusConnection &bus, const QString &token, const Timeouts &timeouts)
    : m_timeouts(timeouts)
    , m_bus(bus)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &PortalRequest::giveUp);
    // The answer may come before the portal has said under which name; this is the one that it takes.
    QString sender = m_bus.baseService().mid(1);
    listen(u"/org/freedesktop/portal/desktop/request/"_s + sender.replace(u'.', u'_') + u'/' + token);
}

PortalRequest::~PortalRequest() { listen({}); }

void PortalRequest::listen(const QString &path)
{
    const char *slot = SLOT(responded(uint, QVariantMap));
    if (!m_path.isEmpty())
        m_bus.disconnect(portal(), m_path, requestInterface(), u"Response"_s, this, slot);
    m_path = path;
    if (!m_path.isEmpty())
        m_bus.connect(portal(), m_path, requestInterface(), u"Response"_s, this, slot);
}

std::optional<QVariantMap> PortalRequest::run(const QDBusMessage &call)
{
    const auto see = [this](Qt::ApplicationState state) { m_seen = m_seen || state != Qt::ApplicationActive; };
    see(QGuiApplication::applicationState());
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, see);
    const QDBusPendingCallWatcher answer(m_bus.asyncCall(call, static_cast<int>(m_timeouts.answer.count())));
    connect(&answer, &QDBusPendingCallWatcher::finished, this,
        [this](const QDBusPendingCallWatcher *finished) { answered(finished->reply()); });
    const QDBusServiceWatcher watcher(portal(), m_bus, QDBusServiceWatcher::WatchForUnregistration);
    connect(&watcher, &QDBusServiceWatcher::serviceUnregistered, this, &PortalRequest::endWithoutAnswer);
    m_loop.exec();
    return m_refused ? std::nullopt : std::optional(m_results);
}

void PortalRequest::answered(const QDBusMessage &answer)
{
    const QDBusPendingReply<QDBusObjectPath> reply = answer;
    if (reply.isError()) {
        m_refused = true;
        m_tookTooLong = reply.error().type() == QDBusError::NoReply;
        m_loop.quit();
        return;
    }
    if (reply.value().path() != m_path)
        listen(reply.value().path());
    m_timer.start(m_timeouts.panel);
}

void PortalRequest::responded(uint response, const QVariantMap &results)
{
    constexpr uint chosen = 0;
    constexpr uint cancelled = 1;
    if (response > cancelled) {
        endWithoutAnswer();
        return;
    }
    if (response == chosen)
        m_results = results;
    m_loop.quit();
}

/// Portals say the same of a panel that could not be shown and of one that the user has closed by its frame.
void PortalRequest::endWithoutAnswer()
{
    m_refused = !m_seen;
    m_loop.quit();
}

void PortalRequest::cancel()
{
    closePanel();
    m_loop.quit();
}

void PortalRequest::closePanel()
{
    m_bus.send(QDBusMessage::createMethodCall(portal(), m_path, requestInterface(), u"Close"_s));
}

void PortalRequest::giveUp()
{
    if (m_seen)
        return;
    closePanel();
    m_refused = true;
    m_tookTooLong = true;
    m_loop.quit();
}
