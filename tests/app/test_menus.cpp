#include "app/QuaverlyApp.h"
#include "app/menus/AloneTrack.h"
#include "controller/AlphaTabController.h"
#include "pdf/conversion/PDFDocument.h"
#include "tests/support/Report.h"
#include "tests/support/TestSurroundings.h"

#include <QAction>
#include <QDir>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPdfWriter>
#include <QTest>
#include <QWheelEvent>
#include <QWindow>

using namespace Qt::StringLiterals;

class TestMenus final : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestSurroundings> m_world;
    std::unique_ptr<AlphaTabController> m_controller;
    std::unique_ptr<QuaverlyApp> m_app;

    QMenu *menu(const QString &title) const
    {
        for (QMenu *menu : m_app->window().menuBar()->findChildren<QMenu *>() + m_app->window().findChildren<QMenu *>())
            if (QString(menu->title()).remove(u'&') == title)
                return menu;
        return nullptr;
    }

    QWidget *named(const QString &name) const
    {
        for (QWidget *widget : m_app->window().findChildren<QWidget *>())
            if (widget->accessibleName() == name)
                return widget;
        return nullptr;
    }

    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QWidget *holder = m_app->window().focusWidget();
        QTest::keyClick(holder ? holder : &m_app->window(), Qt::Key(key), modifiers);
    }

    void openScore() const
    {
        m_controller->handle({ { u"type"_s, u"ready"_s } });
        report(m_controller->tracks,
            { { .id = 0, .name = u"Lead & Rhythm"_s }, { .id = 1, .name = u"Bass"_s },
                { .id = 4, .name = u"Drums"_s } });
        report(m_controller->hasScore, true);
        m_world->engine->take();
    }

    void openPdf() const
    {
        {
            QPdfWriter writer(m_world->path(u"x.pdf"_s));
            QPainter painter(&writer);
        }
        report(m_controller->pdfDocument, PDFDocument::open(m_world->path(u"x.pdf"_s)));
        QVERIFY(m_controller->pdfDocument.value());
    }

private Q_SLOTS:
    void init()
    {
        m_world = std::make_unique<TestSurroundings>();
        m_controller = std::make_unique<AlphaTabController>(m_world->make());
        m_app = std::make_unique<QuaverlyApp>(*m_controller);
        QVERIFY(QTest::qWaitForWindowActive(&m_app->window()));
    }

    void cleanup()
    {
        m_app.reset();
        m_controller.reset();
    }

    void settingsThatCannotBeSavedAreSaidInTheMenuBar()
    {
        QMenu *sign = menu(u"Settings cannot be saved"_s);
        QVERIFY(sign && !sign->menuAction()->isVisible());
        // A folder in its place.
        const QString file = m_world->path(u"defaults.json"_s);
        QVERIFY(QDir().mkpath(file + u"/something"_s));
        m_controller->metronomeVolume = 0.25;
        QVERIFY(sign->menuAction()->isVisible());
        const QString line = sign->actions().constFirst()->text();
        QVERIFY2(line.startsWith(file + u": "_s), qPrintable(line));
        QVERIFY(!sign->actions().constFirst()->isEnabled());
        QCOMPARE(sign->accessibleDescription(), line);

        QVERIFY(QDir(file).removeRecursively());
        sign->actions().constLast()->trigger();
        QTRY_VERIFY(!sign->menuAction()->isVisible());
        QCOMPARE(m_world->defaults()->real(u"metronomeVolume"_s), 0.25);
    }

    void settingsThatCannotBeSavedAreTriedAgain()
    {
        const QMenu *sign = menu(u"Settings cannot be saved"_s);
        const QString file = m_world->path(u"defaults.json"_s);
        QVERIFY(QDir().mkpath(file + u"/something"_s));
        m_controller->metronomeVolume = 0.25;
        m_controller->metronomeVolume = 0.5;
        m_world->letTimePass();
        QVERIFY(sign->menuAction()->isVisible());
        QVERIFY(QDir(file).removeRecursively());
        m_world->letTimePass();
        QVERIFY(!sign->menuAction()->isVisible());
        QCOMPARE(m_world->defaults()->real(u"metronomeVolume"_s), 0.5);
    }

    void theMenusAreInOrder()
    {
        QStringList titles;
        for (const QAction *action : m_app->window().menuBar()->actions())
            if (action->isVisible())
                titles << action->text().remove(u'&');
        QCOMPARE(titles, (QStringList{ u"File"_s, u"View"_s, u"Playback"_s, u"Practice"_s, u"Help"_s }));
    }

    void noKeyIsTakenTwice()
    {
        QHash<QKeySequence, QString> taken;
        for (const QAction *action : m_app->window().findChildren<QAction *>()) {
            for (const QKeySequence &key : action->shortcuts()) {
                QVERIFY2(!taken.contains(key), qPrintable(key.toString() + u' ' + taken.value(key) + action->text()));
                taken.insert(key, action->text());
            }
        }
        QVERIFY(taken.size() > 30);
    }

    void theFretboardIsShownAndTurnedRound()
    {
        QList<QPair<bool, bool>> wanted;
        connect(&m_world->engine->reports, &PageReports::fretboardWanted, this,
            [&wanted](bool shown, bool leftHanded) { wanted << qMakePair(shown, leftHanded); });
        press(Qt::Key_B);
        m_controller->leftHandedFretboard = true;
        // A page that is loaded anew has none.
        m_controller->handle({ { u"type"_s, u"ready"_s } });
        press(Qt::Key_B);
        m_controller->handle({ { u"type"_s, u"ready"_s } });
        using Wanted = QList<QPair<bool, bool>>;
        QCOMPARE(wanted, (Wanted{ { true, false }, { true, true }, { true, true }, { false, true } }));
    }

    void printIsThereForAScore()
    {
        press(Qt::Key_P, Qt::ControlModifier);
        QVERIFY(m_world->dialogs->printedTitle.isEmpty());
        openScore();
        report(m_controller->title, u"Song"_s);
        press(Qt::Key_P, Qt::ControlModifier);
        QCOMPARE(m_world->dialogs->printedTitle, u"Song"_s);
        m_world->dialogs->printedTitle.clear();
        openPdf();
        press(Qt::Key_P, Qt::ControlModifier);
        QVERIFY(m_world->dialogs->printedTitle.isEmpty());
    }

    void remembersEachPieceOnceThatIsSwitchedOn()
    {
        QAction *item = nullptr;
        for (QAction *action : menu(u"Practice"_s)->actions()) {
            if (action->text() == "Remember Each Piece"_L1)
                item = action;
        }
        QVERIFY(item);
        QVERIFY(!item->isChecked());
        item->trigger();
        QVERIFY(m_controller->rememberScores);
        QVERIFY(m_world->scoreMemory()->isOn());
    }

    void thePageGetsItsKeysWhileAScoreIsSeen()
    {
        press(Qt::Key_Right);
        QCOMPARE(m_world->engine->keys, QStringList());
        openScore();
        press(Qt::Key_Home);
        press(Qt::Key_Backspace);
        press(Qt::Key_Left);
        press(Qt::Key_Right, Qt::ControlModifier);
        press(Qt::Key_Left, Qt::AltModifier);
        QCOMPARE(
            m_world->engine->keys, (QStringList{ u"Home"_s, u"Home"_s, u"Left"_s, u"Ctrl+Right"_s, u"Alt+Left"_s }));
        m_world->engine->keys.clear();
        report(m_controller->pageHealth, PageHealth::NotAnswering);
        press(Qt::Key_Right);
        report(m_controller->pageHealth, PageHealth::Well);
        openPdf();
        press(Qt::Key_Right);
        QCOMPARE(m_world->engine->keys, QStringList());
    }

    void everyControlLeavesThemTheirKeys()
    {
        openScore();
        QTRY_VERIFY(named(u"Mute Bass"_s) && named(u"Mute Bass"_s)->isVisible());
        int controls = 0;
        for (QWidget *control : m_app->window().findChildren<QWidget *>()) {
            if (!control->isVisible() || !control->isEnabled() || !(control->focusPolicy() & Qt::TabFocus)
                || control->window() != &m_app->window())
                continue;
            control->setFocus();
            if (m_app->window().focusWidget() != control)
                continue;
            ++controls;
            m_world->engine->keys.clear();
            const double speed = m_controller->tempoPercent;
            const double position = m_controller->currentTime;
            press(Qt::Key_Right);
            press(Qt::Key_Left);
            press(Qt::Key_Home);
            press(Qt::Key_L);
            press(Qt::Key_L);
            QVERIFY2(m_world->engine->keys == QStringList({ u"Right"_s, u"Left"_s, u"Home"_s }),
                qPrintable(control->accessibleName() + m_world->engine->keys.join(u' ')));
            QCOMPARE(m_controller->tempoPercent.value(), speed);
            QCOMPARE(m_controller->currentTime.value(), position);
            QVERIFY(!m_controller->looping);
        }
        // The tool bar's, the transport bar's and the rows'.
        QVERIFY2(controls > 15, qPrintable(QString::number(controls)));
    }

    void upAndDownStayTheSliders()
    {
        openScore();
        QWidget *tempo = named(u"Speed"_s);
        QVERIFY(tempo);
        tempo->setFocus();
        press(Qt::Key_Up);
        QCOMPARE(m_controller->tempoPercent.value(), 101.0);
        press(Qt::Key_Down);
        press(Qt::Key_Down);
        QCOMPARE(m_controller->tempoPercent.value(), 99.0);
    }

    void pageKeysTurnWhatIsSeen()
    {
        openScore();
        press(Qt::Key_PageDown);
        press(Qt::Key_BracketLeft);
        press(Qt::Key_Left, Qt::ControlModifier | Qt::ShiftModifier);
        press(Qt::Key_Escape);
        QCOMPARE(m_world->engine->keys, (QStringList{ u"PgDown"_s, u"["_s, u"Ctrl+Shift+Left"_s, u"Esc"_s }));
        m_world->engine->keys.clear();
        openPdf();
        QList<int> turns;
        m_controller->pdfTurn.onChange(m_app.get(), [&turns](int direction) { turns << direction; });
        // Wherever the focus is.
        for (QWidget *control : m_app->window().findChildren<QWidget *>()) {
            if (!control->isVisible() || !control->isEnabled() || !(control->focusPolicy() & Qt::TabFocus))
                continue;
            control->setFocus();
            turns.clear();
            press(Qt::Key_PageDown);
            press(Qt::Key_PageUp);
            QVERIFY2(turns == QList({ 1, -1 }), qPrintable(control->accessibleName()));
        }
        QCOMPARE(m_world->engine->keys, QStringList());
    }

    void escapeLeavesFullScreenBehindThePassage()
    {
        QWidget &window = m_app->window();
        const auto enter = [&window] {
            window.showFullScreen();
            return QTest::qWaitFor([&window] { return window.isFullScreen(); });
        };
        const auto escapes = [&] {
            press(Qt::Key_Escape);
            return QTest::qWaitFor([&window] { return !window.isFullScreen(); });
        };
        QVERIFY(enter() && escapes());
        openScore();
        report(m_controller->endTime, 60000.0);
        m_world->engine->reports.reportLoopSpan(4000, 8000);
        QVERIFY(enter());
        press(Qt::Key_Escape);
        QCOMPARE(m_world->engine->keys, QStringList{ u"Esc"_s });
        QVERIFY(window.windowState().testFlag(Qt::WindowFullScreen));
        m_world->engine->reports.reportLoopSpan(0, 60000);
        QVERIFY(escapes());
        openPdf();
        QVERIFY(enter() && escapes());
    }

    void theWheelZoomsWithCtrl()
    {
        openScore();
        QWidget *view = m_controller->webView();
        const auto turn = [view](int eighths, Qt::KeyboardModifiers modifiers) {
            QWheelEvent event({ 5, 5 }, view->mapToGlobal(QPointF(5, 5)), {}, { 0, eighths }, Qt::NoButton, modifiers,
                Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(view, &event);
        };
        turn(120, Qt::NoModifier);
        QCOMPARE(m_controller->zoom.value(), 1.0);
        turn(120, Qt::ControlModifier);
        QCOMPARE(m_controller->zoom.value(), 1.1);
        // A wheel that turns without steps.
        for (int i = 0; i < 8; ++i)
            turn(-30, Qt::ControlModifier);
        QCOMPARE(m_controller->zoom.value(), 0.9);
    }

    void speed()
    {
        press(Qt::Key_Minus);
        QCOMPARE(m_controller->tempoPercent.value(), 95.0);
        press(Qt::Key_Minus, Qt::ShiftModifier);
        QCOMPARE(m_controller->tempoPercent.value(), 94.0);
        press(Qt::Key_Equal);
        press(Qt::Key_Equal, Qt::ShiftModifier);
        QCOMPARE(m_controller->tempoPercent.value(), 100.0);
        m_controller->tempoPercent = 198;
        press(Qt::Key_Equal);
        QCOMPARE(m_controller->tempoPercent.value(), 200.0);
        m_controller->tempoPercent = 26;
        press(Qt::Key_Minus);
        QCOMPARE(m_controller->tempoPercent.value(), 25.0);
        press(Qt::Key_0);
        QCOMPARE(m_controller->tempoPercent.value(), 100.0);
    }

    void signsThatNeedShiftOnSomeKeyboards()
    {
        press(Qt::Key_Plus);
        QCOMPARE(m_controller->tempoPercent.value(), 105.0);
        press(Qt::Key_Plus, Qt::ShiftModifier);
        QCOMPARE(m_controller->tempoPercent.value(), 106.0);
    }

    /// As it comes from the X server or a Wayland compositor.
    bool pressAtPlace(
        quint32 place, Qt::Key sign, Qt::KeyboardModifiers modifiers, quint32 native = 0, bool held = false) const
    {
        QWindow *surface = m_app->window().windowHandle();
        QKeyEvent asked(QEvent::ShortcutOverride, sign, modifiers, place, 0, native, u"x"_s, held);
        asked.ignore();
        QCoreApplication::sendEvent(surface, &asked);
        QKeyEvent event(QEvent::KeyPress, sign, modifiers, place, 0, native, u"x"_s, held);
        QCoreApplication::sendEvent(surface, &event);
        return asked.isAccepted();
    }

    void aSignWithShiftGoesBeforeTheSignAlone()
    {
        openScore();
        // On a French keyboard, where Qt finds "1" too.
        QVERIFY(pressAtPlace(10, Qt::Key_1, Qt::ShiftModifier));
        QCOMPARE(m_world->engine->take(), QStringList{ u"window.qv.setTrackSolo(0, true)"_s });
        // On an English one, where it finds "+" too, and on a German one, where it finds "=".
        QVERIFY(pressAtPlace(21, Qt::Key_Plus, Qt::ShiftModifier));
        QCOMPARE(m_controller->tempoPercent.value(), 101.0);
        QVERIFY(pressAtPlace(19, Qt::Key_Equal, Qt::ShiftModifier));
        QCOMPARE(m_controller->tempoPercent.value(), 102.0);
        QVERIFY(!pressAtPlace(113, Qt::Key_Left, Qt::ShiftModifier));
    }

    void digitsThatNeedShiftOnSomeKeyboards()
    {
        openScore();
        QVERIFY(!pressAtPlace(11, Qt::Key_Eacute, Qt::NoModifier));
        QCOMPARE(m_world->engine->take(), QStringList{ u"window.qv.renderTracks([1])"_s });
        pressAtPlace(10, Qt::Key_Ampersand, Qt::AltModifier);
        QCOMPARE(m_world->engine->take(), QStringList{ u"window.qv.setTrackMute(0, true)"_s });
        m_controller->tempoPercent = 80;
        pressAtPlace(19, Qt::Key_Agrave, Qt::NoModifier);
        QCOMPARE(m_controller->tempoPercent.value(), 100.0);
        m_controller->zoom = 1.5;
        pressAtPlace(19, Qt::Key_Agrave, Qt::ControlModifier);
        QCOMPARE(m_controller->zoom.value(), 1.0);
        m_world->engine->take();
        // With AltGr it is another sign, beyond the row other keys, and there is no fourth track.
        pressAtPlace(11, Qt::Key_AsciiTilde, Qt::NoModifier, 0x80);
        pressAtPlace(24, Qt::Key_A, Qt::NoModifier);
        pressAtPlace(13, Qt::Key_Apostrophe, Qt::NoModifier);
        QCOMPARE(m_world->engine->take(), QStringList());
    }

    void aKeyThatIsHeldRepeatsStepsAndNoSwitches()
    {
        openScore();
        pressAtPlace(11, Qt::Key_Eacute, Qt::NoModifier);
        QCOMPARE(m_world->engine->take(), QStringList{ u"window.qv.renderTracks([1])"_s });
        pressAtPlace(11, Qt::Key_Eacute, Qt::NoModifier, 0, true);
        QCOMPARE(m_world->engine->take(), QStringList());
        pressAtPlace(21, Qt::Key_Plus, Qt::ShiftModifier);
        pressAtPlace(21, Qt::Key_Plus, Qt::ShiftModifier, 0, true);
        QCOMPARE(m_controller->tempoPercent.value(), 102.0);
    }

    void switches()
    {
        press(Qt::Key_L);
        QVERIFY(m_controller->looping);
        press(Qt::Key_N);
        QVERIFY(m_controller->metronome);
        press(Qt::Key_C);
        QVERIFY(m_controller->countIn);
        press(Qt::Key_H);
        QVERIFY(m_controller->horizontalLayout);
        for (int key : { Qt::Key_L, Qt::Key_N, Qt::Key_C, Qt::Key_H })
            press(key);
        QVERIFY(!m_controller->looping && !m_controller->metronome && !m_controller->countIn);
        QVERIFY(!m_controller->horizontalLayout);
        // The file's recording cannot count in.
        reportRecording(*m_controller, true);
        press(Qt::Key_C);
        QVERIFY(!m_controller->countIn);
        m_controller->preferSynth = true;
        press(Qt::Key_C);
        QVERIFY(m_controller->countIn);
    }

    void zoom()
    {
        press(Qt::Key_Plus, Qt::ControlModifier);
        press(Qt::Key_Equal, Qt::ControlModifier);
        QCOMPARE(m_controller->zoom.value(), 1.2);
        press(Qt::Key_Minus, Qt::ControlModifier);
        QCOMPARE(m_controller->zoom.value(), 1.1);
        press(Qt::Key_0, Qt::ControlModifier);
        QCOMPARE(m_controller->zoom.value(), 1.0);
    }

    void numbersAreTracks()
    {
        openScore();
        press(Qt::Key_2);
        QCOMPARE(m_world->engine->take(), QStringList{ u"window.qv.renderTracks([1])"_s });
        press(Qt::Key_3);
        QCOMPARE(m_world->engine->take(), QStringList{ u"window.qv.renderTracks([4])"_s });
        press(Qt::Key_3);
        QCOMPARE(m_world->engine->take(), QStringList{ u"window.qv.renderTracks([0,1,4])"_s });
        press(Qt::Key_3, Qt::ShiftModifier);
        QCOMPARE(m_world->engine->take(), QStringList{ u"window.qv.setTrackSolo(4, true)"_s });
        press(Qt::Key_1, Qt::AltModifier);
        QCOMPARE(m_world->engine->take(), QStringList{ u"window.qv.setTrackMute(0, true)"_s });
        press(Qt::Key_4);
        QCOMPARE(m_world->engine->take(), QStringList());
        QMenu *solo = menu(u"Solo"_s);
        QVERIFY(solo);
        QCOMPARE(solo->actions()[0]->text(), u"Lead && Rhythm"_s);
        QVERIFY(!solo->actions()[0]->isChecked());
        QVERIFY(solo->actions()[2]->isChecked());
        QVERIFY(!solo->actions()[3]->isVisible());
    }

    void aTrackAloneGoesBackToWhatWasShown()
    {
        const auto tracks = [](const QList<int> &shown) {
            QList<TrackInfo> list;
            for (const int id : { 0, 1, 2 })
                list.append({ .id = id, .name = {}, .visible = shown.contains(id) });
            return list;
        };
        AloneTrack alone;
        QCOMPARE(alone.chosen(tracks({ 0, 1 }), 2), QList{ 2 });
        QCOMPARE(alone.chosen(tracks({ 2 }), 1), QList{ 1 });
        QCOMPARE(alone.chosen(tracks({ 1 }), 1), (QList{ 0, 1 }));
        // Another score with one track only.
        QCOMPARE(AloneTrack().chosen({ { .id = 7, .name = {} } }, 7), QList{ 7 });
        QCOMPARE(alone.chosen({ { .id = 7, .name = {} } }, 7), QList{ 7 });
    }

    void sectionsAreGoneToByTheMenu()
    {
        openScore();
        QMenu *sections = menu(u"Sections"_s);
        QVERIFY(sections && !sections->menuAction()->isEnabled());
        m_world->engine->reports.reportSections({
            QVariantMap{ { u"title"_s, u"Intro"_s }, { u"start"_s, 0 } },
            QVariantMap{ { u"title"_s, u"A & B"_s }, { u"start"_s, 2500.5 } },
            QVariantMap{ { u"title"_s, u"never"_s }, { u"start"_s, u"x"_s } },
            u"no section"_s,
        });
        QVERIFY(sections->menuAction()->isEnabled());
        QCOMPARE(sections->actions().size(), 2);
        QCOMPARE(sections->actions()[1]->text(), u"A && B"_s);
        sections->actions()[1]->trigger();
        QCOMPARE(m_world->engine->take(), QStringList{ u"window.qv.seekToTime(2500.5)"_s });
        m_world->engine->reports.reportSections({});
        QVERIFY(!sections->menuAction()->isEnabled());
    }
};

QTEST_MAIN(TestMenus)
#include "test_menus.moc"
