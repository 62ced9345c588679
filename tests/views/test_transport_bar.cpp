#include "design/Button.h"
#include "design/SegmentedControl.h"
#include "design/Slider.h"
#include "engine_host/bridge/BridgeCalls.h"
#include "tests/support/Report.h"
#include "tests/views/ShownWindow.h"
#include "views/TransportBar.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

void loaded(ShownWindow &w)
{
    w.score(u"Song"_s, { u"Guitar"_s });
    w.playerReady();
    w.position(0, 200000);
}

/// The point on the slider that stands for `share` of its range.
QPoint at(const Slider &slider, double share)
{
    return { 9 + qRound((slider.width() - 18) * share), slider.height() / 2 };
}

} // namespace

class TestTransportBar final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void timesReadAsMinutesAndSeconds_data()
    {
        QTest::addColumn<double>("milliseconds");
        QTest::addColumn<QString>("text");
        QTest::newRow("zero") << 0.0 << u"0:00"_s;
        QTest::newRow("part of a second") << 999.9 << u"0:00"_s;
        QTest::newRow("a minute") << 61999.0 << u"1:01"_s;
        QTest::newRow("an hour") << 3600000.0 << u"60:00"_s;
        QTest::newRow("just before zero") << -1500.0 << u"0:-2"_s;
        QTest::newRow("a minute before zero") << -65000.0 << u"-1:-5"_s;
        QTest::newRow("a smallest bit before zero") << -0.5 << u"0:-1"_s;
    }

    void timesReadAsMinutesAndSeconds()
    {
        QFETCH(double, milliseconds);
        QTEST(TransportBar::format(milliseconds), "text");
    }

    void withoutALengthEverythingIsAtZero()
    {
        ShownWindow w;
        w.score(u"Song"_s, { u"Guitar"_s });
        w.position(5000, 0);
        QCOMPARE(w.control<Slider>(u"Position"_s)->shown(), 0.0);
        w.position(0, 0);
        QVERIFY(w.label(u"0:00"_s));
    }

    void thePositionFollowsTheEngine()
    {
        ShownWindow w(loaded);
        w.position(61999, 200000);
        QVERIFY(w.label(u"1:01"_s) && w.label(u"3:20"_s));
        QCOMPARE(w.control<Slider>(u"Position"_s)->shown(), 0.31);
        w.position(300000, 200000);
        QCOMPARE(w.control<Slider>(u"Position"_s)->shown(), 1.0);
        w.position(-1500, 200000);
        QVERIFY(w.label(u"0:-2"_s));
        QCOMPARE(w.control<Slider>(u"Position"_s)->shown(), 0.0);
        QVERIFY(w.sent().isEmpty());
    }

    void aDragSeeksOnceWhenLetGo()
    {
        ShownWindow w(loaded);
        auto *slider = w.control<Slider>(u"Position"_s);
        QTest::mousePress(slider, Qt::LeftButton, {}, at(*slider, 0));
        for (const double share : { 0.1, 0.3, 0.9, 0.5 }) {
            QTest::mouseMove(slider, at(*slider, share));
            // The page goes on playing and does not pull the knob out of the hand.
            w.position(1000, 200000);
            QVERIFY(std::abs(slider->shown() - share) < 0.002);
            QVERIFY(w.sent().isEmpty());
        }
        const double released = slider->shown();
        QTest::mouseRelease(slider, Qt::LeftButton, {}, at(*slider, 0.5));
        const QStringList sent = w.sent();
        QCOMPARE(sent.size(), 1);
        QCOMPARE(sent.constFirst(), BridgeCalls::seekToTime(released * 200000));
        QCOMPARE(w.controller.currentTime.value(), 1000.0);
        w.position(100000, 200000);
        QCOMPARE(slider->shown(), 0.5);
    }

    void theKnobGoesWithTheLengthToo()
    {
        ShownWindow w(loaded);
        auto *slider = w.control<Slider>(u"Position"_s);
        w.position(1000, 200000);
        w.position(1000, 2000);
        QCOMPARE(slider->shown(), 0.5);
    }

    void aClickOnTheGrooveSeeksOnce()
    {
        ShownWindow w(loaded);
        auto *slider = w.control<Slider>(u"Position"_s);
        QTest::mousePress(slider, Qt::LeftButton, {}, at(*slider, 1));
        QVERIFY(w.sent().isEmpty());
        QTest::mouseRelease(slider, Qt::LeftButton, {}, at(*slider, 1));
        QCOMPARE(w.sent(), QStringList{ u"window.qv.seekToTime(200000.0)"_s });
    }

    void eachKeySeeksOnce_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<QString>("call");
        QTest::newRow("right") << Qt::Key_Right << u"window.qv.seekToTime(102000.0)"_s;
        QTest::newRow("left") << Qt::Key_Left << u"window.qv.seekToTime(98000.0)"_s;
        QTest::newRow("page up") << Qt::Key_PageUp << u"window.qv.seekToTime(120000.0)"_s;
        QTest::newRow("page down") << Qt::Key_PageDown << u"window.qv.seekToTime(80000.0)"_s;
        QTest::newRow("home") << Qt::Key_Home << u"window.qv.seekToTime(0.0)"_s;
        QTest::newRow("end") << Qt::Key_End << u"window.qv.seekToTime(200000.0)"_s;
    }

    void eachKeySeeksOnce()
    {
        QFETCH(Qt::Key, key);
        QFETCH(QString, call);
        ShownWindow w(loaded);
        w.position(100000, 200000);
        QTest::keyClick(w.control(u"Position"_s), key);
        QCOMPARE(w.sent(), QStringList{ call });
    }

    void withoutALengthADragSendsNothingAndSnapsBack()
    {
        ShownWindow w;
        w.score(u"Song"_s, { u"Guitar"_s });
        auto *slider = w.control<Slider>(u"Position"_s);
        QTest::mouseClick(slider, Qt::LeftButton, {}, at(*slider, 0.7));
        QVERIFY(w.sent().isEmpty());
        QCOMPARE(slider->shown(), 0.0);
    }

    void aDragDoesNotOutliveTheBar()
    {
        ShownWindow w(loaded);
        auto *slider = w.control<Slider>(u"Position"_s);
        QTest::mousePress(slider, Qt::LeftButton, {}, at(*slider, 0.8));
        w.openPDF();
        report(w.controller.pdfDocument, nullptr);
        QVERIFY(w.sent().isEmpty());
        w.position(50000, 200000);
        QCOMPARE(slider->shown(), 0.25);
    }

    void enablingFollowsTheEngine()
    {
        ShownWindow w;
        const auto enabled = [&w](const QString &name) { return w.control(name)->isEnabled(); };
        QVERIFY(!enabled(u"Play"_s) && !enabled(u"Stop"_s) && !enabled(u"Position"_s));
        w.score(u"Song"_s, { u"Guitar"_s });
        QVERIFY(!enabled(u"Play"_s) && enabled(u"Stop"_s) && enabled(u"Position"_s));
        w.playerReady();
        QVERIFY(enabled(u"Play"_s));
        for (const QString &name : { u"Speed"_s, u"Volume"_s, u"Loop selected range"_s, u"Metronome & count-in"_s })
            QVERIFY2(enabled(name), qPrintable(name));
    }

    void playWaitsForTheEngine()
    {
        ShownWindow w(loaded);
        auto *play = w.control<Button>(u"Play"_s);
        QCOMPARE(play->iconName(), u"play.fill"_s);
        w.click(u"Play"_s);
        w.click(u"Play"_s);
        QCOMPARE(w.sent(), (QStringList{ u"window.qv.playPause()"_s, u"window.qv.playPause()"_s }));
        QCOMPARE(play->iconName(), u"play.fill"_s);
        w.controller.handle({ { u"type"_s, u"state"_s }, { u"playing"_s, true } });
        QCOMPARE(play->iconName(), u"pause.fill"_s);
        QCOMPARE(w.control(u"Pause"_s), play);
        w.click(u"Stop"_s);
        QCOMPARE(w.sent(), QStringList{ u"window.qv.stop()"_s });
        QCOMPARE(play->iconName(), u"pause.fill"_s);
    }

    void theTempoMovesInWholePercents()
    {
        ShownWindow w(loaded);
        auto *tempo = w.control<Slider>(u"Speed"_s);
        QCOMPARE(tempo->width(), 110);
        QTest::mousePress(tempo, Qt::LeftButton, {}, QPoint(55, 11));
        for (int x = 0; x < tempo->width(); x += 3) {
            QTest::mouseMove(tempo, QPoint(x, 11));
            const double percent = w.controller.tempoPercent;
            QCOMPARE(percent, std::floor(percent));
            QVERIFY(percent >= 25 && percent <= 200);
        }
        QTest::mouseMove(tempo, QPoint(-50, 11));
        QCOMPARE(w.controller.tempoPercent.value(), 25.0);
        QTest::mouseMove(tempo, QPoint(500, 11));
        QCOMPARE(w.controller.tempoPercent.value(), 200.0);
        QTest::mouseRelease(tempo, Qt::LeftButton);
        w.controller.tempoPercent = 100;
        w.sent();
        QTest::keyClick(tempo, Qt::Key_Left);
        QCOMPARE(w.sent(), QStringList{ u"window.qv.setSpeed(0.99)"_s });
        QTest::keyClick(tempo, Qt::Key_PageUp);
        QCOMPARE(w.sent(), QStringList{ u"window.qv.setSpeed(1.09)"_s });
    }

    void theTempoLabelShowsTheIntegerPart()
    {
        ShownWindow w(loaded);
        QVERIFY(w.label(u"100%"_s));
        QCOMPARE(w.label(u"100%"_s)->width(), 38);
        w.controller.tempoPercent = 74.9;
        QVERIFY(w.label(u"74%"_s));
        QCOMPARE(w.sent(), QStringList{ u"window.qv.setSpeed(0.7490000000000001)"_s });
    }

    void theVolumeIsContinuous()
    {
        ShownWindow w(loaded);
        auto *volume = w.control<Slider>(u"Volume"_s);
        QCOMPARE(volume->width(), 90);
        w.controller.masterVolume = 0.6;
        w.sent();
        QCOMPARE(volume->shown(), 0.6);
        QTest::keyClick(volume, Qt::Key_Right);
        QCOMPARE(w.sent(), QStringList{ u"window.qv.setMasterVolume(0.65)"_s });
        QTest::keyClick(volume, Qt::Key_Home);
        QCOMPARE(w.sent(), QStringList{ u"window.qv.setMasterVolume(0.0)"_s });
    }

    void theSoundSourceIsThereOnlyWithARecording()
    {
        ShownWindow w(loaded);
        QVERIFY(!w.control(u"Sound source"_s) && !w.control(u"Original"_s));
        reportRecording(w.controller, true);
        auto *source = w.control<SegmentedControl>(u"Sound source"_s);
        QVERIFY(source);
        QCOMPARE(source->toolTip(), u"Play the file's original recording, or the synthesized instruments"_s);
        QCOMPARE(source->shown(), 0);
        w.controller.countIn = true;
        w.sent();
        w.click(u"Synth"_s);
        QCOMPARE(w.sent(), QStringList{ u"window.qv.setSoundSource(true)"_s });
        w.click(u"Synth"_s);
        QVERIFY(w.sent().isEmpty());
        w.click(u"Original"_s);
        QCOMPARE(w.sent(), (QStringList{ u"window.qv.setSoundSource(false)"_s, u"window.qv.setCountIn(0)"_s }));
        w.controller.preferSynth = true;
        QCOMPARE(source->shown(), 1);
        reportRecording(w.controller, false);
        QVERIFY(!w.control(u"Sound source"_s));
    }

    void loopIsAPushButtonThatStays()
    {
        ShownWindow w(loaded);
        auto *loop = w.control<Button>(u"Loop selected range"_s);
        QCOMPARE(loop->toolTip(), u"Loop selected range"_s);
        w.click(u"Loop selected range"_s);
        QCOMPARE(w.sent(), QStringList{ u"window.qv.setLooping(true)"_s });
        QVERIFY(loop->isChecked());
        w.controller.looping = false;
        QVERIFY(!loop->isChecked());
        QCOMPARE(w.sent(), QStringList{ u"window.qv.setLooping(false)"_s });
    }

    void theMetronomeButtonIsTintedWhileItIsOn()
    {
        ShownWindow w(loaded);
        auto *metronome = w.control<Button>(u"Metronome & count-in"_s);
        QCOMPARE(metronome->toolTip(), u"Metronome & count-in"_s);
        QVERIFY(metronome->tint() == &Theme::Colors::text);
        w.controller.metronome = true;
        QVERIFY(metronome->tint() == &Theme::Colors::accent);
    }
};

QTEST_MAIN(TestTransportBar)
#include "test_transport_bar.moc"
