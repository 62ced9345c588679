#pragma once

#include <QDBusConnection>
#include <QEventLoop>
#include <QObject>
#include <QTimer>
#include <QVariantMap>

#include <chrono>
#include <optional>

class QDBusMessage;

/// One question to a portal of the desktop, and the waiting for what the user answers.
class PortalRequest final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PortalRequest)

public:
    struct Timeouts {
        /// How long the portal may take to say that it has understood. What it has to start for that counts too.
        std::chrono::milliseconds answer = std::chrono::seconds(8);
        /// How long it may take from there until something of it is in front of the application's windows.
        std::chrono::milliseconds panel = std::chrono::seconds(15);
    };

    /// @param token part of the request's name on the bus; letters and digits
    PortalRequest(const QDBusConnection &bus, const QString &token, const Timeouts &timeouts);
    ~PortalRequest() override;

    /// Sends `call`, which carries the token, and turns the event loop until the user has answered. Nothing where the
    /// user was shown nothing; what the portal gives, empty where the user gives nothing.
    std::optional<QVariantMap> run(const QDBusMessage &call);

    /// Ends the waiting as if the user had closed the panel, which goes where it is there.
    void cancel();

    /// Whether the user was made to wait for nothing.
    bool tookTooLong() const { return m_tookTooLong; }

private Q_SLOTS:
    void responded(uint response, const QVariantMap &results);

private:
    void listen(const QString &path);
    void answered(const QDBusMessage &answer);
    void endWithoutAnswer();
    void giveUp();
    void closePanel();

    const Timeouts m_timeouts;
    QDBusConnection m_bus;
    QString m_path;
    QEventLoop m_loop;
    QTimer m_timer;
    /// Whether another program was in front of the application's windows: else nobody has seen a panel.
    bool m_seen = false;
    bool m_refused = false;
    bool m_tookTooLong = false;
    QVariantMap m_results;
};
