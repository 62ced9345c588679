#include "controller/AlphaTabController.h"
#include "engine_host/bridge/BridgeCalls.h"
#include "engine_host/bridge/BridgeMessages.h"

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

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
    m_starting = false;
    pushMetronomeConfig();
    // A page that was loaded anew has none.
    if (fretboard)
        showFretboard();
    if (m_return)
        resendSettings();
    if (const std::optional<QUrl> pending = std::exchange(m_pendingURL, std::nullopt)) {
        m_return.reset();
        load(*pending);
    } else if (m_return)
        openSourceAgain(m_return->source);
    else if (m_smokeTest)
        js(BridgeCalls::loadSample());
}

void AlphaTabController::apply(const BridgeMessages::PlayerReady &)
{
    playerReady = true;
    returnToPosition();
    recallPosition();
    if (m_smokeTest)
        js(BridgeCalls::playPause());
}

void AlphaTabController::apply(const BridgeMessages::Score &score)
{
    // The tracks of the last message stay where there are none: it is the same score still.
    if (score.tracks)
        rememberShownScore();
    title = score.title;
    artist = score.artist;
    if (score.tracks) {
        QList<TrackInfo> list;
        for (const BridgeMessages::TrackEntry &entry : *score.tracks)
            list.append({ .id = entry.index, .name = entry.name });
        tracks = list;
    }
    hasBackingTrack = score.hasBackingTrack;
    refreshCountIn();
    hasScore = true;
    currentTime = 0;
    if (!title.value().isEmpty())
        setWindowTitle(title);
    m_shownSource = m_requestedSource;
    m_shownKey = m_requestedKey;
    if (score.tracks)
        recallScore();
    returnToMixer();
}

void AlphaTabController::apply(const BridgeMessages::State &state) { isPlaying = state.playing; }

void AlphaTabController::apply(const BridgeMessages::Position &position)
{
    currentTime = position.currentTime;
    endTime = position.endTime;
    returnToPosition();
    recallPosition();
}

void AlphaTabController::apply(const BridgeMessages::Error &error)
{
    m_surroundings.log(u"[Quaverly] alphaTab error: "_s + error.message);
    m_requestedSource = m_shownSource;
    m_requestedKey = m_shownKey;
}

void AlphaTabController::apply(const BridgeMessages::GpData &answer)
{
    // Not in here: until a message has been delivered the web channel delivers none, nor does the view paint, and the
    // panel would hold it for as long as it is open.
    m_surroundings.after(0ms, this, [this, answer] { saveGp(answer.data, answer.title); });
}

void AlphaTabController::apply(const BridgeMessages::Rendered &) { snapshotIfSmoke(); }

void AlphaTabController::apply(const BridgeMessages::Unknown &) { }
