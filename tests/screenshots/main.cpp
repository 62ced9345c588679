#include "app/QuaverlyApp.h"
#include "controller/AlphaTabController.h"
#include "design/Theme.h"
#include "engine_host/WebEngineHost.h"
#include "engine_host/bridge/BridgeCalls.h"
#include "engine_host/serving/WebFolder.h"
#include "pdf/viewing/PDFSheetView.h"
#include "tests/screenshots/Scenes.h"
#include "tests/support/TestSurroundings.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QLoggingCategory>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QTextStream>
#include <QTimer>

#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// What a system that is set to dark hands its applications.
QPalette darkSystem()
{
    QPalette palette(QColor(0x30, 0x30, 0x30));
    for (const auto role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText })
        palette.setColor(role, Qt::white);
    palette.setColor(QPalette::Base, QColor(0x20, 0x20, 0x20));
    return palette;
}

/// The window with what lies over it in windows of their own.
QPixmap withWindowsAbove(QWidget &window)
{
    QPixmap picture = window.grab();
    for (QWidget *above : QApplication::topLevelWidgets()) {
        if (above->isVisible() && qobject_cast<QMenu *>(above)) {
            QPainter painter(&picture);
            const QPoint place = above->pos() - window.mapToGlobal(QPoint());
            painter.setClipRegion(above->mask().translated(place));
            painter.drawPixmap(place, above->grab());
        }
    }
    if (auto *alert = window.findChild<QMessageBox *>()) {
        QPainter painter(&picture);
        const QPixmap box = alert->grab();
        painter.drawPixmap((window.width() - alert->width()) / 2, (window.height() - alert->height()) / 2, box);
    }
    return picture;
}

void rest(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

/// Waits for what the page has to do, half a minute at most; false when it does not come. Not with QTest::qWaitFor,
/// whose way of turning the event loop slows Chromium down to a crawl.
bool waitFor(const std::function<bool()> &condition)
{
    const QDeadlineTimer deadline(30s);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        rest(20ms);
    }
    return true;
}

QUrl scoreOf(const Scene &scene) { return QUrl::fromLocalFile(QStringLiteral(SCORES "/") + scene.file); }

/// Whether the page's notice is there and no longer fades in: it is dark, near the lower edge of the light page.
bool showsNotice(QWidget &page)
{
    const QImage picture = page.grab().toImage();
    const QColor notice(0x33, 0x33, 0x3b);
    for (int y = picture.height() - 60; y < picture.height(); ++y) {
        if (picture.pixelColor(picture.width() / 2 - 60, y) == notice)
            return true;
    }
    return false;
}

/// Lets the page show the demo score, and play it, until it stands still enough for a picture.
bool setThePage(const Scene &scene, AlphaTabController &controller)
{
    if (!waitFor([&] { return controller.bridgeReady.value(); }))
        return false;
    if (scene.page == Scene::Page::Empty)
        return true;
    if (scene.page == Scene::Page::File)
        controller.load(scoreOf(scene));
    else
        controller.js(BridgeCalls::loadSample());
    if (!waitFor([&] { return controller.hasScore.value() && controller.playerReady.value(); }))
        return false;
    if (scene.page == Scene::Page::PlayingDemo) {
        controller.seek(0.1);
        controller.js(BridgeCalls::playPause());
        const double start = 0.1 * controller.endTime;
        if (!waitFor([&] { return controller.isPlaying && controller.currentTime > start + 500; }))
            return false;
        // The machine may have no audio output, which the page says.
        controller.js(u"document.getElementById('notice').hidden = true"_s);
    }
    if (scene.page == Scene::Page::Notice) {
        controller.load(scoreOf(scene));
        return waitFor([&] { return showsNotice(*controller.webView()); });
    }
    return true;
}

/// Whether the page has drawn what it was last asked for: two pictures a while apart are the same.
bool settle(QWidget &page, Scene::Page state)
{
    if (state == Scene::Page::Notice)
        return true; // it is gone when the score is there
    if (state == Scene::Page::PlayingDemo) {
        rest(1500ms); // a cursor never stands still
        return true;
    }
    QImage last;
    return waitFor([&] {
        rest(400ms);
        const QImage now = page.grab().toImage();
        return now == std::exchange(last, now);
    });
}

Surroundings surroundings(TestSurroundings &world)
{
    Surroundings made = world.make();
    made.webFolder = WebFolder::find(QCoreApplication::applicationDirPath());
    made.makeEngine = Surroundings::system().makeEngine;
    return made;
}

bool take(const Scene &scene, const QDir &folder)
{
    QApplication::setPalette(scene.schemeAlone ? Theme::darkPalette() : scene.dark ? darkSystem() : QPalette());
    TestSurroundings world;
    AlphaTabController controller(surroundings(world));
    QuaverlyApp application(controller);
    QMainWindow &window = application.window();
    window.resize(scene.size);
    if (!setThePage(scene, controller))
        return false;
    scene.prepare(controller);
    // A PDF covers the page, and draws itself in the background just as well.
    QWidget *shown = window.findChild<PDFSheetView *>();
    if (!settle(shown ? *shown : *controller.webView(), scene.page))
        return false;
    if (scene.act) {
        scene.act(window);
        if (scene.page == Scene::Page::File && !settle(*controller.webView(), scene.page))
            return false;
    }
    QApplication::processEvents();
    return withWindowsAbove(window).save(folder.filePath(scene.name + u".png"_s));
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QLoggingCategory::setFilterRules(u"qt.webenginecontext.info=false"_s);
    WebEngineHost::prepare();
    const QApplication application(argc, argv);
    QTextStream err(stderr);
    if (argc < 2 || !QDir().mkpath(QString::fromLocal8Bit(argv[1]))) {
        err << "usage: quaverly_screenshots FOLDER [SCENE]...\n";
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    const QStringList wanted = application.arguments().mid(2);
    for (const Scene &scene : scenes()) {
        if (!wanted.isEmpty() && !wanted.contains(scene.name))
            continue;
        if (!take(scene, folder)) {
            err << "no picture of " << scene.name << '\n';
            return 1;
        }
    }
    return 0;
}
