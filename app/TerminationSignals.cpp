#include "app/TerminationSignals.h"

#include "app/LastResort.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::array handled{ SIGINT, SIGTERM, SIGHUP };

/// From the signal's handler, which may do next to nothing, to the event loop.
std::array<int, 2> ends{ -1, -1 };

void tell(int)
{
    LastResort::arm();
    const char byte = 0;
    // A pipe that is full has told already.
    [[maybe_unused]] const ssize_t written = ::write(ends[1], &byte, 1);
}

} // namespace

TerminationSignals::TerminationSignals()
{
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return; // the system's own way to end stays
    m_notifier = new QSocketNotifier(ends[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &TerminationSignals::quit);
    for (const int number : handled) {
        // What the program was told to ignore at its start, as by nohup, it goes on ignoring.
        if (std::signal(number, &tell) == SIG_IGN)
            std::signal(number, SIG_IGN);
    }
}

TerminationSignals::~TerminationSignals()
{
    if (!m_notifier)
        return;
    for (const int number : handled)
        std::signal(number, SIG_DFL);
    delete m_notifier;
    for (const int end : ends)
        ::close(end);
}

void TerminationSignals::quit()
{
    // The second time, whoever asks shall not have to wait.
    for (const int number : handled)
        std::signal(number, SIG_DFL);
    m_notifier->setEnabled(false);
    QCoreApplication::exit(0);
}
