#include "app/LastResort.h"
#include "app/QuaverlyApp.h"
#include "app/TerminationSignals.h"
#include "controller/AlphaTabController.h"
#include "engine_host/WebEngineHost.h"
#include "tests/driven/DrivenWindow.h"

#include <QApplication>
#include <QJsonDocument>
#include <QLoggingCategory>
#include <QSocketNotifier>

#include <cstdio>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

void say(const QJsonObject &line)
{
    std::puts(QJsonDocument(line).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication::setApplicationName(u"quaverly"_s);
    QLoggingCategory::setFilterRules(u"qt.webenginecontext.info=false"_s);
    WebEngineHost::prepare();
    const QApplication application(argc, argv);
    LastResort::prepare();
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &LastResort::arm);
    const TerminationSignals terminationSignals;

    WebEngineHost *host = nullptr;
    Surroundings surroundings = Surroundings::system();
    surroundings.log = [](const QString &line) { say({ { u"log"_s, line } }); };
    surroundings.makeEngine = [&host](ScriptHandler &handler, const std::optional<QString> &folder) {
        auto made = std::make_unique<WebEngineHost>(handler, folder);
        host = made.get();
        return made;
    };
    // The page must not go before the application does.
    auto *controller = new AlphaTabController(std::move(surroundings));
    QuaverlyApp quaverly(*controller);
    DrivenWindow driven(*controller, quaverly.window(), &say);
    driven.setHost(host);
    quaverly.appDelegate().applicationDidFinishLaunching();

    QByteArray waiting;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &driven, [&] {
        char bytes[4096];
        const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes);
        if (count <= 0) {
            input.setEnabled(false);
            QApplication::quit();
            return;
        }
        waiting.append(bytes, count);
        for (qsizetype end; (end = waiting.indexOf('\n')) >= 0; waiting.remove(0, end + 1))
            driven.take(waiting.first(end));
    });
    return QApplication::exec();
}
