#include "controller/AlphaTabController.h"
#include "tests/screenshots/Scenes.h"
#include "tests/support/TestSurroundings.h"
#include "views/ContentView.h"

#include <QApplication>
#include <QDir>
#include <QMainWindow>
#include <QMenuBar>
#include <QMessageBox>
#include <QPainter>
#include <QTextStream>

using namespace Qt::StringLiterals;

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

QPixmap withAlert(QMainWindow &window)
{
    QPixmap picture = window.grab();
    if (auto *alert = window.findChild<QMessageBox *>()) {
        QPainter painter(&picture);
        const QPixmap box = alert->grab();
        painter.drawPixmap((window.width() - alert->width()) / 2, (window.height() - alert->height()) / 2, box);
    }
    return picture;
}

bool take(const Scene &scene, const QDir &folder)
{
    QApplication::setPalette(scene.dark ? darkSystem() : QPalette());
    TestSurroundings surroundings;
    AlphaTabController controller(surroundings.make());
    controller.webView()->setAutoFillBackground(true);
    QPalette paper;
    paper.setColor(QPalette::Window, Qt::white);
    controller.webView()->setPalette(paper);

    QMainWindow window;
    window.setMinimumSize(760, 520);
    for (const QString &menu : { u"&File"_s, u"&View"_s, u"&Help"_s })
        window.menuBar()->addMenu(menu);
    window.setCentralWidget(new ContentView(controller));
    scene.prepare(controller);
    window.resize(scene.size);
    window.show();
    QApplication::processEvents();
    if (scene.act)
        scene.act(window);
    QApplication::processEvents();
    return withAlert(window).save(folder.filePath(scene.name + u".png"_s));
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QTextStream err(stderr);
    if (argc < 2 || !QDir().mkpath(QString::fromLocal8Bit(argv[1]))) {
        err << "usage: quaverly_screenshots FOLDER\n";
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    for (const Scene &scene : scenes()) {
        if (!take(scene, folder)) {
            err << "cannot write " << scene.name << '\n';
            return 1;
        }
    }
    return 0;
}
