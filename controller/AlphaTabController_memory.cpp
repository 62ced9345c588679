#include "controller/AlphaTabController.h"
#include "controller/ScoreMemory.h"
#include "engine_host/bridge/BridgeCalls.h"
#include "engine_host/bridge/PageReports.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// No content has it.
const QString demoKey = u"demo"_s;

template <typename T> void assignIfNew(Published<T> &property, const T &value)
{
    if (property.value() != value)
        property = value;
}

} // namespace

QString AlphaTabController::keyOf(const ScoreSource &source) const
{
    if (!rememberScores)
        return {};
    if (const auto *bytes = std::get_if<QByteArray>(&source))
        return ScoreMemory::keyFor(*bytes);
    return std::holds_alternative<DemoScore>(source) ? demoKey : QString();
}

void AlphaTabController::rememberScoresChanged()
{
    m_surroundings.scoreMemory->setOn(rememberScores);
    if (!rememberScores)
        return;
    const auto *url = std::get_if<QUrl>(&m_shownSource);
    if (!url) {
        m_shownKey = keyOf(m_shownSource);
        rememberShownScore();
        return;
    }
    // Nobody has looked at the content while there was no need.
    const auto read = [this, url = *url](const FileReading::Result &result) {
        const auto *shown = std::get_if<QUrl>(&m_shownSource);
        if (shown && *shown == url && m_shownKey.isEmpty()) {
            m_shownKey = result.key;
            rememberShownScore();
        }
    };
    m_keyReading = std::make_unique<FileReading>(
        url->toLocalFile(), m_surroundings.inBackground, read, FileReading::Key::OfContent);
}

void AlphaTabController::rememberShownScore()
{
    // One that is not yet as it was left has nothing new.
    if (!rememberScores || m_shownKey.isEmpty() || m_return || m_recalledPosition)
        return;
    m_surroundings.scoreMemory->remember(m_shownKey,
        { .tempoPercent = tempoPercent,
            .zoom = zoom,
            .horizontalLayout = horizontalLayout,
            .looping = looping,
            .metronome = metronome,
            .countIn = countIn,
            .position = currentTime,
            .range = m_range,
            .tracks = tracks });
}

void AlphaTabController::recallScore()
{
    m_recalledPosition.reset();
    if (!rememberScores || m_shownKey.isEmpty() || m_return)
        return;
    const std::optional<RememberedScore> score = m_surroundings.scoreMemory->recall(m_shownKey);
    if (!score)
        return;
    assignIfNew(tempoPercent, score->tempoPercent);
    assignIfNew(horizontalLayout, score->horizontalLayout);
    assignIfNew(zoom, score->zoom);
    assignIfNew(looping, score->looping);
    assignIfNew(metronome, score->metronome);
    assignIfNew(countIn, score->countIn && canCountIn);
    recallMixer(score->tracks);
    if (score->range)
        m_engine->reports().chooseRange(*score->range);
    if (score->position > 0)
        m_recalledPosition = score->position;
}

void AlphaTabController::recallMixer(const QList<TrackInfo> &remembered)
{
    if (remembered.size() != tracks.value().size())
        return;
    for (const TrackInfo &track : remembered) {
        if (track.mute)
            toggleMute(track.id);
        if (track.solo)
            toggleSolo(track.id);
        if (track.volume != 1.0)
            setTrackVolume(track.id, track.volume);
    }
    const auto isVisible = [](const TrackInfo &track) { return track.visible; };
    if (std::all_of(remembered.begin(), remembered.end(), isVisible))
        return;
    QList<int> shown;
    for (const TrackInfo &track : remembered) {
        if (track.visible)
            shown << track.id;
    }
    showTracks(shown);
}

/// When returnToPosition() does.
void AlphaTabController::recallPosition()
{
    if (!m_recalledPosition || !playerReady || !(endTime > 0))
        return;
    const double position = *std::exchange(m_recalledPosition, std::nullopt);
    js(BridgeCalls::seekToTime(std::min(position, endTime.value())));
}
