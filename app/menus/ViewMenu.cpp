#include "app/menus/ViewMenu.h"

#include "app/menus/MenuItems.h"
#include "app/menus/WheelZoom.h"
#include "controller/AlphaTabController.h"
#include "engine_host/bridge/BridgeCalls.h"
#include "views/ContentView.h"

#include <QActionGroup>
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
    addPages(items);
    addSeparator();
    addFullScreen(items);
    window.installEventFilter(this);
    new WheelZoom(controller, window);
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
    addStaves(items);
    items.tick(tr("Dark Paper"), {}, m_controller.darkPaper);
}

void ViewMenu::addStaves(const MenuItems &items)
{
    const QList<std::pair<ShownStaves, QString>> kinds{ { ShownStaves::Both, tr("Notation and Tablature") },
        { ShownStaves::Tablature, tr("Tablature Only") }, { ShownStaves::Notation, tr("Notation Only") } };
    QMenu *menu = addMenu(tr("Staves"));
    auto *group = new QActionGroup(menu);
    for (const auto &[kind, title] : kinds) {
        QAction *item = menu->addAction(title, this, [this, chosen = kind] { m_controller.staves = chosen; });
        item->setCheckable(true);
        group->addAction(item);
        m_controller.staves.observe(item, [item, own = kind](ShownStaves shown) { item->setChecked(shown == own); });
    }
    QAction *next = items.command(tr("Next Staves"), u"T"_s, [this, kinds] {
        const auto now = qsizetype(m_controller.staves.value());
        m_controller.staves = kinds[(now + 1) % kinds.size()].first;
    });
    next->setAutoRepeat(false);
    items.needsNoPdf(next);
    items.needsNoPdf(menu->menuAction());
}

void ViewMenu::addPages(const MenuItems &items)
{
    items.pageKey(tr("Page Up"), u"PgUp"_s, [this] { m_controller.pdfTurn = -1; });
    items.pageKey(tr("Page Down"), u"PgDown"_s, [this] { m_controller.pdfTurn = 1; });
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

void ViewMenu::showFullScreen(bool on)
{
    m_fullScreen->setChecked(on);
    if (auto *content = qobject_cast<ContentView *>(m_window.centralWidget()))
        content->setStage(on);
}

bool ViewMenu::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == &m_window && event->type() == QEvent::WindowStateChange)
        showFullScreen(m_window.isFullScreen());
    return QMenu::eventFilter(watched, event);
}
