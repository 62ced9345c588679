#pragma once

#include "engine_host/bridge/PageHealth.h"

#include <QJsonValue>
#include <QObject>
#include <QString>

#include <functional>

class MessageReceiver;

/// The page's way into the program: receives posted messages, watches failed navigations.
///
/// It knows the receiver only weakly; whoever implements it takes itself out before it goes.
class ScriptHandler final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ScriptHandler)

public:
    /// @param log takes the one line that a failed navigation leaves behind
    explicit ScriptHandler(std::function<void(const QString &)> log, QObject *parent = nullptr);

    /// The object's name on the web channel.
    static QString name();

    void setController(MessageReceiver *controller) { m_controller = controller; }
    MessageReceiver *controller() const { return m_controller; }

    /// Called by the page. A body that is not a dictionary is dropped without a word.
    Q_INVOKABLE void postMessage(const QJsonValue &body);

    /// A navigation failed after its document had begun to arrive.
    void navigationFailed(const QString &error);

    /// The page does not answer, answers again, or its process has ended; `reason` says why it has.
    void pageHealthChanged(PageHealth health, const QString &reason = {});

private:
    const std::function<void(const QString &)> m_log;
    MessageReceiver *m_controller = nullptr;
};
