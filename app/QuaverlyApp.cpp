#include "app/QuaverlyApp.h"

#include "app/AboutPanel.h"
#include "app/GuideWindow.h"
#include "app/ProblemReport.h"
#include "app/RecentFilesMenu.h"
#include "app/StartupLog.h"
#include "app/WindowActivation.h"
#include "app/WindowMemory.h"
#include "app/menus/MenuItems.h"
#include "app/menus/OtherKeyboards.h"
#include "app/menus/PlaybackMenu.h"
#include "app/menus/PracticeMenu.h"
#include "app/menus/ShortcutsWindow.h"
#include "app/menus/UnsavedMenu.h"
#include "app/menus/ViewMenu.h"
#include "controller/AlphaTabController.h"
#include "desktop/Launch.h"
#include "engine_host/bridge/BridgeCalls.h"
#include "views/ContentView.h"

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QShortcut>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize minimumSize(760, 520);
constexpr QSize preferredSize(1180, 780);

/// What window managers put around a window, at most.
constexpr QSize frame(16, 64);

/// Puts a window over the middle of another, as far as the screen has room.
void placeOver(QWidget &parent, QWidget &window)
{
    const QRect room = parent.screen()->availableGeometry();
    QRect place(QPoint(), window.size().boundedTo(room.size() - frame));
    place.moveCenter(parent.frameGeometry().center());
    window.setGeometry(WindowMemory::pulledIn(place, { room }));
}

/// Brings the window of its kind to the front, and makes it where there is none. Escape closes it.
template <typename Window, typename... About> void showOnce(QWidget &parent, const About &...about)
{
    auto *window = parent.findChild<Window *>();
    if (!window) {
        window = new Window(about..., &parent);
        new QShortcut(QKeySequence(Qt::Key_Escape), window, window, &QWidget::close);
        placeOver(parent, *window);
    }
    window->show();
    window->raise();
    window->activateWindow();
}

} // namespace

QuaverlyApp::QuaverlyApp(AlphaTabController &controller, QString memoryFile)
    : m_controller(controller)
    , m_appDelegate(controller)
    , m_memoryFile(std::move(memoryFile))
    , m_content(new ContentView(controller))
    , m_printing(controller, m_window)
{
    // Not the application's display name: Qt would add that to every title the window gets later.
    m_window.setWindowTitle(u"Quaverly"_s);
    m_window.setMinimumSize(minimumSize);
    m_window.setCentralWidget(m_content);
    buildFileMenu();
    m_window.menuBar()->addMenu(new ViewMenu(controller, m_window));
    m_window.menuBar()->addMenu(new PlaybackMenu(controller, &m_window));
    m_window.menuBar()->addMenu(new PracticeMenu(controller, &m_window));
    buildHelpMenu();
    m_window.menuBar()->addMenu(new UnsavedMenu(controller, &m_window));
    new OtherKeyboards(m_window);
    m_window.installEventFilter(this);
    connect(qApp, &QCoreApplication::aboutToQuit, this, [this] {
        if (m_window.isVisible())
            rememberWindow();
    });
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

    menu->insertMenu(exportGp, new RecentFilesMenu(m_controller, menu));
    menu->addSeparator();
    const MenuItems items(m_controller, *menu);
    items.needsScore(items.command(tr("Print…"), u"Ctrl+P"_s, [this] { m_controller.print(); }));
    menu->addSeparator();
    QAction *quit = menu->addAction(tr("Quit"), &m_window, &QWidget::close);
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    quit->setMenuRole(QAction::QuitRole);
}

void QuaverlyApp::buildHelpMenu()
{
    QMenu *menu = m_window.menuBar()->addMenu(tr("&Help"));
    const QMenuBar &menus = *m_window.menuBar();
    QAction *shortcuts = menu->addAction(
        tr("Keyboard Shortcuts"), &m_window, [this, &menus] { showOnce<ShortcutsWindow>(m_window, menus); });
    shortcuts->setShortcut(QKeySequence(Qt::Key_F1));
    menu->addAction(tr("Guide"), &m_window, [this] { showOnce<GuideWindow>(m_window); });
    menu->addAction(tr("Report a Problem"), &m_window, [this] { ProblemReport::copy(m_window); });
    QAction *about = menu->addAction(tr("About Quaverly"), &m_window, [this] { (new AboutPanel(&m_window))->open(); });
    about->setMenuRole(QAction::AboutRole);
}

bool QuaverlyApp::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == &m_window && event->type() == QEvent::Close)
        rememberWindow();
    return QObject::eventFilter(watched, event);
}

void QuaverlyApp::placeWindow()
{
    if (const auto place = m_memoryFile.isEmpty() ? std::nullopt : WindowMemory::read(m_memoryFile)) {
        QList<QRect> screens;
        for (const QScreen *screen : QGuiApplication::screens())
            screens << screen->availableGeometry();
        m_window.setGeometry(WindowMemory::pulledIn(place->geometry, screens));
        m_content->setSidebarWidth(place->sidebarWidth);
        m_controller.leftHandedFretboard = place->leftHandedFretboard;
        m_controller.fretboard = place->fretboard;
        if (place->maximized)
            m_window.setWindowState(Qt::WindowMaximized);
        return;
    }
    const QRect room = m_window.screen()->availableGeometry();
    m_window.resize(preferredSize.boundedTo(room.size()).expandedTo(minimumSize));
    QRect place(QPoint(), m_window.size());
    place.moveCenter(room.center());
    m_window.move(place.topLeft());
}

void QuaverlyApp::showWindow()
{
    placeWindow();
    StartupLog::watch(m_window);
    m_window.show();
}

void QuaverlyApp::rememberWindow()
{
    if (!m_memoryFile.isEmpty())
        WindowMemory::write(m_memoryFile,
            { m_window.normalGeometry(), m_window.isMaximized(), m_content->sidebarWidth(), m_controller.fretboard,
                m_controller.leftHandedFretboard });
}
