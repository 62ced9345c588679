#include "app/StartupLog.h"

#include <QEvent>
#include <QLoggingCategory>
#include <QWidget>
#include <QWindow>

namespace {

Q_LOGGING_CATEGORY(startup, "quaverly.startup", QtInfoMsg)

/// Waits for a window's first exposure, then goes.
class FirstExposure final : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto *window = qobject_cast<QWindow *>(watched);
        if (event->type() == QEvent::Expose && window && window->isExposed()) {
            qCDebug(startup, "window shown");
            deleteLater();
        }
        return false;
    }
};

} // namespace

void StartupLog::watch(QWidget &window)
{
    if (!startup().isDebugEnabled())
        return;
    window.winId(); // makes the native window, which is what gets exposed
    window.windowHandle()->installEventFilter(new FirstExposure(&window));
}
