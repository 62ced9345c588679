#include "app/menus/AloneTrack.h"

#include <algorithm>

QList<TrackInfo> AloneTrack::chosen(QList<TrackInfo> tracks, int id)
{
    QList<int> shown;
    for (const TrackInfo &track : tracks) {
        if (track.visible)
            shown << track.id;
    }
    const bool back = shown == QList<int>{ id };
    // From one track alone to another, what was shown before stays.
    if (shown.size() != 1)
        m_before = shown;
    const auto wasShown = [this](const TrackInfo &track) { return m_before.contains(track.id); };
    const bool all = std::none_of(tracks.cbegin(), tracks.cend(), wasShown);
    for (TrackInfo &track : tracks)
        track.visible = back ? all || wasShown(track) : track.id == id;
    return tracks;
}
