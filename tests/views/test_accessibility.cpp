#include "design/Slider.h"
#include "tests/support/TestPDFs.h"
#include "tests/views/ShownWindow.h"
#include "views/ContentView.h"

#include <QAccessible>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QStringList tabStops(ShownWindow &w, Qt::Key key, int modifiers = 0)
{
    w.content->setFocus();
    QStringList names;
    for (int i = 0; i < 60; ++i) {
        QTest::keyClick(QApplication::focusWidget(), key, Qt::KeyboardModifiers(modifiers));
        const QString name = accessibleName(QApplication::focusWidget());
        if (names.contains(name))
            break;
        names << name;
    }
    return names;
}

/// The same round of stops, told from `first` on. It begins where the score is read, which has the focus.
QStringList roundFrom(const QString &first, QStringList stops)
{
    if (const qsizetype index = stops.indexOf(first); index > 0)
        std::rotate(stops.begin(), stops.begin() + index, stops.end());
    return stops;
}

const QStringList toolBar{ u"Open"_s, u"Demo"_s, u"Horizontal"_s, u"Zoom out"_s, u"Zoom in"_s };

QAccessibleInterface *seen(const ShownWindow &w, const QString &name)
{
    return QAccessible::queryAccessibleInterface(w.control(name));
}

void everything(ShownWindow &w)
{
    w.score(u"Song"_s, { u"Lead"_s, u"Bass"_s }, true);
    w.playerReady();
    w.position(50000, 200000);
    w.sent();
}

} // namespace

class TestAccessibility final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tabVisitsTheStartScreenInReadingOrder()
    {
        ShownWindow w([](ShownWindow &window) {
            window.controller.recentFiles
                = { QUrl::fromLocalFile(u"/a/one.gp"_s), QUrl::fromLocalFile(u"/a/two.gp"_s) };
        });
        const QStringList expected = toolBar
            + QStringList{ u"Open…"_s, u"Try the demo"_s, u"Clear"_s, u"one"_s, u"two"_s, u"Speed"_s, u"Volume"_s,
                  u"Loop selected range"_s, u"Metronome & count-in"_s };
        QCOMPARE(tabStops(w, Qt::Key_Tab), expected);
    }

    void tabVisitsTheScoreInReadingOrder()
    {
        ShownWindow w;
        everything(w);
        const QStringList expected = toolBar
            + QStringList{ u"Show Lead"_s, u"Mute Lead"_s, u"Solo Lead"_s, u"Volume of Lead"_s, u"Show Bass"_s,
                  u"Mute Bass"_s, u"Solo Bass"_s, u"Volume of Bass"_s, u"Score"_s, u"Position"_s, u"Play"_s, u"Stop"_s,
                  u"Speed"_s, u"Volume"_s, u"Original"_s, u"Loop selected range"_s, u"Metronome & count-in"_s };
        QCOMPARE(roundFrom(u"Open"_s, tabStops(w, Qt::Key_Tab)), expected);
        QStringList backwards = tabStops(w, Qt::Key_Backtab);
        std::reverse(backwards.begin(), backwards.end());
        QCOMPARE(roundFrom(u"Open"_s, backwards), expected);
        // The other half of a choice is reached by the arrows, as everywhere.
        w.control(u"Original"_s)->setFocus(Qt::TabFocusReason);
        w.sent();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
        QCOMPARE(accessibleName(QApplication::focusWidget()), u"Synth"_s);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QVERIFY(w.controller.preferSynth);
    }

    void tabVisitsAPDFInReadingOrder()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(3));
        const QStringList expected{ u"Open"_s, u"2"_s, u"Convert to Guitar Pro"_s, u"Pages"_s, u"Sheet music"_s };
        QCOMPARE(roundFrom(u"Open"_s, tabStops(w, Qt::Key_Tab)), expected);
    }

    void screenReadersMeetTheSidebarBeforeTheScore()
    {
        ShownWindow w;
        everything(w);
        const QList<QWidget *> all = w.window.findChildren<QWidget *>();
        QVERIFY(all.indexOf(w.control(u"Zoom in"_s)) < all.indexOf(w.control(u"Show Lead"_s)));
        QVERIFY(all.indexOf(w.control(u"Volume of Bass"_s)) < all.indexOf(w.control(u"Position"_s)));
    }

    void tabStaysInThePopover()
    {
        ShownWindow w;
        everything(w);
        w.controller.preferSynth = true;
        w.controller.metronome = true;
        w.control(u"Metronome & count-in"_s)->setFocus(Qt::TabFocusReason);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QStringList names;
        for (int i = 0; i < 7; ++i) {
            names << accessibleName(QApplication::focusWidget());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(names,
            (QStringList{ u"Metronome"_s, u"Plays on"_s, u"Metronome volume"_s, u"Sound"_s,
                u"Accent first beat of bar"_s, u"Count-in"_s, u"Metronome"_s }));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QVERIFY(!w.control(u"Count-in"_s));
        QCOMPARE(accessibleName(QApplication::focusWidget()), u"Metronome & count-in"_s);
    }

    void rolesTellWhatThingsAre()
    {
        ShownWindow w;
        everything(w);
        w.click(u"Metronome & count-in"_s);
        const QList<std::pair<QString, QAccessible::Role>> expected{
            { u"Open"_s, QAccessible::Button },
            { u"Horizontal"_s, QAccessible::CheckBox },
            { u"Play"_s, QAccessible::Button },
            { u"Position"_s, QAccessible::Slider },
            { u"Sound source"_s, QAccessible::Grouping },
            { u"Original"_s, QAccessible::RadioButton },
            { u"Loop selected range"_s, QAccessible::CheckBox },
            { u"Metronome"_s, QAccessible::CheckBox },
            { u"Plays on"_s, QAccessible::ComboBox },
            { u"Show Lead"_s, QAccessible::CheckBox },
            { u"Volume of Bass"_s, QAccessible::Slider },
        };
        for (const auto &[name, role] : expected) {
            QVERIFY2(w.control(name), qPrintable(name));
            QVERIFY2(seen(w, name)->role() == role, qPrintable(name));
        }
    }

    void togglesTellTheirState()
    {
        ShownWindow w;
        everything(w);
        w.click(u"Metronome & count-in"_s);
        const auto checked = [&w](const QString &name) { return bool(seen(w, name)->state().checked); };
        QVERIFY(checked(u"Show Lead"_s) && checked(u"Original"_s) && checked(u"Accent first beat of bar"_s));
        for (const QString &name : { u"Mute Lead"_s, u"Solo Lead"_s, u"Horizontal"_s, u"Loop selected range"_s,
                 u"Synth"_s, u"Metronome"_s, u"Count-in"_s })
            QVERIFY2(!checked(name), qPrintable(name));
        w.controller.toggleVisible(0);
        w.controller.toggleMute(0);
        w.controller.toggleSolo(0);
        w.controller.horizontalLayout = true;
        w.controller.looping = true;
        w.controller.preferSynth = true;
        w.controller.metronome = true;
        w.controller.countIn = true;
        QVERIFY(!checked(u"Show Lead"_s) && !checked(u"Original"_s));
        for (const QString &name : { u"Mute Lead"_s, u"Solo Lead"_s, u"Horizontal"_s, u"Loop selected range"_s,
                 u"Synth"_s, u"Metronome"_s, u"Count-in"_s })
            QVERIFY2(checked(name), qPrintable(name));
    }

    void slidersTellTheirRange_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<double>("from");
        QTest::addColumn<double>("to");
        QTest::addColumn<double>("now");
        QTest::newRow("position") << u"Position"_s << 0.0 << 1.0 << 0.25;
        QTest::newRow("speed") << u"Speed"_s << 25.0 << 200.0 << 100.0;
        QTest::newRow("volume") << u"Volume"_s << 0.0 << 1.0 << 1.0;
        QTest::newRow("track") << u"Volume of Bass"_s << 0.0 << 1.0 << 1.0;
    }

    void slidersTellTheirRange()
    {
        QFETCH(QString, name);
        ShownWindow w;
        everything(w);
        auto *value = seen(w, name)->valueInterface();
        QVERIFY(value);
        QTEST(value->minimumValue().toDouble(), "from");
        QTEST(value->maximumValue().toDouble(), "to");
        QTEST(value->currentValue().toDouble(), "now");
    }

    void assistiveToolsCanSetASlider()
    {
        ShownWindow w;
        everything(w);
        seen(w, u"Position"_s)->valueInterface()->setCurrentValue(0.5);
        seen(w, u"Speed"_s)->valueInterface()->setCurrentValue(50);
        seen(w, u"Volume of Bass"_s)->valueInterface()->setCurrentValue(0.25);
        QCOMPARE(w.sent(),
            (QStringList{ u"window.qv.seekToTime(100000.0)"_s, u"window.qv.setSpeed(0.5)"_s,
                u"window.qv.setTrackVolume(1, 0.25)"_s }));
    }

    void assistiveToolsCanPress()
    {
        ShownWindow w;
        everything(w);
        const auto press = [&w](const QString &name, const QString &action) {
            QAccessibleActionInterface *actions = seen(w, name)->actionInterface();
            QVERIFY(actions->actionNames().contains(action));
            actions->doAction(action);
        };
        press(u"Stop"_s, QAccessibleActionInterface::pressAction());
        press(u"Loop selected range"_s, QAccessibleActionInterface::toggleAction());
        press(u"Mute Bass"_s, QAccessibleActionInterface::toggleAction());
        press(u"Synth"_s, QAccessibleActionInterface::toggleAction());
        // A press takes a moment, so that it can be seen.
        QTRY_COMPARE(w.world.engine->scripts,
            (QStringList{ u"window.qv.setLooping(true)"_s, u"window.qv.setTrackMute(1, true)"_s,
                u"window.qv.setSoundSource(true)"_s, u"window.qv.stop()"_s }));
    }

    void enterPressesEveryButton_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("call");
        QTest::newRow("demo") << u"Demo"_s << u"window.qv.loadSample()"_s;
        QTest::newRow("horizontal") << u"Horizontal"_s << u"window.qv.setLayout('horizontal')"_s;
        QTest::newRow("zoom out") << u"Zoom out"_s << u"window.qv.setZoom(0.9)"_s;
        QTest::newRow("zoom in") << u"Zoom in"_s << u"window.qv.setZoom(1.1)"_s;
        QTest::newRow("play") << u"Play"_s << u"window.qv.playPause()"_s;
        QTest::newRow("stop") << u"Stop"_s << u"window.qv.stop()"_s;
        QTest::newRow("loop") << u"Loop selected range"_s << u"window.qv.setLooping(true)"_s;
        QTest::newRow("show") << u"Show Lead"_s << u"window.qv.renderTracks([1])"_s;
        QTest::newRow("mute") << u"Mute Lead"_s << u"window.qv.setTrackMute(0, true)"_s;
        QTest::newRow("solo") << u"Solo Bass"_s << u"window.qv.setTrackSolo(1, true)"_s;
    }

    void enterPressesEveryButton()
    {
        QFETCH(QString, name);
        QFETCH(QString, call);
        for (const Qt::Key key : { Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space }) {
            ShownWindow w;
            everything(w);
            QTest::keyClick(w.control(name), key);
            QCOMPARE(w.sent(), QStringList{ call });
        }
    }
};

QTEST_MAIN(TestAccessibility)
#include "test_accessibility.moc"
