#include "controller/AlphaTabController.h"
#include "tests/support/Report.h"
#include "tests/support/TestSurroundings.h"

#include <QTest>

using namespace Qt::StringLiterals;

class TestMixer final : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestSurroundings> m_world;
    std::unique_ptr<AlphaTabController> m_controller;

    QStringList sent() const { return m_world->engine->take(); }
    QList<TrackInfo> tracks() const { return m_controller->tracks.value(); }

private Q_SLOTS:
    void init()
    {
        m_world = std::make_unique<TestSurroundings>();
        m_controller = std::make_unique<AlphaTabController>(m_world->make());
        report(m_controller->tracks, QList<TrackInfo>{ { .id = 0, .name = u"A"_s }, { .id = 1 }, { .id = 2 } });
    }

    void hidingOneAfterTheOther()
    {
        m_controller->toggleVisible(1);
        QCOMPARE(sent(), QStringList{ u"window.qv.renderTracks([0,2])"_s });
        m_controller->toggleVisible(0);
        QCOMPARE(sent(), QStringList{ u"window.qv.renderTracks([2])"_s });
        m_controller->toggleVisible(2);
        QCOMPARE(sent(), QStringList());
        for (const TrackInfo &track : tracks())
            QVERIFY(!track.visible);
        m_controller->toggleVisible(1);
        QCOMPARE(sent(), QStringList{ u"window.qv.renderTracks([1])"_s });
    }

    void soloIsIndependentPerTrack()
    {
        m_controller->toggleSolo(0);
        m_controller->toggleSolo(2);
        QCOMPARE(sent(), (QStringList{ u"window.qv.setTrackSolo(0, true)"_s, u"window.qv.setTrackSolo(2, true)"_s }));
        QVERIFY(tracks().at(0).solo && !tracks().at(1).solo && tracks().at(2).solo);
        QVERIFY(!tracks().at(0).mute);
    }

    void muteTwice()
    {
        m_controller->toggleMute(1);
        m_controller->toggleMute(1);
        QCOMPARE(sent(), (QStringList{ u"window.qv.setTrackMute(1, true)"_s, u"window.qv.setTrackMute(1, false)"_s }));
        QVERIFY(!tracks().at(1).mute);
    }

    void volumesAreTakenAsGiven()
    {
        report(m_controller->tracks, QList<TrackInfo>{ { .id = 3 } });
        m_controller->setTrackVolume(3, 0.25);
        m_controller->setTrackVolume(3, 1.75);
        m_controller->setTrackVolume(3, -1);
        QCOMPARE(sent(),
            (QStringList{ u"window.qv.setTrackVolume(3, 0.25)"_s, u"window.qv.setTrackVolume(3, 1.75)"_s,
                u"window.qv.setTrackVolume(3, -1.0)"_s }));
        QCOMPARE(tracks().at(0).volume, -1.0);
    }

    void theRecordChangesBeforeTheCallIsSent()
    {
        bool changedFirst = false;
        m_controller->tracks.onChange(this, [&](const QList<TrackInfo> &list) {
            changedFirst = list.at(1).mute && m_world->engine->scripts.isEmpty();
        });
        m_controller->toggleMute(1);
        QVERIFY(changedFirst);
        QCOMPARE(sent().size(), 1);
    }

    void idsAreNotPositions()
    {
        report(m_controller->tracks, QList<TrackInfo>{ { .id = 7 }, { .id = 0 } });
        m_controller->toggleMute(0);
        QVERIFY(!tracks().at(0).mute && tracks().at(1).mute);
        QCOMPARE(sent(), QStringList{ u"window.qv.setTrackMute(0, true)"_s });
    }

    void anUnknownIdIsIgnored()
    {
        const QList<TrackInfo> before = tracks();
        int notified = 0;
        m_controller->tracks.onChange(this, [&notified](const auto &) { ++notified; });
        m_controller->toggleVisible(9);
        m_controller->toggleMute(9);
        m_controller->toggleSolo(9);
        m_controller->setTrackVolume(9, 0.5);
        QCOMPARE(sent(), QStringList());
        QCOMPARE(tracks(), before);
        QCOMPARE(notified, 0);
        QVERIFY(m_world->log->isEmpty());
    }

    void aRejectedCallIsNotRolledBack()
    {
        m_world->engine->error = u"no"_s;
        m_controller->toggleMute(0);
        QVERIFY(tracks().at(0).mute);
        QCOMPARE(m_world->log->size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestMixer)
#include "test_mixer.moc"
