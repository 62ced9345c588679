#pragma once

#include "engine_host/bridge/LoopSpan.h"

#include <QtGlobal>

#include <optional>

/// Tells the passes of a loop from the positions that are reported: a pass has ended when the position, which had come
/// to the loop's end, is at its start without anybody having asked for that. A jump from elsewhere, or to elsewhere, is
/// somebody's seek.
///
/// Positions are milliseconds of score time.
class PassDetector final {
public:
    /// Positions are reported so often while music plays. The last one before the loop's end is no older.
    static constexpr double reportIntervalMs = 1000.0 / 15;
    /// How far into the loop the first position of a pass may be, at the score's own speed: the page reports it when
    /// the sound system asks for more.
    static constexpr double arrivalMs = 150;

    struct Report {
        double positionMs;
        bool playing;
        bool looping;
        double speed;
        /// Of a clock that never goes back.
        qint64 nowMs;
    };

    /// @return whether a pass has ended with this report
    bool follow(const Report &report, const LoopSpan &loop);
    /// To be called when the music starts or stands still: while it stands still no time passes for it.
    void playingChanged(bool playing, qint64 nowMs);

private:
    std::optional<Report> m_last;
};
