#include "controller/AlphaTabController.h"
#include "tests/support/TestSurroundings.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QString loading(const QByteArray &bytes)
{
    return u"window.qv.loadBase64('%1')"_s.arg(QString::fromLatin1(bytes.toBase64()));
}

QVariantMap scoreMessage(const QStringList &names)
{
    QVariantList tracks;
    for (const QString &name : names)
        tracks << QVariantMap{ { u"index"_s, int(tracks.size()) }, { u"name"_s, name } };
    return { { u"type"_s, u"score"_s }, { u"title"_s, u"Song"_s }, { u"tracks"_s, tracks } };
}

QVariantMap positionMessage(double now, double end)
{
    return { { u"type"_s, u"position"_s }, { u"currentTime"_s, now }, { u"endTime"_s, end } };
}

} // namespace

class TestPageRecovery final : public QObject {
    Q_OBJECT

private:
    /// A controller whose page shows a file and plays it at 61 s of 120 s.
    struct Playing {
        TestSurroundings world;
        AlphaTabController controller{ world.make() };
        QUrl file = world.file(u"song.gp"_s, "song");

        Playing()
        {
            controller.handle({ { u"type"_s, u"ready"_s } });
            controller.load(file);
            controller.handle(scoreMessage({ u"Guitar"_s, u"Bass"_s }));
            controller.handle(positionMessage(0, 120000));
            controller.handle({ { u"type"_s, u"playerReady"_s } });
            controller.handle({ { u"type"_s, u"state"_s }, { u"playing"_s, true } });
            controller.handle(positionMessage(61000, 120000));
            world.engine->take();
            world.engine->loads.clear();
        }
    };

private Q_SLOTS:
    void whatIsPublishedIsTrueAtOnce()
    {
        Playing p;
        p.controller.pageHealthChanged(PageHealth::Ended);
        QVERIFY(!p.controller.bridgeReady);
        QVERIFY(!p.controller.playerReady);
        QVERIFY(!p.controller.isPlaying);
        QVERIFY(p.controller.pageHealth == PageHealth::Ended);
        // Nothing happens by itself.
        QVERIFY(p.world.engine->loads.isEmpty());
        QVERIFY(p.world.engine->take().isEmpty());
    }

    void theSameScoreComesBackAtTheSamePlace()
    {
        Playing p;
        p.controller.tempoPercent = 75;
        p.controller.looping = true;
        p.controller.toggleMute(1);
        p.controller.setTrackVolume(0, 0.5);
        p.controller.toggleVisible(1);
        p.controller.pageHealthChanged(PageHealth::Ended);
        p.world.engine->take();
        p.controller.startPageAgain();
        QCOMPARE(p.world.engine->loads, QList<QUrl>{ QUrl(u"qv-app://app/index.html"_s) });
        QVERIFY(p.controller.pageHealth == PageHealth::Well);
        QVERIFY(p.world.engine->take().isEmpty());

        p.controller.handle({ { u"type"_s, u"ready"_s } });
        const QStringList atReady = p.world.engine->take();
        QVERIFY(atReady.contains(u"window.qv.setSpeed(0.75)"_s));
        QVERIFY(atReady.contains(u"window.qv.setLooping(true)"_s));
        QCOMPARE(atReady.constLast(), loading("song"));

        p.controller.handle(scoreMessage({ u"Guitar"_s, u"Bass"_s }));
        QCOMPARE(p.world.engine->take(),
            (QStringList{ u"window.qv.setTrackVolume(0, 0.5)"_s, u"window.qv.setTrackMute(1, true)"_s,
                u"window.qv.renderTracks([0])"_s }));
        QVERIFY(p.controller.tracks.value().at(1).mute);
        QVERIFY(!p.controller.tracks.value().at(1).visible);
        p.controller.handle(positionMessage(0, 120000));
        QVERIFY2(p.world.engine->take().isEmpty(), "the player would not hear of it yet");
        p.controller.handle({ { u"type"_s, u"playerReady"_s } });
        QCOMPARE(p.world.engine->take(), QStringList{ u"window.qv.seekToTime(61000.0)"_s });
        // Once.
        p.controller.handle(positionMessage(0, 120000));
        QVERIFY(p.world.engine->take().isEmpty());
    }

    void aPageThatEndsWhileItStartsKeepsTheScoreForTheNext_data()
    {
        QTest::addColumn<int>("messages");
        QTest::newRow("before it is ready") << 0;
        QTest::newRow("before the score is shown") << 1;
        QTest::newRow("before the score can be played") << 2;
    }

    void aPageThatEndsWhileItStartsKeepsTheScoreForTheNext()
    {
        QFETCH(int, messages);
        Playing p;
        p.controller.toggleMute(1);
        const auto showScore = [&p](int count) {
            const QList<QVariantMap> all{ { { u"type"_s, u"ready"_s } }, scoreMessage({ u"Guitar"_s, u"Bass"_s }) };
            for (const QVariantMap &message : all.first(count))
                p.controller.handle(message);
        };
        p.controller.pageHealthChanged(PageHealth::Ended);
        QVERIFY(!p.controller.pageCannotStart);
        p.controller.startPageAgain();
        showScore(messages);
        p.controller.pageHealthChanged(PageHealth::Ended);
        QCOMPARE(p.controller.pageCannotStart.value(), messages == 0);
        QVERIFY(p.controller.hasScore);
        p.controller.startPageAgain();
        p.world.engine->take();
        p.controller.handle({ { u"type"_s, u"ready"_s } });
        QCOMPARE(p.world.engine->take().constLast(), loading("song"));
        p.controller.handle(scoreMessage({ u"Guitar"_s, u"Bass"_s }));
        QVERIFY(p.controller.tracks.value().at(1).mute);
        p.controller.handle(positionMessage(0, 120000));
        p.world.engine->take();
        p.controller.handle({ { u"type"_s, u"playerReady"_s } });
        QCOMPARE(p.world.engine->take(), QStringList{ u"window.qv.seekToTime(61000.0)"_s });
        p.controller.pageHealthChanged(PageHealth::Ended);
        QVERIFY(!p.controller.pageCannotStart);
    }

    void aFileThatWasNeverShownIsNotOpenedByAStartEither()
    {
        Playing p;
        p.controller.pageHealthChanged(PageHealth::Ended);
        p.controller.load(p.world.file(u"fatal.gp"_s, "fatal"));
        p.controller.handle({ { u"type"_s, u"ready"_s } });
        p.controller.pageHealthChanged(PageHealth::Ended);
        p.controller.startPageAgain();
        p.world.engine->take();
        p.controller.handle({ { u"type"_s, u"ready"_s } });
        QVERIFY(p.world.engine->take().filter(u"loadBase64"_s).isEmpty());
    }

    void anotherScoreUnderTheSameNameKeepsItsOwnMix()
    {
        Playing p;
        p.controller.toggleMute(1);
        p.controller.pageHealthChanged(PageHealth::Ended);
        p.controller.startPageAgain();
        p.controller.handle({ { u"type"_s, u"ready"_s } });
        p.world.engine->take();
        p.controller.handle(scoreMessage({ u"Flute"_s }));
        QVERIFY(p.world.engine->take().isEmpty());
        QVERIFY(!p.controller.tracks.value().constFirst().mute);
    }

    void openingAFileStartsThePageToo()
    {
        Playing p;
        p.controller.pageHealthChanged(PageHealth::Ended);
        p.controller.load(p.world.file(u"next.gp"_s, "next"));
        QCOMPARE(p.world.engine->loads.size(), 1);
        p.world.engine->take();
        p.controller.handle({ { u"type"_s, u"ready"_s } });
        QCOMPARE(p.world.engine->take().constLast(), loading("next"));
        p.controller.handle(scoreMessage({ u"Guitar"_s }));
        p.controller.handle(positionMessage(0, 5000));
        // Not at the place of the score before.
        QVERIFY(p.world.engine->take().isEmpty());
    }

    void theDemoStartsThePageToo()
    {
        Playing p;
        p.controller.pageHealthChanged(PageHealth::Ended);
        p.controller.js(u"window.qv.loadSample()"_s);
        QCOMPARE(p.world.engine->loads.size(), 1);
        p.world.engine->take();
        p.controller.handle({ { u"type"_s, u"ready"_s } });
        QCOMPARE(p.world.engine->take().constLast(), u"window.qv.loadSample()"_s);
    }

    void aFileThatWasNeverShownIsNotOpenedAgain()
    {
        Playing p;
        p.controller.load(p.world.file(u"endless.gp"_s, "endless"));
        p.controller.pageHealthChanged(PageHealth::NotAnswering);
        p.controller.stopReading();
        QCOMPARE(p.world.engine->ends, 1);
        p.controller.pageHealthChanged(PageHealth::Ended);
        p.controller.startPageAgain();
        p.world.engine->take();
        p.controller.handle({ { u"type"_s, u"ready"_s } });
        QCOMPARE(p.world.engine->take().constLast(), loading("song"));
    }

    void aFileThatWasRefusedDoesNotTakeThePlaceOfTheScoreThatIsShown()
    {
        Playing p;
        p.controller.load(p.world.file(u"broken.gp"_s, "broken"));
        p.controller.handle({ { u"type"_s, u"error"_s }, { u"message"_s, u"damaged"_s } });
        p.controller.handle({ { u"type"_s, u"score"_s }, { u"title"_s, u"Song"_s } });
        p.controller.pageHealthChanged(PageHealth::Ended);
        p.controller.startPageAgain();
        p.world.engine->take();
        p.controller.handle({ { u"type"_s, u"ready"_s } });
        QCOMPARE(p.world.engine->take().constLast(), loading("song"));
    }

    void withNothingShownTheStartScreenComesBack()
    {
        TestSurroundings world;
        AlphaTabController controller(world.make());
        controller.handle({ { u"type"_s, u"ready"_s } });
        controller.pageHealthChanged(PageHealth::Ended);
        controller.startPageAgain();
        QVERIFY(!controller.hasScore);
        world.engine->take();
        controller.handle({ { u"type"_s, u"ready"_s } });
        QVERIFY(controller.bridgeReady);
        for (const QString &script : world.engine->take())
            QVERIFY2(!script.contains(u"load"_s), qPrintable(script));
    }

    void aFileThatIsGoneByThenLeavesTheStartScreen()
    {
        Playing p;
        p.controller.pageHealthChanged(PageHealth::Ended);
        QVERIFY(QFile::remove(p.file.toLocalFile()));
        p.controller.startPageAgain();
        p.controller.handle({ { u"type"_s, u"ready"_s } });
        QVERIFY(!p.controller.hasScore);
        QVERIFY(p.controller.recentFiles.value().isEmpty());
    }

    void aLatePageIsWellAgainWhenItAnswers()
    {
        Playing p;
        p.controller.pageHealthChanged(PageHealth::NotAnswering);
        QVERIFY(p.controller.bridgeReady);
        p.controller.startPageAgain();
        QVERIFY(p.world.engine->loads.isEmpty());
        p.controller.pageHealthChanged(PageHealth::Well);
        p.controller.stopReading();
        QCOMPARE(p.world.engine->ends, 0);
    }
};

QTEST_GUILESS_MAIN(TestPageRecovery)
#include "test_page_recovery.moc"
