#include "engine_host/WebEngineHost.h"

#include "engine_host/EnginePage.h"
#include "engine_host/EngineView.h"
#include "engine_host/ScorePrinting.h"
#include "engine_host/bridge/PageReports.h"
#include "engine_host/bridge/ScriptEvaluation.h"
#include "engine_host/bridge/ScriptHandler.h"
#include "engine_host/process/AudioRecovery.h"
#include "engine_host/process/AudioServer.h"
#include "engine_host/process/AudioService.h"
#include "engine_host/process/AudioThreadPriority.h"
#include "engine_host/process/ChromiumSwitches.h"
#include "engine_host/process/DrawingBackend.h"
#include "engine_host/process/HeapLimits.h"
#include "engine_host/process/LaunchCode.h"
#include "engine_host/process/PageWatch.h"
#include "engine_host/process/RootSandbox.h"
#include "engine_host/process/SystemLog.h"
#include "engine_host/serving/RequestInterceptor.h"
#include "engine_host/serving/WebSchemeHandler.h"

#include <QCoreApplication>
#include <QImage>
#include <QPixmap>
#include <QProcessEnvironment>
#include <QThreadPool>
#include <QTimer>
#include <QWebChannel>
#include <QWebEngineDownloadRequest>
#include <QWebEngineHistory>
#include <QWebEngineLoadingInfo>
#include <QWebEngineProfile>
#include <QWebEngineSettings>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// So long after the page is there, nothing of the launch is under way any more.
constexpr auto launchIsOver = 1s;

AudioRecovery::Dependencies audioDependencies()
{
    AudioServer::Sockets sockets = AudioServer::sockets(QProcessEnvironment::systemEnvironment());
    // A PipeWire that does not play now may have left its socket long ago.
    if (AudioServer::presence(sockets) != AudioServer::Presence::WithPipeWire)
        sockets.pipeWire.clear();
    return { [sockets] { return AudioServer::presence(sockets); },
        [] { AudioService::end(QCoreApplication::applicationPid()); } };
}

} // namespace

void WebEngineHost::prepare()
{
    RootSandbox::adapt();
    DrawingBackend::adapt();
    ChromiumSwitches::adapt();
    HeapLimits::adapt();
    WebSchemeHandler::registerScheme();
}

WebEngineHost::WebEngineHost(ScriptHandler &scriptHandler, const std::optional<QString> &webFolder)
    : m_interceptor(std::make_unique<RequestInterceptor>())
    , m_profile(std::make_unique<QWebEngineProfile>()) // without a name: off the record
    , m_reports(std::make_unique<PageReports>())
    , m_channel(std::make_unique<QWebChannel>())
    , m_audioThreadPriority(std::make_unique<AudioThreadPriority>(QCoreApplication::applicationPid()))
    , m_audioRecovery(std::make_unique<AudioRecovery>(audioDependencies(), AudioRecovery::Times()))
    , m_watch(std::make_unique<PageWatch>())
    , m_scriptHandler(scriptHandler)
{
    //: The code of this language. The page speaks it too.
    m_profile->setHttpAcceptLanguage(tr("en"));
    m_profile->setUrlRequestInterceptor(m_interceptor.get());
    connect(m_profile.get(), &QWebEngineProfile::downloadRequested, this,
        [](QWebEngineDownloadRequest *download) { download->cancel(); });
    m_channel->registerObject(ScriptHandler::name(), &scriptHandler);
    m_channel->registerObject(PageReports::name(), m_reports.get());
    if (webFolder) {
        m_schemeHandler = std::make_unique<WebSchemeHandler>(*webFolder);
        m_profile->installUrlSchemeHandler(WebSchemeHandler::scheme(), m_schemeHandler.get());
    }

    m_view = std::make_unique<EngineView>();
    m_page = std::make_unique<EnginePage>(m_profile.get(), nullptr);
    configurePage();
    watchPage();
    takeReports();
    m_view->setPage(m_page.get());
    m_printing = std::make_unique<ScorePrinting>(*m_page, *m_reports);
    connect(qApp, &QCoreApplication::aboutToQuit, this, &WebEngineHost::shutDown);
}

WebEngineHost::~WebEngineHost() = default;

void WebEngineHost::shutDown()
{
    // This host may never be destroyed; Chromium wants its views and pages gone before it ends with the
    // application.
    m_watch.reset();
    m_audioRecovery.reset();
    m_printing.reset();
    m_view.reset();
    m_page.reset();
    m_profile.reset();
    m_audioThreadPriority.reset();
}

void WebEngineHost::configurePage()
{
    QWebEngineSettings *settings = m_page->settings();
    // Reads false already, yet only an explicit false lets a native button start the sound.
    settings->setAttribute(QWebEngineSettings::PlaybackRequiresUserGesture, false);
    settings->setAttribute(QWebEngineSettings::NavigateOnDropEnabled, false);
    settings->setAttribute(QWebEngineSettings::FullScreenSupportEnabled, false);
    settings->setAttribute(QWebEngineSettings::JavascriptCanOpenWindows, false);
    settings->setAttribute(QWebEngineSettings::JavascriptCanAccessClipboard, false);
    settings->setAttribute(QWebEngineSettings::LocalContentCanAccessFileUrls, false);
    settings->setAttribute(QWebEngineSettings::LocalContentCanAccessRemoteUrls, false);
    settings->setAttribute(QWebEngineSettings::ErrorPageEnabled, false);
    settings->setAttribute(QWebEngineSettings::PluginsEnabled, false);
    settings->setAttribute(QWebEngineSettings::FocusOnNavigationEnabled, false);
    m_page->setWebChannel(m_channel.get());

    connect(m_page.get(), &QWebEnginePage::loadingChanged, this, [this](const QWebEngineLoadingInfo &info) {
        // A document that never began to arrive leaves no history; its failure is nobody's news.
        if (info.status() == QWebEngineLoadingInfo::LoadFailedStatus && m_page->history()->count() > 0)
            m_scriptHandler.navigationFailed(info.errorString());
    });
    connect(m_page.get(), &QWebEnginePage::recentlyAudibleChanged, this,
        [this](bool audible) { m_audioThreadPriority->setAudible(audible); });
    connect(m_page.get(), &EnginePage::consoleError, this,
        [](const QString &text) { SystemLog::write(u"[Quaverly] page: "_s + text); });
}

void WebEngineHost::evaluate(const QString &script, Completion completion)
{
    if (!m_page) {
        completion(u"the application is about to quit"_s);
        return;
    }
    m_watch->asked();
    m_page->runJavaScript(
        ScriptEvaluation::wrapped(script), [this, completion = std::move(completion)](const QVariant &value) {
            if (m_watch)
                m_watch->answered();
            completion(ScriptEvaluation::errorOf(value, m_page ? m_page->takeSyntaxError() : std::nullopt));
        });
}

void WebEngineHost::watchPage()
{
    connect(m_page.get(), &QWebEnginePage::loadFinished, this, [this](bool loaded) {
        if (!loaded || !m_watch)
            return;
        m_watch->start();
        QTimer::singleShot(launchIsOver, qApp, [] { QThreadPool::globalInstance()->start(&LaunchCode::giveBack); });
        // A new process of the page begins with white, and is not told of a colour that is set already.
        const QColor color = m_view->palette().color(QPalette::Window);
        m_page->setBackgroundColor(Qt::transparent);
        m_page->setBackgroundColor(color);
    });
    connect(m_page.get(), &QWebEnginePage::renderProcessTerminated, this,
        [this](QWebEnginePage::RenderProcessTerminationStatus, int exitCode) {
            if (!m_watch)
                return;
            m_watch->stop();
            setAudioLost(false);
            m_scriptHandler.pageHealthChanged(PageHealth::Ended, u"exit code %1"_s.arg(exitCode));
        });
    connect(m_watch.get(), &PageWatch::notAnswering, this, [this] {
        // A page that stands still at a breakpoint is meant to.
        if (!m_view->isInspected())
            m_scriptHandler.pageHealthChanged(PageHealth::NotAnswering);
    });
    connect(
        m_watch.get(), &PageWatch::answersAgain, this, [this] { m_scriptHandler.pageHealthChanged(PageHealth::Well); });
    connect(m_watch.get(), &PageWatch::questionDue, this, [this] { evaluate(u"0"_s, [](const auto &) { }); });
}

void WebEngineHost::takeReports()
{
    connect(m_reports.get(), &PageReports::audioOutputChanged, this, [this](bool working) {
        SystemLog::write(
            working ? u"[Quaverly] the audio output works again"_s : u"[Quaverly] there is no audio output"_s);
        setAudioLost(!working);
    });
    // A page without its synthesizer would show a score that no button can play.
    connect(m_reports.get(), &PageReports::synthLost, this, [this] {
        SystemLog::write(u"[Quaverly] the synthesizer does not answer"_s);
        endPage();
    });
}

void WebEngineHost::endPage()
{
    if (const qint64 process = m_page ? m_page->renderProcessPid() : 0; process > 0)
        ::kill(static_cast<pid_t>(process), SIGKILL);
}

void WebEngineHost::setAudioLost(bool lost)
{
    if (m_audioRecovery)
        m_audioRecovery->setLost(lost);
}

void WebEngineHost::load(const QUrl &url)
{
    if (m_page)
        m_page->load(url);
}

void WebEngineHost::snapshot(std::function<void(const QImage &)> arrived)
{
    arrived(m_view ? m_view->grab().toImage() : QImage());
}

void WebEngineHost::print(const PrintTarget &target, std::function<void(const PrintResult &)> printed)
{
    if (m_printing)
        m_printing->print(target, std::move(printed));
    else
        printed({});
}

QWidget *WebEngineHost::view() const { return m_view.get(); }
