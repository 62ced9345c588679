#pragma once

#include "controller/TrackInfo.h"
#include "engine_host/bridge/MarkedRange.h"

#include <QJsonObject>
#include <QList>

#include <optional>

/// How somebody left a score: what it gets back when it is opened again.
struct RememberedScore {
    /// 25...200, as the slider offers it.
    double tempoPercent = 100;
    /// 0.5...2
    double zoom = 1;
    bool horizontalLayout = false;
    bool looping = false;
    bool metronome = false;
    bool countIn = false;
    /// Milliseconds of score time.
    double position = 0;
    /// What looping loops; nothing for the whole score.
    std::optional<MarkedRange> range;
    /// In the order of the score. Their names are the score's.
    QList<TrackInfo> tracks;

    bool operator==(const RememberedScore &) const = default;

    QJsonObject toJson() const;
    /// What is missing or of another kind is as in a score that nobody touched; numbers are pulled into their ranges.
    static RememberedScore fromJson(const QJsonObject &object);
};
