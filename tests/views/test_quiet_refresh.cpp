#include "design/DigitLabel.h"
#include "design/Slider.h"
#include "tests/support/Report.h"
#include "tests/views/ShownWindow.h"
#include "views/TransportBar.h"

#include <QPaintEvent>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// Sees every painting and every layout in the application.
class Watcher final : public QObject {
public:
    explicit Watcher(QWidget &window)
        : m_window(window)
    {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto *widget = qobject_cast<QWidget *>(watched);
        if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Resize || event->type() == QEvent::Move)
            ++layouts;
        if (event->type() == QEvent::Paint && widget && widget->window() == &m_window) {
            painted += static_cast<QPaintEvent *>(event)->region().translated(widget->mapTo(&m_window, QPoint()));
            ++paints;
        }
        return false;
    }

    int layouts = 0;
    int paints = 0;
    /// In the window's coordinates.
    QRegion painted;

private:
    QWidget &m_window;
};

QRegion place(const QWidget &window, const QWidget *widget)
{
    return QRect(widget->mapTo(&window, QPoint()), widget->size());
}

void settle()
{
    for (int i = 0; i < 5; ++i)
        QCoreApplication::processEvents();
}

} // namespace

class TestQuietRefresh final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aPositionRepaintsTheSliderAndTheTimesAndNothingElse()
    {
        ShownWindow w;
        w.score(u"Song"_s, { u"Lead"_s, u"Bass"_s }, true);
        w.playerReady();
        w.position(0, 200000);
        settle();
        w.sent();

        QRegion allowed = place(w.window, w.control(u"Position"_s));
        const auto times = w.window.findChild<TransportBar *>()->findChildren<DigitLabel *>();
        for (const DigitLabel *label : times)
            allowed += place(w.window, label);
        Watcher watcher(w.window);
        for (int i = 1; i <= 90; ++i) { // three seconds of playing
            w.position(i * 1000.0 / 30, 200000);
            settle();
        }
        QVERIFY(watcher.paints > 0);
        QVERIFY2((watcher.painted - allowed).isEmpty(), "something else was painted as well");
        QCOMPARE(watcher.layouts, 0);
        QVERIFY(w.label(u"0:03"_s));
        QVERIFY(w.sent().isEmpty());
    }

    void longerTimesMoveThingsOnce()
    {
        ShownWindow w;
        w.score(u"Song"_s, { u"Lead"_s });
        w.position(0, 200000);
        settle();
        const int before = w.control(u"Position"_s)->width();
        w.position(59 * 60000, 99 * 60000);
        settle();
        QCOMPARE(w.control(u"Position"_s)->width(), before);
        w.position(0, 100 * 60000);
        settle();
        QVERIFY(w.control(u"Position"_s)->width() < before);
        QVERIFY(w.label(u"100:00"_s)->width() >= w.label(u"100:00"_s)->fontMetrics().horizontalAdvance(u"100:00"_s));
    }

    void theSameStateAgainSendsNothing()
    {
        ShownWindow w;
        w.score(u"Song"_s, { u"Lead"_s, u"Bass"_s }, true);
        w.click(u"Metronome & count-in"_s);
        settle();
        w.sent();
        const int assignments = 12;
        w.controller.tempoPercent = 100;
        w.controller.tempoPercent = 33.3;
        w.controller.masterVolume = 0.123456;
        w.controller.looping = true;
        w.controller.metronome = true;
        w.controller.metronomeVolume = 0.987654;
        w.controller.metronomeAccent = false;
        w.controller.metronomeMode = u"bar"_s;
        w.controller.preferSynth = true;
        w.controller.countIn = true;
        w.controller.horizontalLayout = true;
        w.controller.zoom = 1.23;
        settle();
        QCOMPARE(w.sent().size(), assignments);
        // What no slider can show exactly is kept exactly.
        QCOMPARE(w.controller.tempoPercent.value(), 33.3);
        QCOMPARE(w.controller.masterVolume.value(), 0.123456);
        QCOMPARE(w.controller.metronomeVolume.value(), 0.987654);
        reportChange(w.controller.tracks, [](QList<TrackInfo> &tracks) {
            tracks[0].mute = tracks[0].solo = true;
            tracks[1].visible = false;
            tracks[1].volume = 0.333;
        });
        settle();
        QVERIFY(w.sent().isEmpty());
    }
};

QTEST_MAIN(TestQuietRefresh)
#include "test_quiet_refresh.moc"
