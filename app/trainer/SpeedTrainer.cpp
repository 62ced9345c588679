#include "app/trainer/SpeedTrainer.h"

#include <algorithm>

SpeedTrainer::SpeedTrainer(const Steps &steps)
    : m_steps(steps)
{
}

int SpeedTrainer::begin()
{
    m_passes = 0;
    return m_steps.from;
}

std::optional<double> SpeedTrainer::next(double speed) const
{
    if (m_passes + 1 < m_steps.passes || speed >= m_steps.to)
        return std::nullopt;
    return std::min<double>(speed + m_steps.step, m_steps.to);
}

std::optional<double> SpeedTrainer::pass(double speed)
{
    const std::optional<double> faster = next(speed);
    m_passes = (m_passes + 1) % m_steps.passes;
    return faster;
}
