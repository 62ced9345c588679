#include "tests/screenshots/Scenes.h"

#include "controller/AlphaTabController.h"

#include <QAbstractButton>
#include <QVariantMap>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize usual(1400, 900);
constexpr QSize smallest(760, 520);
constexpr QSize largest(2560, 1440);

void recents(AlphaTabController &controller, int count)
{
    const QStringList names{ u"Nocturne in E minor"_s, u"My Song"_s, u"Etude No. 3"_s, u"Blue Hour"_s,
        u"A very long name of a piece that no row of this list can hold as a whole, however hard it tries"_s,
        u"Canon"_s, u"Sunday Practice"_s, u"Warm-up"_s };
    const QStringList folders{ u"/home/robin/Scores"_s, u"/Users/x/Scores"_s,
        u"/home/robin/Documents/Music/Guitar/Lessons/2026/Autumn/Fingerstyle/Exercises/Week 12"_s };
    QList<QUrl> urls;
    for (int i = 0; i < count; ++i)
        urls << QUrl::fromLocalFile(folders[i % folders.size()] + u'/' + names[i % names.size()] + u".gp5"_s);
    controller.recentFiles = urls;
}

void score(AlphaTabController &controller, const QString &title, const QStringList &tracks, bool backing)
{
    QVariantList list;
    for (const QString &name : tracks)
        list << QVariantMap{ { u"index"_s, int(list.size()) }, { u"name"_s, name } };
    controller.handle({ { u"type"_s, u"score"_s }, { u"title"_s, title }, { u"artist"_s, u"Robin"_s },
        { u"tracks"_s, list }, { u"hasBackingTrack"_s, backing } });
    controller.handle({ { u"type"_s, u"playerReady"_s } });
    controller.handle({ { u"type"_s, u"position"_s }, { u"currentTime"_s, 61999.0 }, { u"endTime"_s, 214000.0 } });
}

QStringList band() { return { u"Lead Guitar"_s, u"Rhythm Guitar"_s, u"Bass"_s, u"Drums"_s }; }

QStringList numbered(int count)
{
    QStringList names;
    for (int i = 1; i <= count; ++i)
        names << u"Track %1"_s.arg(i);
    return names;
}

void playing(AlphaTabController &controller)
{
    score(controller, u"Blue Hour"_s, band(), true);
    controller.handle({ { u"type"_s, u"state"_s }, { u"playing"_s, true } });
    controller.looping = true;
    controller.metronome = true;
    controller.tempoPercent = 75;
    controller.horizontalLayout = true;
    controller.toggleMute(1);
    controller.toggleSolo(0);
    controller.toggleVisible(3);
    controller.setTrackVolume(2, 0.4);
}

void longNames(AlphaTabController &controller)
{
    score(controller, u"The Extraordinarily Long Title of a Piece for Nine Guitars and a Choir of Tuning Forks"_s,
        { u"Steel-string Acoustic Guitar with a Capo on the Seventh Fret"_s, u"M"_s,
            u"E-Bass <b>fretless</b> & bowed, through an amplifier"_s },
        true);
    controller.masterVolume = 0.35;
    controller.tempoPercent = 200;
}

void press(QWidget &window, const QString &accessibleName)
{
    for (auto *button : window.findChildren<QAbstractButton *>()) {
        if (button->accessibleName() == accessibleName)
            button->click();
    }
}

void openPopover(QWidget &window) { press(window, u"Metronome & count-in"_s); }

} // namespace

QList<Scene> scenes()
{
    const auto none = [](AlphaTabController &) {};
    const auto some = [](AlphaTabController &controller) { recents(controller, 3); };
    const auto all = [](AlphaTabController &controller) { recents(controller, 8); };
    const auto loaded = [](AlphaTabController &controller) { score(controller, u"Blue Hour"_s, band(), false); };
    const auto nine = [](AlphaTabController &controller) { score(controller, u"Nonet"_s, numbered(9), true); };
    const auto thirty = [](AlphaTabController &controller) { score(controller, QString(), numbered(30), false); };
    const auto off = [](AlphaTabController &controller) { score(controller, u"Blue Hour"_s, band(), true); };
    const auto failed = [](AlphaTabController &controller) {
        score(controller, u"Blue Hour"_s, band(), false);
        controller.conversionError = u"Audiveris was not found. Install it and try again."_s;
    };
    return {
        { u"start"_s, usual, false, none, {} },
        { u"start-recents"_s, usual, false, some, {} },
        { u"start-recents-dark"_s, usual, true, some, {} },
        { u"start-smallest"_s, smallest, false, all, {} },
        { u"score"_s, usual, false, loaded, {} },
        { u"playing"_s, usual, false, playing, {} },
        { u"playing-dark"_s, usual, true, playing, {} },
        { u"playing-smallest"_s, smallest, false, playing, {} },
        { u"playing-largest"_s, largest, false, playing, {} },
        { u"popover"_s, usual, false, playing, openPopover },
        { u"popover-dark"_s, usual, true, playing, openPopover },
        { u"popover-off"_s, usual, false, off, openPopover },
        { u"popover-smallest"_s, smallest, false, playing, openPopover },
        { u"nine-tracks"_s, usual, false, nine, {} },
        { u"thirty-tracks"_s, usual, false, thirty, {} },
        { u"thirty-tracks-smallest-dark"_s, smallest, true, thirty, {} },
        { u"long-names"_s, usual, false, longNames, {} },
        { u"long-names-smallest"_s, smallest, false, longNames, {} },
        { u"alert"_s, usual, false, failed, {} },
    };
}
