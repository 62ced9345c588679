#pragma once

#include <optional>

/// When a speed trainer raises the speed, and by how much. Speeds are percent of the score's own.
class SpeedTrainer final {
public:
    struct Steps {
        int from = 60;
        int to = 100;
        int step = 5;
        /// How often the loop is played at each speed.
        int passes = 2;
    };

    SpeedTrainer() = default;
    explicit SpeedTrainer(const Steps &steps);

    const Steps &steps() const { return m_steps; }
    /// Passes that have ended since the speed was raised last.
    int passes() const { return m_passes; }

    /// Begins anew.
    /// @return the speed to begin with
    int begin();
    /// @return the speed to go on with when the pass that is played now ends; nothing while it stays as it is
    std::optional<double> next(double speed) const;
    /// A pass has ended.
    /// @param speed that it had; one that was set by hand is where the next step goes up from
    /// @return what next() was
    std::optional<double> pass(double speed);

private:
    Steps m_steps;
    int m_passes = 0;
};
