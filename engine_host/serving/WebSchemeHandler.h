#pragma once

#include <QString>
#include <QWebEngineUrlSchemeHandler>

/// Serves the page and its resources under the scheme `qv-app` out of one folder.
class WebSchemeHandler final : public QWebEngineUrlSchemeHandler {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(WebSchemeHandler)

public:
    /// @param root the folder to serve; it is made absolute and freed of "." and ".." once, here
    explicit WebSchemeHandler(const QString &root, QObject *parent = nullptr);

    /// Makes `qv-app` known to Chromium. Has to run before the application object is made.
    static void registerScheme();
    static QByteArray scheme();

    QString root() const { return m_root; }

    void requestStarted(QWebEngineUrlRequestJob *job) override;

private:
    const QString m_root;
};
