#pragma once

#include <QWebEnginePage>

#include <optional>
#include <utility>

/// The page's own rules: it never leaves its address, opens no window and is granted nothing.
class EnginePage final : public QWebEnginePage {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(EnginePage)

public:
    EnginePage(QWebEngineProfile *profile, QObject *parent);

    /// The syntax error of the script whose value comes next, if it has one. Asking takes it away.
    std::optional<QString> takeSyntaxError() { return std::exchange(m_syntaxError, std::nullopt); }

Q_SIGNALS:
    /// An error line of the page's console: an uncaught exception, a blocked or missing resource. The syntax error of a
    /// script that the program evaluates is none: its caller is told.
    void consoleError(const QString &text);

protected:
    bool acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame) override;
    QWebEnginePage *createWindow(WebWindowType type) override;
    void javaScriptConsoleMessage(
        JavaScriptConsoleMessageLevel level, const QString &message, int lineNumber, const QString &sourceId) override;

private:
    std::optional<QString> m_syntaxError;
};
