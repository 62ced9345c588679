#include "app/menus/PracticeMenu.h"

#include "app/menus/MenuItems.h"
#include "app/menus/TrackMenu.h"
#include "app/trainer/TrainerPanel.h"
#include "controller/AlphaTabController.h"

#include <QShortcut>

#include <algorithm>

using namespace Qt::StringLiterals;

PracticeMenu::PracticeMenu(AlphaTabController &controller, QWidget *parent)
    : QMenu(tr("P&ractice"), parent)
    , m_controller(controller)
{
    const MenuItems items(controller, *this);
    addRange(items);
    addSeparator();
    addAction(tr("Speed Trainer…"), this, [this] { showTrainer(); });
    addSeparator();
    addTracks();
    addSeparator();
    items.tick(tr("Remember Each Piece"), {}, controller.rememberScores);
    items.tick(tr("Turn by Half Pages"), {}, controller.pdfHalfTurns);
}

PracticeMenu::~PracticeMenu() = default;

void PracticeMenu::addRange(const MenuItems &items)
{
    items.pageKey(tr("Passage Begins Here"), u"["_s);
    items.pageKey(tr("Passage Ends Here"), u"]"_s);
    items.pageKey(tr("Passage a Beat Shorter"), u"Shift+Left"_s);
    items.pageKey(tr("Passage a Beat Longer"), u"Shift+Right"_s);
    items.pageKey(tr("Passage a Bar Shorter"), u"Ctrl+Shift+Left"_s);
    items.pageKey(tr("Passage a Bar Longer"), u"Ctrl+Shift+Right"_s);
    addLetGo(items);
}

void PracticeMenu::addLetGo(const MenuItems &items)
{
    QAction *letGo = items.pageKey(tr("Let Go of the Passage"), u"Esc"_s);
    connect(letGo, &QAction::triggered, this, [this] {
        const LoopSpan span = m_controller.loopSpan;
        const bool isPassage = span.endMs > span.startMs && (span.startMs > 0 || span.endMs < m_controller.endTime);
        if (!isPassage)
            leaveFullScreen();
    });
    // Over a PDF and the start screen there is no passage either. Two that are enabled would be ambiguous.
    auto *escape = new QShortcut(Qt::Key_Escape, parentWidget(), this, &PracticeMenu::leaveFullScreen);
    const auto follow = [letGo, escape] { escape->setEnabled(!letGo->isEnabled()); };
    connect(letGo, &QAction::enabledChanged, escape, follow);
    follow();
}

void PracticeMenu::leaveFullScreen()
{
    QWidget *window = parentWidget();
    window->setWindowState(window->windowState() & ~Qt::WindowStates(Qt::WindowFullScreen));
}

void PracticeMenu::addTracks()
{
    const auto isAlone = [this](const TrackInfo &track) {
        const QList<TrackInfo> &all = m_controller.tracks;
        return track.visible && all.size() > 1
            && std::count_if(all.cbegin(), all.cend(), [](const TrackInfo &other) { return other.visible; }) == 1;
    };
    addMenu(
        new TrackMenu(m_controller, tr("Show a Track Alone"), {}, isAlone, [this](int id) { showAlone(id); }, this));
    addMenu(new TrackMenu(
        m_controller, tr("Solo"), u"Shift+"_s, [](const TrackInfo &track) { return track.solo; },
        [this](int id) { m_controller.toggleSolo(id); }, this));
    addMenu(new TrackMenu(
        m_controller, tr("Mute"), u"Alt+"_s, [](const TrackInfo &track) { return track.mute; },
        [this](int id) { m_controller.toggleMute(id); }, this));
}

void PracticeMenu::showTrainer()
{
    QWidget *window = parentWidget();
    auto *panel = window->findChild<TrainerPanel *>();
    if (!panel) {
        panel = new TrainerPanel(m_controller, window);
        // Where it hides least of the score.
        const QPoint corner = window->mapToGlobal(window->rect().bottomRight());
        panel->adjustSize();
        panel->move(corner - QPoint(panel->width() + 32, panel->height() + 140));
    }
    panel->show();
    panel->raise();
    panel->activateWindow();
}

void PracticeMenu::showAlone(int id) { m_controller.showTracks(m_alone.chosen(m_controller.tracks, id)); }
