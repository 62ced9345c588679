#include "app/QuaverlyApp.h"

#include "app/StartupLog.h"
#include "app/WindowActivation.h"
#include "controller/AlphaTabController.h"
#include "desktop/Launch.h"
#include "engine_host/bridge/BridgeCalls.h"
#include "views/ContentView.h"

#include <QAction>
#include <QApplication>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QScreen>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize minimumSize(760, 520);
constexpr QSize preferredSize(1180, 780);

} // namespace

QuaverlyApp::QuaverlyApp(AlphaTabController &controller)
    : m_controller(controller)
    , m_appDelegate(controller)
{
    // Not the application's display name: Qt would add that to every title the window gets later.
    m_window.setWindowTitle(u"Quaverly"_s);
    m_window.setMinimumSize(minimumSize);
    m_window.setCentralWidget(new ContentView(controller));
    buildFileMenu();
    buildViewMenu();
    buildHelpMenu();
    showWindow();
}

QuaverlyApp::~QuaverlyApp() = default;

void QuaverlyApp::launchAgain(const Launch &launch)
{
    WindowActivation::bringToFront(m_window, launch.activationToken);
    m_appDelegate.open(launch.files);
}

void QuaverlyApp::buildFileMenu()
{
    QMenu *menu = m_window.menuBar()->addMenu(tr("&File"));
    QAction *open = menu->addAction(tr("Open…"), &m_controller, &AlphaTabController::presentOpenPanel);
    open->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_O));

    QAction *exportGp
        = menu->addAction(tr("Export as Guitar Pro…"), this, [this] { m_controller.js(BridgeCalls::exportGp()); });
    exportGp->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_E));
    const auto refresh
        = [this, exportGp] { exportGp->setEnabled(m_controller.hasScore && !m_controller.pdfDocument.value()); };
    m_controller.hasScore.observe(exportGp, [refresh](bool) { refresh(); });
    m_controller.pdfDocument.observe(exportGp, [refresh](const auto &) { refresh(); });

    menu->addSeparator();
    QAction *quit = menu->addAction(tr("Quit"), &m_window, &QWidget::close);
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    quit->setMenuRole(QAction::QuitRole);
}

void QuaverlyApp::buildViewMenu()
{
    QMenu *menu = m_window.menuBar()->addMenu(tr("&View"));
    QAction *play = menu->addAction(QString(), this, [this] { m_controller.js(BridgeCalls::playPause()); });
    m_controller.isPlaying.observe(play, [play](bool playing) { play->setText(playing ? tr("Pause") : tr("Play")); });
    m_controller.hasScore.observe(play, [play](bool hasScore) { play->setEnabled(hasScore); });
}

void QuaverlyApp::buildHelpMenu()
{
    QMenu *menu = m_window.menuBar()->addMenu(tr("&Help"));
    QAction *about = menu->addAction(tr("About Quaverly"), &m_window, [this] {
        QMessageBox::about(&m_window, tr("About Quaverly"),
            tr("Quaverly %1\nPractise guitar from scores.").arg(QCoreApplication::applicationVersion()));
    });
    about->setMenuRole(QAction::AboutRole);
}

void QuaverlyApp::showWindow()
{
    const QRect room = m_window.screen()->availableGeometry();
    m_window.resize(preferredSize.boundedTo(room.size()).expandedTo(minimumSize));
    QRect frame(QPoint(), m_window.size());
    frame.moveCenter(room.center());
    m_window.move(frame.topLeft());
    StartupLog::watch(m_window);
    m_window.show();
}
