#pragma once

#include "desktop/Launch.h"

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

#include <chrono>

/// Launches over the session bus, in the words of desktop entries (org.freedesktop.Application).
///
/// The program that holds a session's name is the one that runs. The bus gives a name to one program only, and takes it
/// back when that program ends in any way.
class LaunchBus final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LaunchBus)
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    /// The name that desktops know the program by. The first session to ask has it.
    static QString service();
    static QString path();

    /// @param sessionKey of LaunchSession
    /// @param answerTimeout how long a running program may take to answer
    LaunchBus(const QDBusConnection &bus, const QString &sessionKey, std::chrono::milliseconds answerTimeout);
    ~LaunchBus() override;

    /// Has the session's launches come here, unless they go to another program.
    bool receive();
    /// Hands a launch to the program that receives them. False where there is none, or where it does not answer.
    bool hand(const Launch &launch) const;

public Q_SLOTS:
    // NOLINTBEGIN: the names are the bus's
    void Activate(const QVariantMap &platformData);
    void Open(const QStringList &uris, const QVariantMap &platformData);
    /// The desktop entry lists no actions.
    void ActivateAction(const QString &action, const QVariantList &parameter, const QVariantMap &platformData);
    // NOLINTEND

Q_SIGNALS:
    void launched(const Launch &launch);

private:
    /// Later, so that the launcher has its answer before the file is read.
    void announce(const QStringList &uris, const QVariantMap &platformData);

    QDBusConnection m_bus;
    const QString m_sessionService;
    const std::chrono::milliseconds m_answerTimeout;
    bool m_receives = false;
};
