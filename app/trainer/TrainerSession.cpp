#include "app/trainer/TrainerSession.h"

#include "controller/AlphaTabController.h"
#include "engine_host/bridge/BridgeCalls.h"

#include <cmath>
#include <utility>

namespace {

/// A position this near to a beginning is there, in milliseconds of score time: positions are rounded to ticks.
constexpr double sameMs = 20;

} // namespace

TrainerSession::TrainerSession(AlphaTabController &controller, std::function<qint64()> clock, QObject *parent)
    : QObject(parent)
    , m_controller(controller)
    , m_clock(clock ? std::move(clock) : [this] { return m_time.elapsed(); })
{
    m_time.start();
    m_controller.currentTime.onChange(this, [this](double positionMs) { positionChanged(positionMs); });
    m_controller.isPlaying.onChange(this, [this](bool playing) { playingChanged(playing); });
}

TrainerSession::~TrainerSession() { end(); }

void TrainerSession::begin(const Plan &plan)
{
    end();
    m_plan = plan;
    m_trainer = SpeedTrainer(plan.steps);
    m_paused = false;
    m_ahead.reset();
    countInPasses(plan.countIn);
    m_controller.tempoPercent = m_trainer.begin();
    if (!m_controller.looping)
        m_controller.looping = true;
    m_controller.js(BridgeCalls::seekToTime(m_controller.loopSpan.value().startMs));
    if (!m_controller.isPlaying)
        m_controller.js(BridgeCalls::playPause());
    running = true;
    passes = 0;
}

void TrainerSession::setCountIn(bool countIn)
{
    if (!running)
        return;
    m_plan.countIn = countIn;
    countInPasses(countIn);
}

void TrainerSession::countInPasses(bool count)
{
    m_controller.countsInPasses = count;
    if (count && !m_controller.countIn) {
        m_tookCountIn = true;
        m_controller.countIn = true;
    } else if (!count && std::exchange(m_tookCountIn, false) && m_controller.countIn) {
        m_controller.countIn = false;
    }
}

void TrainerSession::end()
{
    if (!running)
        return;
    countInPasses(false);
    running = false;
}

void TrainerSession::positionChanged(double positionMs)
{
    const bool passed = m_passes.follow({ .positionMs = positionMs,
                                            .playing = m_controller.isPlaying,
                                            .looping = m_controller.looping,
                                            .speed = m_controller.tempoPercent / 100,
                                            .nowMs = m_clock() },
        m_controller.loopSpan);
    if (!running)
        return;
    if (passed)
        passEnded();
    else if (m_controller.isPlaying)
        stepAhead(positionMs);
    else
        beginAgainIfStopped(positionMs);
}

/// The loop's end is near, or it was and somebody went elsewhere.
void TrainerSession::stepAhead(double positionMs)
{
    const double speed = m_controller.tempoPercent;
    const double leftMs = (m_controller.loopSpan.value().endMs - positionMs) * 100 / speed;
    const bool near = m_controller.looping && leftMs >= 0 && leftMs <= leadMs;
    if (m_ahead && leftMs > 2 * leadMs)
        takeStepBack();
    else if (!m_ahead && near) {
        if (const std::optional<double> faster = m_trainer.next(speed)) {
            m_ahead = Ahead{ .before = speed, .after = *faster };
            m_controller.tempoPercent = *faster;
        }
    }
}

void TrainerSession::takeStepBack()
{
    const std::optional<Ahead> ahead = std::exchange(m_ahead, std::nullopt);
    // A speed that was set by hand meanwhile stays.
    if (ahead && qFuzzyCompare(m_controller.tempoPercent.value(), ahead->after))
        m_controller.tempoPercent = ahead->before;
}

void TrainerSession::playingChanged(bool playing)
{
    m_passes.playingChanged(playing, m_clock());
    m_paused = !playing;
}

void TrainerSession::passEnded()
{
    const std::optional<Ahead> ahead = std::exchange(m_ahead, std::nullopt);
    const double speed = m_controller.tempoPercent;
    const bool stepped = ahead && qFuzzyCompare(speed, ahead->after);
    const std::optional<double> faster = m_trainer.pass(stepped ? ahead->before : speed);
    if (faster && !stepped)
        m_controller.tempoPercent = *faster;
    passes = m_trainer.passes();
}

void TrainerSession::beginAgainIfStopped(double positionMs)
{
    const auto isAt = [positionMs](double ms) { return std::abs(positionMs - ms) <= sameMs; };
    if (!m_paused || !m_plan.restart || (!isAt(0) && !isAt(m_controller.loopSpan.value().startMs)))
        return;
    m_paused = false;
    m_ahead.reset();
    m_controller.tempoPercent = m_trainer.begin();
    passes = 0;
}
