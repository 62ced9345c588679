#pragma once

#include <QWebEnginePage>

/// The engine page's own rules: it never leaves its address, opens no window and is granted nothing.
class EnginePage final : public QWebEnginePage {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(EnginePage)

public:
    EnginePage(QWebEngineProfile *profile, QObject *parent);

Q_SIGNALS:
    /// An error line of the page's console: an uncaught exception, a blocked or missing resource.
    void consoleError(const QString &text);

protected:
    bool acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame) override;
    QWebEnginePage *createWindow(WebWindowType type) override;
    void javaScriptConsoleMessage(
        JavaScriptConsoleMessageLevel level, const QString &message, int lineNumber, const QString &sourceId) override;
};
