#include "app/trainer/PassDetector.h"
#include "app/trainer/SpeedTrainer.h"
#include "app/trainer/TrainerPanel.h"
#include "app/trainer/TrainerSession.h"
#include "controller/AlphaTabController.h"
#include "tests/support/Report.h"
#include "tests/support/TestSurroundings.h"

#include <QCheckBox>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QRandomGenerator>
#include <QScopeGuard>
#include <QSpinBox>
#include <QTest>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

/// A page that plays a loop and reports its positions as the real one does: fifteen times a second, and at once where
/// the loop starts over.
class LoopingPage final {
public:
    LoopingPage(AlphaTabController &controller, const LoopSpan &loop)
        : m_controller(controller)
        , m_loop(loop)
        , m_position(loop.startMs)
    {
    }

    /// Real milliseconds until the loop starts over, if nobody touches anything.
    double toLoopStart() const { return (m_loop.endMs - m_position) * 100 / m_controller.tempoPercent; }
    qint64 now() const { return std::llround(m_now); }
    int passes() const { return m_passes; }

    void start()
    {
        message({ { u"type"_s, u"state"_s }, { u"playing"_s, true } });
        report();
    }

    void pause() { message({ { u"type"_s, u"state"_s }, { u"playing"_s, false } }); }

    /// What the user asks for, by the mouse or a key of the page.
    void seek(double positionMs)
    {
        m_position = positionMs;
        report();
    }

    /// The stop button, or the call for it.
    void stop()
    {
        pause();
        seek(m_loop.startMs);
    }

    void wait(double ms) { m_now += ms; }

    /// The loop waits at its start for so many real milliseconds, and says so.
    void countIn(double ms)
    {
        m_position = m_loop.startMs;
        for (const double until = m_now + ms; m_now < until; m_now += PassDetector::reportIntervalMs)
            report();
    }

    /// Plays for so many real milliseconds.
    void play(double ms)
    {
        const double until = m_now + ms;
        while (m_now < until) {
            const double speed = m_controller.tempoPercent / 100;
            const double toEnd = (m_loop.endMs - m_position) / speed;
            const double step = std::min({ until - m_now, toEnd, m_nextReport - m_now });
            m_now += step;
            m_position += step * speed;
            if (step == toEnd) {
                // The sound system asks for some milliseconds at once.
                const double late = m_random.bounded(40.0);
                m_now += late;
                m_position = m_loop.startMs + late * speed;
                ++m_passes;
                report();
            } else if (m_now >= m_nextReport)
                report();
        }
    }

private:
    void message(const QVariantMap &message) { m_controller.handle(message); }

    void report()
    {
        m_nextReport = m_now + PassDetector::reportIntervalMs;
        message({ { u"type"_s, u"position"_s }, { u"currentTime"_s, m_position }, { u"endTime"_s, 60000.0 } });
    }

    AlphaTabController &m_controller;
    const LoopSpan m_loop;
    double m_position;
    double m_now = 1000;
    double m_nextReport = 0;
    int m_passes = 0;
    QRandomGenerator m_random{ 7 };
};

constexpr LoopSpan twoBars{ 4000, 8000 };

} // namespace

class TestTrainer final : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestSurroundings> m_world;
    std::unique_ptr<AlphaTabController> m_controller;
    std::unique_ptr<LoopingPage> m_page;
    std::unique_ptr<TrainerSession> m_session;

    void openLoop(const LoopSpan &loop)
    {
        m_session.reset();
        m_controller->handle({ { u"type"_s, u"ready"_s } });
        m_controller->handle({ { u"type"_s, u"playerReady"_s } });
        report(m_controller->hasScore, true);
        report(m_controller->isPlaying, false);
        report(m_controller->currentTime, loop.startMs);
        m_world->engine->reports.reportLoopSpan(loop.startMs, loop.endMs);
        m_page = std::make_unique<LoopingPage>(*m_controller, loop);
        m_session = std::make_unique<TrainerSession>(*m_controller, [this] { return m_page->now(); });
    }

    void begin(const TrainerSession::Plan &plan)
    {
        m_session->begin(plan);
        m_page->start();
        m_world->engine->take();
    }

    double speed() const { return m_controller->tempoPercent; }

private Q_SLOTS:
    void init()
    {
        m_world = std::make_unique<TestSurroundings>();
        m_controller = std::make_unique<AlphaTabController>(m_world->make());
        openLoop(twoBars);
    }

    void cleanup()
    {
        m_session.reset();
        m_controller.reset();
    }

    void aStepComesAfterItsPassesAndTheLastOneIsTheGoal()
    {
        SpeedTrainer trainer({ .from = 60, .to = 72, .step = 5, .passes = 2 });
        QCOMPARE(trainer.begin(), 60);
        QVERIFY(!trainer.pass(60));
        QCOMPARE(trainer.passes(), 1);
        QCOMPARE(trainer.pass(60), 65.0);
        QCOMPARE(trainer.passes(), 0);
        QVERIFY(!trainer.pass(65));
        QCOMPARE(trainer.pass(65), 70.0);
        QVERIFY(!trainer.pass(70));
        QCOMPARE(trainer.pass(70), 72.0);
        for (int pass = 0; pass < 4; ++pass)
            QVERIFY(!trainer.pass(72));
    }

    void aSpeedSetByHandIsWhereItGoesUpFrom()
    {
        SpeedTrainer trainer({ .from = 60, .to = 100, .step = 5, .passes = 1 });
        trainer.begin();
        QCOMPARE(trainer.pass(60), 65.0);
        QCOMPARE(trainer.pass(80), 85.0);
        QCOMPARE(trainer.pass(50), 55.0);
        // Never down.
        QVERIFY(!trainer.pass(120));
    }

    void trainingBeginsAtTheLoopsStartAtTheFirstSpeed()
    {
        m_world->engine->take();
        m_session->begin({ .steps = { .from = 75 } });
        QCOMPARE(m_world->engine->take(),
            (QStringList{ u"window.qv.setSpeed(0.75)"_s, u"window.qv.setLooping(true)"_s,
                u"window.qv.seekToTime(4000.0)"_s, u"window.qv.playPause()"_s }));
        QVERIFY(m_session->running);
        QCOMPARE(speed(), 75.0);
    }

    void hundredPassesWithSeeksPausesAndSpeedsInBetween_data()
    {
        QTest::addColumn<double>("start");
        QTest::addColumn<double>("end");
        QTest::newRow("two bars") << 4000.0 << 8000.0;
        QTest::newRow("from the beginning") << 0.0 << 2000.0;
        QTest::newRow("one beat") << 4000.0 << 4500.0;
        QTest::newRow("a fast beat") << 4000.0 << 4240.0;
    }

    void hundredPassesWithSeeksPausesAndSpeedsInBetween()
    {
        QFETCH(const double, start);
        QFETCH(const double, end);
        openLoop({ start, end });
        begin({ .steps = { .from = 50, .to = 200, .step = 1, .passes = 1 } });
        const double length = end - start;
        QRandomGenerator random(3);
        double expected = 50;
        int seen = 0;
        while (m_page->passes() < 100) {
            const int before = m_page->passes();
            m_page->play(random.bounded(0.4 * length));
            for (; seen < m_page->passes(); ++seen)
                expected = std::min(expected + 1, 200.0);
            // A step may be ahead of its pass.
            if (m_page->toLoopStart() > TrainerSession::leadMs
                || !qFuzzyCompare(speed(), std::min(expected + 1, 200.0)))
                QCOMPARE(speed(), expected);
            switch (random.bounded(8)) {
            case 0:
                // Anywhere but to the loop's start: who goes there from its end plays a pass, and a short loop is all
                // start and end.
                if (m_page->passes() == before && 0.3 * length > PassDetector::arrivalMs * std::max(speed() / 100, 1.0))
                    m_page->seek(start + 0.3 * length + random.bounded(0.6 * length));
                break;
            case 1:
                m_page->pause();
                m_page->wait(random.bounded(5000.0));
                m_page->start();
                break;
            case 2:
                expected = 40 + random.bounded(60);
                m_controller->tempoPercent = expected;
                break;
            default:
                break;
            }
        }
        QVERIFY(seen >= 99);
    }

    void aStepIsAskedForShortlyBeforeTheLoopsStart()
    {
        begin({ .steps = { .from = 50, .to = 200, .step = 3, .passes = 2 } });
        QList<double> leads;
        m_controller->tempoPercent.onChange(m_session.get(), [&](double speed) {
            // The speed it had then.
            leads << m_page->toLoopStart() * speed / (speed - 3);
        });
        while (m_page->passes() < 40)
            m_page->play(100);
        QCOMPARE(leads.size(), 20);
        for (const double lead : leads)
            QVERIFY2(
                lead <= TrainerSession::leadMs && lead > TrainerSession::leadMs - PassDetector::reportIntervalMs - 1,
                qPrintable(QString::number(lead)));
    }

    void aStepIsTakenBackWhereItsPassDoesNotEnd()
    {
        begin({ .steps = { .from = 100, .to = 200, .passes = 1 } });
        m_page->play(3950);
        QCOMPARE(speed(), 105.0);
        m_page->seek(5000);
        QCOMPARE(speed(), 100.0);
        m_page->seek(7000);
        m_page->play(950);
        QCOMPARE(speed(), 105.0);
        // What is set by hand stays.
        m_controller->tempoPercent = 90;
        m_page->seek(5000);
        QCOMPARE(speed(), 90.0);
        m_controller->tempoPercent = 100;
        m_page->seek(7000);
        m_page->play(950);
        QCOMPARE(speed(), 105.0);
        // Set by hand before the pass has ended: that is where it goes up from.
        m_controller->tempoPercent = 80;
        m_page->play(200);
        QCOMPARE(m_page->passes(), 1);
        QCOMPARE(speed(), 85.0);
    }

    void seeksAreNoPasses()
    {
        begin({ .steps = { .passes = 1 } });
        for (const auto &[from, to] : { std::pair(6000.0, 4000.0), std::pair(7900.0, 5000.0), std::pair(5000.0, 4500.0),
                 std::pair(4100.0, 4000.0), std::pair(4000.0, 7900.0) }) {
            m_page->seek(from);
            m_page->play(10);
            m_page->seek(to);
            m_page->play(10);
            QCOMPARE(speed(), 60.0);
        }
    }

    void withoutLoopingThereAreNoPasses()
    {
        begin({ .steps = { .passes = 1 } });
        m_controller->looping = false;
        m_page->play(30000);
        QVERIFY(m_page->passes() > 3);
        QCOMPARE(speed(), 60.0);
    }

    void afterTheTrainingNothingIsRaised()
    {
        begin({ .steps = { .passes = 1 } });
        m_session->end();
        m_page->play(30000);
        QCOMPARE(speed(), 60.0);
        QVERIFY(m_world->engine->take().isEmpty());
    }

    void aStopGoesBackToTheFirstSpeedAndAPauseDoesNot()
    {
        begin({ .steps = { .passes = 1 } });
        m_page->play(8000);
        const double raised = speed();
        QVERIFY(raised > 60);
        m_page->pause();
        m_page->wait(1000);
        QCOMPARE(speed(), raised);
        m_page->start();
        m_page->play(500);
        QCOMPARE(speed(), raised);
        m_page->stop();
        QCOMPARE(speed(), 60.0);
        QVERIFY(m_session->running);
    }

    void aStopLeavesTheSpeedWhereThatIsAskedFor()
    {
        begin({ .steps = { .passes = 1 }, .restart = false });
        m_page->play(8000);
        const double raised = speed();
        m_page->stop();
        QCOMPARE(speed(), raised);
    }

    void eachPassIsCountedInWhereThatIsAskedFor()
    {
        begin({ .steps = { .from = 100, .to = 100, .passes = 1 }, .countIn = true });
        QVERIFY(m_controller->countIn && m_controller->countsInPasses);
        QVERIFY(m_world->engine->reports.countsInPasses());
        // The page counts by itself: nothing stops the music.
        m_page->play(4100);
        QCOMPARE(m_page->passes(), 1);
        QVERIFY(m_world->engine->take().isEmpty());
        m_session->end();
        QVERIFY(!m_controller->countIn && !m_controller->countsInPasses);
    }

    void passesAreToldApartWhileThePositionWaitsForTheirCountIn()
    {
        begin({ .steps = { .from = 100, .to = 200, .step = 5, .passes = 1 }, .countIn = true });
        for (int pass = 1; pass <= 10; ++pass) {
            while (m_page->passes() < pass)
                m_page->play(10);
            QCOMPARE(speed(), 100.0 + 5 * pass);
            m_page->countIn(2000);
            QCOMPARE(speed(), 100.0 + 5 * pass);
        }
    }

    void aCountInThatWasOnStaysOnBehindTheTraining()
    {
        m_controller->countIn = true;
        begin({ .countIn = true });
        m_session->end();
        QVERIFY(m_controller->countIn && !m_controller->countsInPasses);
    }

    void aRecordingIsNotCountedIn()
    {
        reportRecording(*m_controller, true);
        begin({ .steps = { .from = 100, .passes = 1 }, .countIn = true });
        // The sound source's rule takes it back.
        m_controller->preferSynth = false;
        m_world->engine->take();
        m_page->play(4500);
        QCOMPARE(m_page->passes(), 1);
        QVERIFY(m_world->engine->take().isEmpty());
    }

    void thePanelSaysWhatHappens()
    {
        TrainerPanel panel(*m_controller);
        const auto box = [&panel](const QString &name) {
            for (auto *one : panel.findChildren<QSpinBox *>())
                if (one->accessibleName() == name)
                    return one;
            return static_cast<QSpinBox *>(nullptr);
        };
        QPushButton *begin = nullptr;
        for (auto *button : panel.findChildren<QPushButton *>())
            if (button->text() == u"Begin Training")
                begin = button;
        QVERIFY(begin && begin->isEnabled());
        box(u"From"_s)->setValue(90);
        QCOMPARE(box(u"To"_s)->minimum(), 90);
        box(u"Passes per step"_s)->setValue(3);
        begin->click();
        QCOMPARE(speed(), 90.0);
        QCOMPARE(begin->text(), u"End Training"_s);
        QVERIFY(!box(u"From"_s)->isEnabled());
        const auto says = [&panel](const QString &text) {
            for (const auto *label : panel.findChildren<QLabel *>())
                if (label->text() == text)
                    return true;
            return false;
        };
        QVERIFY(says(u"90 %, pass 1 of 3"_s));
        m_controller->tempoPercent = 100;
        QVERIFY(says(u"100 %: the last speed"_s));
        begin->click();
        QCOMPARE(begin->text(), u"Begin Training"_s);
        QVERIFY(says(u"Choose a passage, then begin."_s));
    }

    void digitsAreThoseOfTheTextsAndTypedInAnyScript()
    {
        const auto restore = qScopeGuard([before = QLocale()] { QLocale::setDefault(before); });
        for (const QLocale locale : { QLocale::Arabic, QLocale::Persian, QLocale::Nepali, QLocale::German }) {
            QLocale::setDefault(locale);
            TrainerPanel panel(*m_controller);
            for (auto *box : panel.findChildren<QSpinBox *>()) {
                QCOMPARE(box->text(), QString::number(box->value()) + box->suffix());
                for (const int value : { 41, 40 }) {
                    box->selectAll();
                    const QString typed = value == 41 ? u"41"_s : locale.toString(value);
                    for (const QChar digit : typed)
                        QTest::sendKeyEvent(QTest::Click, box, Qt::Key_unknown, digit, Qt::NoModifier);
                    QCOMPARE(box->value(), value);
                    QCOMPARE(box->text(), QString::number(value) + box->suffix());
                }
            }
        }
    }

    void theCountInIsSwitchedWhileItTrains()
    {
        TrainerPanel panel(*m_controller);
        auto *countIn = panel.findChildren<QCheckBox *>().constFirst();
        // Without a training it is only what the next one begins with.
        countIn->setChecked(true);
        countIn->setChecked(false);
        QVERIFY(!m_controller->countIn && !m_controller->countsInPasses);
        panel.findChildren<QPushButton *>().constFirst()->click();
        countIn->setChecked(true);
        QVERIFY(m_controller->countIn && m_controller->countsInPasses);
        countIn->setChecked(false);
        QVERIFY(!m_controller->countIn && !m_controller->countsInPasses);
    }

    void thePanelNeedsAScoreAndCountsInNoRecording()
    {
        reportRecording(*m_controller, true);
        report(m_controller->hasScore, false);
        TrainerPanel panel(*m_controller);
        QCOMPARE(panel.findChildren<QPushButton *>().constFirst()->isEnabled(), false);
        auto *countIn = panel.findChildren<QCheckBox *>().constFirst();
        QVERIFY(!countIn->isEnabled());
        m_controller->preferSynth = true;
        QVERIFY(countIn->isEnabled());
        report(m_controller->hasScore, true);
        QCOMPARE(panel.findChildren<QPushButton *>().constFirst()->isEnabled(), true);
    }

    void aDoubleClickOnABarTurnsLoopingOn()
    {
        m_controller->looping = false;
        m_world->engine->take();
        m_world->engine->reports.reportLoopWanted();
        QVERIFY(m_controller->looping);
        m_world->engine->reports.reportLoopWanted();
        QCOMPARE(m_world->engine->take(), QStringList{ u"window.qv.setLooping(true)"_s });
    }

    void whatIsNoSpanIsLeftOut()
    {
        PageReports &reports = m_world->engine->reports;
        for (const auto &[start, end] : { std::pair(5.0, 5.0), std::pair(9.0, 5.0), std::pair(-1.0, 5.0),
                 std::pair(std::nan(""), 5.0), std::pair(0.0, std::numeric_limits<double>::infinity()) })
            reports.reportLoopSpan(start, end);
        QCOMPARE(m_controller->loopSpan.value(), twoBars);
    }
};

QTEST_MAIN(TestTrainer)
#include "test_trainer.moc"
