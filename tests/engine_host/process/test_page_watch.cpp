#include "engine_host/process/PageWatch.h"

#include <QSignalSpy>
#include <QTest>
#include <QThread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class TestPageWatch final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aQuestionWithoutAnAnswerIsNoticedAndSoIsALateAnswer()
    {
        PageWatch watch(1ms, 1h);
        QSignalSpy late(&watch, &PageWatch::notAnswering);
        QSignalSpy again(&watch, &PageWatch::answersAgain);
        watch.start();
        watch.asked();
        QTRY_COMPARE(late.size(), 1);
        QCOMPARE(again.size(), 0);
        watch.answered();
        QCOMPARE(again.size(), 1);
        QCOMPARE(late.size(), 1);
    }

    void aPageThatAnswersInTimeIsLeftInPeace()
    {
        PageWatch watch(1h, 1h);
        QSignalSpy late(&watch, &PageWatch::notAnswering);
        QSignalSpy again(&watch, &PageWatch::answersAgain);
        watch.start();
        for (int i = 0; i < 3; ++i)
            watch.asked();
        for (int i = 0; i < 3; ++i)
            watch.answered();
        QCOMPARE(late.size(), 0);
        QCOMPARE(again.size(), 0);
    }

    void theWatchAsksByItselfWhileNobodyDoes()
    {
        PageWatch watch(1h, 1ms);
        QSignalSpy due(&watch, &PageWatch::questionDue);
        watch.start();
        QTRY_COMPARE(due.size(), 1);
        // Not before the last question was answered.
        watch.asked();
        QTest::qWait(20);
        QCOMPARE(due.size(), 1);
        watch.answered();
        QTRY_COMPARE(due.size(), 2);
    }

    void aPageThatIsGoneOwesNothing()
    {
        PageWatch watch(1ms, 1h);
        QSignalSpy late(&watch, &PageWatch::notAnswering);
        QSignalSpy again(&watch, &PageWatch::answersAgain);
        watch.start();
        watch.asked();
        watch.stop();
        QVERIFY(!watch.isWatching());
        watch.start();
        watch.answered(); // of the page before
        QTest::qWait(20);
        QCOMPARE(late.size(), 0);
        QCOMPARE(again.size(), 0);
    }

    void theNextQuestionCountsBehindAnAnswerOfThePageBefore()
    {
        PageWatch watch(1ms, 1h);
        QSignalSpy late(&watch, &PageWatch::notAnswering);
        watch.start();
        watch.answered();
        watch.asked();
        QTRY_COMPARE(late.size(), 1);
    }

    void aPageThatWorksItsWayThroughHasTimeForEachQuestion()
    {
        PageWatch watch(300ms, 1h);
        PageWatch idle(300ms, 1h);
        QStringList late;
        connect(&watch, &PageWatch::notAnswering, this, [&late] { late << u"the one that answers"_s; });
        connect(&idle, &PageWatch::notAnswering, this, [&late] { late << u"the other"_s; });
        watch.start();
        idle.start();
        watch.asked();
        watch.asked();
        QTest::qWait(60);
        idle.asked();
        QTest::qWait(60);
        watch.answered();
        QTRY_COMPARE(late, (QStringList{ u"the other"_s, u"the one that answers"_s }));
    }

    void aWindowThatStoodStillItselfSaysNothingAboutThePage()
    {
        PageWatch watch(300ms, 1h);
        QSignalSpy late(&watch, &PageWatch::notAnswering);
        watch.start();
        watch.asked();
        QThread::msleep(1500);
        QCoreApplication::processEvents();
        QCOMPARE(late.size(), 0);
        QTRY_COMPARE(late.size(), 1);
    }

    void nothingIsWatchedBeforeThereIsAPage()
    {
        PageWatch watch(1ms, 1ms);
        QSignalSpy late(&watch, &PageWatch::notAnswering);
        QSignalSpy due(&watch, &PageWatch::questionDue);
        watch.asked();
        QTest::qWait(20);
        QCOMPARE(late.size() + due.size(), 0);
    }
};

QTEST_GUILESS_MAIN(TestPageWatch)
#include "test_page_watch.moc"
