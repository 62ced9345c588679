#pragma once

#include <QWebEngineUrlRequestInterceptor>

/// Blocks every request of the page that would leave the application, WebSockets included.
class RequestInterceptor final : public QWebEngineUrlRequestInterceptor {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RequestInterceptor)

public:
    explicit RequestInterceptor(QObject *parent = nullptr);

    /// Whether a request for `url` stays inside the application: schemes `qv-app`, `blob` and `data`.
    static bool allows(const QUrl &url);

    void interceptRequest(QWebEngineUrlRequestInfo &info) override;
};
