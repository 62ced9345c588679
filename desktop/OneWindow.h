#pragma once

#include "desktop/Launch.h"
#include "desktop/LaunchBus.h"
#include "desktop/LaunchSocket.h"

#include <QObject>

struct LaunchSession;

/// Has all launches of a user's session come to one program: over the session bus, and over a socket where there is
/// none. A running program that does not answer costs a launch a few seconds, never its window.
class OneWindow final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OneWindow)

public:
    /// @param answerTimeout how long a running program may take to answer; one that is starting does so when its window
    /// is there
    OneWindow(const QDBusConnection &bus, const LaunchSession &session,
        std::chrono::milliseconds answerTimeout = std::chrono::seconds(10));
    ~OneWindow() override;

    /// True when a running program has taken the launch, and this one has nothing left to do. Otherwise further
    /// launches come here.
    bool goesElsewhere(const Launch &launch);

Q_SIGNALS:
    /// Somebody has started the program once more.
    void launched(const Launch &launch);

private:
    const bool m_hasBus;
    LaunchBus m_bus;
    LaunchSocket m_socket;
};
