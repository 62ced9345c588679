#include "controller/AlphaTabController.h"
#include "desktop/MediaPlayer.h"
#include "tests/desktop/BusClient.h"
#include "tests/engine_host/process/PrivateBus.h"
#include "tests/support/TestSurroundings.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusObjectPath>
#include <QSignalSpy>
#include <QTest>

#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString root = u"org.mpris.MediaPlayer2"_s;
const QString player = u"org.mpris.MediaPlayer2.Player"_s;
const QStringList toggled{ u"window.qv.playPause()"_s };

} // namespace

/// A desktop's player widget.
class Widget final : public QObject {
    Q_OBJECT

public:
    explicit Widget(QDBusConnection bus)
    {
        const QString path = u"/org/mpris/MediaPlayer2"_s;
        connected = bus.connect({}, path, u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s, this,
                        SLOT(changed(QString, QVariantMap, QStringList)))
            && bus.connect({}, path, player, u"Seeked"_s, this, SLOT(seeked(qlonglong)));
    }

    bool connected = false;
    QList<QVariantMap> changes;
    QList<qlonglong> positions;

private Q_SLOTS:
    void changed(const QString &interface, const QVariantMap &values, const QStringList &)
    {
        if (interface == player)
            changes << values;
    }
    void seeked(qlonglong position) { positions << position; }
};

class TestMediaPlayer final : public QObject {
    Q_OBJECT

    PrivateBus m_bus;
    int m_connections = 0;
    std::unique_ptr<TestSurroundings> m_world;
    std::unique_ptr<AlphaTabController> m_controller;
    std::unique_ptr<MediaPlayer> m_player;
    std::unique_ptr<BusClient> m_client;
    std::unique_ptr<Widget> m_widget;

    QDBusConnection connection()
    {
        return QDBusConnection::connectToBus(m_bus.address(), u"connection %1"_s.arg(++m_connections));
    }

    void openScore(const QString &title = u"Für Elise"_s, const QString &artist = u"L. v. B."_s)
    {
        m_controller->handle({ { u"type"_s, u"ready"_s } });
        m_controller->handle({ { u"type"_s, u"score"_s }, { u"title"_s, title }, { u"artist"_s, artist } });
        m_controller->handle({ { u"type"_s, u"playerReady"_s } });
        reach(0, 60000);
        settle();
        m_world->engine->take();
    }

    void play(bool playing) { m_controller->handle({ { u"type"_s, u"state"_s }, { u"playing"_s, playing } }); }

    void reach(double now, double end = 60000)
    {
        m_controller->handle({ { u"type"_s, u"position"_s }, { u"currentTime"_s, now }, { u"endTime"_s, end } });
    }

    /// What was announced before has arrived when something has been answered.
    void settle()
    {
        QCoreApplication::processEvents();
        m_client->get(root, u"Identity"_s);
        m_client->call(u"org.freedesktop.DBus.Peer"_s, u"Ping"_s);
    }

    QVariant get(const QString &property) { return m_client->get(player, property); }
    QVariantMap metadata() { return qdbus_cast<QVariantMap>(get(u"Metadata"_s).value<QDBusArgument>()); }
    QStringList sentBy(const QString &method, const QVariantList &arguments = {})
    {
        m_world->engine->take();
        const QDBusMessage reply = m_client->call(player, method, arguments);
        return reply.type() == QDBusMessage::ReplyMessage ? m_world->engine->take() : QStringList(reply.errorMessage());
    }
    QStringList sentBySetting(const QString &property, const QVariant &value)
    {
        m_world->engine->take();
        return m_client->set(player, property, value) ? m_world->engine->take() : QStringList(u"refused"_s);
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(!m_bus.address().isEmpty());
        QCoreApplication::setApplicationName(u"quaverly"_s);
        QGuiApplication::setDesktopFileName(u"the.entry"_s);
    }

    void init()
    {
        m_world = std::make_unique<TestSurroundings>();
        m_controller = std::make_unique<AlphaTabController>(m_world->make());
        m_player = std::make_unique<MediaPlayer>(connection(), *m_controller);
        QCOMPARE(m_player->service(), u"org.mpris.MediaPlayer2.quaverly"_s);
        m_client = std::make_unique<BusClient>(connection(), m_player->service(), u"/org/mpris/MediaPlayer2"_s);
        m_widget = std::make_unique<Widget>(m_client->bus());
        QVERIFY(m_widget->connected);
    }

    void cleanup()
    {
        m_widget.reset();
        m_client.reset();
        m_player.reset();
        m_controller.reset();
        for (; m_connections > 0; --m_connections)
            QDBusConnection::disconnectFromBus(u"connection %1"_s.arg(m_connections));
    }

    void itSaysWhatItIs()
    {
        QCOMPARE(m_client->get(root, u"Identity"_s).toString(), u"Quaverly"_s);
        QCOMPARE(m_client->get(root, u"DesktopEntry"_s).toString(), u"the.entry"_s);
        QCOMPARE(m_client->get(root, u"SupportedUriSchemes"_s).toStringList(), QStringList{ u"file"_s });
        QVERIFY(m_client->get(root, u"SupportedMimeTypes"_s).toStringList().contains(u"application/x-guitar-pro"_s));
        QVERIFY(m_client->get(root, u"CanRaise"_s).toBool());
        QVERIFY(m_client->get(root, u"CanQuit"_s).toBool());
        QVERIFY(!m_client->get(root, u"HasTrackList"_s).toBool());
        const QSignalSpy raise(m_player.get(), &MediaPlayer::raiseRequested);
        const QSignalSpy quit(m_player.get(), &MediaPlayer::quitRequested);
        m_client->call(root, u"Raise"_s);
        m_client->call(root, u"Quit"_s);
        QCOMPARE(raise.size(), 1);
        QCOMPARE(quit.size(), 1);
    }

    void withoutAScoreThereIsNothingToPlay()
    {
        QCOMPARE(get(u"PlaybackStatus"_s).toString(), u"Stopped"_s);
        QVERIFY(!get(u"CanPlay"_s).toBool());
        QVERIFY(!get(u"CanSeek"_s).toBool());
        QVERIFY(get(u"CanControl"_s).toBool());
        QVERIFY(!get(u"CanGoNext"_s).toBool());
        QCOMPARE(metadata().value(u"mpris:trackid"_s).value<QDBusObjectPath>().path(),
            u"/org/mpris/MediaPlayer2/TrackList/NoTrack"_s);
        for (const QString &method : { u"Play"_s, u"Pause"_s, u"PlayPause"_s, u"Stop"_s, u"Next"_s, u"Previous"_s })
            QCOMPARE(sentBy(method), QStringList());
        QCOMPARE(sentBy(u"Seek"_s, { qlonglong(1000000) }), QStringList());
    }

    void aScoreIsAnnounced()
    {
        openScore();
        QTRY_VERIFY(!m_widget->changes.isEmpty());
        QVariantMap all;
        for (const QVariantMap &one : std::as_const(m_widget->changes))
            all.insert(one);
        QCOMPARE(all.value(u"CanPlay"_s).toBool(), true);
        QCOMPARE(all.value(u"CanSeek"_s).toBool(), true);
        const auto announced = qdbus_cast<QVariantMap>(all.value(u"Metadata"_s).value<QDBusArgument>());
        for (const QVariantMap &data : { announced, metadata() }) {
            QCOMPARE(data.value(u"xesam:title"_s).toString(), u"Für Elise"_s);
            QCOMPARE(data.value(u"xesam:artist"_s).toStringList(), QStringList{ u"L. v. B."_s });
            QCOMPARE(data.value(u"mpris:length"_s), QVariant(qlonglong(60000000)));
        }
        const QString first = metadata().value(u"mpris:trackid"_s).value<QDBusObjectPath>().path();
        openScore(u"Another"_s);
        QVERIFY(metadata().value(u"mpris:trackid"_s).value<QDBusObjectPath>().path() != first);
    }

    void playPauseAndStop()
    {
        openScore();
        QCOMPARE(sentBy(u"PlayPause"_s), toggled);
        QCOMPARE(sentBy(u"PlayPause"_s), toggled);
        QCOMPARE(sentBy(u"Pause"_s), QStringList());
        QCOMPARE(sentBy(u"Play"_s), toggled);
        // Not again before the page has said what became of it, else it would pause.
        QCOMPARE(sentBy(u"Play"_s), QStringList());
        play(true);
        QCOMPARE(get(u"PlaybackStatus"_s).toString(), u"Playing"_s);
        QCOMPARE(sentBy(u"Play"_s), QStringList());
        QCOMPARE(sentBy(u"Pause"_s), toggled);
        QCOMPARE(sentBy(u"Pause"_s), QStringList());
        reach(500);
        play(false);
        QCOMPARE(get(u"PlaybackStatus"_s).toString(), u"Paused"_s);
        QCOMPARE(sentBy(u"Stop"_s), QStringList{ u"window.qv.stop()"_s });
        reach(0);
        QCOMPARE(get(u"PlaybackStatus"_s).toString(), u"Stopped"_s);
    }

    void aCommandThatComesToNothingBlocksNoLaterOne()
    {
        openScore();
        qsizetype sent = sentBy(u"Play"_s).size();
        QCOMPARE(sent, 1);
        const auto inAll = [&] { return sent += sentBy(u"Play"_s).size(); };
        QTRY_VERIFY(inAll() > 1);
    }

    void changesAreAnnouncedOnceAndNothingElseIs()
    {
        openScore();
        m_widget->changes.clear();
        play(true);
        settle();
        QTRY_COMPARE(m_widget->changes, QList<QVariantMap>({ { { u"PlaybackStatus"_s, u"Playing"_s } } }));
        for (int ms = 0; ms < 300; ms += 66)
            reach(ms);
        m_controller->looping = false;
        settle();
        QCOMPARE(m_widget->changes.size(), 1);
        QVERIFY(m_widget->positions.isEmpty());
        m_controller->looping = true;
        m_controller->masterVolume = 0.5;
        m_controller->tempoPercent = 50;
        const QVariantMap settings{ { u"LoopStatus"_s, u"Track"_s }, { u"Volume"_s, 0.5 }, { u"Rate"_s, 0.5 } };
        QTRY_COMPARE(m_widget->changes.size(), 2);
        QCOMPARE(m_widget->changes.constLast(), settings);
    }

    void settingsAreWritten()
    {
        QCOMPARE(sentBySetting(u"Rate"_s, 0.75), QStringList{ u"window.qv.setSpeed(0.75)"_s });
        QCOMPARE(get(u"Rate"_s).toDouble(), 0.75);
        QCOMPARE(sentBySetting(u"Rate"_s, 9.0), QStringList{ u"window.qv.setSpeed(2.0)"_s });
        QCOMPARE(sentBySetting(u"Rate"_s, 0.01), QStringList{ u"window.qv.setSpeed(0.25)"_s });
        QCOMPARE(get(u"MinimumRate"_s).toDouble(), 0.25);
        QCOMPARE(get(u"MaximumRate"_s).toDouble(), 2.0);
        QCOMPARE(sentBySetting(u"Volume"_s, 0.5), QStringList{ u"window.qv.setMasterVolume(0.5)"_s });
        QCOMPARE(sentBySetting(u"Volume"_s, -1.0), QStringList{ u"window.qv.setMasterVolume(0.0)"_s });
        QCOMPARE(sentBySetting(u"Volume"_s, 3.0), QStringList{ u"window.qv.setMasterVolume(1.0)"_s });
        QCOMPARE(get(u"Volume"_s).toDouble(), 1.0);
        QCOMPARE(sentBySetting(u"LoopStatus"_s, u"Playlist"_s), QStringList{ u"window.qv.setLooping(true)"_s });
        QCOMPARE(get(u"LoopStatus"_s).toString(), u"Track"_s);
        QCOMPARE(sentBySetting(u"LoopStatus"_s, u"None"_s), QStringList{ u"window.qv.setLooping(false)"_s });
        QCOMPARE(sentBySetting(u"PlaybackStatus"_s, u"Playing"_s), QStringList(u"refused"_s));
    }

    void whatIsNoNumberIsNoSetting()
    {
        QCOMPARE(sentBySetting(u"Rate"_s, qQNaN()), QStringList());
        QCOMPARE(sentBySetting(u"Volume"_s, qQNaN()), QStringList());
        QCOMPARE(get(u"Rate"_s).toDouble(), 1.0);
        QCOMPARE(get(u"Volume"_s).toDouble(), 1.0);
        QCOMPARE(sentBySetting(u"Rate"_s, qInf()), QStringList{ u"window.qv.setSpeed(2.0)"_s });
    }

    void oddTitles_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("announced");
        QTest::newRow("none") << QString() << QString();
        QTest::newRow("long") << QString(10000, u'ж') << QString(10000, u'ж');
        QTest::newRow("control characters") << u"One\nTwo\tThree\x1b[1m\x7f"_s << u"One Two Three [1m "_s;
        QTest::newRow("a zero") << u"One"_s + QChar::Null + u"Two"_s << u"One Two"_s;
    }

    void oddTitles()
    {
        QFETCH(QString, title);
        openScore(title, title);
        QTEST(metadata().value(u"xesam:title"_s).toString(), "announced");
        QTEST(metadata().value(u"xesam:artist"_s).toStringList().value(0), "announced");
        QCOMPARE(m_client->get(root, u"Identity"_s).toString(), u"Quaverly"_s);
    }

    void timesBeyondReason()
    {
        openScore();
        reach(1e300, 1e300);
        QCOMPARE(metadata().value(u"mpris:length"_s).toLongLong(), qlonglong(9e18));
        QCOMPARE(get(u"Position"_s).toLongLong(), qlonglong(9e18));
    }

    void noSpeedIsAPause()
    {
        openScore();
        play(true);
        QCOMPARE(sentBySetting(u"Rate"_s, 0.0), toggled);
        QCOMPARE(get(u"Rate"_s).toDouble(), 1.0);
    }

    void seeking()
    {
        openScore();
        reach(10000);
        QCOMPARE(get(u"Position"_s).toLongLong(), qlonglong(10000000));
        QCOMPARE(sentBy(u"Seek"_s, { qlonglong(5000000) }), QStringList{ u"window.qv.seekToTime(15000.0)"_s });
        QCOMPARE(sentBy(u"Seek"_s, { qlonglong(-20000000) }), QStringList{ u"window.qv.seekToTime(0.0)"_s });
        QCOMPARE(sentBy(u"Seek"_s, { qlonglong(99000000) }), QStringList{ u"window.qv.seekToTime(60000.0)"_s });
        const QVariant score = metadata().value(u"mpris:trackid"_s);
        QCOMPARE(sentBy(u"SetPosition"_s, { score, qlonglong(30000000) }),
            QStringList{ u"window.qv.seekToTime(30000.0)"_s });
        QCOMPARE(sentBy(u"SetPosition"_s, { score, qlonglong(60000001) }), QStringList());
        QCOMPARE(sentBy(u"SetPosition"_s, { score, qlonglong(-1) }), QStringList());
        const QVariant last = QVariant::fromValue(QDBusObjectPath(u"/org/quaverly/Quaverly/score/0"_s));
        QCOMPARE(sentBy(u"SetPosition"_s, { last, qlonglong(30000000) }), QStringList());
    }

    void jumpsAreAnnounced()
    {
        openScore();
        reach(30000);
        QTRY_COMPARE(m_widget->positions, QList<qlonglong>{ 30000000 });
        play(true);
        reach(30066);
        settle();
        QCOMPARE(m_widget->positions.size(), 1);
        reach(5000);
        QTRY_COMPARE(m_widget->positions, (QList<qlonglong>{ 30000000, 5000000 }));
    }

    void filesAreOpened()
    {
        openScore();
        const QString file = m_world->file(u"a.gp"_s, "x").toString();
        QCOMPARE(sentBy(u"OpenUri"_s, { file }), QStringList{ u"window.qv.loadBase64('eA==')"_s });
        QCOMPARE(sentBy(u"OpenUri"_s, { u"https://example.org/a.gp"_s }), QStringList());
        QCOMPARE(sentBy(u"OpenUri"_s, { m_world->file(u"a.mp3"_s).toString() }), QStringList());
    }

    void aSecondProgramHasANameOfItsOwn()
    {
        const MediaPlayer second(connection(), *m_controller);
        QCOMPARE(
            second.service(), u"org.mpris.MediaPlayer2.quaverly.instance%1"_s.arg(QCoreApplication::applicationPid()));
    }

    void withoutABusNothingHappens()
    {
        const MediaPlayer alone(QDBusConnection(u"nowhere"_s), *m_controller);
        openScore();
        QCOMPARE(alone.service(), QString());
    }
};

QTEST_MAIN(TestMediaPlayer)
#include "test_media_player.moc"
