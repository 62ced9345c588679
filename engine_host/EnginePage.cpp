#include "engine_host/EnginePage.h"

#include "engine_host/WebSchemeHandler.h"

#include <QUrl>

using namespace Qt::StringLiterals;

EnginePage::EnginePage(QWebEngineProfile *profile, QObject *parent)
    : QWebEnginePage(profile, parent)
{
    connect(this, &QWebEnginePage::featurePermissionRequested, this,
        [this](const QUrl &origin, Feature feature) { setFeaturePermission(origin, feature, PermissionDeniedByUser); });
}

bool EnginePage::acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame)
{
    // The program's own load counts as typed; nothing that the page starts does.
    return isMainFrame && type == NavigationTypeTyped && url.scheme().toLatin1() == WebSchemeHandler::scheme();
}

QWebEnginePage *EnginePage::createWindow(WebWindowType) { return nullptr; }

void EnginePage::javaScriptConsoleMessage(
    JavaScriptConsoleMessageLevel level, const QString &message, int lineNumber, const QString &sourceId)
{
    if (level == ErrorMessageLevel)
        Q_EMIT consoleError(u"%1 (%2:%3)"_s.arg(message, sourceId, QString::number(lineNumber)));
}
