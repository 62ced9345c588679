#include "app/menus/AloneTrack.h"

#include <algorithm>

QList<int> AloneTrack::chosen(const QList<TrackInfo> &tracks, int id)
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
    if (!back)
        return { id };
    const auto wasShown = [this](const TrackInfo &track) { return m_before.contains(track.id); };
    const bool all = std::none_of(tracks.cbegin(), tracks.cend(), wasShown);
    QList<int> again;
    for (const TrackInfo &track : tracks) {
        if (all || wasShown(track))
            again << track.id;
    }
    return again;
}
