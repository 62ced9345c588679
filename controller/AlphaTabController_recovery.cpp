#include "controller/AlphaTabController.h"
#include "engine_host/EngineHost.h"
#include "engine_host/bridge/BridgeCalls.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

void AlphaTabController::pageHealthChanged(PageHealth health)
{
    if (health == PageHealth::Ended) {
        pageCannotStart = m_starting;
        bridgeReady = false;
        playerReady = false;
        isPlaying = false;
    }
    pageHealth = health;
}

void AlphaTabController::stopReading()
{
    if (pageHealth == PageHealth::NotAnswering)
        m_engine->endPage();
}

void AlphaTabController::startPageAgain()
{
    // A page that ended before it had shown the score again has lost nothing of it.
    const bool isStillToShow = m_return && m_return->wasShown;
    const bool nothingShown = std::holds_alternative<std::monostate>(m_shownSource);
    startPageWith({ .source = isStillToShow && nothingShown ? m_return->source : m_shownSource,
        .position = isStillToShow ? m_return->position : currentTime.value(),
        .tracks = tracks,
        .wasShown = true });
}

void AlphaTabController::startPageWith(const Return &target)
{
    if (pageHealth != PageHealth::Ended)
        return;
    m_return = target;
    m_requestedSource = {};
    m_shownSource = {};
    m_requestedKey.clear();
    m_shownKey.clear();
    if (std::holds_alternative<std::monostate>(target.source))
        hasScore = false;
    m_starting = true;
    pageHealth = PageHealth::Well;
    m_engine->load(pageAddress());
}

/// What the views have set since the program began, a page that was loaded anew does not know.
void AlphaTabController::resendSettings()
{
    const auto resend = [](auto &property) { property = property.value(); };
    resend(preferSynth);
    resend(tempoPercent);
    resend(masterVolume);
    resend(looping);
    resend(metronome);
    resend(countIn);
    resend(horizontalLayout);
    resend(zoom);
}

void AlphaTabController::openSourceAgain(const ScoreSource &source)
{
    if (const auto *url = std::get_if<QUrl>(&source)) {
        loadScore(*url);
    } else if (const auto *bytes = std::get_if<QByteArray>(&source)) {
        loadConverted(*bytes);
    } else if (std::holds_alternative<DemoScore>(source)) {
        js(BridgeCalls::loadSample());
    }
}

/// The score is open again: the mixer gets its settings back where the tracks are the same.
void AlphaTabController::returnToMixer()
{
    if (!m_return)
        return;
    const QList<TrackInfo> before = std::exchange(m_return->tracks, {});
    const QList<TrackInfo> now = tracks;
    const auto same = [](const TrackInfo &a, const TrackInfo &b) { return a.id == b.id && a.name == b.name; };
    if (std::equal(before.begin(), before.end(), now.begin(), now.end(), same))
        recallMixer(before);
}

/// The position can be given back when the score's length is known and the player can play it.
void AlphaTabController::returnToPosition()
{
    if (!m_return || !playerReady || !(endTime > 0))
        return;
    if (const double position = std::exchange(m_return, std::nullopt)->position; position > 0)
        js(BridgeCalls::seekToTime(std::min(position, endTime.value())));
}
