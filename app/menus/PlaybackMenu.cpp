#include "app/menus/PlaybackMenu.h"

#include "app/menus/MenuItems.h"
#include "controller/AlphaTabController.h"
#include "controller/SpeedRange.h"
#include "engine_host/bridge/BridgeCalls.h"

#include <algorithm>

using namespace Qt::StringLiterals;

PlaybackMenu::PlaybackMenu(AlphaTabController &controller, QWidget *parent)
    : QMenu(tr("&Playback"), parent)
    , m_controller(controller)
{
    const MenuItems items(controller, *this);
    addMoves(items);
    addSections();
    addSeparator();
    addSpeeds(items);
    addSeparator();
    addSwitches(items);
}

PlaybackMenu::~PlaybackMenu() = default;

void PlaybackMenu::addMoves(const MenuItems &items)
{
    items.pageKey(tr("To the Start"), u"Home Backspace"_s);
    items.pageKey(tr("Previous Beat"), u"Left"_s);
    items.pageKey(tr("Next Beat"), u"Right"_s);
    items.pageKey(tr("Previous Bar"), u"Ctrl+Left"_s);
    items.pageKey(tr("Next Bar"), u"Ctrl+Right"_s);
    items.pageKey(tr("Previous Section"), u"Alt+Left"_s);
    items.pageKey(tr("Next Section"), u"Alt+Right"_s);
}

void PlaybackMenu::addSections()
{
    QMenu *menu = addMenu(tr("Sections"));
    const auto refresh = [this, menu] {
        menu->menuAction()->setEnabled(m_controller.hasScore && !m_controller.pdfDocument.value()
            && m_controller.pageHealth.value() == PageHealth::Well && !m_controller.sections.value().isEmpty());
    };
    m_controller.sections.observe(menu, [this, menu, refresh](const QList<ScoreSection> &sections) {
        menu->clear();
        for (const ScoreSection &section : sections) {
            menu->addAction(QString(section.title).replace(u'&', "&&"_L1), this,
                [this, start = section.start] { m_controller.js(BridgeCalls::seekToTime(start)); });
        }
        refresh();
    });
    m_controller.hasScore.onChange(menu, [refresh](bool) { refresh(); });
    m_controller.pdfDocument.onChange(menu, [refresh](const auto &) { refresh(); });
    m_controller.pageHealth.onChange(menu, [refresh](PageHealth) { refresh(); });
}

void PlaybackMenu::addSpeeds(const MenuItems &items)
{
    const auto step = [this, &items](const QString &title, const QString &keys, double percent) {
        items.needsNoPdf(items.command(title, keys, [this, percent] {
            m_controller.tempoPercent
                = std::clamp(m_controller.tempoPercent + percent, SpeedRange::slowest, SpeedRange::fastest);
        }));
    };
    step(tr("Slower"), u"-"_s, -5);
    // German keyboards have the equals sign above the zero, and a key for the plus.
    step(tr("Faster"), u"= +"_s, 5);
    step(tr("A Little Slower"), u"Shift+-"_s, -1);
    step(tr("A Little Faster"), u"Shift+= Shift++"_s, 1);
    items.needsNoPdf(items.command(tr("Written Speed"), u"0"_s, [this] { m_controller.tempoPercent = 100; }));
}

void PlaybackMenu::addSwitches(const MenuItems &items)
{
    items.needsNoPdf(items.tick(tr("Loop"), u"L"_s, m_controller.looping));
    items.needsNoPdf(items.tick(tr("Metronome"), u"N"_s, m_controller.metronome));

    QAction *countIn = items.tick(tr("Count-in"), u"C"_s, m_controller.countIn);
    const auto refresh
        = [this, countIn] { countIn->setEnabled(m_controller.canCountIn && !m_controller.pdfDocument.value()); };
    m_controller.pdfDocument.observe(countIn, [refresh](const auto &) { refresh(); });
    m_controller.canCountIn.onChange(countIn, [refresh](bool) { refresh(); });
}
