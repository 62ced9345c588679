#include "controller/AlphaTabController.h"
#include "engine_host/BridgeCalls.h"

#include <utility>

using namespace Qt::StringLiterals;

void AlphaTabController::handle(const QVariantMap &message)
{
    const std::optional<BridgeMessages::Message> parsed = BridgeMessages::parse(message);
    if (!parsed)
        return;
    std::visit([this](const auto &typed) { apply(typed); }, *parsed);
    if (m_smokeTest) {
        const QString text = BridgeMessages::describe(message);
        m_surroundings.log(u"[Quaverly] msg "_s + text);
        smokeLog(text);
    }
}

void AlphaTabController::apply(const BridgeMessages::Ready &)
{
    bridgeReady = true;
    pushMetronomeConfig();
    if (const std::optional<QUrl> pending = std::exchange(m_pendingURL, std::nullopt))
        load(*pending);
    else if (m_smokeTest)
        js(BridgeCalls::loadSample());
}

void AlphaTabController::apply(const BridgeMessages::PlayerReady &)
{
    playerReady = true;
    if (m_smokeTest)
        js(BridgeCalls::playPause());
}

void AlphaTabController::apply(const BridgeMessages::Score &score)
{
    title = score.title;
    artist = score.artist;
    if (score.tracks) {
        QList<TrackInfo> list;
        for (const BridgeMessages::TrackEntry &entry : *score.tracks)
            list.append({ .id = entry.index, .name = entry.name });
        tracks = list;
    }
    hasBackingTrack = score.hasBackingTrack;
    // The file's recording cannot count in.
    if (hasBackingTrack && !preferSynth)
        countIn = false;
    hasScore = true;
    currentTime = 0;
    if (!title.value().isEmpty())
        setWindowTitle(title);
}

void AlphaTabController::apply(const BridgeMessages::State &state) { isPlaying = state.playing; }

void AlphaTabController::apply(const BridgeMessages::Position &position)
{
    currentTime = position.currentTime;
    endTime = position.endTime;
}

void AlphaTabController::apply(const BridgeMessages::Error &error)
{
    m_surroundings.log(u"[Quaverly] alphaTab error: "_s + error.message);
}

void AlphaTabController::apply(const BridgeMessages::GpData &answer) { saveGp(answer.data, answer.title); }

void AlphaTabController::apply(const BridgeMessages::Rendered &) { snapshotIfSmoke(); }

void AlphaTabController::apply(const BridgeMessages::Unknown &) { }
