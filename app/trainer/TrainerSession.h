#pragma once

#include "app/trainer/PassDetector.h"
#include "app/trainer/SpeedTrainer.h"
#include "controller/Reported.h"

#include <QElapsedTimer>
#include <QObject>

#include <functional>

class AlphaTabController;

/// Trains: has the loop played again and again, faster after some passes. It reads the controller's published
/// properties and assigns its speed.
class TrainerSession final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TrainerSession)

public:
    /// A new speed is heard about so long after it was asked for. It is asked for with the first position that is less
    /// than this before the loop's end, in real milliseconds: with two of them in that time at most, it is heard within
    /// 100 ms of the loop's start.
    static constexpr double leadMs = 130;

    struct Plan {
        SpeedTrainer::Steps steps;
        /// Whether each pass is counted in. A recording cannot be.
        bool countIn = false;
        /// Whether the speed goes back to the first one when the music has been stopped, which is not a pause.
        bool restart = true;
    };

    /// @param clock milliseconds that never go back; the system's where there is none
    explicit TrainerSession(
        AlphaTabController &controller, std::function<qint64()> clock = {}, QObject *parent = nullptr);
    ~TrainerSession() override;

    Reported<bool, TrainerSession> running{ false };
    /// Passes that have ended at the speed that is set.
    Reported<int, TrainerSession> passes{ 0 };

    const Plan &plan() const { return m_plan; }

    /// Goes to the beginning of the loop and plays it, at the first speed.
    void begin(const Plan &plan);
    /// Whether each pass is counted in, from now on.
    void setCountIn(bool countIn);
    /// Leaves speed, loop and music as they are.
    void end();

private:
    void countInPasses(bool count);
    void positionChanged(double positionMs);
    void playingChanged(bool playing);
    void passEnded();
    void stepAhead(double positionMs);
    void takeStepBack();
    void beginAgainIfStopped(double positionMs);

    AlphaTabController &m_controller;
    const std::function<qint64()> m_clock;
    QElapsedTimer m_time;
    Plan m_plan;
    SpeedTrainer m_trainer;
    PassDetector m_passes;
    /// A step that was made before its pass has ended.
    struct Ahead {
        double before;
        double after;
    };
    std::optional<Ahead> m_ahead;
    /// Whether the music stands still where it was left, and not at a beginning.
    bool m_paused = false;
    /// Whether the count-in was off before.
    bool m_tookCountIn = false;
};
