#include "controller/AlphaTabController.h"
#include "engine_host/bridge/PageReports.h"
#include "tests/support/Report.h"
#include "tests/support/TestSurroundings.h"

#include <QFileInfo>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QVariantMap scoreMessage(const QStringList &names)
{
    QVariantList tracks;
    for (const QString &name : names)
        tracks << QVariantMap{ { u"index"_s, int(tracks.size()) }, { u"name"_s, name } };
    return { { u"type"_s, u"score"_s }, { u"title"_s, u"Song"_s }, { u"tracks"_s, tracks } };
}

QVariantMap positionMessage(double now)
{
    return { { u"type"_s, u"position"_s }, { u"currentTime"_s, now }, { u"endTime"_s, 120000.0 } };
}

const MarkedRange range{ 2, 960, 3, -1 };

/// One launch of the program over a world that outlives it.
struct Launched {
    TestSurroundings &world;
    AlphaTabController controller;

    explicit Launched(TestSurroundings &around)
        : world(around)
        , controller(around.make())
    {
        controller.handle({ { u"type"_s, u"ready"_s } });
        controller.handle({ { u"type"_s, u"playerReady"_s } });
        world.engine->take();
    }

    void open(const QString &name, const QByteArray &bytes, const QStringList &tracks = { u"Guitar"_s, u"Bass"_s })
    {
        controller.load(world.file(name, bytes));
        shown(tracks);
    }

    void shown(const QStringList &tracks = { u"Guitar"_s, u"Bass"_s })
    {
        controller.handle({ { u"type"_s, u"state"_s }, { u"playing"_s, false } });
        controller.handle(scoreMessage(tracks));
        // The page has let go of the last score's range behind it.
        world.engine->reports.reportRange({});
        controller.handle(positionMessage(0));
    }

    /// Everything that is remembered, changed from what it is at first.
    void practise()
    {
        controller.tempoPercent = 75;
        controller.zoom = 1.25;
        controller.horizontalLayout = true;
        controller.looping = true;
        controller.metronome = true;
        controller.countIn = true;
        controller.toggleMute(0);
        controller.toggleSolo(1);
        controller.setTrackVolume(1, 0.5);
        controller.toggleVisible(0);
        controller.handle(positionMessage(61000));
        world.engine->reports.reportRange(range.toMap());
    }

    /// As a score is that nobody has touched.
    void resetSettings()
    {
        controller.tempoPercent = 100;
        controller.zoom = 1;
        controller.horizontalLayout = false;
        controller.looping = false;
        controller.metronome = false;
        controller.countIn = false;
        world.engine->take();
    }

    bool isAsPractised() const
    {
        const QList<TrackInfo> &tracks = controller.tracks;
        return controller.tempoPercent == 75 && controller.zoom == 1.25 && controller.horizontalLayout
            && controller.looping && controller.metronome && controller.countIn && tracks.size() == 2 && tracks[0].mute
            && !tracks[0].visible && tracks[1].solo && tracks[1].visible && tracks[1].volume == 0.5;
    }
};

} // namespace

class TestRememberedScores final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nothingIsRememberedUntilItIsSwitchedOn()
    {
        TestSurroundings world;
        {
            Launched first(world);
            QVERIFY(!first.controller.rememberScores);
            first.open(u"a.gp"_s, "a");
            first.practise();
            first.open(u"b.gp"_s, "b");
            first.resetSettings();
            first.open(u"a.gp"_s, "a");
            QVERIFY(!first.isAsPractised());
            const QStringList scripts = world.engine->take();
            QCOMPARE(scripts, QStringList{ u"window.qv.loadBase64('YQ==')"_s });
        }
        QVERIFY(!QFileInfo::exists(world.path(u"state"_s)));
    }

    void aScoreComesBackAsItWasLeft()
    {
        TestSurroundings world;
        Launched one(world);
        one.controller.rememberScores = true;
        one.open(u"a.gp"_s, "a");
        one.practise();
        one.open(u"b.gp"_s, "b");
        one.resetSettings();
        QList<QVariantMap> ranges;
        QObject::connect(&world.engine->reports, &PageReports::rangeWanted, &one.controller,
            [&ranges](const QVariantMap &wanted) { ranges << wanted; });
        one.open(u"a.gp"_s, "a");
        QVERIFY(one.isAsPractised());
        QCOMPARE(ranges, QList<QVariantMap>{ range.toMap() });
        const QStringList scripts = world.engine->take();
        for (const QString &call : { u"window.qv.setSpeed(0.75)"_s, u"window.qv.setZoom(1.25)"_s,
                 u"window.qv.setLayout('horizontal')"_s, u"window.qv.setLooping(true)"_s,
                 u"window.qv.setMetronome(true)"_s, u"window.qv.setCountIn(1)"_s, u"window.qv.setTrackMute(0, true)"_s,
                 u"window.qv.setTrackSolo(1, true)"_s, u"window.qv.setTrackVolume(1, 0.5)"_s,
                 u"window.qv.renderTracks([1])"_s, u"window.qv.seekToTime(61000.0)"_s })
            QVERIFY2(scripts.count(call) == 1, qPrintable(call + u" in "_s + scripts.join(u' ')));
    }

    void itComesBackInTheNextLaunchAndUnderAnotherName()
    {
        TestSurroundings world;
        {
            Launched first(world);
            first.controller.rememberScores = true;
            first.open(u"a.gp"_s, "a");
            first.practise();
            report(first.controller.isPlaying, false);
        }
        Launched second(world);
        QVERIFY(second.controller.rememberScores);
        second.open(u"renamed.gp"_s, "a");
        QVERIFY(second.isAsPractised());
        QVERIFY(world.engine->take().contains(u"window.qv.seekToTime(61000.0)"_s));
    }

    void aScoreThatIsNewKeepsWhatTheWindowHas()
    {
        TestSurroundings world;
        Launched one(world);
        one.controller.rememberScores = true;
        one.open(u"a.gp"_s, "a");
        one.practise();
        world.engine->take();
        one.open(u"b.gp"_s, "b");
        QCOMPARE(one.controller.tempoPercent.value(), 75.0);
        QCOMPARE(world.engine->take(), QStringList{ u"window.qv.loadBase64('Yg==')"_s });
    }

    void thePositionWaitsUntilItCanBeSought()
    {
        TestSurroundings world;
        world.scoreMemory()->setOn(true);
        world.scoreMemory()->remember(ScoreMemory::keyFor("a"), { .position = 500000 });
        Launched one(world);
        report(one.controller.playerReady, false);
        one.open(u"a.gp"_s, "a");
        QVERIFY(world.engine->take().filter(u"seekToTime"_s).isEmpty());
        one.controller.handle({ { u"type"_s, u"playerReady"_s } });
        // Not beyond the end.
        QCOMPARE(world.engine->take(), QStringList{ u"window.qv.seekToTime(120000.0)"_s });
        one.controller.handle(positionMessage(1000));
        QVERIFY(world.engine->take().isEmpty());
    }

    void aScoreThatIsClosedBeforeItWasThereStaysAsItWasLeft()
    {
        TestSurroundings world;
        world.scoreMemory()->setOn(true);
        world.scoreMemory()->remember(ScoreMemory::keyFor("a"), { .position = 61000 });
        {
            Launched one(world);
            one.controller.load(world.file(u"a.gp"_s, "a"));
            one.controller.handle(scoreMessage({ u"Guitar"_s }));
            report(one.controller.isPlaying, false);
        }
        QCOMPARE(world.scoreMemory()->recall(ScoreMemory::keyFor("a"))->position, 61000.0);
    }

    void switchingOnRemembersWhatIsOpen_data()
    {
        QTest::addColumn<bool>("demo");
        QTest::newRow("file") << false;
        QTest::newRow("demo") << true;
    }

    void switchingOnRemembersWhatIsOpen()
    {
        QFETCH(const bool, demo);
        TestSurroundings world;
        Launched one(world);
        const auto open = [&] {
            if (demo) {
                one.controller.js(u"window.qv.loadSample()"_s);
                one.shown();
            } else {
                one.open(u"a.gp"_s, "a");
            }
        };
        open();
        one.practise();
        one.controller.rememberScores = true;
        one.open(u"b.gp"_s, "b");
        one.resetSettings();
        open();
        QVERIFY(one.isAsPractised());
    }

    void switchingOffEndsIt()
    {
        TestSurroundings world;
        Launched one(world);
        one.controller.rememberScores = true;
        one.open(u"a.gp"_s, "a");
        one.practise();
        one.controller.rememberScores = false;
        one.open(u"b.gp"_s, "b");
        one.resetSettings();
        one.open(u"a.gp"_s, "a");
        QVERIFY(!one.isAsPractised());
        QVERIFY(!world.scoreMemory()->isOn());
        QVERIFY(!world.scoreMemory()->recall(ScoreMemory::keyFor("a")));
    }

    void otherTracksThanRememberedStayAsTheyAre()
    {
        TestSurroundings world;
        world.scoreMemory()->setOn(true);
        world.scoreMemory()->remember(
            ScoreMemory::keyFor("a"), { .tempoPercent = 50, .tracks = { { .id = 0, .mute = true } } });
        Launched one(world);
        one.open(u"a.gp"_s, "a");
        QCOMPARE(one.controller.tempoPercent.value(), 50.0);
        QVERIFY(!one.controller.tracks.value()[0].mute);
    }

    void aBackingTrackIsNotCountedIn()
    {
        TestSurroundings world;
        world.scoreMemory()->setOn(true);
        world.scoreMemory()->remember(ScoreMemory::keyFor("a"), { .countIn = true });
        Launched one(world);
        one.controller.load(world.file(u"a.gp"_s, "a"));
        QVariantMap message = scoreMessage({ u"Guitar"_s });
        message.insert(u"hasBackingTrack"_s, true);
        one.controller.handle(message);
        QVERIFY(!one.controller.countIn);
    }

    void aFileThatCouldNotBeOpenedGetsNothingOfTheScore()
    {
        TestSurroundings world;
        Launched one(world);
        one.controller.rememberScores = true;
        one.open(u"a.gp"_s, "a");
        one.controller.load(world.file(u"b.gp"_s, "b"));
        one.controller.handle({ { u"type"_s, u"error"_s }, { u"message"_s, u"No score."_s } });
        // The page tells of the same score once more: its recording cannot be played.
        one.controller.handle({ { u"type"_s, u"score"_s }, { u"title"_s, u"Song"_s } });
        one.practise();
        one.open(u"c.gp"_s, "c");
        QVERIFY(!world.scoreMemory()->recall(ScoreMemory::keyFor("b")));
        QCOMPARE(world.scoreMemory()->recall(ScoreMemory::keyFor("a"))->position, 61000.0);
    }

    void aPageThatIsLoadedAnewBringsBackWhatItShowed()
    {
        TestSurroundings world;
        Launched one(world);
        one.controller.rememberScores = true;
        one.open(u"a.gp"_s, "a");
        one.controller.handle(positionMessage(1000));
        report(one.controller.isPlaying, false);
        one.controller.handle(positionMessage(61000));
        one.controller.setTrackVolume(0, 0.25);
        one.controller.pageHealthChanged(PageHealth::Ended);
        one.controller.startPageAgain();
        one.controller.handle({ { u"type"_s, u"ready"_s } });
        one.controller.handle(scoreMessage({ u"Guitar"_s, u"Bass"_s }));
        world.engine->take();
        one.controller.handle({ { u"type"_s, u"playerReady"_s } });
        one.controller.handle(positionMessage(0));
        QCOMPARE(one.controller.tracks.value()[0].volume, 0.25);
        QCOMPARE(world.engine->take(), QStringList{ u"window.qv.seekToTime(61000.0)"_s });
    }
};

QTEST_GUILESS_MAIN(TestRememberedScores)
#include "test_remembered_scores.moc"
