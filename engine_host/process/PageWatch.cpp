#include "engine_host/process/PageWatch.h"

#include <utility>

using namespace std::chrono_literals;

namespace {

/// How late a timer may be before it says that the process, or the machine, stood still.
constexpr auto standstill = 1s;

} // namespace

PageWatch::PageWatch(std::chrono::milliseconds answerTimeout, std::chrono::milliseconds questionDelay, QObject *parent)
    : QObject(parent)
{
    m_answerTimer.setSingleShot(true);
    m_answerTimer.setInterval(answerTimeout);
    m_questionTimer.setSingleShot(true);
    m_questionTimer.setInterval(questionDelay);
    connect(&m_answerTimer, &QTimer::timeout, this, &PageWatch::giveUp);
    connect(&m_questionTimer, &QTimer::timeout, this, &PageWatch::questionDue);
}

void PageWatch::start()
{
    m_watching = true;
    m_owed = 0;
    m_late = false;
    m_answerTimer.stop();
    m_questionTimer.start();
}

void PageWatch::stop()
{
    m_watching = false;
    m_owed = 0;
    m_late = false;
    m_answerTimer.stop();
    m_questionTimer.stop();
}

void PageWatch::asked()
{
    if (!m_watching)
        return;
    m_questionTimer.stop();
    if (++m_owed == 1)
        wait();
}

void PageWatch::answered()
{
    // An answer of a page that was watched before.
    if (!m_watching || m_owed == 0)
        return;
    if (--m_owed > 0) {
        // It works its way through what it was asked.
        wait();
    } else {
        m_answerTimer.stop();
        m_questionTimer.start();
    }
    if (std::exchange(m_late, false))
        Q_EMIT answersAgain();
}

void PageWatch::wait()
{
    m_sinceWait.start();
    m_answerTimer.start();
}

void PageWatch::giveUp()
{
    if (m_sinceWait.hasExpired((m_answerTimer.intervalAsDuration() + standstill).count())) {
        wait();
        return;
    }
    m_late = true;
    Q_EMIT notAnswering();
}
