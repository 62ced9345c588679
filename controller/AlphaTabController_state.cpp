#include "controller/AlphaTabController.h"
#include "controller/ScoreMemory.h"
#include "controller/SmokeTest.h"
#include "controller/ZoomRange.h"
#include "engine_host/bridge/BridgeCalls.h"
#include "engine_host/bridge/PageReports.h"
#include "engine_host/bridge/ScriptHandler.h"
#include "pdf/conversion/ConversionWorker.h"
#include "pdf/conversion/Folders.h"
#include "pdf/conversion/PDFDocument.h"

#include <QCoreApplication>
#include <QImage>
#include <QThreadPool>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

int storedPagesAcross(const DefaultsStore &defaults)
{
    return static_cast<int>(std::clamp<qint64>(defaults.integer(u"pdfPagesAcross"_s).value_or(2), 1, 6));
}

QString wordFor(ShownStaves staves)
{
    switch (staves) {
    case ShownStaves::Both:
        return u"both"_s;
    case ShownStaves::Tablature:
        return u"tablature"_s;
    case ShownStaves::Notation:
        return u"notation"_s;
    }
    return {};
}

} // namespace

AlphaTabController::AlphaTabController(Surroundings surroundings)
    : m_surroundings(std::move(surroundings))
    , pdfPagesAcross(storedPagesAcross(*m_surroundings.defaults),
          [this] { m_surroundings.defaults->setInteger(u"pdfPagesAcross"_s, pdfPagesAcross.value()); })
    , preferSynth(false, [this] { soundSourceChanged(); })
    , tempoPercent(100.0, [this] { js(BridgeCalls::setSpeed(tempoPercent / 100)); })
    , masterVolume(1.0, [this] { js(BridgeCalls::setMasterVolume(masterVolume)); })
    , looping(false, [this] { js(BridgeCalls::setLooping(looping)); })
    , metronome(false, [this] { js(BridgeCalls::setMetronome(metronome)); })
    , countIn(false, [this] { js(BridgeCalls::setCountIn(countIn)); })
    , countsInPasses(false, [this] { m_engine->reports().setCountsInPasses(countsInPasses); })
    , metronomeVolume(m_surroundings.defaults->real(u"metronomeVolume"_s).value_or(0.6),
          [this] {
              m_surroundings.defaults->setReal(u"metronomeVolume"_s, metronomeVolume);
              pushMetronomeConfig();
          })
    , metronomeSound(m_surroundings.defaults->text(u"metronomeSound"_s).value_or(u"woodblock"_s),
          [this] {
              m_surroundings.defaults->setText(u"metronomeSound"_s, metronomeSound);
              pushMetronomeConfig();
          })
    , metronomeAccent(m_surroundings.defaults->boolean(u"metronomeAccent"_s).value_or(true),
          [this] {
              m_surroundings.defaults->setBoolean(u"metronomeAccent"_s, metronomeAccent);
              pushMetronomeConfig();
          })
    , metronomeMode(m_surroundings.defaults->text(u"metronomeMode"_s).value_or(u"beat"_s),
          [this] {
              m_surroundings.defaults->setText(u"metronomeMode"_s, metronomeMode);
              pushMetronomeConfig();
          })
    , horizontalLayout(false, [this] { js(BridgeCalls::setLayout(horizontalLayout)); })
    , zoom(1.0, [this] { js(BridgeCalls::setZoom(zoom)); })
    , rememberScores(m_surroundings.scoreMemory->isOn(), [this] { rememberScoresChanged(); })
    , fretboard(false, [this] { showFretboard(); })
    , leftHandedFretboard(false, [this] { showFretboard(); })
    , staves(ShownStaves::Both, [this] { m_engine->reports().setLook(u"staves"_s, wordFor(staves)); })
    , darkPaper(false, [this] { m_engine->reports().setLook(u"dark"_s, darkPaper.value()); })
    , m_scriptHandler(std::make_unique<ScriptHandler>(m_surroundings.log))
    , m_smokeTest(SmokeTest::isAskedFor(m_surroundings.environment, m_surroundings.temporaryFolder))
    , m_smokeLogPath(
          m_surroundings.environment.value(u"QV_LOGFILE"_s, m_surroundings.temporaryFolder + u"/qv_smoke.log"_s))
    , m_engine(m_surroundings.makeEngine(*m_scriptHandler, m_surroundings.webFolder))
{
    m_scriptHandler->setController(this);
    connect(&m_engine->reports(), &PageReports::sectionsChanged, this,
        [this](const QList<ScoreSection> &list) { sections = list; });
    connect(&m_engine->reports(), &PageReports::rangeChanged, this,
        [this](const std::optional<MarkedRange> &range) { m_range = range; });
    connect(
        &m_engine->reports(), &PageReports::loopSpanChanged, this, [this](const LoopSpan &span) { loopSpan = span; });
    connect(&m_engine->reports(), &PageReports::loopWanted, this, [this] {
        if (!looping)
            looping = true;
    });
    watchSaving();
    startSmokeLog();
    loadRecents();
    QThreadPool::globalInstance()->start(&PDFConverter::WorkingFolder::sweep);
    isPlaying.onChange(this, [this](bool playing) {
        if (!playing)
            rememberShownScore();
    });
    if (qApp) {
        connect(qApp, &QCoreApplication::aboutToQuit, this, &AlphaTabController::rememberShownScore);
        connect(qApp, &QCoreApplication::aboutToQuit, this, &AlphaTabController::saveWhatIsUnsaved);
    }
    m_engine->load(pageAddress());
}

AlphaTabController::~AlphaTabController() { m_scriptHandler->setController(nullptr); }

AlphaTabController &AlphaTabController::shared()
{
    static auto *const instance = new AlphaTabController(Surroundings::system());
    return *instance;
}

QUrl AlphaTabController::pageAddress() { return QUrl(u"qv-app://app/index.html"_s); }

QWidget *AlphaTabController::webView() const { return m_engine->view(); }

void AlphaTabController::js(const QString &script)
{
    const bool demo = script == BridgeCalls::loadSample();
    // The latest wins.
    if (demo)
        m_reading.reset();
    if (pageHealth == PageHealth::Ended) {
        // Settings are sent when the page is there again.
        if (demo)
            startPageWith({ .source = DemoScore() });
        return;
    }
    if (demo) {
        m_requestedSource = DemoScore();
        m_requestedKey = keyOf(m_requestedSource);
    }
    m_engine->evaluate(script, [log = m_surroundings.log](const std::optional<QString> &error) {
        if (error)
            log(u"[Quaverly] JS error: "_s + *error);
    });
}

void AlphaTabController::stepZoom(int steps)
{
    constexpr double step = 0.1;
    const double wanted = zoom + steps * step;
    zoom = steps < 0 ? std::max(wanted, ZoomRange::smallest) : std::min(wanted, ZoomRange::largest);
}

void AlphaTabController::pressKey(const QString &key) { m_engine->reports().pressKey(key); }

void AlphaTabController::snapshot(std::function<void(const QImage &)> arrived)
{
    m_engine->snapshot(std::move(arrived));
}

void AlphaTabController::pushMetronomeConfig()
{
    js(BridgeCalls::configMetronome(metronomeVolume, metronomeSound, metronomeAccent, metronomeMode));
}

void AlphaTabController::showFretboard() { m_engine->reports().showFretboard(fretboard, leftHandedFretboard); }

void AlphaTabController::soundSourceChanged()
{
    js(BridgeCalls::setSoundSource(preferSynth));
    refreshCountIn();
}

void AlphaTabController::refreshCountIn()
{
    canCountIn = !hasBackingTrack || preferSynth;
    if (!canCountIn)
        countIn = false;
}
