#include "engine_host/WebEngineHost.h"

#include "engine_host/DrawingBackend.h"
#include "engine_host/EnginePage.h"
#include "engine_host/EngineSwitches.h"
#include "engine_host/EngineView.h"
#include "engine_host/HeapLimits.h"
#include "engine_host/RequestInterceptor.h"
#include "engine_host/RootSandbox.h"
#include "engine_host/ScriptEvaluation.h"
#include "engine_host/ScriptHandler.h"
#include "engine_host/SoundPrecedence.h"
#include "engine_host/SystemLog.h"
#include "engine_host/WebSchemeHandler.h"

#include <QCoreApplication>
#include <QImage>
#include <QPixmap>
#include <QWebChannel>
#include <QWebEngineDownloadRequest>
#include <QWebEngineHistory>
#include <QWebEngineLoadingInfo>
#include <QWebEngineProfile>
#include <QWebEngineSettings>

using namespace Qt::StringLiterals;

void WebEngineHost::prepare()
{
    RootSandbox::adapt();
    DrawingBackend::adapt();
    EngineSwitches::adapt();
    HeapLimits::adapt();
    WebSchemeHandler::registerScheme();
}

WebEngineHost::WebEngineHost(ScriptHandler &scriptHandler, const std::optional<QString> &webFolder)
    : m_interceptor(std::make_unique<RequestInterceptor>())
    , m_profile(std::make_unique<QWebEngineProfile>()) // without a name: off the record
    , m_channel(std::make_unique<QWebChannel>())
    , m_soundPrecedence(std::make_unique<SoundPrecedence>(QCoreApplication::applicationPid()))
    , m_scriptHandler(scriptHandler)
{
    m_profile->setUrlRequestInterceptor(m_interceptor.get());
    connect(m_profile.get(), &QWebEngineProfile::downloadRequested, this,
        [](QWebEngineDownloadRequest *download) { download->cancel(); });
    m_channel->registerObject(ScriptHandler::name(), &scriptHandler);
    if (webFolder) {
        m_schemeHandler = std::make_unique<WebSchemeHandler>(*webFolder);
        m_profile->installUrlSchemeHandler(WebSchemeHandler::scheme(), m_schemeHandler.get());
    }

    m_view = std::make_unique<EngineView>();
    m_page = std::make_unique<EnginePage>(m_profile.get(), nullptr);
    configurePage();
    m_view->setPage(m_page.get());
    connect(qApp, &QCoreApplication::aboutToQuit, this, &WebEngineHost::shutDown);
}

WebEngineHost::~WebEngineHost() = default;

void WebEngineHost::shutDown()
{
    // This host may never be destroyed; the web engine wants its views and pages gone before it ends with the
    // application.
    m_view.reset();
    m_page.reset();
    m_profile.reset();
    m_soundPrecedence.reset();
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
        [this](bool audible) { m_soundPrecedence->setAudible(audible); });
    connect(m_page.get(), &EnginePage::consoleError, this,
        [](const QString &text) { SystemLog::write(u"[Quaverly] page: "_s + text); });
}

void WebEngineHost::evaluate(const QString &script, Completion completion)
{
    if (!m_page) {
        completion(u"the application is about to quit"_s);
        return;
    }
    m_page->runJavaScript(ScriptEvaluation::wrapped(script),
        [completion = std::move(completion)](const QVariant &value) { completion(ScriptEvaluation::errorOf(value)); });
}

void WebEngineHost::load(const QUrl &url) { m_page->load(url); }

void WebEngineHost::snapshot(std::function<void(const QImage &)> arrived) { arrived(m_view->grab().toImage()); }

QWidget *WebEngineHost::view() const { return m_view.get(); }
