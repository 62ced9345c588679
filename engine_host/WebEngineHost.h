#pragma once

#include "engine_host/EngineHost.h"

#include <QObject>

#include <memory>

class AudioRecovery;
class AudioThreadPriority;
class EnginePage;
class EngineView;
class PageReports;
class PageWatch;
class QWebChannel;
class QWebEngineProfile;
class RequestInterceptor;
class ScorePrinting;
class ScriptHandler;
class WebSchemeHandler;

/// The real web view: Qt WebEngine with the message channel, the resource scheme and all its doors shut.
class WebEngineHost final : public QObject, public EngineHost {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(WebEngineHost)

public:
    /// Prepares the process for Chromium. To be called once, before the application object exists.
    static void prepare();

    /// @param scriptHandler receives the page's messages; has to outlive this host
    /// @param webFolder the folder to serve; without one no scheme handler is registered and nothing can load
    WebEngineHost(ScriptHandler &scriptHandler, const std::optional<QString> &webFolder);
    ~WebEngineHost() override;

    void evaluate(const QString &script, Completion completion) override;
    void load(const QUrl &url) override;
    void endPage() override;
    void snapshot(std::function<void(const QImage &)> arrived) override;
    PageReports &reports() override { return *m_reports; }
    void print(const PrintTarget &target, std::function<void(const PrintResult &)> printed) override;
    QWidget *view() const override;

    /// Null once the application is about to quit.
    EnginePage *page() const { return m_page.get(); }
    /// Present exactly when there is a web folder.
    WebSchemeHandler *schemeHandler() const { return m_schemeHandler.get(); }

private:
    void configurePage();
    void watchPage();
    void takeReports();
    void setAudioLost(bool lost);
    void shutDown();

    // The order of members is the order of dismantling, backwards: view and page go before the profile they use.
    std::unique_ptr<WebSchemeHandler> m_schemeHandler;
    std::unique_ptr<RequestInterceptor> m_interceptor;
    std::unique_ptr<QWebEngineProfile> m_profile;
    std::unique_ptr<PageReports> m_reports;
    std::unique_ptr<QWebChannel> m_channel;
    std::unique_ptr<EngineView> m_view;
    std::unique_ptr<AudioThreadPriority> m_audioThreadPriority;
    std::unique_ptr<AudioRecovery> m_audioRecovery;
    std::unique_ptr<PageWatch> m_watch;
    std::unique_ptr<EnginePage> m_page;
    std::unique_ptr<ScorePrinting> m_printing;
    ScriptHandler &m_scriptHandler;
};
