#pragma once

#include "controller/TrackInfo.h"

#include <QList>

/// Shows one track alone, and the tracks that were shown before once it is chosen again.
class AloneTrack final {
public:
    /// @param tracks as they are shown now
    /// @param id of the track that is chosen
    /// @return the ids of those that are to be shown, one at least
    QList<int> chosen(const QList<TrackInfo> &tracks, int id);

private:
    /// The ids of what was shown before a track was shown alone.
    QList<int> m_before;
};
