#include "controller/Surroundings.h"

#include "controller/FileDialogs.h"
#include "controller/PortalDialogs.h"
#include "controller/SmokeTest.h"
#include "controller/WindowTitle.h"
#include "engine_host/WebEngineHost.h"
#include "engine_host/process/SystemLog.h"
#include "engine_host/serving/WebFolder.h"

#include <QApplication>
#include <QMainWindow>
#include <QTimer>

#include <thread>

using namespace Qt::StringLiterals;

namespace {

/// The title belongs to the main window: on X11 and Wayland the window from which a file was dragged has the focus
/// when the file arrives, and a panel that happens to be open must not be renamed.
void titleMainWindow(const QString &title)
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (window->isVisible() && qobject_cast<QMainWindow *>(window)) {
            window->setWindowTitle(WindowTitle::forWidget(WindowTitle::closed(title)));
            return;
        }
    }
}

} // namespace

Surroundings Surroundings::system()
{
    Surroundings real;
    real.log = &SystemLog::write;
    real.defaults = std::make_unique<DefaultsStore>(DefaultsStore::userFilePath(), real.log);
    real.dialogs = std::make_unique<FileDialogs>();
    if (PortalDialogs::areWanted())
        real.dialogs = std::make_unique<PortalDialogs>(QDBusConnection::sessionBus(), std::move(real.dialogs));
    real.environment = QProcessEnvironment::systemEnvironment();
    real.temporaryFolder = u"/tmp"_s;
    real.packagedAudiveris = u"/opt/audiveris/bin/Audiveris"_s;
    // What nobody watches always looks the same.
    const bool unattended = SmokeTest::isAskedFor(real.environment, real.temporaryFolder);
    real.scoreMemory = std::make_unique<ScoreMemory>(unattended ? QString() : ScoreMemory::userFilePath(), real.log);
    real.webFolder = WebFolder::find(QCoreApplication::applicationDirPath());
    real.makeEngine = [](ScriptHandler &scriptHandler, const std::optional<QString> &webFolder) {
        return std::make_unique<WebEngineHost>(scriptHandler, webFolder);
    };
    real.after = [](std::chrono::milliseconds delay, QObject *context, std::function<void()> work) {
        QTimer::singleShot(delay, context, std::move(work));
    };
    // A thread for each, for one may wait for ever.
    real.inBackground = [](std::function<void()> work) { std::thread(std::move(work)).detach(); };
    real.setMainWindowTitle = &titleMainWindow;
    return real;
}
