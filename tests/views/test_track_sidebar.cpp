#include "design/Button.h"
#include "design/ElidedLabel.h"
#include "design/Slider.h"
#include "tests/support/Report.h"
#include "tests/views/ShownWindow.h"
#include "views/TrackRow.h"
#include "views/TrackSidebar.h"

#include <QPointer>
#include <QTest>

using namespace Qt::StringLiterals;

class TestTrackSidebar final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theHeaderIsTheTitleOrAWord()
    {
        ShownWindow w;
        QVERIFY(w.label(u"Tracks"_s) && w.label(u"No tracks loaded"_s));
        w.score(u"My Song"_s, { u"Guitar"_s });
        QVERIFY(w.label(u"My Song"_s) && !w.label(u"Tracks"_s) && !w.label(u"No tracks loaded"_s));
        w.score(QString(), {});
        QVERIFY(w.label(u"Tracks"_s) && w.label(u"No tracks loaded"_s) && !w.control(u"Show Guitar"_s));
    }

    void oneRowPerTrackInOrder()
    {
        ShownWindow w;
        w.score(u"Song"_s, { u"Lead"_s, u"Rhythm"_s, u"Bass"_s });
        QStringList names;
        int lastY = -1;
        for (const QString &name : { u"Lead"_s, u"Rhythm"_s, u"Bass"_s }) {
            const QWidget *control = w.control(u"Show "_s + name);
            QVERIFY(control);
            const int y = control->mapTo(&w.window, QPoint()).y();
            QVERIFY(y > lastY);
            lastY = y;
        }
    }

    void hidingTracksSendsTheRest()
    {
        ShownWindow w;
        w.score(u"Song"_s, { u"A"_s, u"B"_s, u"C"_s });
        w.click(u"Show B"_s);
        QCOMPARE(w.sent(), QStringList{ u"window.qv.renderTracks([0,2])"_s });
        w.click(u"Show A"_s);
        QCOMPARE(w.sent(), QStringList{ u"window.qv.renderTracks([2])"_s });
        w.click(u"Show C"_s);
        QVERIFY(w.sent().isEmpty());
        for (const QString &name : { u"Show A"_s, u"Show B"_s, u"Show C"_s }) {
            const auto *show = w.control<Button>(name);
            QCOMPARE(show->iconName(), u"square"_s);
            QVERIFY(!show->isChecked());
        }
        w.click(u"Show C"_s);
        QCOMPARE(w.sent(), QStringList{ u"window.qv.renderTracks([2])"_s });
        QCOMPARE(w.control<Button>(u"Show C"_s)->iconName(), u"checkmark.square.fill"_s);
    }

    void onlyMutedAndSoloedLettersAreLit()
    {
        ShownWindow w;
        w.score(u"Song"_s, { u"A"_s, u"B"_s });
        w.click(u"Mute A"_s);
        w.click(u"Solo A"_s);
        QCOMPARE(w.sent(), (QStringList{ u"window.qv.setTrackMute(0, true)"_s, u"window.qv.setTrackSolo(0, true)"_s }));
        QVERIFY(w.control<Button>(u"Mute A"_s)->tint() == &Theme::Colors::muted);
        QVERIFY(w.control<Button>(u"Solo A"_s)->tint() == &Theme::Colors::accent);
        QVERIFY(w.control<Button>(u"Mute B"_s)->tint() == &Theme::Colors::secondary);
        QVERIFY(w.control<Button>(u"Solo B"_s)->tint() == &Theme::Colors::secondary);
        w.click(u"Mute A"_s);
        QCOMPARE(w.sent(), QStringList{ u"window.qv.setTrackMute(0, false)"_s });
        QVERIFY(w.control<Button>(u"Mute A"_s)->tint() == &Theme::Colors::secondary);
    }

    void theLettersAreLargeEnoughToHit()
    {
        ShownWindow w;
        w.score(u"Song"_s, { u"A"_s, u"B"_s });
        QList<QRect> places;
        for (const QString &name : { u"Mute A"_s, u"Solo A"_s, u"Volume of A"_s, u"Mute B"_s, u"Solo B"_s }) {
            QWidget *control = w.control(name);
            places << QRect(control->mapTo(&w.window, QPoint()), control->size());
            if (qobject_cast<Button *>(control)) {
                QVERIFY2(control->width() >= 26 && control->height() >= 28, qPrintable(name));
                QCOMPARE(control->visibleRegion(), QRegion(control->rect()));
            }
        }
        for (qsizetype i = 0; i < places.size(); ++i) {
            for (qsizetype j = 0; j < i; ++j)
                QVERIFY(!places[i].intersects(places[j]));
        }
    }

    /// Solo's own colour and that of a letter that is off are both dark: a body tells them apart.
    void aLetterThatIsOnStandsOnABody()
    {
        ShownWindow w;
        w.score(u"Song"_s, { u"A"_s });
        for (const QString &name : { u"Mute A"_s, u"Solo A"_s }) {
            auto *letter = w.control<Button>(name);
            const QPoint inside(7, letter->height() / 2);
            const auto body = [&] { return letter->grab().toImage().pixelColor(inside); };
            const QColor off = body();
            w.click(name);
            QTest::mouseMove(w.control(u"Stop"_s));
            QTRY_VERIFY(!letter->underMouse());
            QVERIFY2(body() != off, qPrintable(name));
        }
    }

    void tracksThatAreNotHeardLookIt()
    {
        ShownWindow w;
        w.score(u"Song"_s, { u"A"_s, u"B"_s, u"C"_s });
        const auto silent = [&w](const QString &name) {
            const auto *label = qobject_cast<ElidedLabel *>(w.label(name));
            const auto *volume = w.control<Slider>(u"Volume of "_s + name);
            return label->color() == &Theme::Colors::secondary && volume->isQuiet();
        };
        QVERIFY(!silent(u"A"_s) && !silent(u"B"_s) && !silent(u"C"_s));
        w.click(u"Mute A"_s);
        QVERIFY(silent(u"A"_s) && !silent(u"B"_s));
        w.click(u"Solo B"_s);
        QVERIFY(silent(u"A"_s) && !silent(u"B"_s) && silent(u"C"_s));
        QVERIFY(w.control(u"Volume of C"_s)->accessibleDescription().contains(u"solo"_s));
        QVERIFY(w.control(u"Volume of B"_s)->accessibleDescription().isEmpty());
        w.click(u"Solo A"_s);
        QVERIFY(silent(u"A"_s)); // muted as well
        w.click(u"Solo B"_s);
        w.click(u"Solo A"_s);
        w.click(u"Mute A"_s);
        QVERIFY(!silent(u"A"_s) && !silent(u"B"_s) && !silent(u"C"_s));
    }

    void operationsUseTheIdAndNotThePlace()
    {
        ShownWindow w;
        report(w.controller.tracks, { { .id = 7, .name = u"Seven"_s }, { .id = 3, .name = u"Three"_s } });
        QCoreApplication::processEvents();
        w.sent();
        w.click(u"Mute Seven"_s);
        w.click(u"Solo Three"_s);
        QTest::keyClick(w.control(u"Volume of Three"_s), Qt::Key_Home);
        w.click(u"Show Three"_s);
        QCOMPARE(w.sent(),
            (QStringList{ u"window.qv.setTrackMute(7, true)"_s, u"window.qv.setTrackSolo(3, true)"_s,
                u"window.qv.setTrackVolume(3, 0.0)"_s, u"window.qv.renderTracks([7])"_s }));
    }

    void aDragOfTheVolumeSendsAsItGoes()
    {
        ShownWindow w;
        w.score(u"Song"_s, { u"A"_s, u"B"_s });
        QPointer<Slider> volume = w.control<Slider>(u"Volume of B"_s);
        QTest::mousePress(volume, Qt::LeftButton, {}, QPoint(volume->width() / 2, 8));
        QStringList sent = w.sent();
        QCOMPARE(sent.size(), 1);
        for (int x = 20; x < 200; x += 20) {
            QTest::mouseMove(volume, QPoint(x, 8));
            // Each step publishes the tracks anew; the slider in the hand must live on.
            QVERIFY(volume && volume->isSliderDown());
            QCOMPARE(w.controller.tracks.value()[1].volume, volume->shown());
        }
        sent = w.sent();
        QVERIFY(sent.size() >= 8);
        for (const QString &script : std::as_const(sent)) {
            static const QRegularExpression form(u"^window\\.qv\\.setTrackVolume\\(1, (.*)\\)$"_s);
            const QRegularExpressionMatch match = form.match(script);
            QVERIFY2(match.hasMatch(), qPrintable(script));
            const double value = match.captured(1).toDouble();
            QVERIFY(value >= 0 && value <= 1);
        }
        QTest::mouseRelease(volume, Qt::LeftButton);
        QVERIFY(w.sent().isEmpty());
    }

    void rowsFollowTheControllerInPlace()
    {
        ShownWindow w;
        w.score(u"Song"_s, { u"A"_s, u"B"_s });
        const auto before = w.window.findChildren<TrackRow *>();
        w.controller.setTrackVolume(1, 0.25);
        w.controller.toggleMute(0);
        reportChange(w.controller.tracks, [](QList<TrackInfo> &tracks) { tracks[0].name = u"Lead"_s; });
        QCOMPARE(w.window.findChildren<TrackRow *>(), before);
        QCOMPARE(w.control<Slider>(u"Volume of B"_s)->shown(), 0.25);
        QVERIFY(w.control<Button>(u"Mute Lead"_s)->isChecked());
        QVERIFY(w.label(u"Lead"_s));
        w.controller.setTrackVolume(1, 1.7);
        QCOMPARE(w.control<Slider>(u"Volume of B"_s)->shown(), 1.0);
        QCOMPARE(w.controller.tracks.value()[1].volume, 1.7);
        w.sent();
        w.score(u"Other"_s, { u"C"_s });
        QVERIFY(w.control(u"Show C"_s) && !w.control(u"Show B"_s));
        QVERIFY(w.sent().isEmpty());
    }

    void longNamesAreCutAndLeaveTheButtons()
    {
        ShownWindow w({}, QSize(760, 520));
        const QString name = u"Steel-string Acoustic Guitar with a Capo on the Seventh Fret"_s;
        w.score(u"Song"_s, { name });
        const auto *label = qobject_cast<ElidedLabel *>(w.label(name));
        QVERIFY(label);
        QVERIFY(label->shownText().startsWith(u"Steel"_s) && label->shownText().endsWith(u'…'));
        for (const QString &button : { u"Mute "_s, u"Solo "_s }) {
            const QWidget *control = w.control(button + name);
            QCOMPARE(control->visibleRegion(), QRegion(control->rect()));
        }
        auto *sidebar = w.window.findChild<TrackSidebar *>();
        const QWidget *solo = w.control(u"Solo "_s + name);
        QVERIFY(sidebar->width() - solo->mapTo(sidebar, QPoint(solo->width(), 0)).x() < 24);
    }

    void thirtyTracksScroll()
    {
        ShownWindow w({}, QSize(760, 520));
        QStringList names;
        for (int i = 0; i < 30; ++i)
            names << u"Track %1"_s.arg(i);
        w.score(u"Song"_s, names);
        QCOMPARE(w.window.findChildren<TrackRow *>().size(), 30);
        QCOMPARE(w.window.size(), QSize(760, 520));
        QWidget *last = w.control(u"Volume of Track 29"_s);
        QTRY_VERIFY(last->visibleRegion().isEmpty());
        // Tab brings it into view.
        w.control(u"Solo Track 29"_s)->setFocus(Qt::TabFocusReason);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), last);
        QCOMPARE(last->visibleRegion(), QRegion(last->rect()));
    }
};

QTEST_MAIN(TestTrackSidebar)
#include "test_track_sidebar.moc"
