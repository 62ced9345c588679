#include "desktop/PositionJump.h"

#include <cmath>

bool PositionJump::follow(double positionMs, bool playing, double speed, qint64 nowMs)
{
    const Announced now{ positionMs, playing, speed, nowMs };
    if (!m_announced || m_announced->playing != playing || !qFuzzyCompare(m_announced->speed, speed)) {
        m_announced = now;
        return false;
    }
    const double passed = playing ? static_cast<double>(nowMs - m_announced->nowMs) * speed : 0;
    const double tolerance = playing ? playingToleranceMs : restingToleranceMs;
    if (std::abs(positionMs - (m_announced->positionMs + passed)) <= tolerance)
        return false;
    m_announced = now;
    return true;
}
