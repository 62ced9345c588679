#include "app/trainer/PassDetector.h"

#include <algorithm>
#include <cmath>
#include <utility>

bool PassDetector::follow(const Report &report, const LoopSpan &loop)
{
    const std::optional<Report> last = std::exchange(m_last, report);
    if (!last || !last->playing || !report.playing || !last->looping || !report.looping)
        return false;
    if (loop.endMs <= loop.startMs || report.positionMs >= last->positionMs)
        return false;
    const double speed = std::max({ last->speed, report.speed, 1.0 });
    // The loop may have started over right after the last report, and one report may be late.
    const double expected
        = last->positionMs + (static_cast<double>(report.nowMs - last->nowMs) + 2 * reportIntervalMs) * speed;
    return expected >= loop.endMs && std::abs(report.positionMs - loop.startMs) <= arrivalMs * speed;
}

void PassDetector::playingChanged(bool playing, qint64 nowMs)
{
    if (m_last) {
        m_last->playing = playing;
        m_last->nowMs = nowMs;
    }
}
