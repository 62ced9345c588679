#include "tests/screenshots/Scenes.h"

#include "controller/AlphaTabController.h"
#include "engine_host/AlphaTabWebView.h"
#include "tests/support/OpenedPDF.h"
#include "tests/support/Report.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>

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

void tracks(AlphaTabController &controller, const QString &title, const QStringList &names)
{
    QList<TrackInfo> list;
    for (const QString &name : names)
        list << TrackInfo{ .id = int(list.size()), .name = name };
    report(controller.title, title);
    report(controller.tracks, list);
}

QStringList numbered(int count)
{
    QStringList names;
    for (int i = 1; i <= count; ++i)
        names << u"Track %1"_s.arg(i);
    return names;
}

/// A player's usual mixture; the recording is claimed, for the choice that comes with it.
void practising(AlphaTabController &controller)
{
    reportRecording(controller, true);
    controller.looping = true;
    controller.metronome = true;
    controller.tempoPercent = 75;
    controller.toggleMute(1);
    controller.toggleSolo(0);
    controller.setTrackVolume(2, 0.4);
}

/// A passage that is looped at three quarters of its speed, with the fretboard.
void passage(AlphaTabController &controller)
{
    controller.looping = true;
    controller.metronome = true;
    controller.tempoPercent = 75;
    controller.toggleMute(1);
    controller.fretboard = true;
    controller.pressKey(u"["_s);
    controller.pressKey(u"Ctrl+Shift+Right"_s);
    controller.pressKey(u"Ctrl+Shift+Right"_s);
}

void sideways(AlphaTabController &controller) { controller.horizontalLayout = true; }

void longNames(AlphaTabController &controller)
{
    tracks(controller, u"The Extraordinarily Long Title of a Piece for Nine Guitars and a Choir of Tuning Forks"_s,
        { u"Steel-string Acoustic Guitar with a Capo on the Seventh Fret"_s, u"M"_s,
            u"E-Bass <b>fretless</b> & bowed, through an amplifier"_s });
    reportRecording(controller, true);
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

/// Opens one of the PDFs that are engraved for the tests.
void engraved(AlphaTabController &controller, const QString &name, int pagesAcross)
{
    controller.pdfPagesAcross = pagesAcross;
    if (!openPDF(controller, QUrl::fromLocalFile(QStringLiteral(SHEETS "/") + name + u".pdf"_s)))
        qFatal("the PDF does not open");
}

void openMenu(QWidget &window)
{
    auto *bar = window.findChild<QMenuBar *>();
    if (!bar || bar->actions().isEmpty() || !bar->actions().constFirst()->menu())
        qFatal("the window has no menus");
    QAction *first = bar->actions().constFirst();
    first->menu()->popup(bar->mapToGlobal(bar->actionGeometry(first).bottomLeft()));
}

void goToTheEnd(QWidget &window)
{
    QWidget *score = window.findChild<AlphaTabWebView *>()->webView()->focusProxy();
    QKeyEvent end(QEvent::KeyPress, Qt::Key_End, Qt::NoModifier);
    QCoreApplication::sendEvent(score, &end);
}

void openPopover(QWidget &window) { press(window, u"Metronome & count-in"_s); }

} // namespace

QList<Scene> scenes()
{
    using enum Scene::Page;
    const auto none = [](AlphaTabController &) { };
    const auto some = [](AlphaTabController &controller) { recents(controller, 3); };
    const auto all = [](AlphaTabController &controller) { recents(controller, 8); };
    const auto nine = [](AlphaTabController &controller) { tracks(controller, u"Nonet"_s, numbered(9)); };
    const auto thirty = [](AlphaTabController &controller) { tracks(controller, QString(), numbered(30)); };
    const auto recording = [](AlphaTabController &controller) { reportRecording(controller, true); };
    const auto withFretboard = [](AlphaTabController &controller) { controller.fretboard = true; };
    const auto failed = [](AlphaTabController &controller) {
        controller.conversionError = u"Audiveris was not found. Install it and try again."_s;
    };
    const auto one = [](AlphaTabController &controller) { engraved(controller, u"one-page"_s, 1); };
    const auto single = [](AlphaTabController &controller) { engraved(controller, u"pages-200"_s, 1); };
    const auto pair = [](AlphaTabController &controller) { engraved(controller, u"pages-200"_s, 2); };
    const auto six = [](AlphaTabController &controller) { engraved(controller, u"pages-200"_s, 6); };
    const auto mixed = [](AlphaTabController &controller) { engraved(controller, u"mixed"_s, 3); };
    const auto turned = [](AlphaTabController &controller) { engraved(controller, u"rotated"_s, 2); };
    const auto converting = [pair](AlphaTabController &controller) {
        pair(controller);
        report(controller.converting, true);
    };
    const auto notConverted = [pair, failed](AlphaTabController &controller) {
        pair(controller);
        failed(controller);
    };
    return {
        { u"start"_s, usual, false, Empty, none, {} },
        { u"start-recents"_s, usual, false, Empty, some, {} },
        { u"start-recents-dark"_s, usual, true, Empty, some, {} },
        { u"start-smallest"_s, smallest, false, Empty, all, {} },
        { u"score"_s, usual, false, Demo, none, {} },
        { u"score-horizontal"_s, usual, false, Demo, sideways, {} },
        { u"playing"_s, usual, false, PlayingDemo, practising, {} },
        { u"playing-dark"_s, usual, true, PlayingDemo, practising, {} },
        { u"playing-smallest"_s, smallest, false, PlayingDemo, practising, {} },
        { u"playing-largest"_s, largest, false, PlayingDemo, practising, {} },
        { u"passage"_s, usual, false, PlayingDemo, passage, {} },
        { u"fretboard"_s, usual, false, PlayingDemo, withFretboard, {} },
        { u"fretboard-dark"_s, usual, true, PlayingDemo, withFretboard, {} },
        { u"fretboard-smallest"_s, smallest, false, PlayingDemo, withFretboard, {} },
        { u"popover"_s, usual, false, Demo, practising, openPopover },
        { u"popover-dark"_s, usual, true, Demo, practising, openPopover },
        { u"popover-off"_s, usual, false, Demo, recording, openPopover },
        { u"popover-smallest"_s, smallest, false, Demo, practising, openPopover },
        { u"nine-tracks"_s, usual, false, Demo, nine, {} },
        { u"thirty-tracks"_s, usual, false, Demo, thirty, {} },
        { u"thirty-tracks-smallest-dark"_s, smallest, true, Demo, thirty, {} },
        { u"long-names"_s, usual, false, Demo, longNames, {} },
        { u"long-names-smallest"_s, smallest, false, Demo, longNames, {} },
        { u"alert"_s, usual, false, Demo, failed, {} },
        { u"menu"_s, usual, false, Demo, none, openMenu },
        { u"menu-dark"_s, usual, true, Demo, none, openMenu },
        { u"solo-dark"_s, usual, true, Demo, practising, {} },
        { u"gnome-dark"_s, usual, true, Demo, practising, openPopover, {}, true },
        { u"section-and-chord"_s, usual, false, File, none, {}, u"stacked.gp"_s },
        { u"section-and-chord-horizontal"_s, usual, false, File, sideways, {}, u"stacked.gp"_s },
        { u"copyright"_s, usual, false, File, none, goToTheEnd, u"stacked.gp"_s },
        { u"thirty-staves"_s, usual, false, File, none, {}, u"thirty-tracks.musicxml"_s },
        { u"opening"_s, usual, false, Notice, none, {}, u"thirty-tracks-long.musicxml"_s },
        { u"refused"_s, usual, false, Notice, none, {}, u"cut-short.gp"_s },
        { u"refused-dark"_s, usual, true, Notice, none, {}, u"cut-short.gp"_s },
        { u"pdf"_s, usual, false, Empty, pair, {} },
        { u"pdf-dark"_s, usual, true, Empty, pair, {} },
        { u"pdf-smallest"_s, smallest, false, Empty, pair, {} },
        { u"pdf-largest"_s, largest, false, Empty, six, {} },
        { u"pdf-one-page"_s, usual, false, Empty, one, {} },
        { u"pdf-one-across"_s, usual, false, Empty, single, {} },
        { u"pdf-six-across"_s, usual, false, Empty, six, {} },
        { u"pdf-six-across-smallest"_s, smallest, true, Empty, six, {} },
        { u"pdf-mixed"_s, usual, false, Empty, mixed, {} },
        { u"pdf-rotated"_s, usual, false, Empty, turned, {} },
        { u"pdf-converting"_s, usual, false, Demo, converting, {} },
        { u"pdf-alert"_s, usual, false, Demo, notConverted, {} },
    };
}
