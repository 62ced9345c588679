#include "app/menus/ViewMenu.h"

#include "app/menus/MenuItems.h"
#include "controller/AlphaTabController.h"
#include "engine_host/bridge/BridgeCalls.h"

#include <QEvent>
#include <QMainWindow>

using namespace Qt::StringLiterals;

ViewMenu::ViewMenu(AlphaTabController &controller, QMainWindow &window)
    : QMenu(tr("&View"), &window)
    , m_controller(controller)
    , m_window(window)
{
    const MenuItems items(controller, *this);
    addPlay();
    addSeparator();
    addSizes(items);
    addSeparator();
    addFretboard(items);
    addSeparator();
    addFullScreen(items);
    window.installEventFilter(this);
}

ViewMenu::~ViewMenu() = default;

void ViewMenu::addPlay()
{
    QAction *play = addAction(QString(), this, [this] { m_controller.js(BridgeCalls::playPause()); });
    m_controller.isPlaying.observe(play, [play](bool playing) { play->setText(playing ? tr("Pause") : tr("Play")); });
    m_controller.hasScore.observe(play, [play](bool hasScore) { play->setEnabled(hasScore); });
}

void ViewMenu::addSizes(const MenuItems &items)
{
    // Some keyboards have the plus above the equals sign.
    items.needsNoPdf(items.command(tr("Zoom In"), u"Ctrl++ Ctrl+="_s, [this] { m_controller.stepZoom(1); }));
    items.needsNoPdf(items.command(tr("Zoom Out"), u"Ctrl+-"_s, [this] { m_controller.stepZoom(-1); }));
    items.needsNoPdf(items.command(tr("Natural Size"), u"Ctrl+0"_s, [this] { m_controller.zoom = 1.0; }));
    items.needsNoPdf(items.tick(tr("Horizontal"), u"H"_s, m_controller.horizontalLayout));
}

void ViewMenu::addFretboard(const MenuItems &items)
{
    items.needsNoPdf(items.tick(tr("Fretboard"), u"B"_s, m_controller.fretboard));
    items.needsNoPdf(items.tick(tr("Left-Handed Fretboard"), {}, m_controller.leftHandedFretboard));
}

void ViewMenu::addFullScreen(const MenuItems &items)
{
    m_fullScreen = items.command(tr("Full Screen"), u"F11 F"_s,
        [this] { m_window.setWindowState(m_window.windowState() ^ Qt::WindowFullScreen); });
    m_fullScreen->setCheckable(true);
    m_fullScreen->setAutoRepeat(false);
}

bool ViewMenu::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == &m_window && event->type() == QEvent::WindowStateChange)
        m_fullScreen->setChecked(m_window.isFullScreen());
    return QMenu::eventFilter(watched, event);
}
