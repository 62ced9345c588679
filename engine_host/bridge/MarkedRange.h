#pragma once

#include <QVariantMap>

#include <optional>

/// A range of a score as it is written: from a tick of one bar to a tick of the same or a later one.
struct MarkedRange {
    int startBar = 0;
    double startTick = 0;
    int endBar = 0;
    /// Negative for the end of the bar.
    double endTick = 0;

    bool operator==(const MarkedRange &) const = default;

    /// As the page has it: bars and ticks by their names.
    QVariantMap toMap() const;
    /// Nothing where that is no range.
    static std::optional<MarkedRange> fromMap(const QVariantMap &map);
};
