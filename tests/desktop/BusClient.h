#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QTest>
#include <QVariantMap>

/// Another program on the bus, in this thread: while it waits, the tested one goes on.
class BusClient final {
public:
    BusClient(QDBusConnection bus, QString service, QString path)
        : m_bus(std::move(bus))
        , m_service(std::move(service))
        , m_path(std::move(path))
    {
    }

    QDBusMessage call(const QString &interface, const QString &method, const QVariantList &arguments = {})
    {
        QDBusMessage message = QDBusMessage::createMethodCall(m_service, m_path, interface, method);
        message.setArguments(arguments);
        const QDBusPendingCall answer = m_bus.asyncCall(message);
        while (!answer.isFinished())
            QTest::qWait(1);
        return answer.reply();
    }

    QVariant get(const QString &interface, const QString &property)
    {
        const QDBusMessage reply
            = call(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"), { interface, property });
        return reply.arguments().value(0).value<QDBusVariant>().variant();
    }

    bool set(const QString &interface, const QString &property, const QVariant &value)
    {
        const QDBusMessage reply = call(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Set"),
            { interface, property, QVariant::fromValue(QDBusVariant(value)) });
        return reply.type() == QDBusMessage::ReplyMessage;
    }

    QDBusConnection &bus() { return m_bus; }

private:
    QDBusConnection m_bus;
    const QString m_service;
    const QString m_path;
};
