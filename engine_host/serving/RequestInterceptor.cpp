#include "engine_host/serving/RequestInterceptor.h"

#include <QUrl>
#include <QWebEngineUrlRequestInfo>

using namespace Qt::StringLiterals;

RequestInterceptor::RequestInterceptor(QObject *parent)
    : QWebEngineUrlRequestInterceptor(parent)
{
}

bool RequestInterceptor::allows(const QUrl &url)
{
    const QString scheme = url.scheme();
    return scheme == "qv-app"_L1 || scheme == "blob"_L1 || scheme == "data"_L1;
}

void RequestInterceptor::interceptRequest(QWebEngineUrlRequestInfo &info)
{
    if (!allows(info.requestUrl()))
        info.block(true);
}
