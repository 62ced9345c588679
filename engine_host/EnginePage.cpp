#include "engine_host/EnginePage.h"

#include "engine_host/bridge/ScriptEvaluation.h"
#include "engine_host/serving/WebSchemeHandler.h"

#include <QUrl>
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0) // goes when Debian 12 is dropped
#include <QWebEnginePermission>
#endif

using namespace Qt::StringLiterals;

EnginePage::EnginePage(QWebEngineProfile *profile, QObject *parent)
    : QWebEnginePage(profile, parent)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0) // goes when Debian 12 is dropped, together with the other branch
    connect(this, &QWebEnginePage::permissionRequested, this,
        [](const QWebEnginePermission &permission) { permission.deny(); });
#else
    connect(this, &QWebEnginePage::featurePermissionRequested, this,
        [this](const QUrl &origin, Feature feature) { setFeaturePermission(origin, feature, PermissionDeniedByUser); });
#endif
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
    if (level != ErrorMessageLevel)
        return;
    if (const std::optional<QString> error = ScriptEvaluation::syntaxErrorOf(message, sourceId))
        m_syntaxError = error;
    else
        Q_EMIT consoleError(u"%1 (%2:%3)"_s.arg(message, sourceId, QString::number(lineNumber)));
}
