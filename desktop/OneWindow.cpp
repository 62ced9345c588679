#include "desktop/OneWindow.h"

#include "desktop/LaunchSession.h"

OneWindow::OneWindow(const QDBusConnection &bus, const LaunchSession &session, std::chrono::milliseconds answerTimeout)
    : m_hasBus(bus.isConnected())
    , m_bus(bus, session.key, answerTimeout)
    , m_socket(session.socketFolder, session.key, answerTimeout)
{
    connect(&m_bus, &LaunchBus::launched, this, &OneWindow::launched);
    connect(&m_socket, &LaunchSocket::launched, this, &OneWindow::launched);
}

OneWindow::~OneWindow() = default;

bool OneWindow::goesElsewhere(const Launch &launch)
{
    // Two programs that start at once both want to receive, and one of them does.
    if (m_hasBus)
        return !m_bus.receive() && m_bus.hand(launch);
    return !m_socket.receive() && m_socket.hand(launch);
}
