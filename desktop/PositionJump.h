#pragma once

#include <QtGlobal>

#include <optional>

/// Tells when a position is not where somebody expects it who knows the last announced one and counts on with the
/// speed. Positions are milliseconds of score time.
class PositionJump final {
public:
    /// How far off may pass, in milliseconds: positions come 15 times a second and late when the page is busy. One that
    /// rests does not move at all.
    static constexpr double playingToleranceMs = 400;
    static constexpr double restingToleranceMs = 20;

    /// Takes what is reported now.
    /// @param nowMs of a clock that never goes back
    /// @return whether the position has to be announced. A change of `playing` or `speed` is announced as such.
    bool follow(double positionMs, bool playing, double speed, qint64 nowMs);

private:
    struct Announced {
        double positionMs;
        bool playing;
        double speed;
        qint64 nowMs;
    };

    std::optional<Announced> m_announced;
};
