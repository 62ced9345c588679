#include "engine_host/bridge/ScriptHandler.h"

#include "engine_host/bridge/MessageReceiver.h"

#include <QJsonObject>

using namespace Qt::StringLiterals;

ScriptHandler::ScriptHandler(std::function<void(const QString &)> log, QObject *parent)
    : QObject(parent)
    , m_log(std::move(log))
{
}

QString ScriptHandler::name() { return u"qv"_s; }

void ScriptHandler::postMessage(const QJsonValue &body)
{
    if (m_controller && body.isObject())
        m_controller->handle(body.toObject().toVariantMap());
}

void ScriptHandler::navigationFailed(const QString &error) { m_log(u"[Quaverly] navigation failed: "_s + error); }

void ScriptHandler::pageHealthChanged(PageHealth health, const QString &reason)
{
    if (health == PageHealth::Ended)
        m_log(u"[Quaverly] the page has ended: "_s + reason);
    if (m_controller)
        m_controller->pageHealthChanged(health);
}
