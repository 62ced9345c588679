#include "controller/AlphaTabController.h"
#include "tests/support/TestSurroundings.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString defaultMetronome = u"window.qv.configMetronome(0.6, 'woodblock', true, 'beat')"_s;

QVariantMap message(const QString &type, QVariantMap fields = {})
{
    fields.insert(u"type"_s, type);
    return fields;
}

} // namespace

class TestControllerMessages final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readyPushesTheMetronomeOnly()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.handle(message(u"ready"_s));
        QVERIFY(c.bridgeReady);
        QVERIFY(!c.playerReady);
        QCOMPARE(world.engine->take(), QStringList{ defaultMetronome });
    }

    void readyLoadsTheWaitingFile()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.load(world.file(u"first.gp5"_s, "one"));
        c.load(world.file(u"second.gp5"_s, "two"));
        QVERIFY(world.engine->scripts.isEmpty());
        QVERIFY(c.recentFiles.value().isEmpty());
        c.handle(message(u"ready"_s));
        QCOMPARE(world.engine->take(), (QStringList{ defaultMetronome, u"window.qv.loadBase64('dHdv')"_s }));
        // It waited once: another "ready" finds nothing.
        c.handle(message(u"ready"_s));
        QCOMPARE(world.engine->take(), QStringList{ defaultMetronome });
    }

    void aWaitingFileWinsOverTheDemo()
    {
        TestSurroundings world;
        world.environment.insert(u"QV_SMOKE"_s, u"1"_s);
        AlphaTabController c(world.make());
        c.load(world.file(u"a.gp"_s, "one"));
        c.handle(message(u"ready"_s));
        QCOMPARE(world.engine->take(), (QStringList{ defaultMetronome, u"window.qv.loadBase64('b25l')"_s }));
        c.handle(message(u"playerReady"_s));
        QCOMPARE(world.engine->take(), QStringList{ u"window.qv.playPause()"_s });
    }

    void playerReady()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.handle(message(u"playerReady"_s));
        QVERIFY(c.playerReady);
        QVERIFY(world.engine->scripts.isEmpty());
    }

    void scoreFillsTheState()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.handle(message(u"position"_s, { { u"currentTime"_s, 5 }, { u"endTime"_s, 9 } }));
        c.handle(message(u"state"_s, { { u"playing"_s, true } }));
        QStringList order;
        c.title.onChange(this, [&order](const QString &) { order << u"title"_s; });
        c.artist.onChange(this, [&order](const QString &) { order << u"artist"_s; });
        c.tracks.onChange(this, [&order](const auto &) { order << u"tracks"_s; });
        c.hasBackingTrack.onChange(this, [&order](bool) { order << u"hasBackingTrack"_s; });
        c.hasScore.onChange(this, [&order](bool) { order << u"hasScore"_s; });
        c.currentTime.onChange(this, [&order](double) { order << u"currentTime"_s; });
        const QVariantList entries{ QVariantMap{ { u"index"_s, 2 } }, QVariantMap{ { u"name"_s, u"no index"_s } },
            QVariantMap{ { u"index"_s, 4 }, { u"name"_s, u"Bass"_s } } };
        c.handle(
            message(u"score"_s, { { u"title"_s, u"Étude"_s }, { u"artist"_s, u"Q"_s }, { u"tracks"_s, entries } }));
        const QList<TrackInfo> expected{ { 2, u"Track 3"_s, true, false, false, 1.0 },
            { 4, u"Bass"_s, true, false, false, 1.0 } };
        QCOMPARE(c.tracks.value(), expected);
        QCOMPARE(c.title.value(), u"Étude"_s);
        QCOMPARE(c.artist.value(), u"Q"_s);
        QVERIFY(c.hasScore && !c.hasBackingTrack);
        QCOMPARE(c.currentTime.value(), 0.0);
        QCOMPARE(c.endTime.value(), 9.0);
        QVERIFY(c.isPlaying);
        QCOMPARE(order,
            (QStringList{
                u"title"_s, u"artist"_s, u"tracks"_s, u"hasBackingTrack"_s, u"hasScore"_s, u"currentTime"_s }));
        QVERIFY(world.windowTitles->isEmpty()); // set when this event is over
        QTRY_COMPARE(*world.windowTitles, QStringList{ u"Étude"_s });
        QVERIFY(world.engine->scripts.isEmpty());
    }

    void aScoreWithoutTitleKeepsTheWindowTitle()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.handle(message(u"score"_s, { { u"title"_s, QString() } }));
        QCoreApplication::processEvents();
        QVERIFY(world.windowTitles->isEmpty());
        QVERIFY(c.hasScore);
    }

    void aScoreWithoutTracksKeepsThem()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        const QVariantList one{ QVariantMap{ { u"index"_s, 0 }, { u"name"_s, u"A"_s } } };
        c.handle(message(u"score"_s, { { u"tracks"_s, one } }));
        c.handle(message(u"score"_s));
        QCOMPARE(c.tracks.value().size(), 1);
        c.handle(message(u"score"_s, { { u"tracks"_s, u"none"_s } }));
        QCOMPARE(c.tracks.value().size(), 1);
        c.handle(message(u"score"_s, { { u"tracks"_s, QVariantList() } }));
        QVERIFY(c.tracks.value().isEmpty());
    }

    void aNewScoreBeginsWithAFreshMixer()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        const QVariantList entries{ QVariantMap{ { u"index"_s, 0 }, { u"name"_s, u"A"_s } },
            QVariantMap{ { u"index"_s, 1 }, { u"name"_s, u"B"_s } } };
        c.handle(message(u"score"_s, { { u"tracks"_s, entries } }));
        const QList<TrackInfo> fresh = c.tracks;
        c.toggleMute(0);
        c.toggleSolo(1);
        c.toggleVisible(0);
        c.setTrackVolume(1, 0.5);
        QVERIFY(c.tracks.value() != fresh);
        world.engine->take();
        c.handle(message(u"score"_s, { { u"tracks"_s, entries } }));
        QCOMPARE(c.tracks.value(), fresh);
        // The page has fresh channels, too.
        QVERIFY(world.engine->scripts.isEmpty());
    }

    void aRecordingForcesTheCountInOff()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.handle(message(u"score"_s, { { u"hasBackingTrack"_s, true } }));
        QCOMPARE(world.engine->take(), QStringList{ u"window.qv.setCountIn(0)"_s });
        QVERIFY(c.hasBackingTrack);
        c.preferSynth = true;
        c.countIn = true;
        world.engine->take();
        c.handle(message(u"score"_s, { { u"hasBackingTrack"_s, true } }));
        QVERIFY(world.engine->scripts.isEmpty());
        QVERIFY(c.countIn);
    }

    void positions()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.handle(message(u"position"_s, { { u"currentTime"_s, 100.5 }, { u"endTime"_s, 200000 } }));
        QCOMPARE(c.currentTime.value(), 100.5);
        QCOMPARE(c.endTime.value(), 200000.0);
        c.handle(message(u"position"_s, { { u"currentTime"_s, 1500 } }));
        QCOMPARE(c.currentTime.value(), 1500.0);
        QCOMPARE(c.endTime.value(), 0.0);
    }

    void errorsAreLoggedOnly()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.handle(message(u"error"_s, { { u"message"_s, u"no such format"_s } }));
        c.handle(message(u"error"_s));
        QCOMPARE(*world.log,
            (QStringList{ u"[Quaverly] alphaTab error: no such format"_s, u"[Quaverly] alphaTab error: ?"_s }));
        QVERIFY(!c.hasScore && !c.conversionError.value());
        QVERIFY(world.engine->scripts.isEmpty());
    }

    void unknownAndMalformedMessagesDoNothing()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.handle({});
        c.handle({ { u"type"_s, 4 } });
        c.handle(message(u"Ready"_s));
        c.handle(message(u"rendered"_s));
        QVERIFY(!c.bridgeReady);
        QVERIFY(world.engine->scripts.isEmpty());
        QVERIFY(world.log->isEmpty());
        QVERIFY(world.delayed->isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestControllerMessages)
#include "test_controller_messages.moc"
