#include "app/AppDelegate.h"
#include "app/CommandLine.h"
#include "app/LastResort.h"
#include "app/QuaverlyApp.h"
#include "app/TerminationSignals.h"
#include "app/WindowMemory.h"
#include "controller/AlphaTabController.h"
#include "controller/SmokeTest.h"
#include "design/DesktopColorScheme.h"
#include "desktop/LaunchSession.h"
#include "desktop/MediaPlayer.h"
#include "desktop/OneWindow.h"
#include "desktop/ScreenAwake.h"
#include "engine_host/WebEngineHost.h"
#include "translations/Translations.h"

#include <QApplication>
#include <QDBusConnection>
#include <QIcon>
#include <QLocale>
#include <QLoggingCategory>

#include <cstdio>
#include <optional>
#include <unistd.h>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    QCoreApplication::setApplicationName(u"quaverly"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(QUAVERLY_VERSION));
    QGuiApplication::setDesktopFileName(u"org.quaverly.Quaverly"_s);

    if (const std::optional<QString> answer = CommandLine::immediateAnswer(argc, argv)) {
        std::fputs(qPrintable(*answer), stdout);
        return 0;
    }

    // Chromium reports its graphics set-up at every start, and Qt 6.8 warns on Wayland whenever a menu closes, of a
    // window that is gone; QT_LOGGING_RULES brings both back.
    QLoggingCategory::setFilterRules(u"qt.webenginecontext.info=false\nqt.qpa.wayland.textinput.warning=false"_s);
    WebEngineHost::prepare();
    Launch launch{ .activationToken = Launch::environmentToken() };
    QApplication application(argc, argv);
    Translations::install(application, Translations::languageFor(QLocale::system().uiLanguages()));
    QApplication::setWindowIcon(QIcon(u":/icons/quaverly.svg"_s));

    const CommandLine commandLine = CommandLine::parse(QCoreApplication::arguments());
    if (!commandLine.error.isEmpty()) {
        std::fprintf(stderr, "quaverly: %s\n", qPrintable(commandLine.error));
        return 2;
    }
    launch.files = commandLine.files;

    const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    std::optional<OneWindow> oneWindow;
    if (!SmokeTest::isAskedFor(environment, u"/tmp"_s)) {
        oneWindow.emplace(QDBusConnection::sessionBus(),
            LaunchSession::find(environment, QGuiApplication::platformName(), ::getuid()));
        if (oneWindow->goesElsewhere(launch))
            return 0;
    }

    std::optional<DesktopColorScheme> colorScheme;
    if (DesktopColorScheme::isNeeded())
        colorScheme.emplace(QDBusConnection::sessionBus());

    LastResort::prepare();
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &LastResort::arm);
    const TerminationSignals terminationSignals;
    // What nobody watches always looks the same.
    QuaverlyApp quaverly(AlphaTabController::shared(), oneWindow ? WindowMemory::userFilePath() : QString());
    quaverly.appDelegate().applicationDidFinishLaunching();
    quaverly.appDelegate().open(launch.files);
    if (oneWindow)
        QObject::connect(&*oneWindow, &OneWindow::launched, &quaverly, &QuaverlyApp::launchAgain);

    const MediaPlayer mediaPlayer(QDBusConnection::sessionBus(), AlphaTabController::shared());
    QObject::connect(&mediaPlayer, &MediaPlayer::raiseRequested, &quaverly, [&quaverly] { quaverly.launchAgain({}); });
    QObject::connect(&mediaPlayer, &MediaPlayer::quitRequested, &quaverly.window(), &QWidget::close);
    const ScreenAwake screenAwake(QDBusConnection::sessionBus(), AlphaTabController::shared());
    return QApplication::exec();
}
