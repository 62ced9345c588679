#pragma once

#include "desktop/Launch.h"

#include <QLocalServer>
#include <QObject>

#include <chrono>

class QLocalSocket;

/// Launches over a socket in the user's own folder, for sessions without a bus.
///
/// A lock on a file beside the socket says who receives. The system gives it back when a program ends in any way; the
/// socket that such a program leaves behind is replaced.
class LaunchSocket final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LaunchSocket)

public:
    /// @param folder that nobody else can enter; without one there are no launches from elsewhere
    /// @param sessionKey of LaunchSession
    /// @param answerTimeout how long a running program may take to answer
    LaunchSocket(const QString &folder, const QString &sessionKey, std::chrono::milliseconds answerTimeout);
    ~LaunchSocket() override;

    /// Has the session's launches come here, unless they go to another program.
    bool receive();
    /// Hands a launch to the program that receives them. False where there is none, or where it does not answer.
    bool hand(const Launch &launch) const;

Q_SIGNALS:
    void launched(const Launch &launch);

private:
    void takeConnection();
    void read(QLocalSocket &socket);

    /// Without its ending; empty where there is no folder.
    const QString m_path;
    const std::chrono::milliseconds m_answerTimeout;
    QLocalServer m_server;
    int m_lock = -1;
};
