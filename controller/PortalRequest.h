#pragma once

#include <QDBusConnection>
#include <QEventLoop>
#include <QObject>
#include <QVariantMap>

#include <optional>

class QDBusMessage;

/// One question to a portal of the desktop, and the waiting for what the user answers.
class PortalRequest final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PortalRequest)

public:
    /// How long the portal may take to say that it has understood, in milliseconds. What it has to start for that
    /// counts too.
    static constexpr int portalTimeoutMs = 8000;

    /// @param token part of the request's name on the bus; letters and digits
    PortalRequest(const QDBusConnection &bus, const QString &token);
    ~PortalRequest() override;

    /// Sends `call`, which carries the token, and turns the event loop until the user has answered. Nothing where no
    /// portal takes the call; what the portal gives, empty where the user gives nothing.
    std::optional<QVariantMap> run(const QDBusMessage &call);

private Q_SLOTS:
    void responded(uint response, const QVariantMap &results);

private:
    void listen(const QString &path);

    QDBusConnection m_bus;
    QString m_path;
    QEventLoop m_loop;
    bool m_refused = false;
    QVariantMap m_results;
};
