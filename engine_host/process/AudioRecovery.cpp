#include "engine_host/process/AudioRecovery.h"

#include <algorithm>
#include <utility>

AudioRecovery::AudioRecovery(Dependencies dependencies, const Times &times)
    : m_dependencies(std::move(dependencies))
    , m_times(times)
    , m_retryDelay(times.firstRetryDelay)
{
    m_timer.setInterval(times.interval);
    connect(&m_timer, &QTimer::timeout, this, &AudioRecovery::look);
}

void AudioRecovery::setLost(bool lost)
{
    if (lost == m_timer.isActive())
        return;
    m_server = AudioServer::Presence::Away;
    if (!lost) {
        m_timer.stop();
        return;
    }
    m_timer.start();
    look();
}

void AudioRecovery::look()
{
    const AudioServer::Presence server = m_dependencies.server();
    if (std::exchange(m_server, server) < server) {
        // This is another one.
        m_sinceEnd.invalidate();
        m_retryDelay = m_times.firstRetryDelay;
    }
    if (server == AudioServer::Presence::Away)
        return;
    if (m_sinceEnd.isValid()) {
        if (!m_sinceEnd.hasExpired(m_retryDelay.count()))
            return;
        m_retryDelay = std::min(2 * m_retryDelay, m_times.lastRetryDelay);
    }
    m_sinceEnd.start();
    m_dependencies.endService();
}
