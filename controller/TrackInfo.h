#pragma once

#include <QString>

/// One track of the loaded score as the mixer shows it.
struct TrackInfo {
    /// The track's index in the score; the key of every track operation.
    int id = 0;
    QString name;
    bool visible = true;
    bool mute = false;
    bool solo = false;
    /// As last set by the user; the sliders offer 0...1.
    double volume = 1.0;

    bool operator==(const TrackInfo &) const = default;
};
