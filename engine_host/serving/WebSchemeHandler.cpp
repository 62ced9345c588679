#include "engine_host/serving/WebSchemeHandler.h"

#include "engine_host/serving/WebSchemeResolution.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QMultiMap>
#include <QWebEngineUrlRequestJob>
#include <QWebEngineUrlScheme>

WebSchemeHandler::WebSchemeHandler(const QString &root, QObject *parent)
    : QWebEngineUrlSchemeHandler(parent)
    , m_root(QDir::cleanPath(QFileInfo(root).absoluteFilePath()))
{
    Q_ASSERT(!root.isEmpty());
}

QByteArray WebSchemeHandler::scheme() { return QByteArrayLiteral("qv-app"); }

void WebSchemeHandler::registerScheme()
{
    QWebEngineUrlScheme appScheme(scheme());
    appScheme.setSyntax(QWebEngineUrlScheme::Syntax::Host);
    // Without a secure origin the page gets no AudioWorklet; as a local scheme it could read files of the machine.
    appScheme.setFlags(QWebEngineUrlScheme::SecureScheme);
    QWebEngineUrlScheme::registerScheme(appScheme);
}

void WebSchemeHandler::requestStarted(QWebEngineUrlRequestJob *job)
{
    WebScheme::Answer answer = WebScheme::resolve(job->requestUrl(), m_root);
    if (const auto *failure = std::get_if<WebScheme::Failure>(&answer)) {
        job->fail(*failure == WebScheme::Failure::BadUrl ? QWebEngineUrlRequestJob::UrlInvalid
                                                         : QWebEngineUrlRequestJob::UrlNotFound);
        return;
    }

    const auto &response = std::get<WebScheme::Response>(answer);
    auto *body = new QBuffer(job);
    body->setData(response.body);
    body->open(QIODevice::ReadOnly);
#if QT_VERSION >= QT_VERSION_CHECK(6, 6, 0) // the check goes when Debian 12 is dropped
    QMultiMap<QByteArray, QByteArray> headers;
    for (const auto &[key, value] : response.headers) {
        if (key != "Content-Type")
            headers.insert(key, value);
    }
    job->setAdditionalResponseHeaders(headers);
#endif
    job->reply(response.header("Content-Type"), body);
}
