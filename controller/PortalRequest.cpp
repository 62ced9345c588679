#include "controller/PortalRequest.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>

using namespace Qt::StringLiterals;

namespace {

const QString &portal()
{
    static const QString name = u"org.freedesktop.portal.Desktop"_s;
    return name;
}

} // namespace

PortalRequest::PortalRequest(const QDBusConnection &bus, const QString &token)
    : m_bus(bus)
{
    // The answer may come before the portal has said under which name; this is the one that it takes.
    QString sender = m_bus.baseService().mid(1);
    listen(u"/org/freedesktop/portal/desktop/request/"_s + sender.replace(u'.', u'_') + u'/' + token);
}

PortalRequest::~PortalRequest() { listen({}); }

void PortalRequest::listen(const QString &path)
{
    const QString interface = u"org.freedesktop.portal.Request"_s;
    const char *slot = SLOT(responded(uint, QVariantMap));
    if (!m_path.isEmpty())
        m_bus.disconnect(portal(), m_path, interface, u"Response"_s, this, slot);
    m_path = path;
    if (!m_path.isEmpty())
        m_bus.connect(portal(), m_path, interface, u"Response"_s, this, slot);
}

std::optional<QVariantMap> PortalRequest::run(const QDBusMessage &call)
{
    const QDBusPendingCallWatcher answer(m_bus.asyncCall(call, portalTimeoutMs));
    connect(&answer, &QDBusPendingCallWatcher::finished, this, [this](const QDBusPendingCallWatcher *finished) {
        const QDBusPendingReply<QDBusObjectPath> reply = *finished;
        m_refused = reply.isError();
        if (m_refused)
            m_loop.quit();
        else if (reply.value().path() != m_path)
            listen(reply.value().path());
    });
    const QDBusServiceWatcher watcher(portal(), m_bus, QDBusServiceWatcher::WatchForUnregistration);
    connect(&watcher, &QDBusServiceWatcher::serviceUnregistered, &m_loop, &QEventLoop::quit);
    m_loop.exec();
    return m_refused ? std::nullopt : std::optional(m_results);
}

void PortalRequest::responded(uint response, const QVariantMap &results)
{
    if (response == 0)
        m_results = results;
    m_loop.quit();
}
