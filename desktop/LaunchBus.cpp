#include "desktop/LaunchBus.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>

using namespace Qt::StringLiterals;

namespace {

constexpr auto interface = "org.freedesktop.Application"_L1;
constexpr auto activationToken = "activation-token"_L1;
/// The older name of the same thing.
constexpr auto startupId = "desktop-startup-id"_L1;

} // namespace

QString LaunchBus::service() { return u"org.quaverly.Quaverly"_s; }

QString LaunchBus::path() { return u"/org/quaverly/Quaverly"_s; }

LaunchBus::LaunchBus(const QDBusConnection &bus, const QString &sessionKey, std::chrono::milliseconds answerTimeout)
    : m_bus(bus)
    , m_sessionService(service() + u'.' + sessionKey)
    , m_answerTimeout(answerTimeout)
{
}

LaunchBus::~LaunchBus()
{
    if (!m_receives)
        return;
    m_bus.interface()->unregisterService(m_sessionService);
    m_bus.interface()->unregisterService(service());
    m_bus.unregisterObject(path());
}

bool LaunchBus::receive()
{
    if (m_receives)
        return true;
    // The object comes before the name, so that whoever sees the name finds it.
    if (!m_bus.isConnected() || !m_bus.registerObject(path(), this, QDBusConnection::ExportAllSlots))
        return false;
    const auto answer = m_bus.interface()->registerService(m_sessionService);
    if (!answer.isValid() || answer.value() != QDBusConnectionInterface::ServiceRegistered) {
        m_bus.unregisterObject(path());
        return false;
    }
    m_receives = true;
    // Behind a program of another session, whose place this one takes when that ends.
    m_bus.interface()->registerService(service(), QDBusConnectionInterface::QueueService);
    return true;
}

bool LaunchBus::hand(const Launch &launch) const
{
    if (!m_bus.isConnected())
        return false;
    const bool opens = !launch.files.isEmpty();
    QDBusMessage call
        = QDBusMessage::createMethodCall(m_sessionService, path(), interface, opens ? u"Open"_s : u"Activate"_s);
    call.setAutoStartService(false);
    if (opens)
        call << QUrl::toStringList(launch.files, QUrl::FullyEncoded);
    QVariantMap platformData;
    if (!launch.activationToken.isEmpty()) {
        platformData.insert(activationToken, launch.activationToken);
        platformData.insert(startupId, launch.activationToken);
    }
    call << platformData;
    return m_bus.call(call, QDBus::Block, static_cast<int>(m_answerTimeout.count())).type() == QDBusMessage::ReplyMessage;
}

void LaunchBus::Activate(const QVariantMap &platformData) { announce({}, platformData); }

void LaunchBus::Open(const QStringList &uris, const QVariantMap &platformData) { announce(uris, platformData); }

void LaunchBus::ActivateAction(const QString &, const QVariantList &, const QVariantMap &platformData)
{
    announce({}, platformData);
}

void LaunchBus::announce(const QStringList &uris, const QVariantMap &platformData)
{
    Launch launch;
    for (const QString &uri : uris)
        launch.files << QUrl(uri);
    launch.activationToken = platformData.value(activationToken, platformData.value(startupId)).toString();
    QMetaObject::invokeMethod(this, [this, launch] { Q_EMIT launched(launch); }, Qt::QueuedConnection);
}
