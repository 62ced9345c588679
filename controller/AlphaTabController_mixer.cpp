#include "controller/AlphaTabController.h"
#include "engine_host/bridge/BridgeCalls.h"

#include <algorithm>

bool AlphaTabController::editTrack(int id, const std::function<void(TrackInfo &)> &change)
{
    const QList<TrackInfo> &current = tracks;
    const auto found = std::find_if(current.cbegin(), current.cend(), [id](const TrackInfo &t) { return t.id == id; });
    if (found == current.cend())
        return false;
    const qsizetype position = std::distance(current.cbegin(), found);
    tracks.edit([&](QList<TrackInfo> &list) { change(list[position]); });
    return true;
}

void AlphaTabController::toggleVisible(int id)
{
    if (editTrack(id, [](TrackInfo &track) { track.visible = !track.visible; }))
        setVisibleTracks();
}

void AlphaTabController::toggleMute(int id)
{
    bool mute = false;
    if (editTrack(id, [&mute](TrackInfo &track) { mute = track.mute = !track.mute; }))
        js(BridgeCalls::setTrackMute(id, mute));
}

void AlphaTabController::toggleSolo(int id)
{
    bool solo = false;
    if (editTrack(id, [&solo](TrackInfo &track) { solo = track.solo = !track.solo; }))
        js(BridgeCalls::setTrackSolo(id, solo));
}

void AlphaTabController::setTrackVolume(int id, double volume)
{
    if (editTrack(id, [volume](TrackInfo &track) { track.volume = volume; }))
        js(BridgeCalls::setTrackVolume(id, volume));
}

void AlphaTabController::setVisibleTracks()
{
    QList<int> ids;
    for (const TrackInfo &track : tracks.value()) {
        if (track.visible)
            ids << track.id;
    }
    if (!ids.isEmpty())
        js(BridgeCalls::renderTracks(ids));
}

void AlphaTabController::showTracks(const QList<int> &ids)
{
    tracks.edit([&ids](QList<TrackInfo> &list) {
        for (TrackInfo &track : list)
            track.visible = ids.contains(track.id);
    });
    setVisibleTracks();
}
